#include <bitset>
#include <iterator>
#include <new>

#include "host/SoftSynth.h"
#include "platform/system/Overflow.h"

namespace marnoth {

namespace {

constexpr int kKeys = 128;

bool isNoteWith(const QueuedEvent& event, std::uint32_t duration) {
    return event.event.type == SynthEventType::note && event.event.duration == duration;
}

}  // namespace

HRESULT CSoftSynth::DrainEvents(std::int64_t position, std::int32_t count) try {
    CAutoLock lock(*m_pzi);
    const std::int64_t end = wrappingSum(position, count);
    // What is earlier than the block came too late: it stays where it is until the transport stops or starts.
    while (const auto event = m_events->take(position, end))
        if (const HRESULT hr = drainOne(*event); FAILED(hr)) return hr;
    if (!m_pzi->IsSteady()) pairNoteOffs();
    return S_OK;
} catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
}

HRESULT CSoftSynth::drainOne(QueuedEvent event) {
    if (!m_portTransforms.apply(static_cast<std::int32_t>(event.port), event.event)) return S_OK;
    if (m_pzi->IsSteady() && isNoteWith(event, kDurationOff)) {
        endOldestNote(event.event.note);
        return S_OK;
    }
    // Queued first, so that running out of memory can't lose a voice.
    NoteQueue& queue = eventQueue();
    queue.push_back(event);
    const bool sounds = event.event.type == SynthEventType::note && event.event.duration != kDurationOff;
    const HRESULT hr = sounds ? m_pzi->CreateVoice(&queue.back()) : S_OK;
    if (hr != S_OK) queue.pop_back();
    return hr;
}

void CSoftSynth::endOldestNote(std::uint8_t key) {
    for (QueuedEvent& held : eventQueue()) {
        if (!isNoteWith(held, kDurationOpen) || held.event.note % kKeys != key % kKeys) continue;
        held.event.duration = kDurationOff;
        return;
    }
}

/// One note-off ends the oldest held note of its key, whatever its channel and port. A note-off without one
/// is lost; several of one key in one drain count as one.
void CSoftSynth::pairNoteOffs() {
    std::bitset<kKeys> off;
    NoteQueue& queue = eventQueue();
    for (auto it = queue.begin(); it != queue.end();) {
        if (!isNoteWith(*it, kDurationOff)) {
            ++it;
            continue;
        }
        off.set(it->event.note % kKeys);
        // A note that was told to release, and that no block has taken up since.
        freeVoice(*it);
        it = queue.erase(it);
    }
    for (QueuedEvent& held : queue) {
        const int key = held.event.note % kKeys;
        if (!isNoteWith(held, kDurationOpen) || !off[key]) continue;
        held.event.duration = kDurationOff;
        off.reset(key);
    }
}

HRESULT CSoftSynth::RetireEvents(std::int64_t position, std::int32_t flush) {
    CAutoLock lock(*m_pzi);
    NoteQueue& queue = eventQueue();
    for (auto it = queue.begin(); it != queue.end();) {
        bool keep = position <= it->sampleTime;
        if (it->event.type == SynthEventType::note) {
            const HRESULT hr = m_pzi->ReleaseVoice(&*it, flush);
            if (FAILED(hr)) return hr;
            keep = hr != S_OK;
        }
        it = keep ? std::next(it) : queue.erase(it);
    }
    return S_OK;
}

}  // namespace marnoth
