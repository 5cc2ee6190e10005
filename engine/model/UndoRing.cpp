#include "engine/model/UndoRing.h"

#include <algorithm>
#include <utility>

namespace marnoth {
namespace {

std::int32_t next(std::int32_t row) {
    return (row + 1) % UndoRing::kSlots;
}

std::int32_t previous(std::int32_t row) {
    return (row + UndoRing::kSlots - 1) % UndoRing::kSlots;
}

Pads snapshotOf(const Pads& pads) {
    Pads copy;
    std::transform(pads.begin(), pads.end(), copy.begin(),
                   [](const auto& pad) { return pad ? std::make_unique<CGrooveTrack>(*pad) : nullptr; });
    return copy;
}

}  // namespace

void UndoRing::push(const Pads& pads) {
    slots_[static_cast<std::size_t>(cursor_)] = snapshotOf(pads);
    cursor_ = newest_ = next(cursor_);
    if (newest_ == oldest_) oldest_ = next(oldest_);
}

bool UndoRing::undo(Pads& pads) {
    if (cursor_ == oldest_) return false;
    cursor_ = previous(cursor_);
    std::swap(pads, slots_[static_cast<std::size_t>(cursor_)]);
    return true;
}

bool UndoRing::redo(Pads& pads) {
    if (cursor_ == newest_) return false;
    std::swap(pads, slots_[static_cast<std::size_t>(cursor_)]);
    cursor_ = next(cursor_);
    return true;
}

void UndoRing::clear() {
    for (Pads& row : slots_) row = Pads{};
    cursor_ = newest_ = oldest_ = 0;
}

}  // namespace marnoth
