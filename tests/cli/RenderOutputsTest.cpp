#include <gtest/gtest.h>

#include <limits>

#include "shellkit/TempFolder.h"
#include "shells/cli/RenderOutputs.h"

namespace marnoth::test::render_outputs_test {
namespace {

/// What is told of a mix of so many frames that is one sample at `level`.
std::string told(const FileForm& form, std::int64_t frames, float level) {
    const TempFolder folder;
    RenderOutputs outputs(form, 48000, 2, frames);
    outputs.add(0, std::make_unique<OutputFile>(folder / "a.wav")).take(std::vector<float>{level, 0.0f});
    outputs.finish([](const std::string&) {});
    return outputs.tellMix();
}

TEST(RenderOutputs, WhatOlderProgramsMayNotReadIsTold) {
    // 2^29 stereo frames of 8 bytes, and 2^30 of 4.
    constexpr std::int64_t kFrames = std::int64_t{1} << 29;
    EXPECT_EQ(told({}, kFrames, 0.1f), "RF64, peak -20.0 dBFS");
    EXPECT_EQ(told({.format = SampleFormat::integer16}, kFrames, 0.1f), "16 bits, peak -20.0 dBFS");
    EXPECT_EQ(told({.format = SampleFormat::integer16}, 2 * kFrames, 0.1f), "16 bits, RF64, peak -20.0 dBFS");
}

TEST(RenderOutputs, ALevelOfNothingHasNoSign) {
    EXPECT_EQ(told({}, 1, 0.999999f), "peak 0.0 dBFS");
    EXPECT_EQ(told({.normalize = true}, 1, 1.0f), "peak 0.0 dBFS after +0.0 dB");
    EXPECT_EQ(told({}, 1, 0.0f), "silent");
}

TEST(RenderOutputs, AMixOfInfiniteLevelIsNotNormalized) {
    const TempFolder folder;
    RenderOutputs outputs({.normalize = true}, 48000, 1, 1);
    outputs.add(0, std::make_unique<OutputFile>(folder / "a.wav"))
        .take(std::vector<float>{std::numeric_limits<float>::infinity()});
    std::string warning;
    outputs.finish([&](const std::string& text) { warning = text; });
    EXPECT_NE(warning.find("it isn't normalized: it is of infinite level"), std::string::npos) << warning;
}

}  // namespace
}  // namespace marnoth::test::render_outputs_test
