#include "hostkit/TempoMap.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "seam/MusicalTime.h"

namespace marnoth {

namespace {

constexpr double kSecondsPerMinute = 60.0;
constexpr double kMillisecondsPerSecond = 1000.0;

template <class Integer>
Integer rounded(double value) {
    const double whole = std::floor(value + 0.5);
    // The upper limit as a double is one above the greatest integer, or that integer itself.
    constexpr double low = static_cast<double>(std::numeric_limits<Integer>::min());
    constexpr double high = static_cast<double>(std::numeric_limits<Integer>::max());
    if (std::isnan(whole)) return 0;
    if (whole <= low) return std::numeric_limits<Integer>::min();
    if (whole >= high) return std::numeric_limits<Integer>::max();
    return static_cast<Integer>(whole);
}

/// The last stretch whose `start` is at or before `position`; the first one for positions before all.
template <class Stretches, class Start>
const auto& stretchAt(const Stretches& stretches, double position, Start start) {
    auto next = std::upper_bound(stretches.begin() + 1, stretches.end(), position,
                                 [&](double at, const auto& stretch) { return at < stretch.*start; });
    return *(next - 1);
}

}  // namespace

std::int64_t roundedToInt64(double value) {
    return rounded<std::int64_t>(value);
}

std::int32_t roundedToInt32(double value) {
    return rounded<std::int32_t>(value);
}

TempoMap::TempoMap(double beatsPerMinute) : Implements(nullptr), stretches_{{0.0, 0.0, beatsPerMinute}} {}

bool TempoMap::isTempo(double beatsPerMinute) {
    return std::isfinite(beatsPerMinute) && beatsPerMinute > 0.0;
}

bool TempoMap::addChange(std::int32_t tick, double beatsPerMinute) {
    if (!isTempo(beatsPerMinute) || tick < 0) return false;
    if (stretches_.size() > 1 && tick <= stretches_.back().startTick) return false;
    stretches_.push_back({static_cast<double>(tick), secondsAt(tick), beatsPerMinute});
    return true;
}

double TempoMap::secondsAt(double tick) const {
    const Stretch& stretch = stretchOfTick(tick);
    // One division: of the ways to write it this one rounds least.
    return stretch.startSeconds +
           (tick - stretch.startTick) * kSecondsPerMinute / (stretch.beatsPerMinute * kTicksPerBeat);
}

double TempoMap::tickAt(double seconds) const {
    const Stretch& stretch = stretchOfTime(seconds);
    return stretch.startTick +
           (seconds - stretch.startSeconds) * (stretch.beatsPerMinute * kTicksPerBeat) / kSecondsPerMinute;
}

const TempoMap::Stretch& TempoMap::stretchOfTick(double tick) const {
    return stretchAt(stretches_, tick, &Stretch::startTick);
}

const TempoMap::Stretch& TempoMap::stretchOfTime(double seconds) const {
    return stretchAt(stretches_, seconds, &Stretch::startSeconds);
}

std::int32_t TempoMap::TicksToMilliseconds(std::int32_t ticks) {
    return roundedToInt32(secondsAt(ticks) * kMillisecondsPerSecond);
}

std::int32_t TempoMap::MillisecondsToTicks(std::int32_t milliseconds) {
    return roundedToInt32(tickAt(milliseconds / kMillisecondsPerSecond));
}

HRESULT TempoMap::GetTempoAt(std::int32_t time, std::int32_t*, std::int32_t* tempoHundredths) {
    if (!tempoHundredths) return E_POINTER;
    const Stretch& stretch = time <= 0 ? stretches_.front() : stretchOfTick(time);
    *tempoHundredths = roundedToInt32(stretch.beatsPerMinute * 100.0);
    return S_OK;
}

IUnknown* TempoMap::FindInterface(REFIID iid) {
    return iid == IID_IKvxTempoMap ? static_cast<IKvxTempoMap*>(this) : nullptr;
}

}  // namespace marnoth
