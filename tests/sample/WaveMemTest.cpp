#include <gtest/gtest.h>

#include <cmath>

#include "sample/WaveMem.h"
#include "support/AllocationMeter.h"

namespace marnoth::test::wave_mem_test {
namespace {

WAVEFORMATEX floatFormat(int channels, std::uint32_t rate = 44100) {
    WAVEFORMATEX format{};
    format.wFormatTag = 3;
    format.nChannels = static_cast<WORD>(channels);
    format.nSamplesPerSec = rate;
    format.wBitsPerSample = 32;
    format.nBlockAlign = static_cast<WORD>(channels * 4);
    format.nAvgBytesPerSec = format.nBlockAlign * rate;
    return format;
}

template <class Value>
RefPtr<CWaveMem> waveOf(std::int64_t frames, int channels, Value value, std::uint32_t rate = 44100) {
    RefPtr<CWaveMem> wave = CWaveMem::make();
    EXPECT_EQ(wave->Create(frames, floatFormat(channels, rate)), S_OK);
    for (std::int64_t i = 0; i < frames; ++i) {
        for (int c = 0; c < channels; ++c) wave->samples[i * channels + c] = static_cast<float>(value(i, c));
    }
    wave->writeGuardFrame();
    return wave;
}

double someAudio(std::int64_t frame, int channel) {
    return std::sin(0.05 * frame + channel) * 0.7;
}

TEST(WaveMem, IsBornEmpty) {
    const RefPtr<CWaveMem> wave = CWaveMem::make();
    EXPECT_EQ(wave->refCount, 1u);
    EXPECT_EQ(wave->frames, 0);
    EXPECT_EQ(wave->tailFrames, 0);
    EXPECT_EQ(wave->tailDecay, 0.0);
    EXPECT_EQ(wave->peakPoints, 0);
    EXPECT_EQ(wave->byteSize, 0u);
    EXPECT_EQ(wave->rateRatio, 1.0);
    EXPECT_FALSE(wave->samples);
    EXPECT_FALSE(wave->peaks);
}

TEST(WaveMem, GoesWithItsLastOwner) {
    static int alive = 0;
    struct Watched : CWaveMem {
        Watched() { ++alive; }
        ~Watched() override { --alive; }
    };
    auto first = RefPtr<CWaveMem>::adopt(new Watched);
    auto second = first;
    EXPECT_EQ(first->refCount, 2u);
    first.reset();
    EXPECT_EQ(alive, 1);
    second.reset();
    EXPECT_EQ(alive, 0);
}

TEST(WaveMem, StorageIsTheGuardFrameMoreRoundedUpToFour) {
    RefPtr<CWaveMem> wave = CWaveMem::make();
    const auto bytesFor = [&](std::int64_t frames, int channels) {
        EXPECT_EQ(wave->Create(frames, floatFormat(channels)), S_OK);
        EXPECT_EQ(wave->frames, frames);
        return wave->byteSize;
    };
    EXPECT_EQ(bytesFor(1, 1), 16u);  // 2 values
    EXPECT_EQ(bytesFor(3, 1), 16u);  // 4
    EXPECT_EQ(bytesFor(4, 1), 32u);  // 5
    EXPECT_EQ(bytesFor(3, 2), 32u);  // 8
    EXPECT_EQ(bytesFor(4, 2), 48u);  // 10
    EXPECT_EQ(bytesFor(0, 2), 16u);  // 2
    EXPECT_EQ(bytesFor(4, 3), 64u);  // 15
}

TEST(WaveMem, WhatNoFrameFillsIsSilent) {
    RefPtr<CWaveMem> wave = CWaveMem::make();
    ASSERT_EQ(wave->Create(4, floatFormat(1)), S_OK);
    for (int i = 4; i < 8; ++i) EXPECT_EQ(wave->samples[i], 0.0f);
}

TEST(WaveMem, GuardFrameRepeatsTheLastFrame) {
    const auto mono = waveOf(3, 1, [](auto i, int) { return i + 1; });
    EXPECT_EQ(mono->samples[3], 3.0f);
    const auto stereo = waveOf(3, 2, [](auto i, int c) { return 10 * i + c + 1; });
    EXPECT_EQ(stereo->samples[6], 21.0f);
    EXPECT_EQ(stereo->samples[7], 22.0f);
    const auto many = waveOf(3, 4, [](auto i, int c) { return 10 * i + c + 1; });
    EXPECT_EQ(many->samples[12], 21.0f);
    EXPECT_EQ(many->samples[13], 0.0f);
}

TEST(WaveMem, MemoryThatIsNotThereLeavesNoSamples) {
    auto wave = waveOf(10, 1, someAudio);
    EXPECT_EQ(wave->Create(-1, floatFormat(1)), E_OUTOFMEMORY);
    EXPECT_FALSE(wave->samples);
    EXPECT_EQ(wave->Create(std::int64_t{1} << 62, floatFormat(2)), E_OUTOFMEMORY);

    AllocationMeter meter;
    meter.refuseFrom(40000);
    EXPECT_EQ(wave->Create(10000, floatFormat(1)), E_OUTOFMEMORY);
    EXPECT_FALSE(wave->samples);
    EXPECT_EQ(wave->byteSize, 0u);
}

/// The converter as a weighted sum per frame: the four weights of a frame and silence around the wave.
double resampledFrame(const CWaveMem& source, std::int64_t i, int channel, double ratio) {
    const double t = static_cast<double>(i) / ratio;
    const double whole = std::floor(t);
    const double f = t - whole;
    const double root = std::sqrt(2.0);
    const double outer = root * f * f - f * f - root * f + f;
    const double weights[4] = {outer, root / 2 - root * f * f + f * f,
                               1 - root / 2 + (2 * root - 2) * f + (1 - root) * f * f, outer};
    double sum = 0;
    for (int k = 0; k < 4; ++k) {
        const auto frame = static_cast<std::int64_t>(whole) + k - 2;
        if (frame < 0 || frame >= source.frames) continue;
        sum += weights[k] * source.samples[frame * source.format.nChannels + channel];
    }
    return sum;
}

TEST(WaveMemResample, EqualRateChangesNothing) {
    const auto wave = waveOf(100, 2, someAudio);
    const float* before = wave->samples.get();
    EXPECT_EQ(wave->Resample(floatFormat(2)), S_OK);
    EXPECT_EQ(wave->rateRatio, 1.0);
    EXPECT_EQ(wave->samples.get(), before);
    for (int i = 0; i < 100; ++i) ASSERT_EQ(wave->samples[i * 2], static_cast<float>(someAudio(i, 0)));
}

TEST(WaveMemResample, SecondAt44100Has48000FramesAt48000) {
    const auto wave = waveOf(44100, 1, [](auto i, int) { return std::cos(0.01 * i); });
    EXPECT_EQ(wave->Resample(floatFormat(1, 48000)), S_OK);
    EXPECT_EQ(wave->frames, 48000);
    EXPECT_EQ(wave->rateRatio, 48000.0 / 44100.0);
    EXPECT_EQ(wave->byteSize, 48001u * 4);
    EXPECT_EQ(wave->format.nSamplesPerSec, 48000u);
    EXPECT_EQ(wave->format.nAvgBytesPerSec, 44100u * 4);
    // Silence lies before the first frame, and the left of the middle two has the greater weight.
    EXPECT_NEAR(wave->samples[0], 1 - std::sqrt(0.5), 2e-8);
    EXPECT_EQ(wave->samples[48000], wave->samples[47999]);
}

TEST(WaveMemResample, EveryFrameIsTheWeightedSumOfFour) {
    for (const int channels : {1, 2, 3}) {
        for (const std::uint32_t rate : {8000u, 22050u, 48000u, 96000u}) {
            const auto source = waveOf(777, channels, someAudio);
            const auto wave = waveOf(777, channels, someAudio);
            ASSERT_EQ(wave->Resample(floatFormat(channels, rate)), S_OK);
            const double ratio = rate / 44100.0;
            ASSERT_EQ(wave->frames, static_cast<std::int64_t>(777 * ratio + 0.5));
            for (std::int64_t i = 0; i < wave->frames; ++i) {
                for (int c = 0; c < channels; ++c) {
                    ASSERT_NEAR(wave->samples[i * channels + c], resampledFrame(*source, i, c, ratio), 1e-7)
                        << i << ' ' << c << ' ' << rate;
                }
            }
            EXPECT_EQ(wave->samples[wave->frames * channels], wave->samples[(wave->frames - 1) * channels]);
        }
    }
}

TEST(WaveMemResample, ConstantStaysConstantInsideTheWave) {
    const auto wave = waveOf(100, 1, [](auto, int) { return 0.5; });
    ASSERT_EQ(wave->Resample(floatFormat(1, 88200)), S_OK);
    for (int i = 4; i < 194; ++i) ASSERT_NEAR(wave->samples[i], 0.5, 1e-7);
}

TEST(WaveMemResample, LeavesThePeaksAlone) {
    const auto wave = waveOf(2000, 1, someAudio);
    ASSERT_EQ(wave->BuildPeaks(0, 544), S_OK);
    const std::vector<float> before(wave->peaks.get(), wave->peaks.get() + wave->peakCapacity);
    ASSERT_EQ(wave->Resample(floatFormat(1, 48000)), S_OK);
    EXPECT_EQ(wave->peakPoints, 544);
    EXPECT_EQ(before, std::vector<float>(wave->peaks.get(), wave->peaks.get() + wave->peakCapacity));
}

TEST(WaveMemResample, FailsWithoutSamplesAndWithoutMemory) {
    RefPtr<CWaveMem> empty = CWaveMem::make();
    EXPECT_EQ(empty->Resample(floatFormat(1)), E_FAIL);

    for (const std::size_t refused : {40000u, 80000u}) {
        const auto wave = waveOf(10000, 1, someAudio);
        AllocationMeter meter;
        meter.refuseFrom(refused);
        EXPECT_EQ(wave->Resample(floatFormat(1, 88200)), E_OUTOFMEMORY);
        EXPECT_FALSE(wave->samples);
        EXPECT_EQ(wave->byteSize, 0u);
        EXPECT_EQ(wave->Resample(floatFormat(1, 22050)), E_FAIL);
    }
}

TEST(WaveMemResample, RefusesGrowthBeyondEveryLoop) {
    // A second at 1 Hz in many channels would come to 11 GB.
    const auto wave = waveOf(
        1, 60000, [](auto, int) { return 0; }, 1);
    AllocationMeter meter;
    EXPECT_EQ(wave->Resample(floatFormat(2, 44100)), E_OUTOFMEMORY);
    EXPECT_LT(meter.peakBytes(), 10u << 20);
    const auto slow = waveOf(128, 2, someAudio, 1);
    EXPECT_EQ(slow->Resample(floatFormat(2, 44100)), S_OK);
    EXPECT_EQ(slow->frames, 128 * 44100);
}

/// The table of a mono wave by its rule, entry by entry.
std::vector<float> expectedPeaks(const CWaveMem& wave, int points, int channel) {
    const double step = 1.0 / (static_cast<double>(wave.frames) / points);
    std::vector<std::vector<float>> members(static_cast<std::size_t>(points));
    for (std::int64_t i = 0; i < wave.frames; ++i) {
        members.at(static_cast<std::size_t>(i * step))
            .push_back(wave.samples[i * wave.format.nChannels + channel]);
    }
    std::vector<float> table(static_cast<std::size_t>(points) * 2, 0.0f);
    std::vector<float> carried;  // what the running extremes have seen when an entry begins
    for (std::size_t p = 0; p < members.size(); ++p) {
        std::vector<float>& own = members[p];
        if (own.empty()) continue;
        std::vector<float> shown;
        if (p == 0) {
            shown = carried = own;
        } else if (own.size() == 1) {
            shown = carried;
            shown.push_back(own[0]);
            carried.clear();
        } else {
            shown.assign(own.begin() + 1, own.end());
            carried = shown;
        }
        table[p * 2] = std::min(1.0f, *std::min_element(shown.begin(), shown.end()));
        table[p * 2 + 1] = std::max(-1.0f, *std::max_element(shown.begin(), shown.end()));
    }
    return table;
}

TEST(WaveMemPeaks, TableFollowsItsRule) {
    for (const std::int64_t frames : {545, 600, 1000, 1088, 5000, 44100, 100, 544, 1}) {
        const auto wave = waveOf(frames, 1, [](auto i, int) { return std::sin(0.7 * i) * 1.3; });
        ASSERT_EQ(wave->BuildPeaks(0, 544), S_OK);
        EXPECT_EQ(wave->peakPoints, 544);
        EXPECT_EQ(wave->peakCapacity, 1088);
        const std::vector<float> expected = expectedPeaks(*wave, 544, 0);
        for (std::size_t i = 0; i < expected.size(); ++i)
            ASSERT_EQ(wave->peaks[i], expected[i]) << frames << ' ' << i;
    }
}

TEST(WaveMemPeaks, StereoEntriesHoldFourValues) {
    const auto wave = waveOf(5000, 2, someAudio);
    ASSERT_EQ(wave->BuildPeaks(0, 544), S_OK);
    EXPECT_EQ(wave->peakCapacity, 544 * 4);
    const std::vector<float> left = expectedPeaks(*wave, 544, 0);
    const std::vector<float> right = expectedPeaks(*wave, 544, 1);
    for (std::size_t p = 0; p < 544; ++p) {
        ASSERT_EQ(wave->peaks[p * 4], left[p * 2]);
        ASSERT_EQ(wave->peaks[p * 4 + 1], left[p * 2 + 1]);
        ASSERT_EQ(wave->peaks[p * 4 + 2], right[p * 2]);
        ASSERT_EQ(wave->peaks[p * 4 + 3], right[p * 2 + 1]);
    }
}

TEST(WaveMemPeaks, FirstSampleOfAnEntryIsNotPartOfItsLaterExtremes) {
    // Four frames a point: the spike stands at the beginning of point 1.
    const auto wave = waveOf(16, 1, [](auto i, int) { return i == 4 ? 0.9 : 0.1; });
    ASSERT_EQ(wave->BuildPeaks(0, 4), S_OK);
    EXPECT_EQ(wave->peaks[2], 0.1f);
    EXPECT_EQ(wave->peaks[3], 0.1f);
}

TEST(WaveMemPeaks, WaveOfFewerFramesThanPointsLeavesEntriesZero) {
    const auto wave = waveOf(2, 1, [](auto, int) { return 0.5; });
    ASSERT_EQ(wave->BuildPeaks(0, 544), S_OK);
    for (int p = 0; p < 544; ++p) {
        const float expected = p == 0 || p == 272 ? 0.5f : 0.0f;
        ASSERT_EQ(wave->peaks[p * 2], expected) << p;
        ASSERT_EQ(wave->peaks[p * 2 + 1], expected) << p;
    }
}

TEST(WaveMemPeaks, AnotherModeDropsThePoints) {
    const auto wave = waveOf(1000, 1, someAudio);
    ASSERT_EQ(wave->BuildPeaks(0, 544), S_OK);
    EXPECT_EQ(wave->BuildPeaks(1, 544), S_OK);
    EXPECT_EQ(wave->peakPoints, 0);
}

TEST(WaveMemPeaks, ReportsMissingMemory) {
    const auto wave = waveOf(10, 1, someAudio);
    AllocationMeter meter;
    meter.refuseFrom(4352);
    EXPECT_EQ(wave->BuildPeaks(0, 544), E_OUTOFMEMORY);
    EXPECT_EQ(wave->peakPoints, 0);
}

TEST(WaveMemTail, IsTwiceAsLongAsTheGrain) {
    const auto source = waveOf(1000, 2, someAudio);
    const RefPtr<CWaveMem> tail = CWaveMem::make();
    ASSERT_EQ(tail->CreateTail(*source, 200, 300), S_OK);
    EXPECT_EQ(tail->frames, 600);
    EXPECT_EQ(tail->tailFrames, 600);
    EXPECT_NEAR(std::pow(tail->tailDecay, 300), 0.15, 1e-12);
    EXPECT_EQ(tail->format.nChannels, 2);
    EXPECT_EQ(tail->format.nSamplesPerSec, 44100u);
    EXPECT_EQ(tail->byteSize, 0u);
    EXPECT_FALSE(tail->peaks);
    EXPECT_EQ(tail->rateRatio, 1.0);
    EXPECT_EQ(tail->samples[0], 0.0f);
    EXPECT_EQ(tail->samples[1200], 0.0f);
    EXPECT_EQ(tail->samples[1201], 0.0f);
}

TEST(WaveMemTail, BeginsWithTheGrainAfterAFadeOfTwoMilliseconds) {
    const auto source = waveOf(44100, 1, [](auto i, int) { return i >= 100 ? 0.5 : 77.0; });
    const RefPtr<CWaveMem> tail = CWaveMem::make();
    ASSERT_EQ(tail->CreateTail(*source, 100, 44000), S_OK);
    EXPECT_EQ(tail->samples[0], 0.0f);
    EXPECT_NEAR(tail->samples[44], 0.5 * 44 / 88, 1e-6);
    EXPECT_EQ(tail->samples[88], 0.5f);
    EXPECT_EQ(tail->samples[5000], 0.5f);
}

TEST(WaveMemTail, GrainAtTheWavesEndReadsNothingBehindIt) {
    const auto source = waveOf(1000, 1, [](auto, int) { return 0.5; });
    source->samples[1000] = 1000.0f;
    const RefPtr<CWaveMem> tail = CWaveMem::make();
    ASSERT_EQ(tail->CreateTail(*source, 900, 100), S_OK);
    for (int i = 0; i < 200; ++i) ASSERT_LE(std::abs(tail->samples[i]), 1.0f) << i;
}

TEST(WaveMemTail, GrainOfLessThanTwoMillisecondsFadesInOverItsWholeFirstRun) {
    const auto source = waveOf(60, 1, [](auto, int) { return 1.0; });
    const RefPtr<CWaveMem> tail = CWaveMem::make();
    ASSERT_EQ(tail->CreateTail(*source, 0, 60), S_OK);
    // Passes of 60 frames overlap by 30 and begin 30 apart; the crossfade takes 20. So the first run is 40
    // frames, less than 88, and the rise reaches its last frame.
    for (int i = 1; i < 40; ++i) ASSERT_NEAR(tail->samples[i], i / 40.0, 1e-5) << i;
}

TEST(WaveMemTail, NeedsFramesAndSamplesAndMemory) {
    const auto source = waveOf(1000, 1, someAudio);
    const RefPtr<CWaveMem> tail = CWaveMem::make();
    EXPECT_EQ(tail->CreateTail(*source, 0, 0), E_FAIL);
    EXPECT_EQ(tail->CreateTail(*CWaveMem::make(), 0, 10), E_FAIL);
    EXPECT_EQ(tail->CreateTail(*source, 0, std::int64_t{1} << 61), E_OUTOFMEMORY);
    AllocationMeter meter;
    meter.refuseFrom(4000);
    EXPECT_EQ(tail->CreateTail(*source, 0, 1000), E_OUTOFMEMORY);
    EXPECT_FALSE(tail->samples);
}

}  // namespace
}  // namespace marnoth::test::wave_mem_test
