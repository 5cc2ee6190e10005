#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "sample/OpenedWave.h"
#include "sample/ReadWave.h"
#include "support/AllocationMeter.h"

namespace marnoth::test::read_wave_test {
namespace {

/// Reads at the file's own rate.
LoadFault read(const OpenedWave& opened, RefPtr<CWaveMem>& wave) {
    return readSamples(*opened, opened->format.nSamplesPerSec, wave);
}

struct ReadFile {
    explicit ReadFile(const WaveFile& content) : opened(content) {
        if (SUCCEEDED(opened.result)) result = codeOf(read(opened, wave));
    }
    std::vector<float> values(std::int64_t count) const {
        return {wave->samples.get(), wave->samples.get() + count};
    }

    OpenedWave opened;
    RefPtr<CWaveMem> wave;
    HRESULT result = S_FALSE;
};

using Floats = std::vector<float>;
using Integers = std::vector<std::int32_t>;

TEST(ReadWave, SixteenBitsBecomeFloatWithAGuardFrame) {
    const ReadFile file(WaveFile().channels(2).values(Integers{-32768, 32767, 16384, -1}));
    ASSERT_EQ(file.result, S_OK);
    EXPECT_EQ(file.wave->frames, 2);
    EXPECT_EQ(file.values(6),
              (Floats{-1.0f, 0.999969482421875f, 0.5f, -3.0517578125e-5f, 0.5f, -3.0517578125e-5f}));
}

TEST(ReadWave, TwentyFourBitsBecomeFloat) {
    const ReadFile file(WaveFile().bits(24).values(Integers{-8388608, 4194304, -1}));
    ASSERT_EQ(file.result, S_OK);
    EXPECT_EQ(file.values(4), (Floats{-1.0f, 0.5f, -1.1920928955078125e-7f, -1.1920928955078125e-7f}));
}

TEST(ReadWave, FloatsAreCopiedBitForBit) {
    const ReadFile file(WaveFile().floats().values(Floats{3.5f, -0.0f, 1e-40f}));
    ASSERT_EQ(file.result, S_OK);
    EXPECT_EQ(file.values(4), (Floats{3.5f, -0.0f, 1e-40f, 1e-40f}));
    EXPECT_TRUE(std::signbit(file.wave->samples[1]));
}

TEST(ReadWave, ExtensibleFormatsAreReadByTheirSubFormat) {
    EXPECT_EQ(ReadFile(WaveFile().extensible().values(Integers{-32768})).values(1), Floats{-1.0f});
    EXPECT_EQ(ReadFile(WaveFile().bits(24).extensible().values(Integers{4194304})).values(1), Floats{0.5f});
    const ReadFile floats(WaveFile().floats().channels(2).extensible().values(Floats{3.5f, -0.25f}));
    ASSERT_EQ(floats.result, S_OK);
    EXPECT_EQ(floats.values(2), (Floats{3.5f, -0.25f}));
    EXPECT_EQ(floats.opened->format.wFormatTag, 0xFFFE);
    EXPECT_EQ(floats.opened->sampleTag, 3);
    EXPECT_EQ(floats.wave->format.wFormatTag, 3);
}

TEST(ReadWave, FormatBecomesFloatAtTheFilesRate) {
    const ReadFile file(WaveFile().rate(22050).channels(2).frames(10));
    const WAVEFORMATEX& format = file.wave->format;
    EXPECT_EQ(format.wFormatTag, 3);
    EXPECT_EQ(format.wBitsPerSample, 32);
    EXPECT_EQ(format.nChannels, 2);
    EXPECT_EQ(format.nBlockAlign, 8);
    EXPECT_EQ(format.nSamplesPerSec, 22050u);
    EXPECT_EQ(format.nAvgBytesPerSec, 176400u);
    EXPECT_EQ(file.wave->rateRatio, 1.0);
}

TEST(ReadWave, LongFileIsReadWholeAtEveryDepth) {
    const auto value = [](std::int64_t i, int c) {
        return std::ldexp(static_cast<double>((i * 7 + c) % 65536), -16);
    };
    for (const int bits : {16, 24, 32}) {
        WaveFile content = WaveFile().channels(2).bits(static_cast<std::uint16_t>(bits));
        if (bits == 32) content.tag(3);
        const ReadFile file(content.frames(50021, value));
        ASSERT_EQ(file.result, S_OK);
        const double scale = std::ldexp(1.0, bits == 16 ? 15 : 23);
        for (std::int64_t i = 0; i < 50021; ++i) {
            for (int c = 0; c < 2; ++c) {
                const double expected =
                    bits == 32 ? value(i, c) : std::min(std::round(value(i, c) * scale), scale - 1) / scale;
                ASSERT_EQ(file.wave->samples[i * 2 + c], static_cast<float>(expected)) << bits << ' ' << i;
            }
        }
    }
}

WAVEFORMATEX formatOf(const CWaveMem& wave, std::uint32_t rate) {
    WAVEFORMATEX format = wave.format;
    format.nSamplesPerSec = rate;
    return format;
}

void expectSameBits(const CWaveMem& wave, const CWaveMem& expected) {
    ASSERT_EQ(wave.frames, expected.frames);
    ASSERT_EQ(wave.byteSize, expected.byteSize);
    EXPECT_EQ(wave.rateRatio, expected.rateRatio);
    EXPECT_EQ(wave.format.nSamplesPerSec, expected.format.nSamplesPerSec);
    EXPECT_EQ(wave.format.nAvgBytesPerSec, expected.format.nAvgBytesPerSec);
    EXPECT_EQ(std::memcmp(wave.samples.get(), expected.samples.get(), expected.byteSize), 0);
    ASSERT_EQ(wave.peakCapacity, expected.peakCapacity);
    const std::size_t peakBytes = static_cast<std::size_t>(expected.peakCapacity) * sizeof(float);
    EXPECT_EQ(std::memcmp(wave.peaks.get(), expected.peaks.get(), peakBytes), 0);
}

TEST(ReadWave, AtAnotherRateItIsTheWaveThatIsReadWholeAndThenResampled) {
    const auto value = [](std::int64_t i, int c) { return std::sin(0.11 * static_cast<double>(i) + c); };
    for (const std::uint16_t channels : {1, 2, 3}) {
        for (const std::int64_t frames : {1, 2, 5, 24575, 24577, 60000}) {
            const WaveFile content = WaveFile().rate(48000).channels(channels).frames(frames, value);
            for (const std::uint32_t rate : {44100, 48000, 96000, 1}) {
                const ReadFile whole(content);
                ASSERT_EQ(whole.wave->Resample(formatOf(*whole.wave, rate)), S_OK);
                const OpenedWave opened(content);
                RefPtr<CWaveMem> wave;
                ASSERT_EQ(codeOf(readSamples(*opened, rate, wave)), S_OK);
                expectSameBits(*wave, *whole.wave);
            }
        }
    }
}

TEST(ReadWave, AtAnotherRateTheFileIsNeverHeldAsAWhole) {
    const OpenedWave opened(WaveFile().rate(96000).channels(2).frames(1 << 20));
    RefPtr<CWaveMem> wave;
    const AllocationMeter meter;
    ASSERT_EQ(codeOf(readSamples(*opened, 24000, wave)), S_OK);
    EXPECT_LT(meter.peakBytes(), wave->byteSize + (1u << 20));
}

TEST(ReadWave, AtAnotherRateAWaveBeyondEveryLoopHasNoSamples) {
    const OpenedWave opened(WaveFile().rate(1).channels(256).frames(40));
    RefPtr<CWaveMem> wave;
    const AllocationMeter meter;
    EXPECT_EQ(codeOf(readSamples(*opened, 44100, wave)), S_OK);
    EXPECT_FALSE(wave->samples);
    EXPECT_EQ(wave->byteSize, 0u);
    EXPECT_LT(meter.peakBytes(), 4096u);
}

TEST(ReadWave, PeakTableHas544Points) {
    const ReadFile file(WaveFile().channels(2).frames(20000, [](auto i, int) { return std::sin(i * 0.1); }));
    EXPECT_EQ(file.wave->peakPoints, 544);
    EXPECT_GT(file.wave->peaks[1], 0.9f);
}

TEST(ReadWave, MoreThanTwoChannelsKeepTheirStride) {
    const ReadFile file(WaveFile().channels(3).values(Integers{16384, -16384, 8192, 0, 4096, -4096}));
    ASSERT_EQ(file.result, S_OK);
    EXPECT_EQ(file.values(9), (Floats{0.5f, -0.5f, 0.25f, 0, 0.125f, -0.125f, 0, 0, 0}));
    EXPECT_EQ(file.wave->peakCapacity, 3 * 544 * 2);
}

TEST(ReadWave, OldWaveIsLetGo) {
    const OpenedWave opened(WaveFile().frames(10));
    RefPtr<CWaveMem> wave = CWaveMem::make();
    const RefPtr<CWaveMem> old = wave;
    ASSERT_EQ(codeOf(read(opened, wave)), S_OK);
    EXPECT_FALSE(wave == old);
    EXPECT_EQ(old->refCount, 1u);
}

void expectRefused(const WaveFile& content) {
    const OpenedWave opened(content);
    ASSERT_EQ(opened.result, S_OK);
    RefPtr<CWaveMem> wave = CWaveMem::make();
    const RefPtr<CWaveMem> old = wave;
    EXPECT_EQ(codeOf(read(opened, wave)), E_FAIL);
    EXPECT_TRUE(wave == old);
}

TEST(ReadWave, OtherDepthsAreRefused) {
    for (const std::uint16_t bits : {0, 1, 8, 12, 20, 64}) {
        expectRefused(WaveFile().bits(bits).blockAlign(4).audio(Bytes(64)));
        expectRefused(
            WaveFile().bits(bits).blockAlign(std::max<std::uint16_t>(1, bits / 8)).audio(Bytes(64)));
    }
    expectRefused(WaveFile().bits(32).frames(4));
    expectRefused(WaveFile().bits(32).extensible().frames(4));
}

TEST(ReadWave, ASubFormatThatStandsForNoTagIsNoFloat) {
    constexpr std::size_t kFormat = 20;
    expectRefused(WaveFile().floats().extensible().poke(kFormat + 39, 0).frames(4));
    // The count of extra bytes is all that there is.
    expectRefused(WaveFile().bits(32).tag(0xFFFE).frames(4));
    EXPECT_EQ(ReadFile(WaveFile().tag(0xFFFE).frames(4)).result, S_OK) << "16 bits are what they are";
}

TEST(ReadWave, ChannelsThatCanNotBeAreRefused) {
    expectRefused(WaveFile().channels(0).blockAlign(4).audio(Bytes(64)));
    expectRefused(WaveFile().channels(0xFFFF).blockAlign(2).audio(Bytes(64)));
    expectRefused(WaveFile().channels(257).frames(4));
    EXPECT_EQ(ReadFile(WaveFile().channels(256).frames(4)).result, S_OK);
}

TEST(ReadWave, BlocksThatDoNotFitTheChannelsAreRefused) {
    expectRefused(WaveFile().channels(2).blockAlign(2).frames(8));
    expectRefused(WaveFile().channels(2).blockAlign(6).frames(8));
}

TEST(ReadWave, NoRateAndNoFrameAreRefused) {
    expectRefused(WaveFile().rate(0).frames(8));
    expectRefused(WaveFile().channels(2).audio(Bytes(3)));
}

TEST(ReadWave, NoByteRateIsNoMatter) {
    EXPECT_EQ(ReadFile(WaveFile().bytesPerSecond(0).frames(8)).result, S_OK);
}

TEST(ReadWave, AudioThatTheFileCutsShortEndsInSilence) {
    const WaveFile whole = WaveFile().channels(2).frames(30000, [](auto, int) { return 0.5; });
    for (const std::size_t cut : {1, 4, 40000, 119990}) {
        const ReadFile file(WaveFile(whole).truncate(whole.bytes().size() - cut));
        ASSERT_EQ(file.result, S_OK);
        ASSERT_EQ(file.wave->frames, 30000);
        const auto there = static_cast<std::int64_t>((120000 - cut) / 4);
        for (std::int64_t i = 0; i < there; ++i) ASSERT_EQ(file.wave->samples[i * 2], 0.5f) << i;
        for (std::int64_t i = there + 1; i < 30000; ++i) ASSERT_EQ(file.wave->samples[i * 2], 0.0f) << i;
    }
}

TEST(ReadWave, ClaimFarBeyondTheFileIsRefusedBeforeItIsAllocated) {
    const OpenedWave opened(WaveFile().frames(500).claim("data", 0xFFFFFFF0));
    RefPtr<CWaveMem> wave;
    AllocationMeter meter;
    EXPECT_EQ(codeOf(read(opened, wave)), E_FAIL);
    EXPECT_LT(meter.peakBytes(), 4096u);
    EXPECT_EQ(ReadFile(WaveFile().frames(500).claim("data", 1 << 20)).result, S_OK);
    EXPECT_EQ(ReadFile(WaveFile().frames(500).claim("data", (1 << 20) + 2)).result, E_FAIL);
    EXPECT_EQ(ReadFile(WaveFile().frames(100000).claim("data", 3200000)).result, S_OK);
    EXPECT_EQ(ReadFile(WaveFile().frames(100000).claim("data", 3210000)).result, E_FAIL);
}

TEST(ReadWave, WithoutMemoryForTheSamplesTheWaveHasNone) {
    const OpenedWave opened(WaveFile().frames(100000));
    RefPtr<CWaveMem> wave;
    AllocationMeter meter;
    meter.refuseFrom(400000);
    EXPECT_EQ(codeOf(read(opened, wave)), S_OK);
    ASSERT_TRUE(wave);
    EXPECT_FALSE(wave->samples);
}

TEST(ReadWave, WithoutMemoryForTheSamplesAtAnotherRateTheWaveHasNone) {
    const OpenedWave opened(WaveFile().rate(44100).frames(100000));
    RefPtr<CWaveMem> wave;
    AllocationMeter meter;
    meter.refuseFrom(800000);
    EXPECT_EQ(codeOf(readSamples(*opened, 88200, wave)), S_OK);
    ASSERT_TRUE(wave);
    EXPECT_FALSE(wave->samples);
}

TEST(ReadWave, WithoutMemoryForThePeaksTheLoadFails) {
    const OpenedWave opened(WaveFile().frames(100));
    RefPtr<CWaveMem> wave;
    AllocationMeter meter;
    meter.refuseFrom(544 * 2 * 4);
    EXPECT_EQ(codeOf(read(opened, wave)), E_OUTOFMEMORY);
}

}  // namespace
}  // namespace marnoth::test::read_wave_test
