#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "seam/Pzi.h"
#include "support/FakeGraph.h"

namespace marnoth::test::pin_buffer_test {
namespace {

/// A media sample of 32-bit values.
struct Values : FakeSample {
    explicit Values(const std::vector<float>& values, bool knowsSilence = false)
        : FakeSample(values.size() * sizeof(float), knowsSilence) {
        std::copy(values.begin(), values.end(), floats());
    }
    std::vector<float> now() { return {floats(), floats() + memory.size() / sizeof(float)}; }

    HRESULT GetPointer(BYTE** out) override {
        ++asked;
        return memory.empty() ? E_FAIL : FakeSample::GetPointer(out);
    }
    int asked = 0;
};

TEST(PinBuffer, GivenMemoryIsUsedAndTheBufferIsSilentNoMore) {
    std::vector<float> memory(8, 0.5f);
    Values sample({1, 1});
    PinBuffer buffer{4, 0, &sample, memory.data(), 1};
    EXPECT_EQ(GetBufferData(buffer), memory.data());
    EXPECT_EQ(buffer.silent, 0);
    EXPECT_EQ(sample.asked, 0);
    EXPECT_EQ(memory, std::vector<float>(8, 0.5f));
}

TEST(PinBuffer, SilentStereoBlockIsClearedInItsFirstHalfOnly) {
    Values sample(std::vector<float>(8, 0.5f));
    PinBuffer buffer{4, 0, &sample, nullptr, 1};
    EXPECT_EQ(GetBufferData(buffer), sample.floats());
    EXPECT_EQ(buffer.silent, 0);
    EXPECT_EQ(sample.now(), (std::vector<float>{0, 0, 0, 0, 0.5f, 0.5f, 0.5f, 0.5f}));
}

TEST(PinBuffer, SampleThatKnowsSilenceClearsItself) {
    Values sample(std::vector<float>(4, 0.5f), true);
    PinBuffer buffer{4, 0, &sample, nullptr, 1};
    EXPECT_EQ(GetBufferData(buffer), sample.floats());
    EXPECT_EQ(buffer.silent, 0);
    // This one isn't marked, so it clears nothing.
    EXPECT_EQ(sample.now(), std::vector<float>(4, 0.5f));
    EXPECT_EQ(sample.references, 0u);
}

TEST(PinBuffer, BlockRenderedIntoAMarkedSampleStartsFromZeros) {
    Values sample(std::vector<float>(8, 0.5f), true);
    sample.SetSilent(1);
    PinBuffer buffer{4, 0, &sample, nullptr, 1};
    EXPECT_EQ(GetBufferData(buffer), sample.floats());
    EXPECT_EQ(sample.now(), std::vector<float>(8, 0.0f));
    EXPECT_EQ(sample.silent, 0);
}

TEST(PinBuffer, SoundingBlockIsLeftAlone) {
    Values sample(std::vector<float>(4, 0.5f));
    PinBuffer buffer{4, 0, &sample, nullptr, 0};
    GetBufferData(buffer);
    EXPECT_EQ(sample.now(), std::vector<float>(4, 0.5f));
}

TEST(PinBuffer, EachCallAsksTheSampleAgain) {
    Values sample(std::vector<float>(4, 0.5f));
    PinBuffer buffer{4, 0, &sample, nullptr, 0};
    GetBufferData(buffer);
    GetBufferData(buffer);
    EXPECT_EQ(sample.asked, 2);
    EXPECT_EQ(buffer.data, nullptr);
}

TEST(PinBuffer, WithoutMemoryThereIsNothingToWriteTo) {
    Values sample({});
    PinBuffer buffer{4, 0, &sample, nullptr, 1};
    EXPECT_EQ(GetBufferData(buffer), nullptr);
    PinBuffer none{4, 0, nullptr, nullptr, 1};
    EXPECT_EQ(GetBufferData(none), nullptr);
}

}  // namespace
}  // namespace marnoth::test::pin_buffer_test
