#include "editor/padeditor/EventSelection.h"

namespace marnoth {

bool CEventSelection::contains(std::int32_t track, std::int32_t grain) const {
    return !items_.empty() && keys_.contains(key(track, grain));
}

void CEventSelection::add(std::int32_t track, std::int32_t grain) {
    if (contains(track, grain)) return;
    items_.push_back({track, grain});
    keys_.insert(key(track, grain));
}

void CEventSelection::set(std::int32_t track, std::int32_t grain) {
    clear();
    add(track, grain);
}

}  // namespace marnoth
