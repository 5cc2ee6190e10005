#include "shells/lv2/HostPosition.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "seam/MusicalTime.h"

namespace marnoth {

namespace {

constexpr double kFastest = 64.0;
constexpr double kLongestBar = 1024.0;  // in beats; and the smallest beat, as part of a whole note

/// Frames that a double tells apart.
std::int64_t countable(std::int64_t frame) {
    constexpr std::int64_t kMost = std::int64_t{1} << 52;
    return std::clamp(frame, -kMost, kMost);
}

}  // namespace

double HostPosition::ticksPerFrame() const {
    return speed_ * tempo_ * kTicksPerBeat / 60.0 / rate_;
}

bool HostPosition::take(const ToldPosition& told) {
    const bool wasPlaying = isPlaying();
    const double ticksBefore = ticksPerFrame();
    if (told.speed && std::abs(*told.speed) <= kFastest) speed_ = *told.speed;
    const std::int64_t frame = countable(told.frame.value_or(std::llround(hostFrame_)));
    const bool goesOn = wasPlaying && isPlaying() &&
                        std::abs(static_cast<double>(frame) - hostFrame_) <= std::max(1.0, speed_);
    takeMeter(told, goesOn);
    takeFrame(frame, goesOn);
    if (told.tempo && isLiveTempo(*told.tempo)) {
        tempo_ = *told.tempo;
        tempoIsTold_ = true;
    }
    if (!goesOn) tickIsTold_ = false;
    takeBeat(told, goesOn ? std::optional(ticksBefore) : std::nullopt);
    return wasPlaying && isPlaying() && !goesOn;
}

void HostPosition::takeFrame(std::int64_t frame, bool goesOn) {
    frame_ = goesOn ? countable(frame_ + frame - std::llround(hostFrame_)) : frame;
    hostFrame_ = static_cast<double>(frame);
}

void HostPosition::takeMeter(const ToldPosition& told, bool goesOn) {
    const auto taken = [](const std::optional<double>& value, double least, double before) {
        return value && *value >= least && *value <= kLongestBar ? *value : before;
    };
    const double beatsPerBar = std::exchange(beatsPerBar_, taken(told.beatsPerBar, 1.0 / 64, beatsPerBar_));
    const double beatUnit = std::exchange(beatUnit_, taken(told.beatUnit, 1.0, beatUnit_));
    if (!goesOn) meterTicks_ = 0.0;
    const std::optional<double> beat = toldBeat(told);
    if (!goesOn || !beat || (beatsPerBar == beatsPerBar_ && beatUnit == beatUnit_)) return;
    // Meters change at whole beats, and the clock is more exact than the smallest of them.
    constexpr double kSmallestBeat = kTicksPerBeat / 8.0;
    meterTicks_ += std::round((tick_ - *beat) / kSmallestBeat) * kSmallestBeat;
}

/// In ticks, as if the meter had always been the present one, and then as far ahead as it is known to be.
std::optional<double> HostPosition::toldBeat(const ToldPosition& told) const {
    // Hosts whose bars begin at 0 don't count before.
    const bool isBefore = hostFrame_ < 0.0 && told.bar == 0.0 && told.barBeat == 0.0;
    std::optional<double> beats = told.beat;
    if (!beats && told.bar && told.barBeat && !isBefore) beats = *told.bar * beatsPerBar_ + *told.barBeat;
    if (!beats) return {};
    const double tick = *beats * kTicksPerBeat * 4.0 / beatUnit_ + meterTicks_;
    return isLiveTick(tick) ? std::optional(tick) : std::nullopt;
}

void HostPosition::takeBeat(const ToldPosition& told, std::optional<double> ticksBefore) {
    const double byFrame = hostFrame_ / rate_ * tempo_ * kTicksPerBeat / 60.0;
    const std::optional<double> beat = toldBeat(told);
    if (beat) tickIsTold_ = std::abs(*beat - byFrame) > 1.0;
    if (beat && tickIsTold_) tick_ = ticksBefore ? unrounded(*beat, *ticksBefore) : *beat;
    if (!tickIsTold_) tick_ = byFrame;
}

double HostPosition::unrounded(double beat, double ticksBefore) const {
    constexpr double kRounding = 0.5;
    const double faster = ticksPerFrame() / ticksBefore;
    if (faster == 1.0) return std::abs(beat - tick_) <= kRounding ? tick_ : beat;
    const double change = (beat - faster * tick_) / (1.0 - faster);
    for (double grid = kTicksPerBeat; grid >= kTicksPerBeat / 4.0; grid /= 2.0) {
        const double onGrid = std::round(change / grid) * grid;
        const double exact = onGrid + faster * (tick_ - onGrid);
        if (onGrid <= tick_ && std::abs(exact - beat) <= kRounding) return exact;
    }
    return beat;
}

LiveTransport HostPosition::next() const {
    LiveTransport transport;
    transport.playing = isPlaying();
    transport.frame = frame_;
    const bool follows = !tickIsTold_ && speed_ == 1.0 && static_cast<double>(frame_) == hostFrame_;
    if (!follows) transport.tick = tick_;
    if (tempoIsTold_) transport.tempo = isPlaying() ? tempo_ * speed_ : tempo_;
    return transport;
}

void HostPosition::advance(std::int32_t frames) {
    if (!isPlaying()) return;
    frame_ = countable(frame_ + frames);
    hostFrame_ += frames * speed_;
    tick_ += frames * ticksPerFrame();
}

}  // namespace marnoth
