#include <limits>

#include "engine/EditRig.h"

namespace marnoth::test::pad_settings_test {
namespace {

using Sampler = IGrooveSampler;

/// A setting of a pad in whole numbers, what a bad pad gives, and how it starts.
template <class T>
struct Setting {
    const char* name;
    HRESULT (Sampler::*get)(std::int32_t, T*);
    HRESULT (Sampler::*set)(std::int32_t, T);
    HRESULT badPad;
    T initial;
};

const Setting<std::uint32_t> kFlags[] = {
    {"Looping", &Sampler::GetPadLooping, &Sampler::SetPadLooping, S_OK, 0},
    {"Synced", &Sampler::GetPadSynced, &Sampler::SetPadSynced, S_OK, 0},
    {"PlayMode", &Sampler::GetPadPlayMode, &Sampler::SetPadPlayMode, S_OK, 1},
    {"OneShot", &Sampler::GetPadOneShot, &Sampler::SetPadOneShot, E_INVALIDARG, 1},
    {"Mute", &Sampler::GetPadMute, &Sampler::SetPadMute, E_INVALIDARG, 0},
    {"Solo", &Sampler::GetPadSolo, &Sampler::SetPadSolo, E_INVALIDARG, 0},
    {"Tail", &Sampler::GetPadTail, &Sampler::SetPadTail, E_INVALIDARG, 0},
    {"FollowKey", &Sampler::GetPadFollowKey, &Sampler::SetPadFollowKey, E_INVALIDARG, 0},
    {"Output", &Sampler::GetPadOutput, &Sampler::SetPadOutput, E_INVALIDARG, 0},
};
const Setting<float> kLevels[] = {
    {"Volume", &Sampler::GetPadVolume, &Sampler::SetPadVolume, E_INVALIDARG, 1.0f},
    {"Pan", &Sampler::GetPadPan, &Sampler::SetPadPan, E_INVALIDARG, 0.5f},
};
const Setting<std::int32_t> kNumbers[] = {
    {"RootNote", &Sampler::GetPadRootNote, &Sampler::SetPadRootNote, E_INVALIDARG, -1},
    {"Channel", &Sampler::GetPadChannel, &Sampler::SetPadChannel, E_INVALIDARG, -1},
};

template <class T>
void expectReadsBackPerPad(const Setting<T>& setting, T value) {
    SCOPED_TRACE(setting.name);
    EditRig rig;
    for (std::int32_t pad = 0; pad < 16; ++pad) EXPECT_EQ(rig.get(setting.get, pad), setting.initial);
    EXPECT_EQ((rig.engine.*setting.set)(15, value), S_OK);
    EXPECT_EQ(rig.get(setting.get, 15), value);
    EXPECT_EQ(rig.get(setting.get, 14), setting.initial);
}

template <class T>
void expectRefusesABadPad(const Setting<T>& setting) {
    SCOPED_TRACE(setting.name);
    EditRig rig;
    for (const std::int32_t pad : {-1, 16, 20, INT32_MIN, INT32_MAX}) {
        T value = 77;
        EXPECT_EQ((rig.engine.*setting.get)(pad, &value), setting.badPad);
        EXPECT_EQ(value, T{77});
        EXPECT_EQ((rig.engine.*setting.set)(pad, T{1}), setting.badPad);
    }
    EXPECT_EQ((rig.engine.*setting.get)(0, nullptr), E_POINTER);
    EXPECT_EQ((rig.engine.*setting.get)(16, nullptr), E_POINTER);
}

TEST(PadSettings, AreKeptForEachPad) {
    for (const auto& flag : kFlags) expectReadsBackPerPad<std::uint32_t>(flag, flag.initial ? 0 : 1);
    for (const auto& level : kLevels) expectReadsBackPerPad(level, 0.75f);
    for (const auto& number : kNumbers) expectReadsBackPerPad(number, 9);
}

TEST(PadSettings, ABadPadIsRefusedOrPassedOverAsToldForEach) {
    for (const auto& flag : kFlags) expectRefusesABadPad(flag);
    for (const auto& level : kLevels) expectRefusesABadPad(level);
    for (const auto& number : kNumbers) expectRefusesABadPad(number);
}

TEST(PadSettings, PlayModeIsOneShotByAnotherName) {
    EditRig rig;
    rig.engine.SetPadPlayMode(2, 0);
    EXPECT_EQ(rig.get(&Sampler::GetPadOneShot, 2), 0u);
    rig.engine.SetPadOneShot(2, 1);
    EXPECT_EQ(rig.get(&Sampler::GetPadPlayMode, 2), 1u);
}

TEST(PadSettings, VolumeIsHeldTo0To2) {
    EditRig rig;
    const std::pair<float, float> cases[] = {
        {2.5f, 2.0f}, {-1.0f, 0.0f}, {0.333f, 0.333f}, {INFINITY, 2.0f}, {-INFINITY, 0.0f}};
    for (const auto& [set, kept] : cases) {
        EXPECT_EQ(rig.engine.SetPadVolume(0, set), S_OK);
        EXPECT_EQ(rig.get(&Sampler::GetPadVolume, 0), kept);
    }
}

TEST(PadSettings, PanIsHeldTo0To1) {
    EditRig rig;
    for (const auto& [set, kept] : {std::pair{1.5f, 1.0f}, {-0.5f, 0.0f}, {0.25f, 0.25f}}) {
        EXPECT_EQ(rig.engine.SetPadPan(0, set), S_OK);
        EXPECT_EQ(rig.get(&Sampler::GetPadPan, 0), kept);
    }
}

TEST(PadSettings, WhatIsNoNumberChangesNothing) {
    EditRig rig;
    rig.engine.SetPadVolume(0, 0.5f);
    rig.engine.SetPadPan(0, 0.25f);
    EXPECT_EQ(rig.engine.SetPadVolume(0, NAN), S_OK);
    EXPECT_EQ(rig.engine.SetPadPan(0, NAN), S_OK);
    EXPECT_EQ(rig.get(&Sampler::GetPadVolume, 0), 0.5f);
    EXPECT_EQ(rig.get(&Sampler::GetPadPan, 0), 0.25f);
}

TEST(PadSettings, ChannelIsHeldToOmniAnd0To15) {
    EditRig rig;
    for (const auto& [set, kept] : {std::pair{99, 15}, {-9, -1}, {-1, -1}, {0, 0}, {15, 15}}) {
        EXPECT_EQ(rig.engine.SetPadChannel(0, set), S_OK);
        EXPECT_EQ(rig.get(&Sampler::GetPadChannel, 0), kept);
    }
}

TEST(PadSettings, ARootNoteOutsideMinus1To127LeavesTheFieldAlone) {
    EditRig rig;
    rig.engine.SetPadRootNote(0, 7);
    EXPECT_EQ(rig.engine.SetPadRootNote(0, 128), S_OK);
    EXPECT_EQ(rig.engine.SetPadRootNote(0, -2), S_OK);
    EXPECT_EQ(rig.get(&Sampler::GetPadRootNote, 0), 7);
    rig.engine.SetPadRootNote(0, 127);
    EXPECT_EQ(rig.get(&Sampler::GetPadRootNote, 0), 127);
    rig.engine.SetPadRootNote(0, -1);
    EXPECT_EQ(rig.get(&Sampler::GetPadRootNote, 0), -1);
}

TEST(PadSettings, AnOutputBeyond16IsRefused) {
    EditRig rig;
    EXPECT_EQ(rig.engine.SetPadOutput(0, 16), S_OK);
    EXPECT_EQ(rig.engine.SetPadOutput(0, 17), E_INVALIDARG);
    EXPECT_EQ(rig.engine.SetPadOutput(0, 0xFFFFFFFF), E_INVALIDARG);
    EXPECT_EQ(rig.get(&Sampler::GetPadOutput, 0), 16u);
}

TEST(PadSettings, ThePadsTailFlagIsAlsoThatOfItsGrains) {
    EditRig rig;
    rig.lay(0, loopFile(1));
    rig.engine.SetPadTail(0, 1);
    for (const GrainListEntry& grain : rig.padGrains(0)) EXPECT_EQ(grain.extra, 1u);
    for (const GrainListEntry& grain : rig.binGrains(0)) EXPECT_EQ(grain.extra, 0u);
    rig.engine.SetPadTail(0, 0);
    for (const GrainListEntry& grain : rig.padGrains(0)) EXPECT_EQ(grain.extra, 0u);
}

TEST(PadSettings, SoloOffOnTheLastSoloedPadLetsAllSoundAgain) {
    EditRig rig;
    rig.lay(0, loopFile(1));
    const auto sounds = [&] {
        rig.engine.AuditionPad(0, -1);
        rig.block(256);
        const bool sounding = rig.get(&Sampler::GetPadPlaying, 0) != 0;
        rig.engine.ResetVoices();
        return sounding;
    };
    rig.engine.SetPadSolo(3, 1);
    rig.engine.SetPadSolo(15, 1);
    EXPECT_FALSE(sounds());
    rig.engine.SetPadSolo(3, 0);
    EXPECT_FALSE(sounds());
    rig.engine.SetPadSolo(15, 0);
    EXPECT_TRUE(sounds());
}

TEST(LoopLength, OfAPadSetsTheFramesAtItsTempo) {
    EditRig rig;
    // 1 beat in 22050 frames is a tempo of 120; the end of a grain tells the frames by a copy placed by them.
    rig.lay(0, loopFile(1));
    EXPECT_EQ(rig.engine.SetLoopLength(kPadLoop, 0, 3 * kBeat), S_OK);
    EXPECT_EQ(rig.length(kPadLoop, 0), 3 * kBeat);
    rig.engine.SetPadSynced(0, 0);
    rig.engine.AuditionPad(0, -1);
    // Unsynced, the loop comes back after the frames of 3 beats at 120: 66150.
    const std::vector<float> audio = rig.render(70000);
    const auto at = [&](std::int64_t frame) { return audio[static_cast<std::size_t>(frame) * 2]; };
    EXPECT_EQ(at(66150 - 1), 0.0f);
    for (int i = 100; i < 1000; ++i) ASSERT_NEAR(at(66150 + i), at(i), 1e-6) << i;
}

TEST(LoopLength, OfAFileSetsItsTicksAndNothingElse) {
    EditRig rig;
    rig.load(loopFile(2));
    EXPECT_EQ(rig.engine.SetLoopLength(kBinLoop, 0, kBeat), S_OK);
    EXPECT_EQ(rig.length(kBinLoop, 0), kBeat);
    EXPECT_EQ(rig.count(kBinLoop, 0), 8);

    // A file that isn't synced repeats after its frames, which are still the audio's.
    WaveFile file;
    rig.load(file.frames(4410, sine));
    EXPECT_EQ(rig.engine.SetLoopLength(kBinLoop, 1, 16 * kBeat), S_OK);
    rig.engine.AuditionBinFile(1, -1);
    const std::vector<float> audio = rig.render(3 * 4410);
    for (std::size_t i = 100; i < 4410; ++i) ASSERT_NEAR(audio[2 * (4410 + i)], audio[2 * i], 1e-6) << i;
}

TEST(LoopLength, OfAPadWithoutATempoSetsTheFramesAt100BeatsAMinute) {
    EditRig rig;
    WaveFile file;
    rig.load(file.frames(4410, sine));
    rig.engine.SetLoopLength(kBinLoop, 0, 0);
    rig.engine.LoadPadFromBin(0, 0);
    rig.engine.SetPadLooping(0, 1);
    EXPECT_EQ(rig.engine.SetLoopLength(kPadLoop, 0, kBeat), S_OK);
    rig.engine.AuditionPad(0, -1);
    // A beat lasts 0.6 seconds.
    const std::vector<float> audio = rig.render(26460 + 4410);
    EXPECT_EQ(audio[2 * (26460 - 1)], 0.0f);
    for (std::size_t i = 100; i < 4410; ++i) ASSERT_NEAR(audio[2 * (26460 + i)], audio[2 * i], 1e-6) << i;
}

TEST(LoopLength, BadKindsAndIndicesAreRefused) {
    EditRig rig;
    rig.load(loopFile(1));
    std::int64_t ticks = 77;
    for (const auto& [kind, index] :
         {std::pair<std::uint32_t, std::uint32_t>{2, 0}, {1, 16}, {0, 16}, {0, 1}, {1, 0xFFFFFFFF}}) {
        EXPECT_EQ(rig.engine.GetLoopLength(kind, index, &ticks), E_INVALIDARG);
        EXPECT_EQ(rig.engine.SetLoopLength(kind, index, 5), E_INVALIDARG);
        std::int32_t count = 0;
        EXPECT_EQ(rig.engine.GetGrainCount(kind, index, &count), E_INVALIDARG);
    }
    EXPECT_EQ(ticks, 77);
    EXPECT_EQ(rig.engine.GetLoopLength(kPadLoop, 0, nullptr), E_POINTER);
    EXPECT_EQ(rig.engine.GetGrainCount(kPadLoop, 0, nullptr), E_POINTER);
}

TEST(LoopLength, ANegativeLengthChangesNothing) {
    EditRig rig;
    rig.lay(0, loopFile(1));
    EXPECT_EQ(rig.engine.SetLoopLength(kPadLoop, 0, -1), S_OK);
    EXPECT_EQ(rig.engine.SetLoopLength(kPadLoop, 0, INT64_MIN), S_OK);
    EXPECT_EQ(rig.length(kPadLoop, 0), kBeat);
}

/// Two seconds of a loop in the Loop Bin and on pad 0, played while one of them has a length that no music
/// has.
struct HostileLength : EditRig {
    static constexpr std::int32_t kBlock = 512;
    static constexpr std::int64_t kFrames = 16 * kBlock;

    struct Played {
        std::uint32_t synced;
        std::uint32_t kind;
    };
    static constexpr Played kAll[]{{0, kPadLoop}, {1, kPadLoop}, {1, kBinLoop}};

    HostileLength(Played played, std::int64_t ticks) : kind(played.kind) {
        lay(0, loopFile(4));
        engine.SetPadSynced(0, played.synced);
        EXPECT_EQ(engine.SetLoopLength(kind, 0, ticks), S_OK);
    }
    /// What the mix gives from the moment when the pad or the file is pressed.
    std::vector<float> play() {
        EXPECT_EQ(kind == kPadLoop ? engine.AuditionPad(0, -1) : engine.AuditionBinFile(0, -1), S_OK);
        std::vector<float> audio;
        for (std::int64_t i = 0; i < kFrames; i += kBlock) append(audio);
        return audio;
    }

    std::uint32_t kind;

private:
    /// A block into memory that ends where something else begins, at both ends.
    void append(std::vector<float>& audio) {
        constexpr std::size_t kMargin = 2 * kFrames, kValues = 2 * kBlock;
        std::vector<float> memory(kMargin + kValues + kMargin, 77.0f);
        const auto begin = memory.begin() + kMargin, end = begin + kValues;
        std::fill(begin, end, 0.0f);
        PinBuffer input{kBlock, 0, nullptr, nullptr, 1};
        PinBuffer mix{kBlock, context.pinIds[0], nullptr, &*begin, 1};
        const CAutoLock lock(engine);
        EXPECT_EQ(engine.ProcessBlock(position, &input, &mix, 1, 0, &notes), S_OK);
        position += kBlock;
        EXPECT_EQ(std::count(memory.begin(), begin, 77.0f), kMargin) << "in front of block " << position;
        EXPECT_EQ(std::count(end, memory.end(), 77.0f), kMargin) << "behind block " << position;
        audio.insert(audio.end(), begin, end);
    }
};

/// The left channel of frame i of such a file, under the fade of a voice's first 44 frames.
double faded(std::int64_t frame) {
    return sine(frame, 0) * std::min(static_cast<double>(frame) / 44.0, 1.0);
}

/// Compares the left channel of frames `first` to `last`, and reports the first that is off.
void expectTheFile(const std::vector<float>& audio, std::int64_t first, std::int64_t last) {
    for (std::int64_t i = first; i < last; ++i) {
        // The file has 16 bits.
        ASSERT_NEAR(audio.at(static_cast<std::size_t>(2 * i)), faded(i), 1e-4) << "frame " << i;
    }
}

TEST(LoopLength, OfNothingIsSilent) {
    for (const auto played : HostileLength::kAll) {
        for (const float value : HostileLength(played, 0).play()) ASSERT_EQ(value, 0.0f);
    }
}

TEST(LoopLength, BeyondAnyMusicLetsTheLoopSoundInItsPlace) {
    for (const auto played : HostileLength::kAll) {
        for (const std::int64_t ticks : {kOpenEnded, INT64_MAX / 2}) {
            expectTheFile(HostileLength(played, ticks).play(), 0, HostileLength::kFrames);
        }
    }
}

/// Each block is silent or the file's.
void expectSilenceOrTheFile(const std::vector<float>& audio) {
    for (std::int64_t first = 0; first < HostileLength::kFrames; first += HostileLength::kBlock) {
        const auto begin = audio.begin() + 2 * first;
        const auto end = begin + 2 * HostileLength::kBlock;
        const bool silent = std::all_of(begin, end, [](float value) { return value == 0.0f; });
        if (!silent) expectTheFile(audio, first, first + HostileLength::kBlock);
    }
}

TEST(LoopLength, ThatNothingCanBeAddedToPutsNoGrainInAnotherPlace) {
    for (const auto played : HostileLength::kAll) {
        expectSilenceOrTheFile(HostileLength(played, INT64_MAX).play());
    }
}

TEST(LoopLength, OfAMomentIsPlayedOnceABlock) {
    for (const auto played : HostileLength::kAll) {
        const std::vector<float> audio = HostileLength(played, 1).play();
        // A file's frames go by its audio, so that a pad that isn't synced has none of them in a moment.
        if (played.synced) expectTheFile(audio, 0, HostileLength::kBlock - 1);
        for (const float value : audio) ASSERT_LE(std::abs(value), 0.51f);
    }
}

TEST(LoopLength, GrownByAGrainAtTheEndOfTimePutsNoGrainInAnotherPlace) {
    for (const auto played : HostileLength::kAll) {
        HostileLength rig(played, 4 * kBeat);
        EXPECT_EQ(rig.engine.AddGrain(0, 0, 0, INT64_MAX), S_OK);
        EXPECT_GT(rig.length(kPadLoop, 0), INT64_MAX - kBeat);
        expectSilenceOrTheFile(rig.play());
    }
}

}  // namespace
}  // namespace marnoth::test::pad_settings_test
