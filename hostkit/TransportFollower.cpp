#include "hostkit/TransportFollower.h"

#include <algorithm>
#include <cmath>

#include "hostkit/StreamPosition.h"
#include "seam/MusicalTime.h"

namespace marnoth {

namespace {

/// A tempo as the instrument hears it while the transport stands.
double hundredthsOf(double tempo) {
    return static_cast<double>(roundedToInt32(tempo * 100.0));
}

double ticksPerSecond(double tempo) {
    return tempo * kTicksPerBeat / 60.0;
}

bool isUsable(const std::optional<double>& tick) {
    return tick && isLiveTick(*tick);
}

}  // namespace

void TransportFollower::restart(std::uint32_t rate) {
    rate_ = rate;
    playing_ = false;
    frame_ = 0;
    lastFrames_ = 0;
    map_->restart(0.0, 0.0, tempo_);
}

double TransportFollower::tempoOf(const LiveTransport& told) const {
    return told.tempo && isLiveTempo(*told.tempo) ? *told.tempo : tempo_;
}

bool TransportFollower::endsSound(const LiveTransport& told) const {
    return told.playing != playing_ || (playing_ && jumps(told, tempoOf(told)));
}

TransportFollower::Change TransportFollower::follow(const LiveTransport& told) {
    const double tempo = tempoOf(told);
    if (!told.playing) return stand(tempo);
    if (!playing_ || jumps(told, tempo)) return start(told, tempo);
    return tempo == tempo_ ? Change::none : changeTempo(told, tempo);
}

TransportFollower::Change TransportFollower::start(const LiveTransport& told, double tempo) {
    playing_ = true;
    frame_ = reachable(told.frame);
    tempo_ = tempo;
    const double tick = isUsable(told.tick) ? *told.tick : seconds() * ticksPerSecond(tempo);
    map_->restart(tick, seconds(), tempo);
    return Change::started;
}

TransportFollower::Change TransportFollower::changeTempo(const LiveTransport& told, double tempo) {
    map_->change(isUsable(told.tick) ? *told.tick : tick(), seconds(), tempo);
    tempo_ = tempo;
    return Change::none;
}

TransportFollower::Change TransportFollower::stand(double tempo) {
    const bool wasPlaying = std::exchange(playing_, false);
    const double before = std::exchange(tempo_, tempo);
    if (!wasPlaying && tempo == before) return Change::none;
    map_->restart(0.0, 0.0, tempo);
    if (wasPlaying) return Change::stopped;
    frame_ =
        reachable(roundedToInt64(static_cast<double>(frame_) * hundredthsOf(before) / hundredthsOf(tempo)));
    return Change::moved;
}

bool TransportFollower::jumps(const LiveTransport& told, double tempo) const {
    const std::int64_t frame = reachable(told.frame);
    if (frame < frame_ - 1 || frame > frame_ + 1) return true;
    if (!isUsable(told.tick)) return false;
    const double lastSeconds = lastFrames_ / rate_;
    const double tolerance = 1.0 + std::abs(ticksPerSecond(tempo) - ticksPerSecond(tempo_)) * lastSeconds;
    return std::abs(*told.tick - tick()) > tolerance;
}

/// The nearest frame that a stream can stand at.
std::int64_t TransportFollower::reachable(std::int64_t frame) const {
    const std::int64_t farthest = kFarthestStreamSecond * static_cast<std::int64_t>(rate_);
    return std::clamp(frame, -farthest, farthest);
}

void TransportFollower::advance(std::int32_t frames) {
    frame_ += frames;
    lastFrames_ = frames;
}

}  // namespace marnoth
