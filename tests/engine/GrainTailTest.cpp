#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "engine/VoiceRig.h"
#include "sample/AcidWave.h"

namespace marnoth::test::grain_tail_test {
namespace {

/// A file of four grains of a quarter beat each, as a Loop Bin entry.
struct LoadedLoop {
    CGrooveTrack file;

    LoadedLoop() {
        const TempPath path = WaveFile().floats().values(ramp(22050)).acid({.beats = 1}).writeTemp();
        CAcidWave wave;
        EXPECT_EQ(wave.Open(path.c_str()), S_OK);
        BinFile bin;
        EXPECT_FALSE(bin.LoadFromWave(wave, L"loop", L"loop.wav", 0, floatFormat(44100, 1), 44100));
        file = bin.track;
        EXPECT_EQ(file.GetSize(), 4);
    }
};

TEST(GrainTails, EveryGrainOfAFileHasItsOwn) {
    LoadedLoop it;
    std::set<const CWaveMem*> tails;
    for (std::int32_t i = 0; i < it.file.GetSize(); ++i) tails.insert(it.file.GetAt(i).tailWave.get());
    EXPECT_EQ(tails.size(), 4u);
    EXPECT_EQ(tails.count(nullptr), 0u);
}

TEST(GrainTails, AreTwiceAsLongAsTheirGrainsWhateverTheTailFlag) {
    LoadedLoop it;
    for (const std::uint32_t on : {0u, 1u, 0u}) {
        it.file.SetTail(on);
        for (std::int32_t i = 0; i < it.file.GetSize(); ++i) {
            const CGrooveEvent& grain = it.file.GetAt(i);
            EXPECT_EQ(grain.tailWave->frames, 2 * grain.lengthSamples);
            EXPECT_EQ(grain.tailLengthSamples, 2 * grain.lengthSamples);
        }
    }
}

TEST(GrainTails, AreThoseOfGrainsThatWereCutByHand) {
    LoadedLoop it;
    for (std::int32_t i = 0; i < it.file.GetSize(); ++i) {
        const CGrooveEvent& grain = it.file.GetAt(i);
        CGrooveEvent alone;
        alone.AttachSample(grain.sample, grain.sampleOffset);
        alone.lengthSamples = grain.lengthSamples;
        ASSERT_EQ(alone.BuildTail(), S_OK);
        const float* const tail = alone.tailWave->samples.get();
        EXPECT_TRUE(std::equal(tail, tail + grain.tailLengthSamples + 1, grain.tailWave->samples.get()));
    }
}

TEST(GrainTails, OutliveTheFileTheyCameWith) {
    CGrooveTrack pad;
    {
        LoadedLoop it;
        pad.CopyGrainsFrom(it.file);
    }
    for (std::int32_t i = 0; i < 4; ++i) {
        const CGrooveEvent& grain = pad.GetAt(i);
        // Behind the fade of 2 ms comes the grain itself.
        EXPECT_EQ(grain.tailWave->samples[100], grain.sample->samples[grain.sampleOffset + 100]);
    }
}

TEST(GrainTails, AreSharedByTheGrainsThatAPadCopies) {
    LoadedLoop it;
    CGrooveTrack pad;
    pad.CopyGrainsFrom(it.file);
    for (std::int32_t i = 0; i < 4; ++i) EXPECT_EQ(pad.GetAt(i).tailWave, it.file.GetAt(i).tailWave);
}

/// A tail of 4410 frames of steady sound at 44100 Hz: four passes 1470 frames apart, all of it crossfades but
/// for the first 2940 frames and the last pass, each pass falling by the cube root of 0.15.
double steadyTail(std::int64_t frame) {
    const auto level = [](std::int64_t pass) { return std::pow(0.15, static_cast<double>(pass) / 3); };
    if (frame < 88) return static_cast<double>(frame) / 88;
    if (frame < 2940) return 1;
    const std::int64_t pass = (frame - 2940) / 1470;
    const double x = static_cast<double>((frame - 2940) % 1470) / 1470;
    if (pass < 3) return level(pass) * (1 - x * x) + level(pass + 1) * (1 - (1 - x) * (1 - x));
    return level(3) * (1 - x);
}

/// A pad with a grain of steady sound of 4410 frames, in a loop four times as long.
struct RingingPad : VoiceRig {
    RingingPad() {
        laySound(0, constant(4410));
        std::int64_t length = 0;
        engine.GetLoopLength(kPadLoop, 0, &length);
        engine.SetLoopLength(kPadLoop, 0, 4 * length);
        engine.SetPadTail(0, 1);
    }
};

TEST(PadWithTails, RingsOutForTwiceTheGrain) {
    for (const std::int32_t frames : {7, 512, 4096}) {
        RingingPad rig;
        rig.noteOn(60);
        const auto audio = rig.play(12000, frames);
        expectFrames(audio, 44, 8820, steadyTail, 1e-5);
        expectSilence(audio, 8820, 12000);
    }
}

TEST(PadWithTails, RingsForTheSameTimeAtAnyTempo) {
    for (const double tempo : {60.0, 120.0, 170.0}) {
        RingingPad rig;
        rig.engine.SetPadSynced(0, 1);
        rig.engine.SetPadLooping(0, 1);
        rig.context.tempo = tempo;
        rig.context.running = 1;
        rig.noteOn(60);
        const auto audio = rig.play(9500, 512);
        expectFrames(audio, 44, 8820, steadyTail, 1e-5);
        expectSilence(audio, 8820, 9500);
    }
}

TEST(PadWithTails, PlaysTheGrainAgainOnceSwitchedOff) {
    RingingPad rig;
    rig.engine.SetPadTail(0, 0);
    rig.noteOn(60);
    const auto audio = rig.play(9000, 512);
    expectFrames(audio, 44, 4410, [](std::int64_t) { return 1.0; });
    expectSilence(audio, 4410, 9000);
}

TEST(PadWithTails, LoopThatBeginsAgainCutsTheRing) {
    VoiceRig rig;
    rig.laySound(0, constant(4410));
    rig.engine.SetPadLooping(0, 1);
    rig.engine.SetPadTail(0, 1);
    rig.noteOn(60);
    expectFrames(
        rig.play(13230, 441), 44, 13230, [](std::int64_t i) { return steadyTail(i % 4410); }, 1e-5);
}

}  // namespace
}  // namespace marnoth::test::grain_tail_test
