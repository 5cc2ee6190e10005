#include "host/EventStore.h"

#include <algorithm>

namespace marnoth {

std::optional<QueuedEvent> EventStore::take(std::int64_t begin, std::int64_t end) {
    const auto next = timeMap_.lower_bound(begin);
    if (next == timeMap_.end() || next->first >= end) return std::nullopt;
    const QueuedEvent event = next->second;
    timeMap_.erase(next);
    return event;
}

std::int64_t EventStore::nextTime(std::int64_t begin, std::int64_t end) const {
    const auto next = timeMap_.lower_bound(begin);
    return next == timeMap_.end() ? end : std::min(next->first, end);
}

void EventStore::clear() {
    timeMap_.clear();
    queue_.clear();
    pool_.shrink();
}

}  // namespace marnoth
