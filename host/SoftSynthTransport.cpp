#include "host/SoftSynth.h"
#include "platform/system/Overflow.h"

namespace marnoth {

HRESULT CSoftSynth::StartPlayback(std::int32_t ticks) {
    CAutoLock lock(*m_pzi);
    endAllEvents();
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
    CAutoLock lock(*m_pzi);
    endAllEvents();
    m_playing = 0;
    return S_OK;
}

void CSoftSynth::endAllEvents() {
    m_pzi->ResetVoices();
    DropAllEvents();
    m_events = std::make_unique<Events>();
}

void CSoftSynth::DropAllEvents() {
    RetireEvents(m_position, 1);
    // What a failure has left in the queue still owns its voice.
    for (QueuedEvent& event : m_events->queue)
        if (event.voice) m_pzi->ReleaseVoice(&event, 1);
    m_events->timeMap.clear();
    m_events->queue.clear();
}

void CSoftSynth::advancePosition(std::int32_t frames) {
    m_position = wrappingSum(m_position, frames);
}

}  // namespace marnoth
