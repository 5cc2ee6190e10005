#include "host/PortTransforms.h"

#include <utility>

namespace marnoth {

PortTransforms::Entry PortTransforms::makeEntry(std::int32_t port) {
    Map one{{port, {}}};
    return one.extract(one.begin());
}

PortTransform& PortTransforms::add(Entry& entry) {
    auto result = map_.insert(std::move(entry));
    entry = std::move(result.node);
    return result.position->second;
}

bool PortTransforms::apply(std::int32_t port, SynthEvent& event) {
    const auto found = map_.find(port);
    if (found != map_.end()) return found->second.apply(event);
    PortTransform unchanged;
    return unchanged.apply(event);
}

}  // namespace marnoth
