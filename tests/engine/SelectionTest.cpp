#include <gtest/gtest.h>

#include "dsp/Stretch.h"
#include "engine/VoiceRig.h"
#include "engine/render/SelectGrains.h"

namespace marnoth::test::selection_test {
namespace {

constexpr std::int64_t kBeat = kTicks16PerBeat;

TEST(Loop, RepeatsWithoutAGapWhateverTheBlocks) {
    for (const std::int32_t frames : {1, 64, 441, 999, 1000}) {
        VoiceRig rig;
        rig.laySound(0, ramp(1000));
        rig.engine.SetPadLooping(0, 1);
        rig.noteOn(60);
        expectFrames(rig.play(5000, frames), 44, 5000, [](std::int64_t i) { return rampAt(i % 1000); });
    }
}

TEST(Loop, BlockLongerThanItPlaysItOnce) {
    VoiceRig rig;
    rig.laySound(0, ramp(1000));
    rig.engine.SetPadLooping(0, 1);
    rig.noteOn(60);
    rig.cycle(4096);
    expectFrames(rig.audio[0], 44, 1000, [](std::int64_t i) { return rampAt(i); });
    expectSilence(rig.audio[0], 1000, 4096);
}

TEST(Loop, GrainWhosePlaceLiesBeforeTheBlockIsSkipped) {
    VoiceRig rig;
    rig.laySound(0, ramp(1000));
    rig.engine.SetPadLooping(0, 1);
    rig.noteOn(60);
    rig.cycle(4096);
    // Repetitions are counted in the loop's own length: the second lies at frame 1000, far before this block.
    std::vector<float> memory(2 * 4096);
    PinBuffer mix{4096, rig.context.pinIds[0], nullptr, memory.data() + 4096, 1};
    PinBuffer input{4096, 0, nullptr, nullptr, 1};
    rig.engine.ProcessBlock(4096, &input, &mix, 1, 0, &rig.notes);
    EXPECT_EQ(peak(memory), 0);
}

TEST(Loop, GrainWhosePlaceLiesBehindTheBlockIsSkipped) {
    VoiceRig rig(48000);
    rig.layLoop(0, ramp(24000), 1);
    rig.context.tempo = 2880;  // a beat has 1000 frames
    rig.context.running = 1;
    rig.position = -5 * 4096;
    rig.noteOn(60);
    // Five blocks before zero are counted as five loops before zero, which lie at frame -5000.
    rig.cycle(4096);
    EXPECT_EQ(peak(rig.audio[0]), 0);
}

TEST(Loop, SoundWithoutOneEndsWithItsLastFrame) {
    VoiceRig rig;
    rig.laySound(0, ramp(1000));
    rig.noteOn(60);
    const auto audio = rig.play(4000, 300);
    expectFrames(audio, 44, 1000, [](std::int64_t i) { return rampAt(i); });
    expectSilence(audio, 1000, 4000);
}

TEST(Selection, Takes100GrainsOfAPadInABlockAndDropsTheRest) {
    VoiceRig rig;
    rig.layLoop(0, constant(2048), 64);  // 256 grains of 8 frames
    rig.engine.SetPadSynced(0, 0);
    rig.engine.SetPadLooping(0, 0);
    rig.noteOn(60);
    rig.cycle(2048);
    expectFrames(rig.audio[0], 44, 800, [](std::int64_t) { return 1.0; });
    expectSilence(rig.audio[0], 800, 2048);
}

TEST(Selection, BlockOf100GrainsIsWhole) {
    VoiceRig rig;
    rig.layLoop(0, constant(2048), 64);
    rig.engine.SetPadSynced(0, 0);
    rig.noteOn(60);
    expectFrames(rig.play(8000, 800), 44, 8000, [](std::int64_t) { return 1.0; });
}

/// A track of two grains of a beat each, on the first and the third beat of four, at 48000 Hz and 120 beats
/// per minute.
struct TwoGrains {
    FakeSynthContext context;
    BlockTime time{context};
    CGrooveTrack track;
    PadPhase phase;
    StreamEvents events{kStreamEvents};

    TwoGrains() {
        context.rate = 48000;
        for (const std::int64_t beat : {0, 2}) {
            CGrooveEvent grain;
            grain.lengthTicks = kBeat;
            grain.lengthSamples = 24000;
            grain.tempoLocked = 1;
            track.AppendGrain(grain, beat * kBeat, false, 48000);
        }
        track.SetLength(4 * kBeat, kTicks16);
        track.SetLength(96000, kSamples);
        track.looping = 1;
        track.ChangeAt(1, [](CGrooveEvent& grain) { grain.startSamples = 48000; });
    }
    std::int32_t select(std::int64_t origin, std::int64_t from, std::int64_t to) {
        time.begin(0, 1);
        return selectRange(events, track, phase, origin, {from, to}, time);
    }
    std::int32_t collect(std::int64_t origin, std::int64_t from, std::int64_t to, std::int64_t cycle) {
        time.begin(0, 1);
        return collectCycle(events, track, origin, {from, to}, cycle, time);
    }
    void expectEvent(std::int32_t index, std::int32_t grain, std::int64_t start, std::int64_t end,
                     std::int64_t clipStart, std::int64_t clipEnd) {
        ASSERT_LT(index, events.GetSize());
        EXPECT_EQ(events[index].grain, &track.GetAt(grain));
        EXPECT_EQ(events[index].start, start);
        EXPECT_EQ(events[index].end, end);
        EXPECT_EQ(events[index].clipStart, clipStart);
        EXPECT_EQ(events[index].clipEnd, clipEnd);
    }
};

/// The same, played by its ticks.
struct TwoSyncedGrains : TwoGrains {
    TwoSyncedGrains() { track.synced = 1; }
};

TEST(SelectRange, ClipsGrainsToTheRange) {
    TwoGrains it;
    EXPECT_EQ(it.select(1000, 11000, 51000), 1);
    ASSERT_EQ(it.events.GetSize(), 2);
    it.expectEvent(0, 0, 1000, 25000, 11000, 25000);
    it.expectEvent(1, 1, 49000, 73000, 49000, 51000);
}

TEST(SelectRange, GrainThatOnlyTouchesTheRangeIsLeftOut) {
    TwoGrains it;
    EXPECT_EQ(it.select(0, 24000, 48000), 0);
    EXPECT_EQ(it.events.GetSize(), 0);
}

TEST(SelectRange, CrossesTheLoopsEnd) {
    TwoGrains it;
    EXPECT_EQ(it.select(0, 96000 + 60000, 2 * 96000 + 500), 1);
    ASSERT_EQ(it.events.GetSize(), 2);
    it.expectEvent(0, 1, 144000, 168000, 156000, 168000);
    it.expectEvent(1, 0, 192000, 216000, 192000, 192500);
}

TEST(SelectRange, WithoutALoopNothingComesBehindTheFirstLength) {
    TwoGrains it;
    it.track.looping = 0;
    EXPECT_EQ(it.select(0, 96000, 97000), 0);
    EXPECT_EQ(it.select(0, 2 * 96000 - 10, 2 * 96000 + 10), 0);
    EXPECT_EQ(it.select(0, 60000, 97000), 1);
    ASSERT_EQ(it.events.GetSize(), 1);
    it.expectEvent(0, 1, 48000, 72000, 60000, 72000);
}

TEST(SelectRange, WithoutALoopNothingComesAheadOfTheZero) {
    TwoGrains it;
    it.track.looping = 0;
    EXPECT_EQ(it.select(0, -96000 - 100, -96000 + 400), 0);
    EXPECT_EQ(it.select(0, -100, 400), 1);
    ASSERT_EQ(it.events.GetSize(), 1);
    it.expectEvent(0, 0, 0, 24000, 0, 400);
}

TEST(SelectRange, SyncedTrackCountsFromTheCommonZero) {
    TwoSyncedGrains it;
    it.phase.origin = kBeat;
    EXPECT_EQ(it.select(0, kBeat, 2 * kBeat), 1);
    ASSERT_EQ(it.events.GetSize(), 1);
    it.expectEvent(0, 0, kBeat, 2 * kBeat, kBeat, 2 * kBeat);
}

TEST(SelectRange, PadThatSetTheZeroCountsFromItsOwnStart) {
    TwoSyncedGrains it;
    it.phase.origin = kBeat;
    it.phase.owner = 1;
    EXPECT_EQ(it.select(0, 2 * kBeat, 3 * kBeat), 1);
    ASSERT_EQ(it.events.GetSize(), 1);
    it.expectEvent(0, 1, 2 * kBeat, 3 * kBeat, 2 * kBeat, 3 * kBeat);
}

TEST(SelectRange, UnsyncedTrackIgnoresTheCommonZero) {
    TwoGrains it;
    it.phase.origin = kBeat;
    it.select(0, 0, 100);
    ASSERT_EQ(it.events.GetSize(), 1);
    it.expectEvent(0, 0, 0, 24000, 0, 100);
}

TEST(SelectRange, TrackWithoutALengthPlaysOnlyWhatLiesAtItsZero) {
    TwoGrains it;
    it.track.lengthSamples = 0;
    EXPECT_EQ(it.select(0, 0, 0), 0);
}

TEST(CollectCycle, GrainBehindOneThatStartsTooLateIsNotLookedAt) {
    TwoSyncedGrains it;
    CGrooveEvent late;
    late.lengthTicks = kBeat;
    late.tempoLocked = 1;
    it.track.AppendGrain(late, 0, false, 48000);
    it.collect(0, 0, kBeat, 0);
    EXPECT_EQ(it.events.GetSize(), 1);
    it.track.PurgeAndSort();
    it.events.RemoveAll();
    it.collect(0, 0, kBeat, 0);
    EXPECT_EQ(it.events.GetSize(), 2);
}

TEST(CollectCycle, CycleIsCountedInTheTracksLength) {
    TwoGrains it;
    EXPECT_EQ(it.collect(7, 0, 10, 3), 1);
    ASSERT_EQ(it.events.GetSize(), 1);
    it.expectEvent(0, 0, 3 * 96000 + 7, 3 * 96000 + 24007, 3 * 96000 + 7, 3 * 96000 + 17);
}

TEST(CollectCycle, GrainNotCutOnTheBeatKeepsItsDurationAtAnyTempo) {
    TwoSyncedGrains it;
    it.track.ChangeAt(0, [](CGrooveEvent& grain) { grain.tempoLocked = 0; });
    it.context.tempo = 60;
    it.collect(0, 0, 4 * kBeat, 0);
    ASSERT_EQ(it.events.GetSize(), 2);
    it.expectEvent(0, 0, 0, kBeat / 2, 0, kBeat / 2);
    it.expectEvent(1, 1, 2 * kBeat, 3 * kBeat, 2 * kBeat, 3 * kBeat);
}

TEST(CollectCycle, TailRingsForItsOwnLengthEvenOnTheBeat) {
    TwoSyncedGrains it;
    it.track.SetTail(1);
    for (const auto& [index, frames] : {std::pair{0, 48000}, std::pair{1, 36000}})
        it.track.ChangeAt(index, [frames = frames](CGrooveEvent& grain) {
            grain.tailLengthSamples = frames;
            grain.tailWave = CWaveMem::make();
        });
    it.collect(0, 0, 4 * kBeat, 0);
    ASSERT_EQ(it.events.GetSize(), 2);
    it.expectEvent(0, 0, 0, 2 * kBeat, 0, 2 * kBeat);
    it.expectEvent(1, 1, 2 * kBeat, 2 * kBeat + kBeat * 3 / 2, 2 * kBeat, 2 * kBeat + kBeat * 3 / 2);
}

TEST(CollectCycle, TailThatIsNotThereLeavesTheGrainOnTheBeat) {
    TwoSyncedGrains it;
    it.track.SetTail(1);
    it.context.tempo = 60;
    it.collect(0, 0, 4 * kBeat, 0);
    ASSERT_EQ(it.events.GetSize(), 2);
    it.expectEvent(0, 0, 0, kBeat, 0, kBeat);
}

TEST(CollectCycle, FarOutTimesDoNoHarm) {
    TwoSyncedGrains it;
    constexpr std::int64_t most = INT64_MAX;
    it.track.SetLength(most, kTicks16);
    it.track.ChangeAt(1, [](CGrooveEvent& grain) { grain.startTicks = grain.lengthTicks = most; });
    for (const std::int64_t origin : {-most, std::int64_t{0}, most}) {
        it.select(origin, -most, most);
        it.select(origin, most - 10, most);
        it.collect(origin, 0, most, most);
    }
}

TEST(SyncedPad, GrainOfAFileWithoutBeatsStartsWithTheTempoAndKeepsItsLengthInSeconds) {
    VoiceRig rig(48000);
    const std::int32_t bin = rig.loadToBin(rig.waveOf(ramp(9000)));
    ASSERT_EQ(rig.engine.AddGrain(bin, 0, 0, kBeat), S_OK);
    rig.context.tempo = 60;  // a beat has 48000 frames
    rig.context.running = 1;
    rig.noteOn(60);
    const auto audio = rig.play(96000, 480);
    expectSilence(audio, 0, 48000);
    expectFrames(audio, 48000, 57000, [](std::int64_t i) { return rampAt(i - 48000); });
    expectSilence(audio, 57000, 96000);
}

/// What a loop of four grains must sound like when each of them fills `target` frames: each grain rendered
/// whole.
std::vector<float> stretchedGrains(const std::vector<float>& loop, std::int64_t grain, std::int64_t target) {
    std::vector<float> wave = loop;
    wave.push_back(loop.back());
    std::vector<float> expected(static_cast<std::size_t>(4 * target));
    for (std::int64_t i = 0; i < 4; ++i) {
        StretchSource source;
        source.wave = {wave.data(), static_cast<std::int64_t>(loop.size()), 1};
        source.first = i * grain;
        source.length = grain;
        source.sampleRate = 48000;
        const StretchSpan whole{0, static_cast<std::int32_t>(target), target};
        renderStretched(source, whole, {expected.data() + i * target, 1}, {1, 1});
    }
    return expected;
}

TEST(SyncedPad, GrainsFillTheirBeatsAtAnyTempo) {
    for (const double tempo : {60.0, 96.0, 120.0, 240.0}) {
        VoiceRig rig(48000);
        const auto loop = ramp(24000);
        rig.layLoop(0, loop, 1);
        rig.context.tempo = tempo;
        rig.context.running = 1;
        rig.noteOn(60);
        const auto target = static_cast<std::int64_t>(6000 * 120 / tempo);
        const auto expected = stretchedGrains(loop, 6000, target);
        const auto audio = rig.play(8 * target, 256);
        expectFrames(
            audio, 48, 8 * target,
            [&](std::int64_t i) { return expected[static_cast<std::size_t>(i % (4 * target))]; }, 1e-5);
    }
}

TEST(UnsyncedPad, PlaysAtItsOwnSpeedAtAnyTempo) {
    VoiceRig rig(48000);
    rig.layLoop(0, ramp(24000), 1);
    rig.engine.SetPadSynced(0, 0);
    rig.context.tempo = 77;
    rig.context.running = 1;
    rig.noteOn(60);
    expectFrames(rig.play(60000, 512), 48, 60000, [](std::int64_t i) { return rampAt(i % 24000); });
}

}  // namespace
}  // namespace marnoth::test::selection_test
