#include "host/SoftSynth.h"
#include "platform/system/Overflow.h"
#include "seam/MusicalTime.h"

namespace marnoth {

namespace {

constexpr double kSecondsPerMinute = 60.0;
constexpr std::int32_t kDefaultSampleRate = 44100;
constexpr std::int64_t kNoSampleRate = 0x7FFFFFFF;
constexpr std::int64_t kMillisecondsPerSecond = 1000;

// The order of the operations below is part of the contract: another order rounds otherwise.

std::int64_t ticks16ToSamples(std::int64_t ticks16, double tempo, double rate) {
    const double beats = static_cast<double>(ticks16) * (1.0 / kTicks16PerBeat);
    return truncatedToInt64(rate * (beats / tempo * kSecondsPerMinute) + 0.5);
}

std::int64_t samplesToTicks16(std::int64_t samples, double tempo, double rate) {
    const double seconds = static_cast<double>(samples) / rate;
    return truncatedToInt64(tempo * seconds * (1 / kSecondsPerMinute) * kTicks16PerBeat + 0.5);
}

/// `samples` * 1000 / `rate`, truncated, without the product: that may be too large for 64 bits.
std::int64_t samplesToMilliseconds(std::int64_t samples, std::int64_t rate) {
    std::int64_t wholeSeconds = 0;
    if (__builtin_mul_overflow(samples / rate, kMillisecondsPerSecond, &wholeSeconds))
        return samples < 0 ? INT64_MIN : INT64_MAX;
    return wrappingSum(wholeSeconds, samples % rate * kMillisecondsPerSecond / rate);
}

SynthTimeValue samplesValue(std::int64_t samples) {
    SynthTimeValue value;
    value.format = kTimeSamples;
    value.samples = samples;
    return value;
}

SynthTimeValue ticksValue(std::int32_t ticks) {
    SynthTimeValue value;
    value.format = kTimeTicks;
    value.ticks = ticks;
    return value;
}

SynthTimeValue ticks16Value(std::int64_t ticks16) {
    SynthTimeValue value;
    value.format = kTimeTicks16;
    value.ticks16 = ticks16;
    return value;
}

}  // namespace

/// False without a converter, or when it refuses.
bool CSoftSynth::convert(SynthTimeValue& value, std::uint32_t format) {
    return m_timeConverter && SUCCEEDED(m_timeConverter->ConvertTime(&value, format));
}

/// While the transport stands, musical time goes by the tempo at the beginning of the host's tempo map.
double CSoftSynth::stoppedTempo() {
    if (m_playing || !m_tempoMap) return m_tempo;
    std::int32_t other = 0;
    std::int32_t hundredths = 0;
    const HRESULT hr = m_tempoMap->GetTempoAt(0, &other, &hundredths);
    return SUCCEEDED(hr) && hundredths > 0 ? hundredths * 0.01 : m_tempo.load();
}

std::int64_t CSoftSynth::WholeTicksToSamples(std::int32_t ticks) {
    CAutoLock lock(*m_pzi);
    if (SynthTimeValue value = ticksValue(ticks); convert(value, kTimeSamples)) return value.samples;
    if (m_tempoMap) {
        const std::int64_t milliseconds = m_tempoMap->TicksToMilliseconds(ticks);
        return std::int64_t{inputRate()} * milliseconds / kMillisecondsPerSecond;
    }
    const double rate = inputRate();
    return truncatedToInt64(rate * (ticks * (1.0 / kTicksPerBeat) / m_tempo * kSecondsPerMinute));
}

std::int32_t CSoftSynth::SamplesToWholeTicks(std::int64_t samples) {
    CAutoLock lock(*m_pzi);
    if (SynthTimeValue value = samplesValue(samples); convert(value, kTimeTicks)) return value.ticks;
    const std::uint32_t rate = inputRate();
    if (rate == 0) return 0;
    if (m_tempoMap)
        return m_tempoMap->MillisecondsToTicks(clampedToInt32(samplesToMilliseconds(samples, rate)));
    const double minutes = static_cast<double>(samples) / rate * (1 / kSecondsPerMinute);
    return clampedToInt32(truncatedToInt64(m_tempo * minutes * kTicksPerBeat));
}

std::int64_t CSoftSynth::TicksToSamples(std::int64_t ticks16) {
    CAutoLock lock(*m_pzi);
    if (SynthTimeValue value = ticks16Value(ticks16); m_playing && convert(value, kTimeSamples))
        return value.samples;
    return ticks16ToSamples(ticks16, stoppedTempo(), inputRate());
}

std::int64_t CSoftSynth::SamplesToTicks(std::int64_t samples) {
    CAutoLock lock(*m_pzi);
    if (SynthTimeValue value = samplesValue(samples); m_playing && convert(value, kTimeTicks16))
        return value.ticks16;
    const std::uint32_t rate = inputRate();
    return rate == 0 ? 0 : samplesToTicks16(samples, stoppedTempo(), rate);
}

std::uint32_t CSoftSynth::GetKeyAtTime(std::int64_t ticks16) {
    CAutoLock lock(*m_pzi);
    const SynthTimeValue when = ticks16Value(ticks16);
    std::uint32_t key = 0;
    if (m_projectKeyMap) m_projectKeyMap->GetKeyAt(&when, &key);
    return key;
}

std::int32_t CSoftSynth::GetSampleRate() {
    SynthTimeValue second;
    second.format = kTimeSeconds;
    second.seconds = 1.0;
    const bool usable = convert(second, kTimeSamples) && second.samples > 0 && second.samples < kNoSampleRate;
    return usable ? static_cast<std::int32_t>(second.samples) : kDefaultSampleRate;
}

}  // namespace marnoth
