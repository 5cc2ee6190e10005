#pragma once

#include <span>

#include "platform/com/Unknown.h"
#include "seam/KvxInterfaces.h"

namespace marnoth {

/// Rounds half up to the nearest integer; what no `Integer` holds becomes the nearest one that it does.
std::int64_t roundedToInt64(double value);
std::int32_t roundedToInt32(double value);

/// A stretch of constant tempo, up to the next one's start.
struct TempoStretch {
    double startTick;
    double startSeconds;
    double beatsPerMinute;

    double secondsAt(double tick) const;
    double tickAt(double seconds) const;
};

/// The host's tempo as the instrument asks for it: stretches of constant tempo, one behind the other. Who
/// derives keeps them. Positions before the first go by its tempo. 960 ticks are a beat; all arithmetic is in
/// doubles.
class TempoService : public Implements<CUnknown, IKvxTempoMap> {
public:
    /// Whether a map can have this tempo: finite and above 0.
    static bool isTempo(double beatsPerMinute);

    /// Seconds from the zero of the map's time to a position in ticks, and its inverse.
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

protected:
    TempoService() : Implements(nullptr) {}
    /// At least one; their starts rise, in ticks and in seconds.
    virtual std::span<const TempoStretch> stretches() const = 0;

private:
    const TempoStretch& stretchOfTick(double tick) const;
    const TempoStretch& stretchOfTime(double seconds) const;
    IUnknown* FindInterface(REFIID iid) override;
};

}  // namespace marnoth
