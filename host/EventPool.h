#pragma once

#include <array>
#include <cstddef>
#include <list>
#include <memory_resource>

#include "seam/Pzi.h"

namespace marnoth {

/// Memory for the nodes of the containers that hold events: cells of one size, taken in advance and used over
/// and over, so that a container with cells left neither asks the system for memory nor gives any back.
///
/// A node of any of them fits a cell; what goes on in one container serves the other. Used under its owner's
/// lock, but slabs are made outside of it.
class EventPool final : public std::pmr::memory_resource {
public:
    /// A node of a tree: an event behind its key, three links and a colour.
    static constexpr std::size_t kCellBytes =
        sizeof(QueuedEvent) + sizeof(QueuedEvent::sampleTime) + 4 * sizeof(void*);
    /// What is taken from the system at a time.
    static constexpr std::size_t kSlabCells = 1024;

    union Cell {
        Cell* next;  ///< while it is free
        alignas(std::max_align_t) std::byte node[kCellBytes];
    };
    /// Cells, each with its neighbour as the next.
    struct Slab {
        Slab();
        std::array<Cell, kSlabCells> cells;
    };
    using Slabs = std::list<Slab>;

    /// Begins with one slab, which it keeps.
    EventPool();
    EventPool(const EventPool&) = delete;
    EventPool& operator=(const EventPool&) = delete;

    std::size_t freeCells() const { return freeCells_; }
    std::size_t slabs() const { return slabs_.size(); }
    /// Takes over what was made elsewhere, in a time that depends on the number of slabs alone.
    void add(Slabs&& slabs) noexcept;
    /// Gives all slabs but the first back to the system, if no cell is in use.
    void shrink();

private:
    /// Without a free cell a slab more, from the system: the one case in which memory is asked for here.
    void* do_allocate(std::size_t bytes, std::size_t alignment) override;
    void do_deallocate(void* memory, std::size_t bytes, std::size_t alignment) override;
    bool do_is_equal(const std::pmr::memory_resource& other) const noexcept override {
        return this == &other;
    }
    void freeAll(Slab& slab) noexcept;

    Slabs slabs_;
    Cell* free_ = nullptr;
    std::size_t freeCells_ = 0;
};

}  // namespace marnoth
