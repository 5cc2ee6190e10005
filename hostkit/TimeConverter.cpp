#include "hostkit/TimeConverter.h"

#include <utility>

namespace marnoth {

namespace {

constexpr double kFractionsPerTick = 65536.0;

bool isFormat(std::uint32_t format) {
    return format >= kTimeSeconds && format <= kTimeTicks16;
}

}  // namespace

TimeConverter::TimeConverter(RefPtr<TempoService> tempoMap, double rate)
    : Implements(nullptr), tempoMap_(std::move(tempoMap)), rate_(rate) {}

HRESULT TimeConverter::ConvertTime(SynthTimeValue* inOut, std::uint32_t targetFormat) {
    if (!inOut) return E_POINTER;
    if (!isFormat(inOut->format) || !isFormat(targetFormat)) return E_INVALIDARG;
    *inOut = fromSeconds(toSeconds(*inOut), targetFormat);
    return S_OK;
}

double TimeConverter::toSeconds(const SynthTimeValue& value) const {
    switch (value.format) {
        case kTimeSamples:
            return static_cast<double>(value.samples) / rate_;
        case kTimeTicks:
            return tempoMap_->secondsAt(value.ticks);
        case kTimeTicks16:
            return tempoMap_->secondsAt(static_cast<double>(value.ticks16) / kFractionsPerTick);
        default:
            return value.seconds;
    }
}

SynthTimeValue TimeConverter::fromSeconds(double seconds, std::uint32_t format) const {
    SynthTimeValue value;
    value.format = format;
    switch (format) {
        case kTimeSamples:
            value.samples = roundedToInt64(seconds * rate_);
            break;
        case kTimeTicks:
            value.ticks = roundedToInt32(tempoMap_->tickAt(seconds));
            break;
        case kTimeTicks16:
            value.ticks16 = roundedToInt64(tempoMap_->tickAt(seconds) * kFractionsPerTick);
            break;
        default:
            value.seconds = seconds;
    }
    return value;
}

IUnknown* TimeConverter::FindInterface(REFIID iid) {
    return iid == IID_IKvxTimeConverter ? static_cast<IKvxTimeConverter*>(this) : nullptr;
}

}  // namespace marnoth
