#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/graph/BaseFilter.h"
#include "platform/graph/BaseInputPin.h"
#include "platform/graph/BaseOutputPin.h"
#include "platform/graph/MemAllocator.h"

/// A filter with one pin in each direction, whose decisions the test sets, and which keeps a log of what it
/// was told.

namespace marnoth::test {

inline constexpr CLSID kTestFilterId{
    0x1B7D40E2, 0x55A1, 0x4E0C, {0x91, 0x3A, 0x7C, 0x20, 0x64, 0xF5, 0x0B, 0xD8}};

inline WAVEFORMATEX floatFormat(int channels, int framesPerSecond) {
    WAVEFORMATEX format{};
    format.wFormatTag = WAVE_FORMAT_IEEE_FLOAT;
    format.nChannels = static_cast<WORD>(channels);
    format.nSamplesPerSec = static_cast<DWORD>(framesPerSecond);
    format.wBitsPerSample = 32;
    format.nBlockAlign = static_cast<WORD>(4 * channels);
    format.nAvgBytesPerSec = format.nSamplesPerSec * format.nBlockAlign;
    return format;
}

inline CMediaType floatType(int channels = 2, int framesPerSecond = 44100) {
    CMediaType type;
    type.SetWaveFormat(floatFormat(channels, framesPerSecond));
    return type;
}

using Log = std::vector<std::string>;

/// What both kinds of pin let the test decide.
struct PinBehaviour {
    std::vector<int> proposedChannels;  ///< the pin's own media types, as channel counts
    std::function<bool(int channels)> accepts = [](int) { return true; };
    HRESULT checkResult = VFW_E_TYPE_NOT_ACCEPTED;  ///< for types that aren't accepted
    HRESULT completeResult = S_OK;
    HRESULT activeResult = S_OK;
    Log* log = nullptr;

    void note(const std::string& what) const {
        if (log) log->push_back(what);
    }
    HRESULT check(const AM_MEDIA_TYPE* type) const {
        const WAVEFORMATEX* format = WaveFormatOf(*type);
        return format && accepts(format->nChannels) ? S_OK : checkResult;
    }
    HRESULT propose(int position, CMediaType* type) const {
        if (position < 0) return E_INVALIDARG;
        if (position >= static_cast<int>(proposedChannels.size())) return VFW_S_NO_MORE_ITEMS;
        return type->SetWaveFormat(floatFormat(proposedChannels[static_cast<std::size_t>(position)], 44100));
    }
};

/// A pin that does as `behaviour` says and logs the steps under `tag`.
template <class Pin>
class TestPin : public Pin {
public:
    TestPin(CBaseFilter& filter, CCritSec& lock, const wchar_t* name, std::string tag)
        : Pin(filter, lock, name), tag(std::move(tag)) {}

    HRESULT CheckMediaType(const AM_MEDIA_TYPE* type) override { return behaviour.check(type); }
    HRESULT GetMediaType(int position, CMediaType* type) override {
        return behaviour.propose(position, type);
    }
    HRESULT SetMediaType(const AM_MEDIA_TYPE* type) override {
        behaviour.note(tag + " set " + std::to_string(WaveFormatOf(*type)->nChannels));
        return Pin::SetMediaType(type);
    }
    HRESULT CompleteConnect(IPin* peer) override {
        behaviour.note(tag + " complete");
        return FAILED(behaviour.completeResult) ? behaviour.completeResult : Pin::CompleteConnect(peer);
    }
    HRESULT BreakConnect() override {
        behaviour.note(tag + " break");
        return Pin::BreakConnect();
    }
    HRESULT Active() override {
        behaviour.note(tag + " active");
        return FAILED(behaviour.activeResult) ? behaviour.activeResult : Pin::Active();
    }
    HRESULT Inactive() override {
        behaviour.note(tag + " inactive");
        return Pin::Inactive();
    }
    HRESULT Run(REFERENCE_TIME start) override {
        behaviour.note(tag + " run " + std::to_string(start));
        return Pin::Run(start);
    }

    PinBehaviour behaviour;
    const std::string tag;
};

class TestInputPin : public TestPin<CBaseInputPin> {
public:
    using TestPin::TestPin;

    HRESULT Receive(IMediaSample* sample) override {
        const HRESULT hr = CBaseInputPin::Receive(sample);
        if (hr == S_OK) ++received;
        return hr;
    }
    HRESULT EndOfStream() override {
        behaviour.note(tag + " end of stream");
        return S_OK;
    }

    int received = 0;
};

class TestOutputPin : public TestPin<CBaseOutputPin> {
public:
    using TestPin::TestPin;

    HRESULT DecideBufferSize(IMemAllocator* allocator, ALLOCATOR_PROPERTIES* properties) override {
        asked = *properties;
        if (FAILED(sizeResult)) return sizeResult;
        properties->cBuffers = 2;
        properties->cbBuffer = 64;
        ALLOCATOR_PROPERTIES actual{};
        return allocator->SetProperties(properties, &actual);
    }

    std::optional<ALLOCATOR_PROPERTIES> asked;
    HRESULT sizeResult = S_OK;
};

/// Lives on the test's stack: its count never reaches 0, and `references()` tells whether all were given
/// back.
class TestFilter : public CBaseFilter {
public:
    explicit TestFilter(IUnknown* outer = nullptr) : CBaseFilter(outer, lock, kTestFilterId) {}

    int GetPinCount() override { return 2; }
    CBasePin* GetPin(int index) override {
        if (index == 0) return &input;
        return index == 1 ? static_cast<CBasePin*>(&output) : nullptr;
    }
    void logTo(Log& log) { input.behaviour.log = output.behaviour.log = &log; }
    ULONG references() {
        AddRef();
        return Release();
    }

    CCritSec lock;
    TestInputPin input{*this, lock, L"Input", "in"};
    TestOutputPin output{*this, lock, L"Mix Output", "out"};
};

}  // namespace marnoth::test
