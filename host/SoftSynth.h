#pragma once

#include <atomic>
#include <cstdint>
#include <memory>

#include "host/EventStore.h"
#include "host/Instrument.h"
#include "host/PortTransforms.h"
#include "platform/com/RefPtr.h"
#include "seam/KvxInterfaces.h"
#include "seam/Pzi.h"

namespace marnoth {

/// The face that the host's sequencer sees: transport, note events and live MIDI in, conversions of time out.
///
/// Every event gets a sample time on the instrument's own running timeline and waits in the time map until
/// the block that contains it; `DrainEvents` moves it to the event queue, which the engine reads, and
/// `RetireEvents` lets it go. The timeline starts at 0 with each `StartPlayback` and never stops counting.
///
/// A block takes events from storage that was there before: `EventStore::kRoom` of them fit at any time
/// without asking the system for memory, by `QueueRawInput`, `StartPlayback` and `StopPlayback` too, so that
/// these may be called on the streaming thread. `QueueEvents` is for any number; it makes room beforehand.
///
/// It has no lock of its own but takes that of `CPzi`, in every operation except `GetSampleRate`, `GetTempo`,
/// `SetTempo` and `IsTransportRunning`. `IUnknown` and the output pins of `CPziSynthContext` are left to the
/// object that carries it.
class CSoftSynth : public IKvxSoftSynth2,
                   public IKvxNotify,
                   public IKvxInputPort,
                   public virtual CPziSynthContext {
public:
    /// `pzi` isn't owned. Nothing is asked of it before the constructor has ended.
    explicit CSoftSynth(CPzi* pzi) : m_pzi(pzi) {}
    CSoftSynth(const CSoftSynth&) = delete;
    CSoftSynth& operator=(const CSoftSynth&) = delete;

    // IKvxSoftSynth2.
    HRESULT AttachHost(IUnknown* context) override;
    HRESULT DetachHost() override;
    HRESULT StartPlayback(std::int32_t ticks) override;
    HRESULT LoopPlayback(std::int32_t restartTicks, std::int32_t stopTicks) override;
    HRESULT StopPlayback() override;
    HRESULT QueueEvents(std::uint32_t unused1, std::uint32_t unused2, std::uint32_t port,
                        IKvxEventList* list) override;
    HRESULT QueueRawInput(std::uint32_t port, IKvxRawEventList* list) override;
    HRESULT GetBankList(std::int32_t** banks, std::uint32_t* count) override;
    HRESULT QueryPatchFalse(std::uint32_t bank, std::uint32_t patch) override;
    HRESULT QueryPatchTrue(std::uint32_t bank, std::uint32_t patch) override;
    HRESULT GetPatchList(std::uint32_t bank, IKvxNameList** list) override;
    HRESULT GetNoteList(std::uint32_t bank, std::uint32_t patch, IKvxNameList** list) override;
    HRESULT GetControllerList(IKvxNameList** list) override;
    HRESULT GetRpnList(IKvxNameList** list) override;
    HRESULT GetNrpnList(IKvxNameList** list) override;
    HRESULT GetInstrument(std::uint32_t unused, IKvxInstrument** instrument) override;

    // IKvxNotify, IKvxInputPort.
    HRESULT Notify(const SynthNotification* record) override;
    HRESULT SetEventTarget(IUnknown* target) override;
    HRESULT GetEventTarget(IUnknown** out) override;

    // CPziSynthContext. Good only once the input has a format: without a rate samples and ticks are 0.
    std::int64_t WholeTicksToSamples(std::int32_t ticks) override;
    std::int32_t SamplesToWholeTicks(std::int64_t samples) override;
    std::int64_t TicksToSamples(std::int64_t ticks16) override;
    std::int64_t SamplesToTicks(std::int64_t samples) override;
    std::uint32_t GetKeyAtTime(std::int64_t ticks16) override;
    std::int32_t IsTransportRunning() override { return m_playing; }
    std::int32_t GetSampleRate() override;
    double GetTempo() override { return m_tempo; }
    void SetTempo(double beatsPerMinute) override { m_tempo = beatsPerMinute; }

    /// Moves the events of the block of `count` frames at `position` of the timeline into the event queue,
    /// then pairs note-offs with held notes. Once before every block. The failure of `CreateVoice` ends it.
    /// Where the instrument is steady, a note-off ends the oldest held note that was drained before it, and
    /// each of them counts.
    HRESULT DrainEvents(std::int64_t position, std::int32_t count);
    /// Drops from the event queue what has been played; with `flush` not 0 every note.
    HRESULT RetireEvents(std::int64_t position, std::int32_t flush);

protected:
    /// For an object whose `CPzi` isn't there yet: `setPzi` comes before anything else, and null once it is
    /// about to go.
    CSoftSynth() = default;
    ~CSoftSynth();
    void setPzi(CPzi* pzi) { m_pzi = pzi; }

    /// Empties map and queue and frees every voice. Whoever destroys the engine before this object calls it
    /// first: the voices are the engine's to free.
    void DropAllEvents();

    bool isAttached() const { return m_attached; }
    IKvxPinHost* pinHost() const { return m_pinHost.get(); }
    std::int64_t position() const { return m_position; }
    NoteQueue& eventQueue() { return m_events->queue(); }
    /// The time of the next event that waits for a time from `begin` on; `end` when none is earlier.
    std::int64_t nextEventTime(std::int64_t begin, std::int64_t end) const {
        return m_events->nextTime(begin, end);
    }
    void advancePosition(std::int32_t frames);

private:
    class FormerEvents;

    void releaseServices();
    HRESULT countEvents(IKvxEventList* list, std::int32_t& count);
    void makeRoom(std::size_t events);
    HRESULT queuePortion(std::uint32_t port, IKvxEventList& list, std::int32_t begin, std::int32_t end);
    HRESULT insertIfKept(const SynthEvent& event, std::uint32_t port, std::int64_t sampleTime);
    void rememberPort(std::uint32_t port);
    HRESULT drainOne(QueuedEvent event);
    void pairNoteOffs();
    void endOldestNote(std::uint8_t key);
    void freeVoice(QueuedEvent& event);
    std::uint32_t inputRate() const { return m_pzi->GetInputFormat()->nSamplesPerSec; }
    bool convert(SynthTimeValue& value, std::uint32_t format);
    double stoppedTempo();

    CPzi* m_pzi = nullptr;
    RefPtr<IKvxTempoMap> m_tempoMap;
    RefPtr<IKvxTimeConverter> m_timeConverter;
    RefPtr<IKvxProjectKeyMap> m_projectKeyMap;
    RefPtr<IUnknown> m_eventTarget;
    RefPtr<IKvxPinHost> m_pinHost;
    bool m_attached = false;
    std::atomic<double> m_tempo = 120.0;  ///< beats per minute, where the host tells none
    const RefPtr<CInstrument> m_instrument{new CInstrument(L"Marnoth")};
    std::unique_ptr<EventStore> m_events = std::make_unique<EventStore>();
    /// Empty, for the next start or stop of the transport; null while that of another thread has it.
    std::unique_ptr<EventStore> m_spareEvents = std::make_unique<EventStore>();
    PortTransforms m_portTransforms;
    std::int64_t m_position = 0;     ///< samples; start of the next block on the running timeline
    std::int64_t m_startSample = 0;  ///< samples; the tick at which playback last started
    std::int64_t m_loopOffset = 0;   ///< samples; all loop jumps since the start
    std::atomic<std::int32_t> m_playing = 0;
};

}  // namespace marnoth
