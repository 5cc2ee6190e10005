#include <new>

#include "host/SoftSynth.h"
#include "platform/system/Overflow.h"

namespace marnoth {

namespace {

constexpr std::uint8_t kLiveReleaseVelocity = 64;
constexpr std::uint8_t kStatusMask = 0xF0;

void setNote(SynthEvent& event, const RawMidiEvent& raw, std::uint32_t duration) {
    event.type = SynthEventType::note;
    event.note = raw.data1 & 127;
    event.velocity = raw.data2 & 127;
    event.duration = duration;
}

void setMessage(SynthEvent& event, SynthEventType type, const RawMidiEvent& raw) {
    event.type = type;
    event.note = raw.data1 & 127;
    event.velocity = raw.data2 & 127;
}

/// A patch change without a bank: the bank's 16 bits are all set.
void setPatch(SynthEvent& event, const RawMidiEvent& raw) {
    setMessage(event, SynthEventType::patch, raw);
    event.releaseVelocity = 0xFF;
    event.duration = 0xFF;
}

void setChannelAftertouch(SynthEvent& event, const RawMidiEvent& raw) {
    event.type = SynthEventType::channelAftertouch;
    event.velocity = raw.data1 & 127;
}

/// The wheel's position goes over both bytes. The data bytes are taken as they come, eighth bit and all.
void setPitchWheel(SynthEvent& event, const RawMidiEvent& raw) {
    const unsigned wheel = raw.data2 * 128u + raw.data1;
    event.type = SynthEventType::pitchWheel;
    event.note = static_cast<std::uint8_t>(wheel & 0xFF);
    event.velocity = static_cast<std::uint8_t>(wheel >> 8);
}

/// Null for a message that the instrument doesn't know.
std::optional<SynthEvent> toSynthEvent(const RawMidiEvent& raw) {
    SynthEvent event;
    event.time = static_cast<std::int32_t>(raw.time);
    event.channel = raw.status & 15;
    event.releaseVelocity = kLiveReleaseVelocity;
    switch (raw.status & kStatusMask) {
        case 0x80:
            setNote(event, raw, kDurationOff);
            break;
        case 0x90:
            setNote(event, raw, raw.data2 != 0 ? kDurationOpen : kDurationOff);
            break;
        case 0xA0:
            setMessage(event, SynthEventType::keyAftertouch, raw);
            break;
        case 0xB0:
            setMessage(event, SynthEventType::controller, raw);
            break;
        case 0xC0:
            setPatch(event, raw);
            break;
        case 0xD0:
            setChannelAftertouch(event, raw);
            break;
        case 0xE0:
            setPitchWheel(event, raw);
            break;
        default:
            return std::nullopt;
    }
    return event;
}

}  // namespace

HRESULT CSoftSynth::insertIfKept(const SynthEvent& event, std::uint32_t port, std::int64_t sampleTime) {
    const HRESULT hr = m_pzi->IsIgnoredEvent(&event);
    if (hr == S_OK) m_events->timeMap.emplace(sampleTime, QueuedEvent{event, port, sampleTime, nullptr});
    return hr;
}

HRESULT CSoftSynth::QueueEvents(std::uint32_t, std::uint32_t, std::uint32_t port, IKvxEventList* list) try {
    CAutoLock lock(*m_pzi);
    if (!m_attached) return E_UNEXPECTED;
    if (!list) return E_POINTER;
    std::int32_t count = 0;
    HRESULT hr = list->GetCount(&count);
    for (std::int32_t i = 0; i < count && SUCCEEDED(hr); ++i) {
        SynthEvent event;
        hr = list->GetAt(i, &event);
        if (FAILED(hr)) break;
        const std::int64_t origin = wrappingDifference(m_loopOffset, m_startSample);
        hr = insertIfKept(event, port, wrappingSum(origin, WholeTicksToSamples(event.time)));
    }
    return hr;
} catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
}

HRESULT CSoftSynth::QueueRawInput(std::uint32_t port, IKvxRawEventList* list) try {
    if (!list) return E_POINTER;
    CAutoLock lock(*m_pzi);
    if (!m_attached) return E_UNEXPECTED;
    std::int32_t count = 0;
    HRESULT hr = list->GetCount(&count);
    std::uint32_t firstTime = 0;
    for (std::int32_t i = 0; i < count && SUCCEEDED(hr); ++i) {
        RawMidiEvent raw;
        hr = list->GetAt(i, &raw);
        if (FAILED(hr)) break;
        if (i == 0) firstTime = raw.time;
        const auto ticks = static_cast<std::int32_t>(raw.time - firstTime);
        const std::int64_t sampleTime = wrappingSum(m_position, WholeTicksToSamples(ticks));
        if (const auto event = toSynthEvent(raw)) hr = insertIfKept(*event, port, sampleTime);
    }
    return hr;
} catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
}

HRESULT CSoftSynth::Notify(const SynthNotification* record) try {
    if (!record) return E_POINTER;
    CAutoLock lock(*m_pzi);
    if (record->kind < PortTransform::kKinds) m_portTransforms[record->port].set(*record);
    return S_OK;
} catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
}

}  // namespace marnoth
