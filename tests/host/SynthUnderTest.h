#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <vector>

#include "engine/render/Voice.h"
#include "host/SoftSynth.h"
#include "support/EventLists.h"
#include "support/HostServices.h"

namespace marnoth::test {

/// An instrument that only keeps the books: which voices live, and what it was told.
class FakePzi : public CPzi {
public:
    FakePzi() { inputFormat.nSamplesPerSec = 44100; }

    int liveVoices = 0;
    int resets = 0;
    std::function<HRESULT(const SynthEvent&)> isIgnored = [](const SynthEvent& event) {
        return event.type == SynthEventType::note ? S_OK : S_FALSE;
    };
    std::function<HRESULT(const QueuedEvent&)> onCreate = [](const QueuedEvent&) { return S_OK; };
    std::function<void()> onReset = [] {};
    /// Asked with `flush` 0: S_OK lets the note go, S_FALSE keeps it.
    std::function<HRESULT(const QueuedEvent&)> onRelease = [](const QueuedEvent&) { return S_FALSE; };

    HRESULT IsIgnoredEvent(const SynthEvent* event) override { return isIgnored(*event); }
    HRESULT CreateVoice(QueuedEvent* event) override {
        const HRESULT hr = onCreate(*event);
        if (hr != S_OK) return hr;
        event->voice = new VoiceState{};
        ++liveVoices;
        return S_OK;
    }
    HRESULT ReleaseVoice(QueuedEvent* event, std::int32_t flush) override {
        if (!event->voice) return 0;
        const HRESULT hr = flush ? S_OK : onRelease(*event);
        if (hr != S_OK) return hr;
        delete event->voice;
        event->voice = nullptr;
        --liveVoices;
        return S_OK;
    }
    void ResetVoices() override {
        ++resets;
        onReset();
    }

    HRESULT RegisterOutputs() override { return S_OK; }
    HRESULT CheckInputFormat(const WAVEFORMATEX*) override { return S_OK; }
    HRESULT CheckOutputFormat(const WAVEFORMATEX*) override { return S_OK; }
    HRESULT CheckFormatPair(const WAVEFORMATEX*, const WAVEFORMATEX*) override { return S_OK; }
    HRESULT ProposeOutputFormat(WAVEFORMATEX*) override { return S_OK; }
    HRESULT ProcessBlock(std::int64_t, PinBuffer*, PinBuffer*, std::int32_t, std::int64_t,
                         NoteQueue*) override {
        return S_OK;
    }
    HRESULT PrepareResources() override { return S_OK; }
    HRESULT FreeResources() override { return S_OK; }
    std::int32_t GetPersistSize() override { return 0; }
    HRESULT LoadState(IStream*) override { return S_OK; }
    HRESULT SaveState(IStream*) override { return S_OK; }
};

/// The soft synth without a filter around it.
class SynthUnderTest final : public CSoftSynth {
public:
    explicit SynthUnderTest(CPzi& pzi) : CSoftSynth(&pzi) {}

    HRESULT QueryInterface(REFIID, void** out) override {
        *out = nullptr;
        return E_NOINTERFACE;
    }
    ULONG AddRef() override { return 1; }
    ULONG Release() override { return 1; }
    HRESULT AddOutputPin(const char*, std::uint32_t*) override { return E_NOTIMPL; }
    HRESULT RemoveOutputPin(std::uint32_t) override { return E_NOTIMPL; }
    HRESULT RemoveAllOutputPins() override { return E_NOTIMPL; }
    IPin* FindOutputPin(std::uint32_t) override { return nullptr; }
    std::int32_t GetOutputPinCount() override { return 0; }
    std::uint32_t GetPinId(std::int32_t) override { return 0xFFFFFFFF; }

    using CSoftSynth::advancePosition;
    using CSoftSynth::eventQueue;
    using CSoftSynth::position;
};

/// A synth, the instrument behind it and a host with the tempo map alone, where 960 ticks are 500 ms: 22050
/// samples at the rate of 44100.
struct SynthHost {
    FakePzi pzi;
    FakeHostContext context;
    SynthUnderTest synth{pzi};

    HRESULT attach() {
        context.AddRef();
        return synth.AttachHost(&context);
    }
    HRESULT queue(EventList list, std::uint32_t port = 0) { return synth.QueueEvents(0, 0, port, &list); }
    HRESULT live(RawEventList list, std::uint32_t port = 0) { return synth.QueueRawInput(port, &list); }
    void notify(std::uint32_t kind, std::int32_t port, int value, std::uint8_t mask = 0) {
        const SynthNotification record{kind, port, static_cast<std::uint8_t>(value), mask};
        synth.Notify(&record);
    }
    /// Drains the next `frames` frames and moves on, as a block does.
    HRESULT drain(std::int32_t frames) {
        const HRESULT hr = synth.DrainEvents(synth.position(), frames);
        synth.advancePosition(frames);
        return hr;
    }
    /// The events in play.
    std::vector<QueuedEvent> played() { return {synth.eventQueue().begin(), synth.eventQueue().end()}; }
};

}  // namespace marnoth::test
