#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory_resource>
#include <optional>
#include <utility>

#include "host/EventPool.h"
#include "seam/Pzi.h"

namespace marnoth {

/// The events on their way: those that wait for their block, in the time map, and those in play, in the event
/// queue.
///
/// An event takes up one piece of storage, wherever it is. There is room for `kRoom` events from the
/// beginning; whoever brings more makes room beforehand, outside of the lock. Then nothing here asks the
/// system for memory or gives any back, but `clear`. Everything runs under the owner's lock as long as other
/// threads know the store.
class EventStore {
public:
    static constexpr std::size_t kRoom = EventPool::kSlabCells;

    EventStore() = default;
    EventStore(const EventStore&) = delete;
    EventStore& operator=(const EventStore&) = delete;

    /// Room for `kRoom` more events; made outside of the lock.
    static EventPool::Slabs makeRoom() { return EventPool::Slabs(1); }
    bool hasRoom(std::size_t events) const { return pool_.freeCells() >= events; }
    void addRoom(EventPool::Slabs&& room) noexcept { pool_.add(std::move(room)); }
    /// Events that the storage is for: more than `kRoom` if some of it came later.
    std::size_t capacity() const { return pool_.slabs() * EventPool::kSlabCells; }

    /// Lets the event wait for `sampleTime`, behind events of the same time. Throws `std::bad_alloc` when
    /// there is neither room nor memory.
    void insert(const QueuedEvent& event) { timeMap_.emplace(event.sampleTime, event); }
    /// The earliest event that waits for a time from `begin` up to but not including `end`, if there is one;
    /// of several the one that came first. It waits no longer, and a place in the queue is free for it.
    std::optional<QueuedEvent> take(std::int64_t begin, std::int64_t end);
    /// The time of the earliest event that waits for a time from `begin` on, or `end` when that is earlier.
    std::int64_t nextTime(std::int64_t begin, std::int64_t end) const;

    /// Events in play, in order of draining. Whoever erases one has released its voice.
    NoteQueue& queue() { return queue_; }

    /// Forgets all events. Storage beyond the first `kRoom` goes back to the system.
    void clear();

private:
    EventPool pool_;
    std::pmr::multimap<std::int64_t, QueuedEvent> timeMap_{&pool_};  ///< by sample time, then by arrival
    NoteQueue queue_{&pool_};
};

}  // namespace marnoth
