#pragma once

#include <vector>

#include "platform/com/Unknown.h"
#include "seam/KvxInterfaces.h"

namespace marnoth {

/// Rounds half up to the nearest integer; what no `Integer` holds becomes the nearest one that it does.
std::int64_t roundedToInt64(double value);
std::int32_t roundedToInt32(double value);

/// The host's tempo: constant from change to change, counted from tick 0. Positions before tick 0 go by the
/// first tempo. 960 ticks are a beat; all arithmetic is in doubles.
///
/// Changes are made by the host's own thread, between blocks.
class TempoMap : public Implements<CUnknown, IKvxTempoMap> {
public:
    /// `beatsPerMinute`, finite and above 0, holds from tick 0.
    explicit TempoMap(double beatsPerMinute);

    /// From `tick` on the tempo is `beatsPerMinute`. False, with nothing changed, when `tick` is below 0 or
    /// not behind the last change, or when the tempo isn't one.
    bool addChange(std::int32_t tick, double beatsPerMinute);

    /// Whether a map can have this tempo: finite and above 0.
    static bool isTempo(double beatsPerMinute);

    /// Seconds from tick 0 to a position in ticks, and its inverse.
    double secondsAt(double tick) const;
    double tickAt(double seconds) const;

    // IKvxTempoMap. Both conversions round half up.
    std::int32_t TicksToMilliseconds(std::int32_t ticks) override;
    std::int32_t MillisecondsToTicks(std::int32_t milliseconds) override;
    HRESULT reserved5() override { return E_NOTIMPL; }
    HRESULT reserved6() override { return E_NOTIMPL; }
    HRESULT reserved7() override { return E_NOTIMPL; }
    /// `time` is in ticks. At time 0 and before it is the first tempo. `other` is left alone.
    HRESULT GetTempoAt(std::int32_t time, std::int32_t* other, std::int32_t* tempoHundredths) override;

private:
    /// A stretch of constant tempo, up to the next one's start.
    struct Stretch {
        double startTick;
        double startSeconds;
        double beatsPerMinute;
    };
    const Stretch& stretchOfTick(double tick) const;
    const Stretch& stretchOfTime(double seconds) const;
    IUnknown* FindInterface(REFIID iid) override;

    std::vector<Stretch> stretches_;
};

}  // namespace marnoth
