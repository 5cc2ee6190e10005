#include <gtest/gtest.h>

#include "engine/VoiceRig.h"

namespace marnoth::test::fade_test {
namespace {

constexpr double kFadeIn = 44;    // 1 ms at 44100 Hz
constexpr double kFadeOut = 882;  // 20 ms

double fadeIn(std::int64_t frame) {
    return std::min(1.0, static_cast<double>(frame) / kFadeIn);
}

/// A gated pad of steady sound whose note is held.
struct HeldNote : VoiceRig {
    HeldNote() {
        laySound(0, constant(40000));
        engine.SetPadOneShot(0, 0);
        noteOn(60);
    }
};

TEST(FadeIn, GainIs0AtTheFirstFrameAndRisesOver44) {
    HeldNote rig;
    const auto audio = rig.play(512, 512);
    EXPECT_EQ(audio[0], 0.0f);
    expectFrames(audio, 0, 512, fadeIn);
}

TEST(FadeIn, GoesOnAcrossBlocks) {
    HeldNote rig;
    expectFrames(rig.play(140, 7), 0, 140, fadeIn);
}

TEST(FadeIn, Lasts48FramesAt48000) {
    VoiceRig rig(48000);
    rig.laySound(0, constant(4000));
    rig.noteOn(60);
    expectFrames(rig.play(512, 512), 0, 512, [](std::int64_t i) { return std::min(1.0, i / 48.0); });
}

TEST(FadeIn, BeginsWhereASequencedNoteBegins) {
    VoiceRig rig(48000);
    rig.laySound(0, constant(4000));
    rig.sequence(60, 10, 960);
    expectFrames(rig.play(512, 512), 0, 512,
                 [](std::int64_t i) { return std::clamp((i - 250) / 48.0, 0.0, 1.0); });
}

TEST(FadeIn, BelongsToTheVoiceAndNotToItsGrains) {
    VoiceRig rig(48000);
    rig.layLoop(0, constant(24000), 1);
    rig.noteOn(60);
    expectFrames(rig.play(24000, 480), 48, 24000, [](std::int64_t) { return 1.0; });
}

TEST(FadeIn, IsMixedOntoWhatThePinHolds) {
    VoiceRig rig;
    rig.laySound(0, constant(4000));
    rig.laySound(1, constant(4000));
    rig.noteOn(60);
    rig.noteOn(62);
    expectFrames(rig.play(512, 512), 0, 512, [](std::int64_t i) { return 2 * fadeIn(i); });
}

TEST(FadeIn, RunsTheSameOnBothSidesOfAStereoSound) {
    VoiceRig rig(44100, 2);
    rig.laySound(0, constant(8000));
    rig.noteOn(60);
    expectFrames(rig.play(512, 512), 0, 1024, [](std::int64_t i) { return fadeIn(i / 2); });
}

TEST(FadeOut, EndsTheNote882FramesBehindTheBlockOfItsNoteOff) {
    HeldNote rig;
    rig.cycle(1024);
    rig.noteOff(60);
    const auto audio = rig.play(2048, 1024);
    expectFrames(
        audio, 0, 882, [](std::int64_t i) { return (kFadeOut - static_cast<double>(i)) / kFadeOut; }, 1e-5);
    expectSilence(audio, 882, 2048);
}

TEST(FadeOut, GateLaneHasExactlyOneBlockFromTheNoteOff) {
    HeldNote rig;
    rig.cycle(512);
    rig.noteOff(60);
    const auto audio = rig.play(1024, 512);
    // The fade is cut by the end of the block, and falls to 0 there.
    expectFrames(
        audio, 0, 512, [](std::int64_t i) { return (512.0 - static_cast<double>(i)) / kFadeOut; }, 1e-5);
    expectSilence(audio, 512, 1024);
    EXPECT_TRUE(rig.notes.empty());
}

/// A looping one-shot pad of steady sound, pressed on the page.
struct PressedLoop : VoiceRig {
    PressedLoop() {
        laySound(0, constant(3000));
        engine.SetPadLooping(0, 1);
        engine.AuditionPad(0, -1);
        cycle(1024);
    }
};

TEST(FadeOut, CutByABlockEndIsTwoRampsEachDownTo0) {
    PressedLoop rig;
    rig.engine.AuditionPad(0, -1);
    const auto audio = rig.play(1536, 512);
    expectFrames(
        audio, 0, 512, [](std::int64_t i) { return (512.0 - static_cast<double>(i)) / kFadeOut; }, 1e-5);
    expectFrames(
        audio, 512, 882, [](std::int64_t i) { return (882.0 - static_cast<double>(i)) / kFadeOut; }, 1e-5);
    expectSilence(audio, 882, 1536);
}

TEST(FadeOut, WithinOneBlockIsOneRamp) {
    PressedLoop rig;
    rig.engine.AuditionPad(0, -1);
    const auto audio = rig.play(2048, 2048);
    expectFrames(
        audio, 0, 882, [](std::int64_t i) { return (882.0 - static_cast<double>(i)) / kFadeOut; }, 1e-5);
    expectSilence(audio, 882, 2048);
}

TEST(FadeOut, NoteOfKnownLengthFadesOverItsLastFrames) {
    VoiceRig rig(48000);
    rig.laySound(0, constant(40000));
    rig.engine.SetPadOneShot(0, 0);
    rig.sequence(60, 0, 160);  // 4000 frames; 20 ms are 960
    const auto audio = rig.play(8000, 2000);
    expectFrames(audio, 48, 3040, [](std::int64_t) { return 1.0; });
    expectFrames(
        audio, 3040, 4000, [](std::int64_t i) { return (4000.0 - static_cast<double>(i)) / 960.0; }, 1e-5);
    expectSilence(audio, 4000, 8000);
}

TEST(FadeOut, ClipThatMeetsBothFadesGetsTheFadeIn) {
    VoiceRig rig(48000);
    rig.laySound(0, constant(40000));
    rig.engine.SetPadOneShot(0, 0);
    rig.sequence(60, 0, 20);  // 500 frames
    const auto audio = rig.play(1024, 1024);
    expectFrames(audio, 0, 500, [](std::int64_t i) { return std::min(1.0, i / 48.0); });
    expectSilence(audio, 500, 1024);
}

TEST(Fade, BlockLargerThanOneOf48000FramesIsRenderedWhole) {
    VoiceRig rig(44100, 2);
    rig.laySound(0, constant(2 * 200000));
    rig.engine.SetPadOneShot(0, 0);
    rig.noteOn(60);
    expectFrames(rig.play(120000, 120000), 0, 240000, [](std::int64_t i) { return fadeIn(i / 2); });
    rig.noteOff(60);
    expectFrames(
        rig.play(100000, 100000), 0, 2 * 882,
        [](std::int64_t i) { return (882.0 - static_cast<double>(i / 2)) / kFadeOut; }, 1e-5);
}

}  // namespace
}  // namespace marnoth::test::fade_test
