#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>

#include "cli/Studio.h"

#ifndef _WIN32
#include "support/FileSizeLimit.h"
#endif

namespace marnoth::test::render_forms_test {
namespace {

/// The 16-bit samples behind the 44 bytes of a header without further chunks.
std::vector<std::int16_t> samples16(const std::string& file) {
    std::vector<std::int16_t> samples((file.size() - 44) / 2);
    std::memcpy(samples.data(), file.data() + 44, samples.size() * 2);
    return samples;
}

class Forms : public testing::Test {
protected:
    CliRun render(std::vector<std::string> more) {
        std::vector<std::string> words{"--pad", studio.pad(1, "a.wav"), "-o", studio.name("out.wav")};
        words.insert(words.end(), more.begin(), more.end());
        return studio.render(words);
    }
    float peak() const {
        const std::vector<float> samples = studio.audio("out.wav").samples;
        return *std::max_element(samples.begin(), samples.end());
    }

    Studio studio;
};

TEST_F(Forms, BitsAreThoseOfTheFileAndFloatsTheDefault) {
    ASSERT_EQ(render({"--bits", "24"}).status, 0);
    EXPECT_NE(marnoth({"info", studio.name("out.wav")}).out.find("PCM, 24 bits, 2 channels"),
              std::string::npos);
    ASSERT_EQ(render({"--bits", "32f"}).status, 0);
    const std::string floats = studio.bytes("out.wav");
    ASSERT_EQ(render({}).status, 0);
    EXPECT_TRUE(floats == studio.bytes("out.wav"));
    EXPECT_NE(marnoth({"info", studio.name("out.wav")}).out.find("float, 32 bits"), std::string::npos);
}

TEST_F(Forms, IntegersAreWithinTheirDitherOfTheFloatsAndTheSameEachTime) {
    ASSERT_EQ(render({}).status, 0);
    const std::vector<float> floats = studio.audio("out.wav").samples;
    ASSERT_EQ(render({"--bits", "16"}).status, 0);
    const std::string dithered = studio.bytes("out.wav");
    ASSERT_EQ(render({"--bits", "16"}).status, 0);
    EXPECT_TRUE(dithered == studio.bytes("out.wav"));
    ASSERT_EQ(render({"--bits", "16", "--no-dither"}).status, 0);
    const auto plain = samples16(studio.bytes("out.wav"));
    const auto noisy = samples16(dithered);
    ASSERT_EQ(plain.size(), floats.size());
    int differing = 0;
    for (std::size_t i = 0; i < floats.size(); ++i) {
        ASSERT_LE(std::abs(plain[i] - floats[i] * 32768), 0.5) << i;
        ASSERT_LT(std::abs(noisy[i] - floats[i] * 32768), 1.5) << i;
        differing += plain[i] != noisy[i];
    }
    EXPECT_GT(differing, 0);
}

TEST_F(Forms, AGainIsInDecibels) {
    ASSERT_EQ(render({}).status, 0);
    const float before = peak();
    const CliRun run = render({"--gain", "-12"});
    ASSERT_EQ(run.status, 0);
    // 10 to the power -12/20.
    EXPECT_NEAR(peak() / before, 0.251189, 1e-5);
    EXPECT_NE(run.out.find(" after -12.0 dB"), std::string::npos) << run.out;
}

TEST_F(Forms, NormalizingBringsTheMixToFullScaleAndSaysByHowMuch) {
    ASSERT_EQ(render({}).status, 0);
    const double before = peak();
    CliRun run = render({"--normalize"});
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_FLOAT_EQ(peak(), 1.0f);
    char told[64];
    std::snprintf(told, sizeof told, "peak 0.0 dBFS after +%.1f dB", -20 * std::log10(before));
    EXPECT_NE(run.out.find(told), std::string::npos) << run.out << told;
    ASSERT_EQ(render({"--normalize", "--gain", "-20"}).status, 0);
    EXPECT_NEAR(peak(), 0.1, 1e-6);
    run = render({"--normalize", "--bits", "16"});
    EXPECT_EQ(run.err.find("clip"), std::string::npos) << run.err;
    EXPECT_NE(run.out.find("16 bits, peak 0.0 dBFS after +"), std::string::npos) << run.out;
    const auto samples = samples16(studio.bytes("out.wav"));
    EXPECT_GE(*std::max_element(samples.begin(), samples.end()), 32765);
    EXPECT_FALSE(studio.has("out.wav.part"));
}

TEST_F(Forms, StemsGetTheGainOfTheMixSoThatTheyAddUpToIt) {
    ASSERT_EQ(studio
                  .render({"--pad", studio.pad(1, "a.wav"), "--pad", studio.pad(2, "b.wav"), "--normalize",
                           "--stems", studio.name("stems"), "-o", studio.name("out.wav")})
                  .status,
              0);
    const auto mix = studio.audio("out.wav").samples;
    const auto one = studio.audio("stems/pad01.wav").samples;
    const auto two = studio.audio("stems/pad02.wav").samples;
    for (std::size_t i = 0; i < mix.size(); ++i) ASSERT_NEAR(mix[i], one[i] + two[i], 1e-6);
    // Levels of 0.25 and 0.125.
    EXPECT_NEAR(one[20000], 2.0 / 3, 1e-3);
}

TEST_F(Forms, ASilentMixIsNotNormalized) {
    const CliRun run = studio.render(
        {"--pad", studio.pad(1, "a.wav") + ",mute=on", "--normalize", "-o", studio.name("out.wav")});
    EXPECT_EQ(run.status, 0);
    EXPECT_NE(run.err.find("isn't normalized: it is silent"), std::string::npos) << run.err;
}

TEST_F(Forms, AnIntegerFileThatClipsIsTold) {
    ASSERT_EQ(render({"--gain", "20"}).status, 0);
    const auto samples = studio.audio("out.wav").samples;
    const auto isOver = [](float sample) { return sample > 1; };
    const auto count = std::count_if(samples.begin(), samples.end(), isOver);
    const auto first = std::find_if(samples.begin(), samples.end(), isOver) - samples.begin();
    ASSERT_GT(count, 0);
    const double over = 20 * std::log10(peak());
    const CliRun run = render({"--gain", "20", "--bits", "16"});
    EXPECT_EQ(run.status, 0);
    char told[256];
    std::snprintf(told, sizeof told,
                  "out.wav: %d samples clip, the first at %.3f s, by %.1f dB at most: give --gain ",
                  static_cast<int>(count), static_cast<double>(first / 2) / 44100, over);
    EXPECT_NE(run.err.find(told), std::string::npos) << run.err << told;
    // What is advised is enough.
    const std::size_t at = run.err.find("--gain ") + 7;
    const std::string advised = run.err.substr(at, run.err.find(' ', at) - at);
    EXPECT_EQ(render({"--gain", advised, "--bits", "16"}).err, "");
    EXPECT_EQ(render({"--gain", "20"}).err, "") << "floats hold what is above full scale";
}

TEST_F(Forms, NumbersOutsideTheirRangeAreRefused) {
    for (const auto& [option, value] : std::vector<std::pair<std::string, std::string>>{{"--bits", "8"},
                                                                                        {"--bits", "32"},
                                                                                        {"--gain", "101"},
                                                                                        {"--gain", "inf"},
                                                                                        {"--gain", "loud"},
                                                                                        {"--gain", ""}}) {
        const CliRun run = render({option, value});
        EXPECT_EQ(run.status, 2) << option << value;
        EXPECT_NE(run.err.find(option), std::string::npos) << run.err;
    }
}

/// Stereo frames of a rate, in `folder`.
void writeRate(const TempFolder& folder, const std::string& name, std::uint32_t rate) {
    WaveFile().rate(rate).frames(static_cast<int>(rate)).acid({.beats = 2}).write(folder / name);
}

TEST_F(Forms, TheRateIsThatOfMostLoops) {
    writeRate(studio.folder, "48.wav", 48000);
    writeRate(studio.folder, "96.wav", 96000);
    const auto rendered = [&](std::vector<std::string> words) {
        words.insert(words.end(), {"-o", studio.name("out.wav")});
        const CliRun run = studio.render(words);
        EXPECT_EQ(run.status, 0) << run.err;
        return std::pair{studio.audio("out.wav").rate, run.err};
    };
    const std::string p48 = studio.pad(1, "48.wav");
    EXPECT_EQ(rendered({"--pad", p48}), (std::pair<std::uint32_t, std::string>{48000, ""}));
    EXPECT_EQ(rendered({"--pad", p48, "--rate", "22050"}).first, 22050u);
    // Two of 44100 and one of 48000; then one of each.
    const auto most =
        rendered({"--pad", p48, "--pad", studio.pad(2, "a.wav"), "--pad", studio.pad(3, "b.wav")});
    EXPECT_EQ(most.first, 44100u);
    EXPECT_NE(most.second.find("2 of 44100, 1 of 48000"), std::string::npos) << most.second;
    EXPECT_NE(most.second.find("rendered with 44100; --rate sets another"), std::string::npos) << most.second;
    EXPECT_EQ(
        rendered({"--pad", p48, "--pad", studio.pad(2, "a.wav"), "--pad", studio.pad(3, "96.wav")}).first,
        96000u);
    EXPECT_EQ(rendered({"--pad", p48, "--save", studio.name("p.mrn")}).first, 48000u);
    EXPECT_EQ(rendered({"--project", studio.name("p.mrn")}).first, 48000u);
}

TEST_F(Forms, WhatTheDiskCantHoldIsRefusedBeforeAnyWork) {
    // 10^6 beats at one a minute and 768000 frames a second: 368640 GB.
    const CliRun run = render({"--beats", "1e6", "--tempo", "1", "--rate", "768000"});
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.err.find("368.6 TB are needed"), std::string::npos) << run.err;
    EXPECT_FALSE(studio.has("out.wav") || studio.has("out.wav.part"));
}

#ifndef _WIN32
TEST_F(Forms, AUsersLimitOfAFilesSizeIsKnownBeforehand) {
    const FileSizeLimit limit(1'000'000);
    const CliRun run = render({"--beats", "100", "--tempo", "100", "--bits", "16"});
    EXPECT_EQ(run.status, 1);
    // A minute of 44100 frames of 4 bytes.
    EXPECT_NE(run.err.find("it needs a file of 10.6 MB, and none there may have more than 1.0 MB"),
              std::string::npos)
        << run.err;
    EXPECT_FALSE(studio.has("out.wav") || studio.has("out.wav.part"));
}
#endif

TEST_F(Forms, QuietPrintsNothingButWarnings) {
    const CliRun run = render({"-q", "--save", studio.name("p.mrn")});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out + run.err, "");
    EXPECT_NE(render({"--quiet", "--bits", "16", "--gain", "30"}).err.find("clip"), std::string::npos);
    EXPECT_EQ(marnoth({"page", studio.name("p.mrn"), "-q", "-o", studio.name("p.png")}).out, "");
    EXPECT_TRUE(studio.has("p.png"));
}

}  // namespace
}  // namespace marnoth::test::render_forms_test
