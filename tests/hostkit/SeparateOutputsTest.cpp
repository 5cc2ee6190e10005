#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "hostkit/SeparateOutputs.h"

namespace marnoth::test::separate_outputs_test {
namespace {

using Samples = std::vector<float>;

TEST(SeparateOutputs, PutEachChannelOfEachOutputInItsPlace) {
    std::array<Samples, 34> memory;
    std::array<float*, 34> pointers;
    for (std::size_t i = 0; i < 34; ++i) {
        memory[i].assign(5, 9.0f);
        pointers[i] = memory[i].data();
    }
    SeparateOutputs outputs;
    outputs.begin(pointers, 4);
    outputs.take(0, Samples{1, -1, 2, -2}, false);
    outputs.moveTo(2);
    outputs.take(16, Samples{5, -5, 6, -6}, false);
    EXPECT_EQ(memory[0], (Samples{1, 2, 0, 0, 9}));
    EXPECT_EQ(memory[1], (Samples{-1, -2, 0, 0, 9}));
    EXPECT_EQ(memory[2], (Samples{0, 0, 0, 0, 9}));
    EXPECT_EQ(memory[32], (Samples{0, 0, 5, 6, 9}));
    EXPECT_EQ(memory[33], (Samples{0, 0, -5, -6, 9}));
}

TEST(SeparateOutputs, LeaveOutWhatIsNullOrMissing) {
    Samples right(2, 9.0f);
    const std::array<float*, 2> pointers{nullptr, right.data()};
    SeparateOutputs outputs;
    outputs.begin(pointers, 2);
    outputs.take(0, Samples{1, -1, 2, -2}, false);
    outputs.take(7, Samples{1, -1, 2, -2}, false);
    EXPECT_EQ(right, (Samples{-1, -2}));
}

TEST(SeparateOutputs, OfASilentPieceNothingIsRead) {
    Samples left(2, 9.0f);
    const std::array<float*, 1> pointers{left.data()};
    SeparateOutputs outputs;
    outputs.begin(pointers, 2);
    outputs.take(0, Samples{1, -1, 2, -2}, true);
    EXPECT_EQ(left, (Samples{0, 0}));
}

}  // namespace
}  // namespace marnoth::test::separate_outputs_test
