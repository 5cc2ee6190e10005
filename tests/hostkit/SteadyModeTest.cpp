#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <numbers>
#include <random>
#include <span>
#include <string>
#include <vector>

#include "host/CreateInstance.h"
#include "hostkit/HostRig.h"
#include "platform/com/RefPtr.h"
#include "seam/IMarnothOptions.h"
#include "support/WaveFile.h"

/// The steady mode: what is heard goes by places in time, and by nothing that blocks cut.
namespace marnoth::test::steady_mode_test {
namespace {

constexpr int kRate = 44100;
constexpr std::int64_t kFade = kRate / 50;  // 20 ms
constexpr std::uint32_t kOpen = 0xFFFFFFFF;

/// A loop of four beats at 125 beats per minute, in sixteenths.
TempPath beatLoop(int pitch) {
    return WaveFile()
        .rate(kRate)
        .channels(2)
        .bits(16)
        .frames(kRate * 4 * 60 / 125,
                [=](std::int64_t i, int c) {
                    return 0.2 * std::sin(0.01 * (pitch + c + 1) * static_cast<double>(i));
                })
        .acid({.beats = 4, .tempo = 125})
        .writeTemp();
}

/// A sound without loop data.
TempPath plainSound(std::int64_t frames, double level) {
    return WaveFile()
        .rate(kRate)
        .channels(2)
        .bits(16)
        .frames(frames, [=](std::int64_t, int) { return level; })
        .writeTemp();
}

SynthEvent note(std::int32_t tick, int key, std::uint32_t duration) {
    SynthEvent event;
    event.time = tick;
    event.note = static_cast<std::uint8_t>(key);
    event.velocity = 100;
    event.duration = duration;
    return event;
}

class SteadyRig {
public:
    SteadyRig() {
        const int mix = 0;
        EXPECT_EQ(rig.connect(kRate, 2, {&mix, 1}), S_OK);
        EXPECT_EQ(rig.setBlock(8192), S_OK);
        RefPtr<IMarnothOptions> options;
        EXPECT_EQ(rig.sampler().QueryInterface(IID_IMarnothOptions, options.putVoid()), S_OK);
        EXPECT_EQ(options->SetSteady(1), S_OK);
        rig.setTaker(0, [this](std::span<const float> samples, bool) {
            audio.insert(audio.end(), samples.begin(), samples.end());
        });
    }

    void attach(double tempo) { EXPECT_EQ(rig.attach({.tempo = tempo, .key = {}}), S_OK); }
    /// The pad answers one key alone.
    void load(int pad, const TempPath& file, int key) {
        std::int32_t bin = -1;
        std::uint32_t status = 0;
        ASSERT_EQ(rig.sampler().LoadFileToPad(pad, "loop", file.c_str(), &bin, &status), S_OK);
        const KeyMapRecord entry{pad, key, key, key, 0, 127};
        ASSERT_EQ(rig.sampler().SetKeyMapEntry(&entry), S_OK);
    }
    void start(std::span<const SynthEvent> notes) {
        EXPECT_EQ(rig.synth().StartPlayback(0), S_OK);
        EXPECT_EQ(rig.queueEvents(0, notes), S_OK);
    }
    void render(std::int64_t frames) { EXPECT_EQ(rig.render(frames), S_OK); }
    /// The left side.
    float at(std::int64_t frame) const { return audio[static_cast<std::size_t>(2 * frame)]; }

    HostRig rig{createInstrument};
    std::vector<float> audio;
};

/// All kinds of pads at once: loops stretched and transposed, with tails, unsynced, latched, one-shot.
void setUpScene(SteadyRig& it) {
    IGrooveSampler& sampler = it.rig.sampler();
    it.attach(100);
    for (int pad = 0; pad < 6; ++pad) it.load(pad, beatLoop(pad), 60 + pad);
    it.load(6, plainSound(9000, 0.1), 66);
    it.load(7, plainSound(700, 0.1), 67);
    for (int grain = 0; grain < 4; ++grain)
        EXPECT_EQ(sampler.SetGrainTranspose(1, grain, 3 - 2 * grain), S_OK);
    EXPECT_EQ(sampler.SetPadTail(2, 1), S_OK);
    EXPECT_EQ(sampler.SetPadSynced(3, 0), S_OK);
    EXPECT_EQ(sampler.SetPadOneShot(4, 1), S_OK);
    EXPECT_EQ(sampler.SetPadOneShot(5, 1), S_OK);
    EXPECT_EQ(sampler.SetPadLooping(5, 0), S_OK);
    EXPECT_EQ(sampler.SetPadLooping(7, 1), S_OK);
    EXPECT_EQ(sampler.SetLoopLength(kPadLoop, 7, 200000), S_OK);
    EXPECT_TRUE(it.rig.addTempo(1900, 137.3));
    EXPECT_TRUE(it.rig.addTempo(3100, 71.9));
}

std::vector<SynthEvent> notesOfScene() {
    std::vector<SynthEvent> notes;
    for (int key = 60; key < 68; ++key) {
        notes.push_back(note(3 + 5 * (key - 60), key, kOpen));
        notes.push_back(note(700 + 31 * (key - 60), key, 0));
        notes.push_back(note(1000 + 17 * (key - 60), key, 523));
        // Taken over, switched off, begun and ended within a few ticks.
        notes.push_back(note(1800 + 11 * (key - 60), key, kOpen));
        notes.push_back(note(1801 + 11 * (key - 60), key, 0));
        notes.push_back(note(2300 + 3 * (key - 60), key, kOpen));
        notes.push_back(note(2301 + 3 * (key - 60), key, kOpen));
        notes.push_back(note(2900 + 7 * (key - 60), key, 0));
        notes.push_back(note(2903 + 7 * (key - 60), key, 0));
    }
    std::stable_sort(notes.begin(), notes.end(),
                     [](const SynthEvent& a, const SynthEvent& b) { return a.time < b.time; });
    return notes;
}

constexpr std::int64_t kSceneFrames = 110000;

/// `next` gives the length of each block.
template <class Next>
std::vector<float> sceneInBlocks(Next next) {
    SteadyRig it;
    setUpScene(it);
    const auto notes = notesOfScene();
    it.start(notes);
    for (std::int64_t done = 0, frames = 0; done < kSceneFrames; done += frames) {
        frames = std::min<std::int64_t>(next(), kSceneFrames - done);
        it.render(frames);
    }
    return it.audio;
}

std::int64_t firstDifference(const std::vector<float>& a, const std::vector<float>& b) {
    if (a.size() != b.size()) return -2;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (std::bit_cast<std::uint32_t>(a[i]) != std::bit_cast<std::uint32_t>(b[i]))
            return static_cast<std::int64_t>(i / 2);
    return -1;
}

TEST(SteadyMode, SameNotesGiveTheSameAudioHoweverTimeIsCut) {
    const auto expected = sceneInBlocks([] { return 4096; });
    const auto [low, high] = std::minmax_element(expected.begin(), expected.end());
    ASSERT_GT(*high - *low, 0.5f);
    for (const int block : {1, 64, 100, 511, 1024}) {
        EXPECT_EQ(firstDifference(sceneInBlocks([=] { return block; }), expected), -1)
            << "blocks of " << block;
    }
    std::mt19937 random(9);
    for (int i = 0; i < 4; ++i) {
        const auto cut = [&] { return std::uniform_int_distribution<std::int64_t>(1, 700)(random); };
        EXPECT_EQ(firstDifference(sceneInBlocks(cut), expected), -1) << "random cuts " << i;
    }
}

/// One pad with a steady level, looping without end, in blocks of 64.
class LevelRig : public SteadyRig {
public:
    explicit LevelRig(bool oneShot) {
        attach(120);
        load(0, plainSound(20000, 0.5), 60);
        EXPECT_EQ(rig.sampler().SetPadLooping(0, 1), S_OK);
        EXPECT_EQ(rig.sampler().SetPadOneShot(0, oneShot ? 1 : 0), S_OK);
        EXPECT_EQ(rig.setBlock(64), S_OK);
    }
    /// Plays the pad from now on.
    void hold(std::int64_t frames) {
        const SynthEvent notes[] = {note(0, 60, kOpen)};
        start(notes);
        render(frames);
    }
    void expectFadeFrom(std::int64_t frame) const {
        const float level = at(frame - 1);
        ASSERT_GT(level, 0.3f);
        for (std::int64_t i = 0; i < kFade; ++i)
            ASSERT_NEAR(at(frame + i), level * (1.0 - static_cast<double>(i) / kFade), 1e-5) << "frame " << i;
        for (std::int64_t i = kFade; i < kFade + 500; ++i) ASSERT_EQ(at(frame + i), 0.0f) << "frame " << i;
    }
};

/// 960 ticks are 22050 frames at 120 beats per minute.
std::int64_t frameOf(int tick) {
    return std::llround(tick * 22050.0 / 960);
}

TEST(SteadyMode, IsOffUntilItIsAskedFor) {
    HostRig rig{createInstrument};
    RefPtr<IMarnothOptions> options;
    ASSERT_EQ(rig.sampler().QueryInterface(IID_IMarnothOptions, options.putVoid()), S_OK);
    std::uint32_t on = 7;
    EXPECT_EQ(options->GetSteady(&on), S_OK);
    EXPECT_EQ(on, 0u);
    EXPECT_EQ(options->SetSteady(5), S_OK);
    EXPECT_EQ(options->GetSteady(&on), S_OK);
    EXPECT_EQ(on, 1u);
    EXPECT_EQ(options->GetSteady(nullptr), E_POINTER);
}

TEST(SteadyMode, StopWithoutSoundLeavesAPadsOutputSilent) {
    LevelRig it(false);
    const int pins[] = {0, 3};
    ASSERT_EQ(it.rig.connect(kRate, 2, pins), S_OK);
    EXPECT_EQ(it.rig.sampler().SetPadOutput(0, 3), S_OK);
    int blocks = 0;
    bool silent = true;
    it.rig.setTaker(3, [&](std::span<const float>, bool isSilent) {
        ++blocks;
        silent = silent && isSilent;
    });
    it.render(1000);
    EXPECT_EQ(it.rig.synth().StopPlayback(), S_OK);
    it.render(1000);
    EXPECT_GT(blocks, 0);
    EXPECT_TRUE(silent);
}

TEST(SteadyMode, NoteOffFadesOutFromItsFrameOn) {
    LevelRig it(false);
    const SynthEvent notes[] = {note(0, 60, kOpen), note(101, 60, 0)};
    it.start(notes);
    it.render(12000);
    it.expectFadeFrom(frameOf(101));
}

TEST(SteadyMode, LatchedLoopFadesOutWhereASecondNoteSwitchesItOff) {
    LevelRig it(true);
    const SynthEvent notes[] = {note(0, 60, kOpen), note(50, 60, 0), note(203, 60, kOpen), note(210, 60, 0)};
    it.start(notes);
    it.render(12000);
    it.expectFadeFrom(frameOf(203));
}

TEST(SteadyMode, StopOfTheTransportFadesOut) {
    LevelRig it(false);
    it.hold(6400);
    EXPECT_EQ(it.rig.synth().StopPlayback(), S_OK);
    it.render(6400);
    it.expectFadeFrom(6400);
}

TEST(SteadyMode, StoppingAllPadsFadesOut) {
    for (const bool oneShot : {false, true}) {
        LevelRig it(oneShot);
        it.hold(6400);
        EXPECT_EQ(it.rig.sampler().StopPad(-1), S_OK);
        it.render(6400);
        it.expectFadeFrom(6400);
    }
}

TEST(SteadyMode, AuditionOfAFileThatIsStoppedFadesOut) {
    LevelRig it(false);
    EXPECT_EQ(it.rig.sampler().AuditionBinFile(0, -1), S_OK);
    it.render(6400);
    EXPECT_EQ(it.rig.sampler().StopBinAudition(-1), S_OK);
    it.render(6400);
    it.expectFadeFrom(6400);
}

TEST(SteadyMode, MutedPadFadesOutAndComesBackWithAGlide) {
    LevelRig it(false);
    it.hold(3200);
    EXPECT_EQ(it.rig.sampler().SetPadMute(0, 1), S_OK);
    it.render(3200);
    it.expectFadeFrom(3200);
    EXPECT_EQ(it.rig.sampler().SetPadMute(0, 0), S_OK);
    it.render(3200);
    for (std::int64_t i = 0; i < kFade; ++i)
        ASSERT_NEAR(it.at(6400 + i), 0.5 * static_cast<double>(i) / kFade, 1e-4) << "frame " << i;
    EXPECT_NEAR(it.at(6400 + kFade), 0.5, 1e-4);
}

TEST(SteadyMode, PadFadesOutWhenAnotherIsHeardAlone) {
    LevelRig it(false);
    it.hold(3200);
    EXPECT_EQ(it.rig.sampler().SetPadSolo(5, 1), S_OK);
    it.render(3200);
    it.expectFadeFrom(3200);
}

TEST(SteadyMode, VolumeAndPanGlide) {
    LevelRig it(false);
    it.hold(3200);
    EXPECT_EQ(it.rig.sampler().SetPadVolume(0, 0.5f), S_OK);
    EXPECT_EQ(it.rig.sampler().SetPadPan(0, 1.0f), S_OK);
    it.render(3200);
    for (std::int64_t i = 0; i < kFade; ++i) {
        const double done = static_cast<double>(i) / kFade;
        ASSERT_NEAR(it.at(3200 + i), 0.5 * (1 - done), 1e-4) << "frame " << i;
        ASSERT_NEAR(it.audio[static_cast<std::size_t>(2 * (3200 + i) + 1)], 0.5 - 0.25 * done, 1e-4)
            << "frame " << i;
    }
    EXPECT_EQ(it.at(3200 + kFade), 0.0f);
}

TEST(SteadyMode, LevelThatIsSetBeforeAPadSoundsIsThereAtOnce) {
    LevelRig it(false);
    it.render(1000);
    EXPECT_EQ(it.rig.sampler().SetPadVolume(0, 0.5f), S_OK);
    it.hold(3200);
    EXPECT_NEAR(it.at(1000 + 100), 0.25, 1e-4);
}

TEST(SteadyMode, EachNoteOffEndsANote) {
    LevelRig it(false);
    const SynthEvent notes[] = {note(0, 60, kOpen), note(10, 60, kOpen), note(100, 60, 0), note(100, 60, 0)};
    it.start(notes);
    it.render(12000);
    it.expectFadeFrom(frameOf(100));
}

TEST(SteadyMode, NoteThatBeginsAndEndsWithinABlockSounds) {
    LevelRig it(false);
    EXPECT_EQ(it.rig.setBlock(4096), S_OK);
    const SynthEvent notes[] = {note(20, 60, kOpen), note(60, 60, 0)};
    it.start(notes);
    it.render(8192);
    EXPECT_EQ(it.at(frameOf(20)), 0.0f);
    it.expectFadeFrom(frameOf(60));
}

}  // namespace
}  // namespace marnoth::test::steady_mode_test
