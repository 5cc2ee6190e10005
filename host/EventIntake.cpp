#include <algorithm>
#include <new>
#include <optional>
#include <utility>

#include "host/SoftSynth.h"
#include "platform/system/Overflow.h"

namespace marnoth {

namespace {

constexpr std::uint8_t kLiveReleaseVelocity = 64;
constexpr std::uint8_t kStatusMask = 0xF0;

/// Events that `QueueEvents` takes under one hold of the lock. A longer list is as many lists, one queued
/// after the other: a block or a start of the transport in between finds those before it, and not the rest.
constexpr std::int32_t kPortion = 16;
/// Places that `QueueEvents` leaves for live input, which mustn't ask for memory.
constexpr std::size_t kLiveRoom = EventStore::kRoom / 2;

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
    if (hr != S_OK) return hr;
    if (event.type == SynthEventType::mute) rememberPort(port);
    m_events->insert({event, port, sampleTime, nullptr});
    return hr;
}

HRESULT CSoftSynth::QueueEvents(std::uint32_t, std::uint32_t, std::uint32_t port, IKvxEventList* list) try {
    std::int32_t count = 0;
    HRESULT hr = countEvents(list, count);
    for (std::int32_t begin = 0, end; begin < count && SUCCEEDED(hr); begin = end) {
        end = begin + std::min(count - begin, kPortion);
        makeRoom(kPortion + kLiveRoom);
        hr = queuePortion(port, *list, begin, end);
    }
    return hr;
} catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
}

HRESULT CSoftSynth::countEvents(IKvxEventList* list, std::int32_t& count) {
    CAutoLock lock(*m_pzi);
    if (!m_attached) return E_UNEXPECTED;
    return list ? list->GetCount(&count) : E_POINTER;
}

HRESULT CSoftSynth::queuePortion(std::uint32_t port, IKvxEventList& list, std::int32_t begin,
                                 std::int32_t end) {
    CAutoLock lock(*m_pzi);
    HRESULT hr = S_OK;
    for (std::int32_t i = begin; i < end && SUCCEEDED(hr); ++i) {
        SynthEvent event;
        hr = list.GetAt(i, &event);
        if (FAILED(hr)) break;
        const std::int64_t origin = wrappingDifference(m_loopOffset, m_startSample);
        hr = insertIfKept(event, port, wrappingSum(origin, WholeTicksToSamples(event.time)));
    }
    return hr;
}

/// Outside of the lock, unless the caller holds it.
void CSoftSynth::makeRoom(std::size_t events) {
    {
        CAutoLock lock(*m_pzi);
        if (m_events->hasRoom(events)) return;
    }
    auto room = EventStore::makeRoom();
    CAutoLock lock(*m_pzi);
    m_events->addRoom(std::move(room));
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
    if (record->kind >= PortTransform::kKinds) return S_OK;
    auto entry = PortTransforms::makeEntry(record->port);
    CAutoLock lock(*m_pzi);
    m_portTransforms.add(entry).set(*record);
    return S_OK;
} catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
}

/// A block that drains a mute event finds its port.
void CSoftSynth::rememberPort(std::uint32_t port) {
    auto entry = PortTransforms::makeEntry(static_cast<std::int32_t>(port));
    m_portTransforms.add(entry);
}

}  // namespace marnoth
