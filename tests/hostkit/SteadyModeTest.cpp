#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <span>
#include <vector>

#include "hostkit/SteadyRig.h"
#include "platform/com/RefPtr.h"
#include "seam/IMarnothOptions.h"
#include "support/Sparingly.h"

/// The steady mode: what is heard goes by places in time, and by nothing that blocks cut.
namespace marnoth::test::steady_mode_test {
namespace {

using namespace steady;

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

TEST(SteadyMode, SameNotesGiveTheSameAudioHoweverTimeIsCut) {
    const auto expected = sceneInBlocks([] { return 4096; });
    const auto [low, high] = std::minmax_element(expected.begin(), expected.end());
    ASSERT_GT(*high - *low, 0.5f);
    for (const int block : {1, 64, 100, 511, 1024}) {
        EXPECT_EQ(firstDifference(sceneInBlocks([=] { return block; }), expected), -1)
            << "blocks of " << block;
    }
    std::mt19937 random(9);
    for (int i = 0; i < 4; i += kSparingly) {
        const auto cut = [&] { return std::uniform_int_distribution<std::int64_t>(1, 700)(random); };
        EXPECT_EQ(firstDifference(sceneInBlocks(cut), expected), -1) << "random cuts " << i;
    }
}

/// Pads, tempos and a sequence at random, of which many events fall on one frame.
class RandomPart {
public:
    explicit RandomPart(unsigned seed) : random_(seed) {
        for (int pad = 0; pad < 8; ++pad) setUp(pad);
        double tempo = any(3) == 0 ? 3000 + 0.1 * any(1000) : 70 + 0.1 * any(900);
        std::int32_t tick = any(2) == 0 ? 0 : 1 + any(2000);
        const double ticksPerFrame = tempo * 960 / 60 / kRate;
        rig_.attach(tempo);
        start_ = tick;
        for (const double end = tick + kFrames * ticksPerFrame; any(2) == 0 && tick < end;) {
            tick += 1 + any(static_cast<int>(end / 3) + 1);
            EXPECT_TRUE(rig_.rig.addTempo(tick, tempo *= 0.7 + 0.1 * any(7)));
        }
        for (int i = 0; i < 120; ++i) addNote(start_ + any(static_cast<int>(kFrames * ticksPerFrame) + 1));
    }
    template <class Next>
    std::vector<float> play(Next next) {
        std::stable_sort(notes_.begin(), notes_.end(),
                         [](const SynthEvent& a, const SynthEvent& b) { return a.time < b.time; });
        EXPECT_EQ(rig_.rig.synth().StartPlayback(start_), S_OK);
        EXPECT_EQ(rig_.rig.queueEvents(0, notes_), S_OK);
        for (std::int64_t done = 0, frames = 0; done < kFrames; done += frames) {
            frames = std::min<std::int64_t>(next(), kFrames - done);
            rig_.render(frames);
        }
        return rig_.audio;
    }

private:
    static constexpr std::int64_t kFrames = 30000;

    int any(int count) { return static_cast<int>(random_() % static_cast<unsigned>(count)); }

    void setUp(int pad) {
        IGrooveSampler& sampler = rig_.rig.sampler();
        const bool isLoop = any(3) != 0;
        rig_.load(pad, isLoop ? beatLoop(pad) : plainSound(500 + any(9000), 0.1), 60 + pad);
        sampler.SetPadOneShot(pad, static_cast<std::uint32_t>(any(2)));
        if (any(3) == 0) sampler.SetPadLooping(pad, static_cast<std::uint32_t>(any(2)));
        if (any(3) == 0) sampler.SetPadSynced(pad, static_cast<std::uint32_t>(any(2)));
        if (any(3) == 0) sampler.SetPadTail(pad, 1);
        if (any(3) == 0) sampler.SetGrainTranspose(pad, 0, any(24) - 12);
        const auto number = static_cast<std::uint32_t>(pad);
        if (any(3) == 0) sampler.SetLoopLength(kPadLoop, number, 65536LL * (1 + any(3000)));
        // Other pads may answer the same key.
        const KeyMapRecord keys{pad, 60 + any(8), 60 + any(8), 60 + pad, 0, 127};
        if (any(3) == 0) sampler.SetKeyMapEntry(&keys);
    }
    void addNote(std::int32_t tick) {
        const int key = 60 + any(8);
        const auto length = static_cast<std::uint32_t>(any(2) == 0 ? any(5) : any(900));
        if (any(2) == 0) {
            notes_.push_back(note(tick, key, length + 1));
            return;
        }
        notes_.push_back(note(tick, key, kOpen));
        notes_.push_back(note(tick + static_cast<std::int32_t>(length), key, 0));
    }

    std::mt19937 random_;
    SteadyRig rig_;
    std::vector<SynthEvent> notes_;
    std::int32_t start_ = 0;
};

TEST(SteadyMode, SequencesAtRandomSoundTheSameHoweverTimeIsCut) {
    for (unsigned seed = 1; seed <= 3; seed += kSparingly) {
        const auto expected = RandomPart(seed).play([] { return 4096; });
        for (const int block : {1, 64, 441}) {
            EXPECT_EQ(firstDifference(RandomPart(seed).play([=] { return block; }), expected), -1)
                << "seed " << seed << ", blocks of " << block;
        }
        std::mt19937 random(seed);
        const auto cut = [&] { return 1 + static_cast<std::int64_t>(random() % 3000); };
        EXPECT_EQ(firstDifference(RandomPart(seed).play(cut), expected), -1) << "seed " << seed;
    }
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
