#include "engine/model/UndoRing.h"

#include <utility>

namespace marnoth {
namespace {

std::int32_t next(std::int32_t row) {
    return (row + 1) % UndoRing::kSlots;
}

std::int32_t previous(std::int32_t row) {
    return (row + UndoRing::kSlots - 1) % UndoRing::kSlots;
}

}  // namespace

void UndoRing::push(PadsState& state) noexcept {
    std::swap(slot(cursor_), state);
    cursor_ = newest_ = next(cursor_);
    if (newest_ == oldest_) oldest_ = next(oldest_);
}

PadsState* UndoRing::undo() noexcept {
    if (cursor_ == oldest_) return nullptr;
    cursor_ = previous(cursor_);
    return &slot(cursor_);
}

PadsState* UndoRing::redo() noexcept {
    if (cursor_ == newest_) return nullptr;
    PadsState* const state = &slot(cursor_);
    cursor_ = next(cursor_);
    return state;
}

void UndoRing::clear() noexcept {
    for (PadsState& state : slots_) state = PadsState{};
    cursor_ = newest_ = oldest_ = 0;
}

}  // namespace marnoth
