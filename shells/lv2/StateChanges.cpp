#include "shells/lv2/StateChanges.h"

#include <utility>

namespace marnoth {

std::uint64_t StateChanges::count() const {
    std::uint64_t changes = 0;
    if (options_) options_->GetChanges(&changes);
    return changes;
}

bool StateChanges::byOthers(std::uint64_t automated) {
    const std::uint64_t epoch = epoch_;
    const std::uint64_t present = count() - automated;
    // Midway nobody can say whose the changes are.
    if (epoch % 2 != 0 || epoch != epoch_) return false;
    const bool isOfHost = std::exchange(seenEpoch_, epoch) != epoch;
    return std::exchange(seen_, present) != present && !isOfHost;
}

}  // namespace marnoth
