#include "shellkit/midi/TempoTrack.h"

#include "seam/MusicalTime.h"

namespace marnoth {

namespace {

double secondsAt(double ticks, double beatsPerMinute) {
    return ticks / kTicksPerBeat * 60.0 / beatsPerMinute;
}

}  // namespace

void TempoTrack::add(std::int32_t tick, double beatsPerMinute) {
    if (tick <= changes_.back().tick)
        changes_.back().beatsPerMinute = beatsPerMinute;
    else
        changes_.push_back({tick, beatsPerMinute});
}

double TempoTrack::seconds(double ticks) const {
    double passed = 0;
    std::size_t i = 0;
    for (; i + 1 < changes_.size() && changes_[i + 1].tick < ticks; ++i)
        passed += secondsAt(changes_[i + 1].tick - changes_[i].tick, changes_[i].beatsPerMinute);
    return passed + secondsAt(ticks - changes_[i].tick, changes_[i].beatsPerMinute);
}

}  // namespace marnoth
