#include <gtest/gtest.h>

#include <limits>

#include "sample/NotFinite.h"
#include "sample/OpenedWave.h"
#include "sample/ReadWave.h"

namespace marnoth::test::lenient_wave_test {
namespace {

constexpr std::uint32_t kMost32 = 0xFFFFFFFF;
constexpr LoadFault kLengthUnknown{.kind = FaultKind::lengthUnknown, .place = {fourCC("data")}};

LoadFault cutShort(std::int64_t missing) {
    return {.kind = FaultKind::cutShort, .place = {fourCC("data")}, .value = missing};
}

/// 100 frames of two bytes, all of them 0.5.
WaveFile half() {
    return WaveFile().frames(100, [](auto, int) { return 0.5; });
}

/// Ends with the audio, as files do that were written into a pipe.
OpenedWave lenient(const WaveFile& content) {
    return OpenedWave(content, true);
}

void expectFrames(const WaveFile& content, std::int64_t frames, const LoadFault& damage) {
    const OpenedWave opened = lenient(content);
    ASSERT_EQ(opened.result, S_OK);
    EXPECT_EQ(opened->frameCount, frames);
    EXPECT_EQ(opened->damage, damage);
    RefPtr<CWaveMem> wave;
    ASSERT_FALSE(readSamples(*opened, 44100, wave));
    ASSERT_EQ(wave->frames, frames);
    for (std::int64_t i = 0; i < frames; ++i) ASSERT_EQ(wave->samples[i], 0.5f) << i;
}

TEST(LenientWave, ASoundFileIsReadAsEver) {
    expectFrames(half(), 100, {});
    const OpenedWave loop = lenient(half().acid({.beats = 2}).info("INAM", "name"));
    EXPECT_EQ(loop->hasAcid, 1u);
    EXPECT_EQ(loop->tags[0].value, "name");
    EXPECT_FALSE(loop->damage);
}

TEST(LenientWave, AudioThatIsCutShortEndsWhereTheFileDoes) {
    const std::size_t whole = half().bytes().size();
    expectFrames(half().truncate(whole - 50), 75, cutShort(50));
    // Half a frame is none.
    expectFrames(half().truncate(whole - 51), 74, cutShort(51));
    expectFrames(half().claim("data", 100000), 100, cutShort(99800));
}

TEST(LenientWave, AudioOfUnknownLengthEndsWhereTheFileDoes) {
    expectFrames(half().claim("data", kMost32).claim("RIFF", kMost32), 100, kLengthUnknown);
    expectFrames(half().claim("data", 0x7FFFF000).claim("RIFF", 0x7FFFF024), 100, kLengthUnknown);
    expectFrames(half().claim("data", 0).claim("RIFF", 0), 100, kLengthUnknown);
    expectFrames(half().claim("data", 0).claim("RIFF", kMost32), 100, kLengthUnknown);
    // Headers that were never put right: a form of them alone.
    expectFrames(half().claim("data", 0).claim("RIFF", 36), 100, kLengthUnknown);
    expectFrames(half().claim("RIFF", 0), 100, {});
}

TEST(LenientWave, AFormThatGoesOnBehindNoAudioHasNone) {
    const OpenedWave opened = lenient(WaveFile().info("INAM", "name"));
    EXPECT_EQ(opened.result, E_FAIL);
    EXPECT_EQ(opened->fault.quantity, FaultQuantity::frames);
    EXPECT_EQ(lenient(WaveFile())->fault.quantity, FaultQuantity::frames);
    EXPECT_EQ(lenient(half().truncate(44))->frameCount, 0u);
}

TEST(LenientWave, DurationIsThatOfWhatIsThere) {
    // 200 bytes at 88200 a second are 2.27 ms; one more is told.
    EXPECT_EQ(lenient(half().claim("data", kMost32))->durationMs, 3u);
}

TEST(LenientWave, StrictReadingStaysAsItIs) {
    const OpenedWave cut(half().claim("data", 400));
    EXPECT_EQ(cut->frameCount, 200u);
    EXPECT_FALSE(cut->damage);
    EXPECT_EQ(OpenedWave(half().claim("data", 0)).result, E_FAIL);
    EXPECT_EQ(OpenedWave(half().claim("RIFF", 0)).result, E_FAIL);
}

TEST(NotFinite, CountsWhatIsNoNumber) {
    constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
    constexpr float kInf = std::numeric_limits<float>::infinity();
    const std::vector<float> samples{0, kNan, 1, kInf, -kInf, std::numeric_limits<float>::max(), -kNan};
    EXPECT_EQ(countNotFinite(samples), 4);
    std::vector<float> many;
    for (int i = 0; i < 10000; ++i) many.insert(many.end(), samples.begin(), samples.end());
    EXPECT_EQ(countNotFinite(*OpenedWave(WaveFile().floats().values(many))), 40000);
}

TEST(NotFinite, IntegersAreNumbers) {
    EXPECT_EQ(countNotFinite(*OpenedWave(WaveFile().bits(32).audio(Bytes(400, 0xFF)))), 0);
    EXPECT_EQ(countNotFinite(*OpenedWave(WaveFile().audio(Bytes(400, 0xFF)))), 0);
}

}  // namespace
}  // namespace marnoth::test::lenient_wave_test
