#include "hostkit/TempoMap.h"

namespace marnoth {

bool TempoMap::addChange(std::int32_t tick, double beatsPerMinute) {
    if (!isTempo(beatsPerMinute) || tick < 0) return false;
    if (stretches_.size() > 1 && tick <= stretches_.back().startTick) return false;
    stretches_.push_back({static_cast<double>(tick), secondsAt(tick), beatsPerMinute});
    return true;
}

}  // namespace marnoth
