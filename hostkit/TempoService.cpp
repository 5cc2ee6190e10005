#include "hostkit/TempoService.h"

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
template <class Start>
const TempoStretch& stretchAt(std::span<const TempoStretch> stretches, double position, Start start) {
    auto next = std::upper_bound(stretches.begin() + 1, stretches.end(), position,
                                 [&](double at, const TempoStretch& stretch) { return at < stretch.*start; });
    return *(next - 1);
}

}  // namespace

std::int64_t roundedToInt64(double value) {
    return rounded<std::int64_t>(value);
}

std::int32_t roundedToInt32(double value) {
    return rounded<std::int32_t>(value);
}

double TempoStretch::secondsAt(double tick) const {
    // One division: of the ways to write it this one rounds least.
    return startSeconds + (tick - startTick) * kSecondsPerMinute / (beatsPerMinute * kTicksPerBeat);
}

double TempoStretch::tickAt(double seconds) const {
    return startTick + (seconds - startSeconds) * (beatsPerMinute * kTicksPerBeat) / kSecondsPerMinute;
}

bool TempoService::isTempo(double beatsPerMinute) {
    return std::isfinite(beatsPerMinute) && beatsPerMinute > 0.0;
}

double TempoService::secondsAt(double tick) const {
    return stretchOfTick(tick).secondsAt(tick);
}

double TempoService::tickAt(double seconds) const {
    return stretchOfTime(seconds).tickAt(seconds);
}

const TempoStretch& TempoService::stretchOfTick(double tick) const {
    return stretchAt(stretches(), tick, &TempoStretch::startTick);
}

const TempoStretch& TempoService::stretchOfTime(double seconds) const {
    return stretchAt(stretches(), seconds, &TempoStretch::startSeconds);
}

std::int32_t TempoService::TicksToMilliseconds(std::int32_t ticks) {
    return roundedToInt32(secondsAt(ticks) * kMillisecondsPerSecond);
}

std::int32_t TempoService::MillisecondsToTicks(std::int32_t milliseconds) {
    return roundedToInt32(tickAt(milliseconds / kMillisecondsPerSecond));
}

HRESULT TempoService::GetTempoAt(std::int32_t time, std::int32_t*, std::int32_t* tempoHundredths) {
    if (!tempoHundredths) return E_POINTER;
    const TempoStretch& stretch = time <= 0 ? stretches().front() : stretchOfTick(time);
    *tempoHundredths = roundedToInt32(stretch.beatsPerMinute * 100.0);
    return S_OK;
}

IUnknown* TempoService::FindInterface(REFIID iid) {
    return iid == IID_IKvxTempoMap ? static_cast<IKvxTempoMap*>(this) : nullptr;
}

}  // namespace marnoth
