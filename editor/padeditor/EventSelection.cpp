#include "editor/padeditor/EventSelection.h"

#include <algorithm>

namespace marnoth {

bool CEventSelection::contains(std::int32_t track, std::int32_t grain) const {
    return std::find(items_.begin(), items_.end(), EventSelectionInfo{track, grain}) != items_.end();
}

void CEventSelection::add(std::int32_t track, std::int32_t grain) {
    if (!contains(track, grain)) items_.push_back({track, grain});
}

void CEventSelection::set(std::int32_t track, std::int32_t grain) {
    clear();
    add(track, grain);
}

}  // namespace marnoth
