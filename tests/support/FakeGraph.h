#pragma once

#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>
#include <vector>

#include "platform/com/RefPtr.h"
#include "platform/graph/Graph.h"
#include "platform/graph/MediaType.h"
#include "seam/Pzi.h"
#include "support/FakePin.h"
#include "support/TestObject.h"

namespace marnoth::test {

inline constexpr LONG kSizedByTest = -1;

/// A media sample whose members a test can read and set. With `offersSilence` it has the
/// silence flag, and clears itself when a marked one is asked for its memory.
class FakeSample : public TestObject<IMediaSample, IKvxSampleSilence> {
public:
    explicit FakeSample(std::size_t bytes, bool silenceFlag = false)
        : memory(bytes), length(static_cast<LONG>(bytes)), offersSilence(silenceFlag) {
        lengthsSet.reserve(64);
    }

    std::vector<BYTE> memory;
    LONG length;
    bool offersSilence;
    std::int32_t silent = 0;
    std::int32_t silentWritten = 0;  ///< calls of `SetSilent`
    bool hasStart = false, hasEnd = false;
    REFERENCE_TIME start = 0, end = 0;
    bool sync = false, preroll = false, discontinuity = false;
    HRESULT lengthResult = S_OK;  ///< of a length that fits

    float* floats() { return reinterpret_cast<float*>(memory.data()); }
    void fill(float value) {
        for (std::size_t i = 0; i < memory.size() / 4; ++i) floats()[i] = value;
    }

    HRESULT GetPointer(BYTE** out) override {
        if (offersSilence && silent) memory.assign(memory.size(), 0);
        silent = 0;
        *out = memory.data();
        return S_OK;
    }
    LONG GetSize() override { return static_cast<LONG>(memory.size()); }
    HRESULT GetTime(REFERENCE_TIME* from, REFERENCE_TIME* to) override {
        if (!hasStart) return VFW_E_SAMPLE_TIME_NOT_SET;
        *from = start;
        *to = hasEnd ? end : start + 1;
        return hasEnd ? S_OK : VFW_S_NO_STOP_TIME;
    }
    HRESULT SetTime(REFERENCE_TIME* from, REFERENCE_TIME* to) override {
        hasStart = from != nullptr;
        hasEnd = to != nullptr;
        if (from) start = *from;
        if (to) end = *to;
        return S_OK;
    }
    HRESULT IsSyncPoint() override { return sync ? S_OK : S_FALSE; }
    HRESULT SetSyncPoint(BOOL value) override { return sync = value != 0, S_OK; }
    HRESULT IsPreroll() override { return preroll ? S_OK : S_FALSE; }
    HRESULT SetPreroll(BOOL value) override { return preroll = value != 0, S_OK; }
    LONG GetActualDataLength() override { return length; }
    HRESULT SetActualDataLength(LONG bytes) override {
        lengthsSet.push_back(bytes);
        if (bytes > GetSize()) return VFW_E_BUFFER_OVERFLOW;
        if (FAILED(lengthResult)) return lengthResult;
        length = bytes;
        return S_OK;
    }
    HRESULT GetMediaType(AM_MEDIA_TYPE** out) override { return *out = nullptr, S_FALSE; }
    HRESULT SetMediaType(AM_MEDIA_TYPE*) override { return S_OK; }
    HRESULT IsDiscontinuity() override { return discontinuity ? S_OK : S_FALSE; }
    HRESULT SetDiscontinuity(BOOL value) override { return discontinuity = value != 0, S_OK; }
    HRESULT GetMediaTime(LONGLONG*, LONGLONG*) override { return VFW_E_MEDIA_TIME_NOT_SET; }
    HRESULT SetMediaTime(LONGLONG*, LONGLONG*) override { return S_OK; }

    std::int32_t GetSilent() override { return silent; }
    void SetSilent(std::int32_t value) override {
        ++silentWritten;
        silent = value;
    }

    std::vector<LONG> lengthsSet;

protected:
    void* find(REFIID iid) override {
        if (iid == IID_IKvxSampleSilence && offersSilence) return static_cast<IKvxSampleSilence*>(this);
        if (iid == IID_IUnknown || iid == IID_IMediaSample) return static_cast<IMediaSample*>(this);
        return nullptr;
    }
};

/// Gives out whatever sample nobody holds, and never waits. Its samples stay for the test to look at.
class FakeAllocator : public TestObject<IMemAllocator> {
public:
    ALLOCATOR_PROPERTIES properties{2, 4096, 1, 0};
    LONG grantedBytes = kSizedByTest;  ///< what it gives instead of the size asked for
    HRESULT setResult = S_OK;
    HRESULT getResult = S_OK;
    bool samplesOfferSilence = false;
    bool committed = false;
    std::vector<std::unique_ptr<FakeSample>> samples;

    ULONG samplesOut() const {
        ULONG out = 0;
        for (const auto& sample : samples) out += sample->references > 0;
        return out;
    }

    HRESULT SetProperties(ALLOCATOR_PROPERTIES* request, ALLOCATOR_PROPERTIES* actual) override {
        if (FAILED(setResult)) return setResult;
        properties = *request;
        if (grantedBytes != kSizedByTest) properties.cbBuffer = grantedBytes;
        *actual = properties;
        return S_OK;
    }
    HRESULT GetProperties(ALLOCATOR_PROPERTIES* out) override { return *out = properties, S_OK; }
    HRESULT Commit() override {
        committed = true;
        while (samples.size() < static_cast<std::size_t>(properties.cBuffers)) addSample();
        return S_OK;
    }
    HRESULT Decommit() override { return committed = false, S_OK; }
    HRESULT GetBuffer(IMediaSample** out, REFERENCE_TIME*, REFERENCE_TIME*, DWORD) override {
        if (FAILED(getResult)) return getResult;
        if (!committed) return VFW_E_NOT_COMMITTED;
        for (const auto& sample : samples) {
            if (sample->references > 0) continue;
            sample->AddRef();
            *out = sample.get();
            return S_OK;
        }
        return VFW_E_TIMEOUT;
    }
    HRESULT ReleaseBuffer(IMediaSample*) override { return E_UNEXPECTED; }

protected:
    void* find(REFIID) override { return nullptr; }

private:
    /// Full of rubbish, as memory is.
    void addSample() {
        samples.push_back(
            std::make_unique<FakeSample>(static_cast<std::size_t>(properties.cbBuffer), samplesOfferSilence));
        samples.back()->fill(99.0f);
    }
};

/// Nothing to enumerate; only for telling whose enumerator it is.
class FakeMediaTypes : public TestObject<IEnumMediaTypes> {
public:
    HRESULT Next(ULONG, AM_MEDIA_TYPE**, ULONG*) override { return S_FALSE; }
    HRESULT Skip(ULONG) override { return S_FALSE; }
    HRESULT Reset() override { return S_OK; }
    HRESULT Clone(IEnumMediaTypes**) override { return E_NOTIMPL; }

protected:
    void* find(REFIID) override { return nullptr; }
};

/// The pin upstream of the instrument's input.
class SourcePin : public FakePin<IPin> {
public:
    SourcePin() : FakePin(PINDIR_OUTPUT) {}

    FakeMediaTypes mediaTypes;

    HRESULT EnumMediaTypes(IEnumMediaTypes** out) override {
        mediaTypes.AddRef();
        return *out = &mediaTypes, S_OK;
    }
};

/// What arrived at a sink as one sample.
struct Delivery {
    std::vector<float> audio;
    LONG bytes;
    bool sync, preroll, discontinuity;
    std::optional<REFERENCE_TIME> start;
    std::int32_t silent;
};

/// A pin downstream of the instrument that writes down what it gets.
class SinkPin : public FakePin<IPin, IMemInputPin> {
public:
    SinkPin() : FakePin(PINDIR_INPUT) {}

    FakeAllocator allocator;
    HRESULT receiveResult = S_OK;
    HRESULT endOfStreamResult = S_OK;
    HRESULT flushResult = S_OK;
    std::vector<Delivery> deliveries;
    bool keepsAudio = true;  ///< whether it writes down what it gets
    int endsOfStream = 0, beginFlushes = 0, endFlushes = 0, segments = 0;

    HRESULT EndOfStream() override { return ++endsOfStream, endOfStreamResult; }
    HRESULT BeginFlush() override { return ++beginFlushes, flushResult; }
    HRESULT EndFlush() override { return ++endFlushes, flushResult; }
    HRESULT NewSegment(REFERENCE_TIME, REFERENCE_TIME, double) override { return ++segments, flushResult; }

    HRESULT GetAllocator(IMemAllocator** out) override {
        allocator.AddRef();
        return *out = &allocator, S_OK;
    }
    HRESULT NotifyAllocator(IMemAllocator*, BOOL) override { return S_OK; }
    HRESULT GetAllocatorRequirements(ALLOCATOR_PROPERTIES*) override { return E_NOTIMPL; }
    HRESULT Receive(IMediaSample* sample) override {
        if (!keepsAudio) return receiveResult;
        auto& fake = static_cast<FakeSample&>(*sample);
        std::vector<float> audio(static_cast<std::size_t>(fake.length) / 4);
        std::memcpy(audio.data(), fake.memory.data(), audio.size() * 4);
        const auto start = fake.hasStart ? std::optional(fake.start) : std::nullopt;
        deliveries.push_back(
            {std::move(audio), fake.length, fake.sync, fake.preroll, fake.discontinuity, start, fake.silent});
        return receiveResult;
    }
    HRESULT ReceiveMultiple(IMediaSample**, LONG, LONG*) override { return E_NOTIMPL; }
    HRESULT ReceiveCanBlock() override { return S_FALSE; }

protected:
    void* find(REFIID iid) override {
        return iid == IID_IMemInputPin ? static_cast<IMemInputPin*>(this) : FakePin::find(iid);
    }
};

/// A graph that only writes down what it is told and asked.
class FakeGraph : public TestObject<IFilterGraph, IMediaEventSink> {
public:
    std::vector<LONG> events;
    std::vector<IPin*> reconnected;
    HRESULT reconnectResult = S_OK;

    HRESULT AddFilter(IBaseFilter*, LPCWSTR) override { return E_NOTIMPL; }
    HRESULT RemoveFilter(IBaseFilter*) override { return E_NOTIMPL; }
    HRESULT EnumFilters(IEnumFilters**) override { return E_NOTIMPL; }
    HRESULT FindFilterByName(LPCWSTR, IBaseFilter**) override { return E_NOTIMPL; }
    HRESULT ConnectDirect(IPin*, IPin*, const AM_MEDIA_TYPE*) override { return E_NOTIMPL; }
    HRESULT Reconnect(IPin* pin) override {
        reconnected.push_back(pin);
        return reconnectResult;
    }
    HRESULT Disconnect(IPin*) override { return E_NOTIMPL; }
    HRESULT SetDefaultSyncSource() override { return E_NOTIMPL; }

    HRESULT Notify(LONG code, LONG_PTR, LONG_PTR) override {
        events.push_back(code);
        return S_OK;
    }

protected:
    void* find(REFIID iid) override {
        if (iid == IID_IMediaEventSink) return static_cast<IMediaEventSink*>(this);
        return iid == IID_IUnknown || iid == IID_IFilterGraph ? static_cast<IFilterGraph*>(this) : nullptr;
    }
};

}  // namespace marnoth::test
