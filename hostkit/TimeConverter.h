#pragma once

#include <atomic>

#include "hostkit/TempoService.h"
#include "platform/com/RefPtr.h"

namespace marnoth {

/// Converts between the four units of time, by way of seconds from tick 0 and in doubles. Integers come out
/// rounded half up; what doesn't fit becomes the nearest that does.
class TimeConverter : public Implements<CUnknown, IKvxTimeConverter> {
public:
    /// Shares `tempoMap`, and so sees its changes. `rate` is frames per second, finite and above 0.
    TimeConverter(RefPtr<TempoService> tempoMap, double rate);

    /// Any thread, while the instrument renders nothing.
    void setRate(double rate) { rate_ = rate; }

    /// `E_POINTER` without a value, `E_INVALIDARG` with either format unknown; the value is left alone then.
    HRESULT ConvertTime(SynthTimeValue* inOut, std::uint32_t targetFormat) override;

private:
    double toSeconds(const SynthTimeValue& value) const;
    SynthTimeValue fromSeconds(double seconds, std::uint32_t format) const;
    IUnknown* FindInterface(REFIID iid) override;

    RefPtr<TempoService> tempoMap_;
    std::atomic<double> rate_;  ///< the instrument asks for it on any thread
};

}  // namespace marnoth
