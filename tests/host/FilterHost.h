#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

#include "host/Filter.h"
#include "support/FakeGraph.h"
#include "support/HostServices.h"

namespace marnoth::test {

inline constexpr WORD kFloat = 3;

inline WAVEFORMATEX waveFormat(DWORD rate, WORD channels, WORD tag = kFloat, WORD bits = 32) {
    WAVEFORMATEX format{};
    format.wFormatTag = tag;
    format.nChannels = channels;
    format.nSamplesPerSec = rate;
    format.wBitsPerSample = bits;
    format.nBlockAlign = static_cast<WORD>(channels * bits / 8);
    format.nAvgBytesPerSec = rate * format.nBlockAlign;
    return format;
}

inline CMediaType audioType(const WAVEFORMATEX& format) {
    CMediaType type;
    type.SetWaveFormat(format);
    return type;
}

inline CMediaType audioType(DWORD rate, WORD channels, WORD tag = kFloat, WORD bits = 32) {
    return audioType(waveFormat(rate, channels, tag, bits));
}

/// The instrument with a view of its timeline. What `onProcess` is set to renders in the engine's place.
class FilterUnderTest final : public CFilter {
public:
    explicit FilterUnderTest(HRESULT* result) : CFilter(nullptr, result) {}

    struct Block {
        std::int64_t position;
        std::int64_t reserved;
        std::int32_t frames;  ///< of the input; -1 without one
        std::int32_t inputSilent;
        std::vector<PinBuffer> pins;
        std::size_t notes;
    };
    std::function<HRESULT(const Block&)> onProcess;
    std::function<HRESULT()> onCreateVoice;
    /// The engine's word on an event that is queued.
    std::function<HRESULT(const SynthEvent&)> onIsIgnored;
    /// Called when the engine is asked for its word on a format.
    std::function<void()> onCheckFormat;
    /// What saves and loads the project in the engine's place.
    std::function<HRESULT(IStream*)> onSaveState, onLoadState;
    int voicesMade = 0;
    int preparations = 0, releases = 0;  ///< of resources
    /// What a note without `flush` is told; S_OK frees its voice.
    std::function<HRESULT()> onReleaseVoice;

    HRESULT ProcessBlock(std::int64_t at, PinBuffer* input, PinBuffer* pins, std::int32_t pinCount,
                         std::int64_t reserved, NoteQueue* notes) override {
        if (!onProcess) return CFilter::ProcessBlock(at, input, pins, pinCount, reserved, notes);
        return onProcess({at, reserved, input ? input->frames : -1, input ? input->silent : -1,
                          std::vector<PinBuffer>(pins, pins + pinCount), notes->size()});
    }
    HRESULT IsIgnoredEvent(const SynthEvent* event) override {
        return onIsIgnored ? onIsIgnored(*event) : CFilter::IsIgnoredEvent(event);
    }
    HRESULT CreateVoice(QueuedEvent* event) override {
        const HRESULT hr = onCreateVoice ? onCreateVoice() : CFilter::CreateVoice(event);
        voicesMade += event->voice != nullptr;
        return hr;
    }
    HRESULT ReleaseVoice(QueuedEvent* event, std::int32_t flush) override {
        const HRESULT hr = onReleaseVoice && !flush ? onReleaseVoice() : S_OK;
        if (hr != S_OK) return hr;
        return CFilter::ReleaseVoice(event, onReleaseVoice ? 1 : flush);
    }

    HRESULT CheckInputFormat(const WAVEFORMATEX* format) override {
        if (onCheckFormat) onCheckFormat();
        return CFilter::CheckInputFormat(format);
    }
    HRESULT CheckOutputFormat(const WAVEFORMATEX* format) override {
        if (onCheckFormat) onCheckFormat();
        return CFilter::CheckOutputFormat(format);
    }
    HRESULT SaveState(IStream* stream) override {
        return onSaveState ? onSaveState(stream) : CFilter::SaveState(stream);
    }
    HRESULT LoadState(IStream* stream) override {
        return onLoadState ? onLoadState(stream) : CFilter::LoadState(stream);
    }
    HRESULT PrepareResources() override {
        ++preparations;
        return CFilter::PrepareResources();
    }
    HRESULT FreeResources() override {
        ++releases;
        return CFilter::FreeResources();
    }

    using CSoftSynth::eventQueue;
    using CSoftSynth::position;
};

/// Where the system's objects are made in.
class Apartment {
public:
#ifdef _WIN32
    Apartment() {
        EXPECT_TRUE(SUCCEEDED(CoInitializeEx(nullptr, COINIT_MULTITHREADED)));
    }
    ~Apartment() {
        CoUninitialize();
    }
#else
    Apartment() {}
#endif
    Apartment(const Apartment&) = delete;
    Apartment& operator=(const Apartment&) = delete;
};

/// The instrument with a graph, a source and a sink for each of its pins, all of the test's own making.
class FilterHost {
public:
    FilterHost() {
        HRESULT result = S_OK;
        filter = new FilterUnderTest(&result);
        owner = RefPtr<IUnknown>::adopt(filter->Inner());
        EXPECT_EQ(result, S_OK);
    }

    SourcePin source;
    std::array<SinkPin, 18> sinks;
    FakeAllocator inputAllocator;
    FakeGraph graph;
    FakeHostContext context;
    FilterUnderTest* filter = nullptr;
    RefPtr<IUnknown> owner;

    CFilterInputPin& input() { return static_cast<CFilterInputPin&>(*filter->GetPin(0)); }
    /// 0 the mix, 1 to 16 the channels.
    CFilterOutputPin& output(int index) { return static_cast<CFilterOutputPin&>(*filter->GetPin(index + 1)); }

    HRESULT connectInput(DWORD rate = 44100, WORD channels = 2) {
        const CMediaType type = audioType(rate, channels);
        const HRESULT hr = input().ReceiveConnection(&source, type.Get());
        if (SUCCEEDED(hr)) input().NotifyAllocator(&inputAllocator, FALSE);
        return hr;
    }
    HRESULT connectOutput(int index, DWORD rate = 44100, WORD channels = 2) {
        const CMediaType type = audioType(rate, channels);
        return output(index).Connect(&sinks[static_cast<std::size_t>(index)], type.Get());
    }
    HRESULT attach() {
        context.AddRef();
        return filter->AttachHost(&context);
    }
    /// Sends one block of `frames` frames, all of `value`, at the rate and width of the input.
    HRESULT send(std::int32_t frames, float value = 0.0f) {
        FakeSample in(static_cast<std::size_t>(frames) * filter->inputFormat.nBlockAlign);
        in.fill(value);
        return input().Receive(&in);
    }
    /// Connects input and outputs in one format, with buffers of `frames` frames, and pauses.
    void start(std::initializer_list<int> outputs, DWORD rate = 44100, WORD channels = 2,
               std::int32_t frames = 512) {
        inputAllocator.properties.cbBuffer = frames * channels * 4;
        ASSERT_EQ(connectInput(rate, channels), S_OK);
        for (int index : outputs) ASSERT_EQ(connectOutput(index, rate, channels), S_OK);
        ASSERT_EQ(filter->Pause(), S_OK);
    }
    SinkPin& sink(int index) { return sinks[static_cast<std::size_t>(index)]; }
    Delivery& last(int index) { return sinks[static_cast<std::size_t>(index)].deliveries.back(); }
};

}  // namespace marnoth::test
