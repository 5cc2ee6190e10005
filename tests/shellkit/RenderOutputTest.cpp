#include <gtest/gtest.h>

#include "shellkit/TempFolder.h"
#include "shellkit/media/RenderOutput.h"
#include "shellkit/media/WaveFrames.h"

namespace marnoth::test::render_output_test {
namespace {

const WaveOptions kStereo{.rate = 48000, .channels = 2};

TEST(RenderOutput, AGainThatComesLaterIsThatOfAllItsAudio) {
    const TempFolder folder;
    // More than is passed on at once.
    const std::vector<float> audio(100'000, 0.25f);
    RenderOutput output(std::make_unique<OutputFile>(folder / "a.wav"), kStereo, true);
    output.take(audio);
    output.check();
    EXPECT_EQ(output.peak(), 0.25f);
    output.setGain(4);
    output.finish();
    EXPECT_EQ(readWaveFrames(folder / "a.wav").samples, std::vector<float>(100'000, 1.0f));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder / ""), {}), 1);
}

TEST(RenderOutput, WhatIsNeverFinishedLeavesNothing) {
    const TempFolder folder;
    {
        RenderOutput output(std::make_unique<OutputFile>(folder / "a.wav"), kStereo, true);
        output.take(std::vector<float>(1000));
    }
    EXPECT_TRUE(std::filesystem::is_empty(folder / ""));
}

TEST(RenderOutput, TellsWhatClippedInTheFile) {
    const TempFolder folder;
    WaveOptions options = kStereo;
    options.encoding = {.format = SampleFormat::integer16, .gain = 2};
    RenderOutput output(std::make_unique<OutputFile>(folder / "a.wav"), options, false);
    output.take(std::vector<float>{0.5f, 0.5f, 0.25f, -0.75f});
    output.finish();
    EXPECT_EQ(output.clipping().samples, 1);
    EXPECT_EQ(output.clipping().firstFrame, 1);
    EXPECT_EQ(output.clipping().peak, 1.5f);
    EXPECT_EQ(output.peak(), 0.75f);
}

}  // namespace
}  // namespace marnoth::test::render_output_test
