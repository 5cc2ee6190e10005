#include "shells/desktop/audio/StreamClock.h"

#include <cmath>

namespace marnoth {

namespace {

/// Blocks that a system takes at once, and how long the machine may have other things to do.
constexpr double kBlocksAtOnce = 4;
constexpr double kDelaySeconds = 0.05;
/// In so many blocks a drift is followed.
constexpr double kSlowness = 512;

}  // namespace

void StreamClock::start(std::uint32_t rate, std::int32_t frames) {
    rate_ = rate;
    farthest_ = kBlocksAtOnce * frames + kDelaySeconds * rate;
    runs_ = false;
}

double StreamClock::framesSince(Moment moment) const {
    return std::chrono::duration<double>(moment - origin_).count() * rate_;
}

void StreamClock::block(std::int64_t first, Moment now) {
    if (!runs_) {
        runs_ = true;
        origin_ = now;
        lead_ = static_cast<double>(first);
    }
    const double lead = static_cast<double>(first) - framesSince(now);
    if (lead > lead_ || lead < lead_ - farthest_)
        lead_ = lead;
    else
        lead_ += (lead - lead_) / kSlowness;
}

std::int64_t StreamClock::frameAt(Moment moment) const {
    return std::llround(lead_ + framesSince(moment));
}

}  // namespace marnoth
