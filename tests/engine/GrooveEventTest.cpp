#include "engine/EditRig.h"
#include "engine/model/GrooveEvent.h"

namespace marnoth::test::groove_event_test {
namespace {

TEST(Grain, HoldsItsPlaceInTicksAndInSamples) {
    CGrooveEvent grain;
    grain.SetStart(3 * 65536 + 7, kTicks16);
    grain.SetStart(500, kSamples);
    grain.SetLength(2 * 65536, kTicks16);
    grain.SetLength(40, kSamples);
    EXPECT_EQ(grain.GetStart(kWholeTicks), 3);
    EXPECT_EQ(grain.GetStart(kTicks16), 196615);
    EXPECT_EQ(grain.GetStart(kSamples), 500);
    EXPECT_EQ(grain.GetLength(kWholeTicks, 0), 2);
    EXPECT_EQ(grain.GetEnd(kTicks16, 0), 196615 + 131072);
    EXPECT_EQ(grain.GetEnd(kSamples, 0), 540);
}

TEST(Grain, OtherSelectorsReadZeroAndWriteNothing) {
    CGrooveEvent grain;
    grain.SetStart(100, kTicks16);
    grain.SetStart(7, kWholeTicks);
    grain.SetStart(8, 2);
    grain.SetStart(9, 4);
    EXPECT_EQ(grain.startTicks, 100);
    EXPECT_EQ(grain.startSamples, 0);
    EXPECT_EQ(grain.GetStart(2), 0);
    EXPECT_EQ(grain.GetLength(4, 0), 0);
}

TEST(Grain, NegativeTimesAreNotWritten) {
    CGrooveEvent grain;
    grain.SetStart(100, kTicks16);
    grain.SetStart(-1, kTicks16);
    grain.SetLength(50, kSamples);
    grain.SetLength(-50, kSamples);
    EXPECT_EQ(grain.startTicks, 100);
    EXPECT_EQ(grain.lengthSamples, 50);
}

TEST(Grain, AnEndBeyondTheRangeStaysInside) {
    CGrooveEvent grain;
    grain.SetStart(INT64_MAX, kTicks16);
    grain.SetLength(INT64_MAX, kTicks16);
    EXPECT_EQ(grain.GetEnd(kTicks16, 0), INT64_MAX);
}

TEST(Grain, AttachingPastTheEndOfTheWaveClampsToItsFrames) {
    CGrooveEvent grain;
    grain.AttachSample(wave(100), 101);
    EXPECT_EQ(grain.sampleOffset, 100);
    grain.AttachSample(wave(100), 99);
    EXPECT_EQ(grain.sampleOffset, 99);
}

TEST(Grain, AttachingSharesTheWaveAndTakesItsFormat) {
    const RefPtr<CWaveMem> sound = wave(10, 48000);
    {
        CGrooveEvent grain;
        grain.AttachSample(sound, 0);
        EXPECT_EQ(sound->refCount, 2u);
        EXPECT_EQ(grain.format.nSamplesPerSec, 48000u);
        const CGrooveEvent copy(grain);
        EXPECT_EQ(sound->refCount, 3u);
    }
    EXPECT_EQ(sound->refCount, 1u);
}

TEST(Grain, WithTheTailOnItsLengthInFramesIsThatOfTheTail) {
    CGrooveEvent grain;
    grain.AttachSample(wave(1000), 0);
    grain.SetLength(300, kSamples);
    ASSERT_EQ(grain.BuildTail(), S_OK);
    EXPECT_EQ(grain.GetLength(kSamples, 1), 300);
    grain.tailOn = 1;
    EXPECT_EQ(grain.GetLength(kSamples, 1), 600);
    EXPECT_EQ(grain.GetLength(kSamples, 0), 300);
    EXPECT_EQ(grain.GetEnd(kSamples, 1), 600);
}

TEST(Grain, ATailThatIsNotThereIsNotHonoured) {
    CGrooveEvent grain;
    grain.AttachSample(wave(1000), 0);
    grain.SetLength(300, kSamples);
    grain.tailOn = 1;
    EXPECT_EQ(grain.GetLength(kSamples, 1), 300);
}

TEST(Grain, HasNoTailWithoutASampleAndWithoutFrames) {
    CGrooveEvent grain;
    EXPECT_EQ(grain.BuildTail(), E_FAIL);
    grain.AttachSample(wave(10), 0);
    EXPECT_EQ(grain.BuildTail(), S_OK);
    EXPECT_FALSE(grain.tailWave);
}

TEST(Grain, ACopySharesTheTail) {
    CGrooveEvent grain;
    grain.AttachSample(wave(1000), 0);
    grain.SetLength(300, kSamples);
    grain.BuildTail();
    const CGrooveEvent copy(grain);
    EXPECT_EQ(copy.tailWave.get(), grain.tailWave.get());
    EXPECT_EQ(grain.tailWave->refCount, 2u);
}

TEST(Grain, RendersFromItsOffsetAndItsTailFromTheBeginning) {
    const RefPtr<CWaveMem> sound = wave(8);
    for (int i = 0; i < 8; ++i) sound->samples[static_cast<std::size_t>(i)] = static_cast<float>(i);
    CGrooveEvent grain;
    grain.AttachSample(sound, 3);
    grain.SetLength(4, kSamples);
    const WAVEFORMATEX mono = floatFormat(44100, 1);
    std::vector<float> dest(6, 0.0f);
    EXPECT_EQ(grain.Render(0, 1, 4, 4, dest.data(), &mono, 1.0f, 0.5f), 0);
    EXPECT_EQ(dest, (std::vector<float>{0, 3, 4, 5, 6, 0}));

    grain.tailWave = wave(8);
    grain.tailWave->samples[0] = 9.0f;
    grain.tailLengthSamples = 8;
    grain.tailOn = 1;
    std::fill(dest.begin(), dest.end(), 0.0f);
    grain.Render(0, 0, 1, 8, dest.data(), &mono, 1.0f, 0.5f);
    EXPECT_EQ(dest[0], 9.0f);
}

TEST(Grain, WithoutASampleRendersNothing) {
    const CGrooveEvent grain;
    const WAVEFORMATEX mono = floatFormat(44100, 1);
    std::vector<float> dest(4, 0.25f);
    EXPECT_EQ(grain.Render(0, 0, 4, 4, dest.data(), &mono, 1.0f, 0.5f), 0);
    EXPECT_EQ(grain.RenderShifted(0, 0, 4, 4, dest.data(), &mono, 1.0f, 0.5f, 3), 0);
    EXPECT_EQ(dest, std::vector<float>(4, 0.25f));
}

}  // namespace
}  // namespace marnoth::test::groove_event_test
