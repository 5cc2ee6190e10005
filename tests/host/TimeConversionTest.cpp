#include <cmath>
#include <limits>

#include "host/SynthUnderTest.h"

namespace marnoth::test::time_conversion_test {
namespace {

constexpr std::int64_t kBeat16 = 62914560;  // 16.16 ticks

TEST(WholeTicks, GoByTheFallbackTempoWithoutAHost) {
    SynthHost host;
    EXPECT_EQ(host.synth.WholeTicksToSamples(960), 22050);
    EXPECT_EQ(host.synth.WholeTicksToSamples(-960), -22050);
    // One tick is 22.96875 samples, and nothing is added before the cut.
    EXPECT_EQ(host.synth.WholeTicksToSamples(1), 22);
    EXPECT_EQ(host.synth.SamplesToWholeTicks(22050), 960);
    EXPECT_EQ(host.synth.SamplesToWholeTicks(22), 0);
    EXPECT_EQ(host.synth.SamplesToWholeTicks(23), 1);
    host.synth.SetTempo(60.0);
    EXPECT_EQ(host.synth.WholeTicksToSamples(960), 44100);
}

TEST(WholeTicks, GoByTheMillisecondsOfTheTempoMap) {
    SynthHost host;
    host.attach();
    host.context.tempoMap.millisecondsPerBeat = 333;
    // 44100 * 333 / 1000 = 14685.3
    EXPECT_EQ(host.synth.WholeTicksToSamples(960), 14685);
    // 14685 * 1000 / 44100 = 332.99...
    host.synth.SamplesToWholeTicks(14685);
    EXPECT_EQ(host.context.tempoMap.millisecondsAsked, std::vector<std::int32_t>{332});
}

TEST(WholeTicks, GoByTheConverterFirst) {
    SynthHost host;
    host.context.hasTimeConverter = true;
    host.attach();
    EXPECT_EQ(host.synth.WholeTicksToSamples(960), 9600);
    EXPECT_EQ(host.synth.WholeTicksToSamples(-3), -30);
    EXPECT_EQ(host.synth.SamplesToWholeTicks(9609), 960);
    EXPECT_TRUE(host.context.tempoMap.millisecondsAsked.empty());
}

TEST(WholeTicks, DontDependOnTheTransport) {
    SynthHost host;
    host.context.hasTimeConverter = true;
    host.attach();
    host.synth.StartPlayback(0);
    EXPECT_EQ(host.synth.WholeTicksToSamples(960), 9600);
    EXPECT_EQ(host.synth.SamplesToWholeTicks(9600), 960);
}

TEST(Ticks16, GoByTheTempoAtTheBeginningOfTheMapWhileStopped) {
    SynthHost host;
    host.context.hasTimeConverter = true;
    host.context.tempoMap.tempoHundredths = 6000;
    host.context.tempoMap.millisecondsPerBeat = 1;
    host.attach();
    EXPECT_EQ(host.synth.TicksToSamples(kBeat16), 44100);
    EXPECT_EQ(host.synth.SamplesToTicks(44100), kBeat16);
    EXPECT_EQ(host.context.tempoMap.tempoTimeAsked, 0);
}

TEST(Ticks16, GoByTheConverterWhilePlaying) {
    SynthHost host;
    host.context.hasTimeConverter = true;
    host.attach();
    host.synth.StartPlayback(0);
    EXPECT_EQ(host.synth.TicksToSamples(kBeat16), 9600);
    EXPECT_EQ(host.synth.SamplesToTicks(9600), kBeat16);
}

TEST(Ticks16, GoByTheFallbackTempoWhilePlayingWithoutAConverter) {
    SynthHost host;
    host.context.tempoMap.tempoHundredths = 6000;
    host.attach();
    host.synth.StartPlayback(0);
    EXPECT_EQ(host.synth.TicksToSamples(kBeat16), 22050);
    EXPECT_EQ(host.synth.SamplesToTicks(22050), kBeat16);
}

TEST(Ticks16, GoByTheFallbackTempoWithoutAHost) {
    SynthHost host;
    EXPECT_EQ(host.synth.TicksToSamples(kBeat16), 22050);
    EXPECT_EQ(host.synth.SamplesToTicks(22050), kBeat16);
}

TEST(Ticks16, AreRoundedByHalfAndACut) {
    SynthHost host;
    // A tick is 22.96875 samples.
    EXPECT_EQ(host.synth.TicksToSamples(65536), 23);
    // A sample is 62914560 / 22050 = 2853.268... of a 16.16 tick.
    EXPECT_EQ(host.synth.SamplesToTicks(1), 2853);
    EXPECT_EQ(host.synth.SamplesToTicks(2), 5707);
    // Below zero the cut goes up: -2853.27 + 0.5 = -2852.77.
    EXPECT_EQ(host.synth.SamplesToTicks(-1), -2852);
    EXPECT_EQ(host.synth.TicksToSamples(-65536), -22);
}

TEST(Ticks16, ComeBackAsTheSamplesThatTheyWere) {
    SynthHost host;
    for (std::int64_t samples = 0; samples < 10000000; samples += 9973)
        ASSERT_EQ(host.synth.TicksToSamples(host.synth.SamplesToTicks(samples)), samples);
}

TEST(Ticks16, TakeTheFallbackTempoWhenTheMapHasNone) {
    SynthHost host;
    host.attach();
    host.context.tempoMap.tempoHundredths = 0;
    EXPECT_EQ(host.synth.TicksToSamples(kBeat16), 22050);
    host.context.tempoMap.tempoHundredths = 6000;
    host.context.tempoMap.tempoResult = E_FAIL;
    EXPECT_EQ(host.synth.TicksToSamples(kBeat16), 22050);
}

TEST(Conversions, GoOnToTheNextSourceWhenTheConverterRefuses) {
    SynthHost host;
    host.context.hasTimeConverter = true;
    host.attach();
    host.context.timeConverter.result = E_FAIL;
    EXPECT_EQ(host.synth.WholeTicksToSamples(960), 22050);
    EXPECT_EQ(host.synth.GetSampleRate(), 44100);
}

TEST(Conversions, TakeTheNearestEndWhenAValueIsBeyondAllRange) {
    constexpr auto kMost = std::numeric_limits<std::int64_t>::max();
    constexpr auto kLeast = std::numeric_limits<std::int64_t>::min();
    SynthHost host;
    host.synth.SetTempo(1e-300);
    EXPECT_EQ(host.synth.TicksToSamples(kMost), kMost);
    EXPECT_EQ(host.synth.TicksToSamples(kLeast), kLeast);
    EXPECT_EQ(host.synth.WholeTicksToSamples(INT32_MAX), kMost);
    host.synth.SetTempo(0.0);
    EXPECT_EQ(host.synth.TicksToSamples(0), 0);
    EXPECT_EQ(host.synth.TicksToSamples(1), kMost);
    host.synth.SetTempo(1e300);
    EXPECT_EQ(host.synth.SamplesToTicks(kLeast), kLeast);
    EXPECT_EQ(host.synth.SamplesToWholeTicks(kMost), INT32_MAX);
    EXPECT_EQ(host.synth.SamplesToWholeTicks(kLeast), INT32_MIN);
    host.synth.SetTempo(std::nan(""));
    EXPECT_EQ(host.synth.SamplesToTicks(44100), 0);

    host.attach();
    host.pzi.inputFormat.nSamplesPerSec = 1;
    host.synth.SamplesToWholeTicks(kMost);
    host.synth.SamplesToWholeTicks(kLeast);
    EXPECT_EQ(host.context.tempoMap.millisecondsAsked, (std::vector<std::int32_t>{INT32_MAX, INT32_MIN}));
}

TEST(Conversions, GiveNothingBeforeTheInputHasAFormat) {
    SynthHost host;
    host.pzi.inputFormat.nSamplesPerSec = 0;
    EXPECT_EQ(host.synth.WholeTicksToSamples(960), 0);
    EXPECT_EQ(host.synth.SamplesToWholeTicks(960), 0);
    EXPECT_EQ(host.synth.TicksToSamples(kBeat16), 0);
    EXPECT_EQ(host.synth.SamplesToTicks(960), 0);
}

TEST(ProjectKey, IsAskedForInFineTicks) {
    SynthHost host;
    host.context.hasKeyMap = true;
    host.attach();
    EXPECT_EQ(host.synth.GetKeyAtTime(kBeat16), 7u);
    EXPECT_EQ(host.context.keyMap.asked.format, 4u);
    EXPECT_EQ(host.context.keyMap.asked.ticks16, kBeat16);
    host.context.keyMap.key = 0xFFFFFFFF;
    EXPECT_EQ(host.synth.GetKeyAtTime(0), 0xFFFFFFFFu);
    host.context.keyMap.result = E_FAIL;
    EXPECT_EQ(host.synth.GetKeyAtTime(0), 0u);
}

TEST(ProjectKey, IsZeroWithoutTheService) {
    SynthHost host;
    EXPECT_EQ(host.synth.GetKeyAtTime(kBeat16), 0u);
    host.attach();
    EXPECT_EQ(host.synth.GetKeyAtTime(kBeat16), 0u);
}

TEST(SampleRate, Is44100BeforeAttachingWhateverTheFormat) {
    SynthHost host;
    host.pzi.inputFormat.nSamplesPerSec = 48000;
    EXPECT_EQ(host.synth.GetSampleRate(), 44100);
    host.attach();
    EXPECT_EQ(host.synth.GetSampleRate(), 44100);
}

TEST(SampleRate, IsOneSecondOfTheConverter) {
    SynthHost host;
    host.context.hasTimeConverter = true;
    host.context.timeConverter.rate = 96000;
    host.attach();
    EXPECT_EQ(host.synth.GetSampleRate(), 96000);
    host.context.timeConverter.rate = 0x7FFFFFFE;
    EXPECT_EQ(host.synth.GetSampleRate(), 0x7FFFFFFE);
    host.context.timeConverter.rate = 0x7FFFFFFF;
    EXPECT_EQ(host.synth.GetSampleRate(), 44100);
}

TEST(Tempo, Is120UntilSet) {
    SynthHost host;
    EXPECT_EQ(host.synth.GetTempo(), 120.0);
    host.synth.SetTempo(93.5);
    EXPECT_EQ(host.synth.GetTempo(), 93.5);
}

}  // namespace
}  // namespace marnoth::test::time_conversion_test
