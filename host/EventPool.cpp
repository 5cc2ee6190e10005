#include "host/EventPool.h"

#include <iterator>
#include <new>

namespace marnoth {

namespace {

/// Some standard libraries keep more in a container than nodes of its elements.
bool fitsCell(std::size_t bytes, std::size_t alignment) {
    return bytes <= sizeof(EventPool::Cell) && alignment <= alignof(EventPool::Cell);
}

void link(std::array<EventPool::Cell, EventPool::kSlabCells>& cells) {
    for (std::size_t i = 0; i + 1 < cells.size(); ++i) cells[i].next = &cells[i + 1];
    cells.back().next = nullptr;
}

}  // namespace

EventPool::Slab::Slab() {
    link(cells);
}

EventPool::EventPool() {
    add(Slabs(1));
}

void EventPool::add(Slabs&& slabs) noexcept {
    for (Slab& slab : slabs) freeAll(slab);
    slabs_.splice(slabs_.end(), slabs);
}

void EventPool::freeAll(Slab& slab) noexcept {
    slab.cells.back().next = free_;
    free_ = &slab.cells.front();
    freeCells_ += kSlabCells;
}

void EventPool::shrink() {
    if (freeCells_ != slabs_.size() * kSlabCells) return;
    slabs_.erase(std::next(slabs_.begin()), slabs_.end());
    link(slabs_.front().cells);
    free_ = nullptr;
    freeCells_ = 0;
    freeAll(slabs_.front());
}

void* EventPool::do_allocate(std::size_t bytes, std::size_t alignment) {
    if (!fitsCell(bytes, alignment)) return std::pmr::new_delete_resource()->allocate(bytes, alignment);
    if (!free_) add(Slabs(1));
    Cell* const cell = free_;
    free_ = cell->next;
    --freeCells_;
    return cell;
}

void EventPool::do_deallocate(void* memory, std::size_t bytes, std::size_t alignment) {
    if (!fitsCell(bytes, alignment))
        return std::pmr::new_delete_resource()->deallocate(memory, bytes, alignment);
    Cell* const cell = new (memory) Cell;
    cell->next = free_;
    free_ = cell;
    ++freeCells_;
}

}  // namespace marnoth
