#include <utility>

#include "host/SoftSynth.h"
#include "platform/system/Overflow.h"

namespace marnoth {

namespace {

/// Notes whose voices are freed under one hold of the lock.
constexpr int kNotesAtOnce = 16;

}  // namespace

/// What a start or stop of the transport lets go. Under the lock it only changes hands; voices and storage
/// are given back at the end of the scope, outside of the lock unless the caller holds it.
class CSoftSynth::FormerEvents {
public:
    explicit FormerEvents(CSoftSynth& synth) : synth_(synth) {}
    ~FormerEvents() {
        if (!events_) return;
        while (!events_->queue().empty()) releaseSomeNotes();
        events_->clear();
        CAutoLock lock(*synth_.m_pzi);
        synth_.m_spareEvents = std::move(events_);
    }
    FormerEvents(const FormerEvents&) = delete;
    FormerEvents& operator=(const FormerEvents&) = delete;

    /// Ends every voice and leaves the synth without an event. Under the lock.
    void take() {
        synth_.m_pzi->ResetVoices();
        // Another thread is about to give the spare back; since it took that there can't be many events.
        if (!synth_.m_spareEvents) return synth_.DropAllEvents();
        events_ = std::exchange(synth_.m_events, std::move(synth_.m_spareEvents));
    }

private:
    void releaseSomeNotes() {
        CAutoLock lock(*synth_.m_pzi);
        NoteQueue& queue = events_->queue();
        for (int i = 0; i < kNotesAtOnce && !queue.empty(); ++i) {
            synth_.freeVoice(queue.front());
            queue.pop_front();
        }
    }

    CSoftSynth& synth_;
    std::unique_ptr<EventStore> events_;
};

HRESULT CSoftSynth::StartPlayback(std::int32_t ticks) {
    FormerEvents former(*this);
    CAutoLock lock(*m_pzi);
    former.take();
    m_startSample = WholeTicksToSamples(ticks);
    m_position = 0;
    m_loopOffset = 0;
    m_playing = 1;
    return S_OK;
}

HRESULT CSoftSynth::LoopPlayback(std::int32_t restartTicks, std::int32_t stopTicks) {
    CAutoLock lock(*m_pzi);
    const std::int64_t jump =
        wrappingDifference(WholeTicksToSamples(stopTicks), WholeTicksToSamples(restartTicks));
    m_loopOffset = wrappingSum(m_loopOffset, jump);
    return S_OK;
}

HRESULT CSoftSynth::StopPlayback() {
    FormerEvents former(*this);
    CAutoLock lock(*m_pzi);
    former.take();
    m_playing = 0;
    return S_OK;
}

void CSoftSynth::DropAllEvents() {
    for (QueuedEvent& event : eventQueue()) freeVoice(event);
    m_events->clear();
}

void CSoftSynth::freeVoice(QueuedEvent& event) {
    if (event.voice) m_pzi->ReleaseVoice(&event, 1);
}

void CSoftSynth::advancePosition(std::int32_t frames) {
    m_position = wrappingSum(m_position, frames);
}

}  // namespace marnoth
