#pragma once

#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

#include "seam/KvxInterfaces.h"
#include "support/TestObject.h"

namespace marnoth::test {

/// A tempo map of one tempo and of a straight relation between ticks and milliseconds, which need not agree:
/// so a test can tell which of the two was asked.
class FakeTempoMap : public TestObject<IKvxTempoMap> {
public:
    std::int32_t tempoHundredths = 12000;
    std::int32_t millisecondsPerBeat = 500;
    HRESULT tempoResult = S_OK;
    std::vector<std::int32_t> millisecondsAsked;
    std::int32_t tempoTimeAsked = -1;

    std::int32_t TicksToMilliseconds(std::int32_t ticks) override {
        return static_cast<std::int32_t>(std::int64_t{ticks} * millisecondsPerBeat / 960);
    }
    std::int32_t MillisecondsToTicks(std::int32_t milliseconds) override {
        millisecondsAsked.push_back(milliseconds);
        return static_cast<std::int32_t>(std::int64_t{milliseconds} * 960 / millisecondsPerBeat);
    }
    HRESULT reserved5() override { return E_NOTIMPL; }
    HRESULT reserved6() override { return E_NOTIMPL; }
    HRESULT reserved7() override { return E_NOTIMPL; }
    HRESULT GetTempoAt(std::int32_t time, std::int32_t* other, std::int32_t* hundredths) override {
        tempoTimeAsked = time;
        *other = 0;
        if (SUCCEEDED(tempoResult)) *hundredths = tempoHundredths;
        return tempoResult;
    }

protected:
    void* find(REFIID) override { return nullptr; }
};

/// A converter in whole numbers: so many samples to the tick, and a rate that needn't agree.
class FakeTimeConverter : public TestObject<IKvxTimeConverter> {
public:
    std::int64_t samplesPerTick = 10;
    std::int64_t rate = 48000;
    HRESULT result = S_OK;

    HRESULT ConvertTime(SynthTimeValue* value, std::uint32_t target) override {
        if (FAILED(result)) return result;
        const std::int64_t samples = toSamples(*value);
        value->format = target;
        value->samples = 0;
        if (target == kTimeSamples) value->samples = samples;
        if (target == kTimeTicks) value->ticks = static_cast<std::int32_t>(samples / samplesPerTick);
        if (target == kTimeTicks16) value->ticks16 = samples * 65536 / samplesPerTick;
        return S_OK;
    }

protected:
    void* find(REFIID) override { return nullptr; }

private:
    std::int64_t toSamples(const SynthTimeValue& value) const {
        switch (value.format) {
            case kTimeSeconds:
                return static_cast<std::int64_t>(value.seconds * static_cast<double>(rate));
            case kTimeTicks:
                return value.ticks * samplesPerTick;
            case kTimeTicks16:
                return value.ticks16 * samplesPerTick / 65536;
            default:
                return value.samples;
        }
    }
};

class FakeProjectKeyMap : public TestObject<IKvxProjectKeyMap> {
public:
    std::uint32_t key = 7;
    HRESULT result = S_OK;
    SynthTimeValue asked;

    HRESULT reserved3() override { return E_NOTIMPL; }
    HRESULT reserved4() override { return E_NOTIMPL; }
    HRESULT reserved5() override { return E_NOTIMPL; }
    HRESULT GetKeyAt(const SynthTimeValue* when, std::uint32_t* out) override {
        asked = *when;
        if (SUCCEEDED(result)) *out = key;
        return result;
    }

protected:
    void* find(REFIID) override { return nullptr; }
};

class FakeEventTarget : public TestObject<IKvxEventTarget> {
protected:
    void* find(REFIID) override { return nullptr; }
};

class FakePinHost : public TestObject<IKvxPinHost> {
public:
    HRESULT askResult = S_OK;
    HRESULT toldResult = S_OK;
    /// Every call: kind and count.
    std::vector<std::pair<std::uint32_t, std::int32_t>> calls;
    IBaseFilter* lastFilter = nullptr;

    HRESULT OnPinSetChange(std::uint32_t kind, IBaseFilter* filter, std::int32_t count) override {
        calls.emplace_back(kind, count);
        lastFilter = filter;
        return kind == kPinSetAsking ? askResult : toldResult;
    }

protected:
    void* find(REFIID) override { return nullptr; }
};

/// What `AttachHost` is given: hands out the services that the test has switched on.
class FakeHostContext : public TestObject<IUnknown> {
public:
    FakeTempoMap tempoMap;
    FakeTimeConverter timeConverter;
    FakeProjectKeyMap keyMap;
    FakeEventTarget eventTarget;
    FakePinHost pinHost;
    bool hasTempoMap = true;
    bool hasTimeConverter = false;
    bool hasKeyMap = false;
    bool hasEventTarget = false;
    bool hasPinHost = false;

    ULONG serviceReferences() const {
        return tempoMap.references + timeConverter.references + keyMap.references + eventTarget.references +
               pinHost.references;
    }

    /// The services count their own references, not the context's.
    HRESULT QueryInterface(REFIID iid, void** out) override {
        *out = nullptr;
        if (iid == IID_IKvxTempoMap && hasTempoMap) return give(tempoMap, out);
        if (iid == IID_IKvxTimeConverter && hasTimeConverter) return give(timeConverter, out);
        if (iid == IID_IKvxProjectKeyMap && hasKeyMap) return give(keyMap, out);
        if (iid == IID_IKvxEventTarget && hasEventTarget) return give(eventTarget, out);
        if (iid == IID_IKvxPinHost && hasPinHost) return give(pinHost, out);
        return E_NOINTERFACE;
    }

protected:
    void* find(REFIID) override { return nullptr; }

private:
    template <class Service>
    static HRESULT give(Service& service, void** out) {
        service.AddRef();
        *out = &service;
        return S_OK;
    }
};

}  // namespace marnoth::test
