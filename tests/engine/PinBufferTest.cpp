#include <gtest/gtest.h>

#include <vector>

#include "host/Pzi.h"
#include "platform/Graph.h"

namespace marnoth::test {
namespace {

/// A media sample that has memory, and the silence interface when told so.
struct FakeSample : IMediaSample {
    explicit FakeSample(std::vector<float> values) : memory(std::move(values)) {}

    struct Silence : IKvxSampleSilence {
        HRESULT QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
        ULONG AddRef() override { return ++references; }
        ULONG Release() override { return --references; }
        std::int32_t GetSilent() override { return silent; }
        void SetSilent(std::int32_t value) override { silent = value; }
        ULONG references = 0;
        std::int32_t silent = 0;
    };

    HRESULT QueryInterface(REFIID iid, void** out) override {
        const bool has = offersSilence && IsEqualGUID(iid, IID_IKvxSampleSilence);
        *out = has ? static_cast<IKvxSampleSilence*>(&silence) : nullptr;
        if (has) silence.AddRef();
        return has ? S_OK : E_NOINTERFACE;
    }
    ULONG AddRef() override { return 1; }
    ULONG Release() override { return 1; }
    HRESULT GetPointer(BYTE** out) override {
        ++asked;
        *out = reinterpret_cast<BYTE*>(memory.data());
        return memory.empty() ? E_FAIL : S_OK;
    }
    LONG GetSize() override { return static_cast<LONG>(memory.size() * sizeof(float)); }
    HRESULT GetTime(REFERENCE_TIME*, REFERENCE_TIME*) override { return E_NOTIMPL; }
    HRESULT SetTime(REFERENCE_TIME*, REFERENCE_TIME*) override { return E_NOTIMPL; }
    HRESULT IsSyncPoint() override { return S_FALSE; }
    HRESULT SetSyncPoint(BOOL) override { return S_OK; }
    HRESULT IsPreroll() override { return S_FALSE; }
    HRESULT SetPreroll(BOOL) override { return S_OK; }
    LONG GetActualDataLength() override { return GetSize(); }
    HRESULT SetActualDataLength(LONG) override { return S_OK; }
    HRESULT GetMediaType(AM_MEDIA_TYPE**) override { return S_FALSE; }
    HRESULT SetMediaType(AM_MEDIA_TYPE*) override { return S_OK; }
    HRESULT IsDiscontinuity() override { return S_FALSE; }
    HRESULT SetDiscontinuity(BOOL) override { return S_OK; }
    HRESULT GetMediaTime(LONGLONG*, LONGLONG*) override { return E_NOTIMPL; }
    HRESULT SetMediaTime(LONGLONG*, LONGLONG*) override { return E_NOTIMPL; }

    std::vector<float> memory;
    bool offersSilence = false;
    Silence silence;
    int asked = 0;
};

TEST(PinBuffer, GivenMemoryIsUsedAndTheBufferIsSilentNoMore) {
    std::vector<float> memory(8, 0.5f);
    FakeSample sample({1, 1});
    PinBuffer buffer{4, 0, &sample, memory.data(), 1};
    EXPECT_EQ(GetBufferData(buffer), memory.data());
    EXPECT_EQ(buffer.silent, 0);
    EXPECT_EQ(sample.asked, 0);
    EXPECT_EQ(memory, std::vector<float>(8, 0.5f));
}

TEST(PinBuffer, SilentStereoBlockIsClearedInItsFirstHalfOnly) {
    FakeSample sample(std::vector<float>(8, 0.5f));
    PinBuffer buffer{4, 0, &sample, nullptr, 1};
    EXPECT_EQ(GetBufferData(buffer), sample.memory.data());
    EXPECT_EQ(buffer.silent, 0);
    EXPECT_EQ(sample.memory, (std::vector<float>{0, 0, 0, 0, 0.5f, 0.5f, 0.5f, 0.5f}));
}

TEST(PinBuffer, SampleThatKnowsSilenceClearsItself) {
    FakeSample sample(std::vector<float>(4, 0.5f));
    sample.offersSilence = true;
    PinBuffer buffer{4, 0, &sample, nullptr, 1};
    EXPECT_EQ(GetBufferData(buffer), sample.memory.data());
    EXPECT_EQ(buffer.silent, 0);
    EXPECT_EQ(sample.memory, std::vector<float>(4, 0.5f));
    EXPECT_EQ(sample.silence.references, 0u);
}

TEST(PinBuffer, SoundingBlockIsLeftAlone) {
    FakeSample sample(std::vector<float>(4, 0.5f));
    PinBuffer buffer{4, 0, &sample, nullptr, 0};
    GetBufferData(buffer);
    EXPECT_EQ(sample.memory, std::vector<float>(4, 0.5f));
}

TEST(PinBuffer, EachCallAsksTheSampleAgain) {
    FakeSample sample(std::vector<float>(4, 0.5f));
    PinBuffer buffer{4, 0, &sample, nullptr, 0};
    GetBufferData(buffer);
    GetBufferData(buffer);
    EXPECT_EQ(sample.asked, 2);
    EXPECT_EQ(buffer.data, nullptr);
}

TEST(PinBuffer, WithoutMemoryThereIsNothingToWriteTo) {
    FakeSample sample({});
    PinBuffer buffer{4, 0, &sample, nullptr, 1};
    EXPECT_EQ(GetBufferData(buffer), nullptr);
    PinBuffer none{4, 0, nullptr, nullptr, 1};
    EXPECT_EQ(GetBufferData(none), nullptr);
}

}  // namespace
}  // namespace marnoth::test
