#include "hostkit/LiveTempoMap.h"

#include "seam/MusicalTime.h"

namespace marnoth {

namespace {

/// Beats per minute that lead from the start of one stretch to that of another.
double tempoBetween(const TempoStretch& from, const TempoStretch& to) {
    const double minutes = (to.startSeconds - from.startSeconds) / 60.0;
    return (to.startTick - from.startTick) / kTicksPerBeat / minutes;
}

}  // namespace

void LiveTempoMap::restart(double tick, double seconds, double beatsPerMinute) {
    stretches_[0] = {tick, seconds, beatsPerMinute};
    count_ = 1;
}

void LiveTempoMap::change(double tick, double seconds, double beatsPerMinute) {
    const auto isLater = [&](const TempoStretch& stretch) {
        return stretch.startTick >= tick || stretch.startSeconds >= seconds;
    };
    while (count_ > 0 && isLater(stretches_[count_ - 1])) --count_;
    if (count_ == kRoom) thinPast();
    stretches_[count_++] = {tick, seconds, beatsPerMinute};
}

/// Stretches are joined up to four times the mean length. Any two that are left in a row are longer together,
/// so half of them go at least.
void LiveTempoMap::thinPast() {
    const double span = stretches_[count_ - 1].startSeconds - stretches_[0].startSeconds;
    const double longest = 4 * span / kRoom;
    std::size_t last = 0;
    for (std::size_t i = 1; i < count_; ++i) {
        const TempoStretch* const next = i + 1 < count_ ? &stretches_[i + 1] : nullptr;
        if (next && next->startSeconds - stretches_[last].startSeconds <= longest) {
            stretches_[last].beatsPerMinute = tempoBetween(stretches_[last], *next);
        } else {
            stretches_[++last] = stretches_[i];
        }
    }
    count_ = last + 1;
}

}  // namespace marnoth
