#include "host/Pzi.h"
#include "support/FakeGraph.h"

namespace marnoth::test {
namespace {

TEST(GetBufferData, GivesTheMemoryThatIsSetAndClearsTheSilence) {
    float memory[4] = {1, 2, 3, 4};
    PinBuffer buffer{2, 0, nullptr, memory, 1};
    EXPECT_EQ(GetBufferData(buffer), memory);
    EXPECT_EQ(buffer.silent, 0);
    EXPECT_EQ(memory[0], 1.0f);
}

TEST(GetBufferData, ClearsTheFirstHalfOfASilentStereoBlockAlone) {
    FakeSample sample(4 * 8);
    sample.fill(7.0f);
    PinBuffer buffer{4, 0, &sample, nullptr, 1};
    const float* data = GetBufferData(buffer);
    ASSERT_EQ(data, sample.floats());
    EXPECT_EQ(std::vector<float>(data, data + 8), (std::vector<float>{0, 0, 0, 0, 7, 7, 7, 7}));
    EXPECT_EQ(buffer.silent, 0);
    EXPECT_EQ(buffer.data, nullptr);
    EXPECT_EQ(sample.references, 0u);
}

TEST(GetBufferData, LeavesABlockThatIsntSilentAsItIs) {
    FakeSample sample(16);
    sample.fill(7.0f);
    PinBuffer buffer{2, 0, &sample, nullptr, 0};
    EXPECT_EQ(GetBufferData(buffer)[0], 7.0f);
}

TEST(GetBufferData, LeavesTheClearingToASampleThatKnowsSilence) {
    FakeSample sample(16, true);
    sample.fill(7.0f);
    PinBuffer marked{2, 0, &sample, nullptr, 1};
    // The sample itself isn't marked, so it clears nothing.
    EXPECT_EQ(GetBufferData(marked)[0], 7.0f);
    EXPECT_EQ(marked.silent, 0);
}

}  // namespace
}  // namespace marnoth::test
