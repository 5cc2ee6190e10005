#include <algorithm>

#include "engine/EditRig.h"

namespace marnoth::test::loop_bin_test {
namespace {

using Sampler = IGrooveSampler;

std::string nameOf(EditRig& rig, std::int32_t bin, std::uint32_t wantPath) {
    char text[260] = "untouched";
    EXPECT_EQ(rig.engine.GetBinFileName(bin, wantPath, text), S_OK);
    return text;
}

TEST(LoopBin, AFileIsLoadedOnceByItsPath) {
    EditRig rig;
    const TempPath path = loopFile(1).writeTemp();
    const auto first = rig.load(path);
    EXPECT_EQ(first.result, S_OK);
    EXPECT_EQ(first.bin, 0);
    EXPECT_EQ(first.status, kLoaded);
    rig.load(plainFile(0.1));
    const auto again = rig.load(path);
    EXPECT_EQ(again.result, S_OK);
    EXPECT_EQ(again.bin, 0);
    EXPECT_EQ(rig.binFiles(), 2);
}

TEST(LoopBin, TheSameAudioUnderAnotherPathIsASecondEntry) {
    EditRig rig;
    EXPECT_EQ(rig.load(loopFile(1)).bin, 0);
    EXPECT_EQ(rig.load(loopFile(1)).bin, 1);
    EXPECT_EQ(rig.binFiles(), 2);
}

TEST(LoopBin, AFullBinRefusesTheSeventeenthFile) {
    EditRig rig;
    std::vector<TempPath> paths;
    for (int i = 0; i < 16; ++i) {
        paths.push_back(plainFile(0.01).writeTemp());
        EXPECT_EQ(rig.load(paths.back()).bin, i);
    }
    const auto refused = rig.load(plainFile(0.01));
    EXPECT_EQ(refused.result, 1);
    EXPECT_EQ(refused.status, kBinFull);
    EXPECT_EQ(refused.bin, -7);
    EXPECT_EQ(rig.binFiles(), 16);
    EXPECT_EQ(rig.load(paths[7]).bin, 7) << "what is there already is no new entry";

    rig.lay(2, paths[3]);
    const auto toPad = rig.lay(2, plainFile(0.01));
    EXPECT_EQ(toPad.result, 1);
    EXPECT_EQ(toPad.status, kBinFull);
    EXPECT_EQ(rig.source(2, 0).first, 3) << "the pad keeps what it had";
}

TEST(LoopBin, AFileThatCantBeReadIsAnInvalidArgument) {
    EditRig rig;
    const TempPath nothing(".wav");
    const auto refused = rig.load(nothing);
    EXPECT_EQ(refused.result, E_INVALIDARG);
    EXPECT_EQ(refused.bin, -7);
    EXPECT_EQ(refused.status, 0u);
    EXPECT_EQ(rig.lay(0, nothing).result, E_INVALIDARG);
    EXPECT_EQ(rig.binFiles(), 0);
}

TEST(LoopBin, AFileOfEightBitsFails) {
    EditRig rig;
    EXPECT_EQ(rig.load(WaveFile().bits(8).frames(100)).result, E_FAIL);
    EXPECT_EQ(rig.binFiles(), 0);
}

TEST(LoopBin, AFileWithoutLoopDataOfMoreThan30SecondsIsRefused) {
    EditRig rig;
    EXPECT_EQ(rig.load(plainFile(40)).result, static_cast<HRESULT>(0x8000FFFF));
    EXPECT_EQ(rig.load(plainFile(30)).result, S_OK);
    WaveFile justOver;
    EXPECT_EQ(rig.load(justOver.rate(8000).frames(240001)).result, E_UNEXPECTED);
    EXPECT_EQ(rig.binFiles(), 1);
}

TEST(LoopBin, ALoopOf40SecondsLoadsWithUpTo64Beats) {
    EditRig rig;
    EXPECT_EQ(rig.load(plainFile(40).acid({.beats = 64})).result, S_OK);
    EXPECT_EQ(rig.load(plainFile(40).acid({.beats = 65})).result, E_UNEXPECTED);
}

TEST(LoopBin, ALoopLastsAtMost128Seconds) {
    EditRig rig;
    WaveFile justOver;
    justOver.rate(1000).frames(128001).acid({.beats = 8});
    EXPECT_EQ(rig.load(justOver).result, E_UNEXPECTED);
    EXPECT_EQ(rig.load(plainFile(128, 1000).acid({.beats = 8})).result, S_OK);
}

TEST(LoopBin, ALoopMarkedAsOneShotTakesTheSingleGrainPath) {
    EditRig rig;
    rig.load(loopFile(4).acid({.flags = 1, .beats = 4}));
    EXPECT_EQ(rig.count(kBinLoop, 0), 1);
    EXPECT_EQ(rig.load(plainFile(40).acid({.flags = 1, .beats = 4})).result, E_UNEXPECTED)
        << "and has that path's limit";
}

TEST(LoopBin, ASingleGrainGetsTheNearestPowerOfTwoOfBeatsAtTempo120) {
    const std::pair<double, std::int64_t> cases[] = {{3.0, 8}, {0.1, 1}, {0.5, 1},  {1.0, 2},
                                                     {1.4, 2}, {1.5, 4}, {30.0, 64}};
    for (const auto& [seconds, beats] : cases) {
        EditRig rig(8000);
        rig.load(plainFile(seconds));
        EXPECT_EQ(rig.binGrains(0)[0].endTicks, beats * kBeat) << seconds;
        EXPECT_EQ(rig.length(kBinLoop, 0), beats * kBeat) << seconds;
    }
}

TEST(LoopBin, ASingleGrainCoversTheWholeFile) {
    EditRig rig;
    rig.load(plainFile(1.0));
    const auto grains = rig.binGrains(0);
    ASSERT_EQ(grains.size(), 1u);
    EXPECT_EQ(grains[0].startTicks, 0);
    EXPECT_EQ(grains[0].plotLength, 544);
    EXPECT_EQ(grains[0].channels, 1);
    EXPECT_EQ(grains[0].extra, 0u);
    EXPECT_NE(grains[0].plotData, nullptr);
}

TEST(LoopBin, ALoopIsCutOnItsSegmentsInTicksOfItsBeats) {
    // One second at 22050 Hz with 2 beats: segments start at trunc(22050 * i / 8) and double with the rate.
    EditRig rig;
    WaveFile file;
    file.rate(22050).channels(2).frames(22050, sine).acid({.flags = 6, .root = 57, .beats = 2});
    rig.lay(0, file);
    const std::int64_t starts[] = {0, 5512, 11024, 16536, 22050, 27562, 33074, 38586, 44100};
    const auto toTicks = [](std::int64_t frames) {
        return std::llround(static_cast<double>(frames) * 2 * kBeat / 44100);
    };
    const auto grains = rig.padGrains(0);
    ASSERT_EQ(grains.size(), 8u);
    for (std::size_t i = 0; i < 8; ++i) {
        EXPECT_EQ(grains[i].startTicks, toTicks(starts[i])) << i;
        EXPECT_EQ(grains[i].endTicks, toTicks(starts[i]) + toTicks(starts[i + 1] - starts[i])) << i;
        EXPECT_EQ(grains[i].plotLength, 68) << i;
        EXPECT_EQ(grains[i].channels, 2) << i;
        EXPECT_EQ(rig.source(0, static_cast<std::int32_t>(i)),
                  std::make_pair(0, static_cast<std::int32_t>(i)));
    }
    EXPECT_EQ(grains[1].startTicks, 15727213);
    EXPECT_EQ(grains[2].startTicks, 31454427);
    EXPECT_EQ(grains[2].endTicks, 47181640);
    EXPECT_EQ(rig.length(kPadLoop, 0), 125829120);
}

TEST(LoopBin, ALoopLandsOnAPadLoopedAndSyncedWithItsKey) {
    EditRig rig;
    // The reader makes note 57 (A) 0, and the shift by 3 comes once more.
    rig.lay(0, loopFile(1).acid({.flags = 2, .root = 57, .beats = 1}));
    EXPECT_EQ(rig.get(&Sampler::GetPadLooping, 0), 1u);
    EXPECT_EQ(rig.get(&Sampler::GetPadSynced, 0), 1u);
    EXPECT_EQ(rig.get(&Sampler::GetPadFollowKey, 0), 1u);
    EXPECT_EQ(rig.get(&Sampler::GetPadRootNote, 0), 3);
    rig.lay(1, loopFile(1).acid({.flags = 0, .root = 67, .beats = 1}));
    EXPECT_EQ(rig.get(&Sampler::GetPadFollowKey, 1), 0u);
    EXPECT_EQ(rig.get(&Sampler::GetPadRootNote, 1), ((67 + 3) % 12 + 3) % 12);
}

TEST(LoopBin, ASingleGrainFileLandsUnloopedUnsyncedAndWithoutRoot) {
    EditRig rig;
    rig.engine.SetPadRootNote(0, 5);
    rig.engine.SetPadLooping(0, 1);
    rig.engine.SetPadSynced(0, 1);
    rig.engine.SetPadFollowKey(0, 1);
    rig.lay(0, plainFile(0.5));
    EXPECT_EQ(rig.get(&Sampler::GetPadLooping, 0), 0u);
    EXPECT_EQ(rig.get(&Sampler::GetPadSynced, 0), 0u);
    EXPECT_EQ(rig.get(&Sampler::GetPadFollowKey, 0), 0u);
    EXPECT_EQ(rig.get(&Sampler::GetPadRootNote, 0), -1);
}

TEST(LoopBin, LayingAFileReplacesTheGrainsAndLeavesThePadsOwnSettings) {
    EditRig rig;
    rig.load(loopFile(2));
    rig.lay(3, plainFile(0.5));
    rig.engine.SetPadTail(3, 1);
    rig.engine.SetPadOneShot(3, 0);
    rig.engine.SetPadChannel(3, 4);
    rig.engine.SetPadOutput(3, 5);
    rig.engine.SetPadVolume(3, 0.5f);
    rig.engine.SetPadPan(3, 0.25f);
    EXPECT_EQ(rig.engine.LoadPadFromBin(3, 0), S_OK);
    EXPECT_EQ(rig.count(kPadLoop, 3), 8);
    EXPECT_EQ(rig.length(kPadLoop, 3), 2 * kBeat);
    EXPECT_EQ(rig.get(&Sampler::GetPadTail, 3), 1u);
    EXPECT_EQ(rig.get(&Sampler::GetPadOneShot, 3), 0u);
    EXPECT_EQ(rig.get(&Sampler::GetPadChannel, 3), 4);
    EXPECT_EQ(rig.get(&Sampler::GetPadOutput, 3), 5u);
    EXPECT_EQ(rig.get(&Sampler::GetPadVolume, 3), 0.5f);
    EXPECT_EQ(rig.get(&Sampler::GetPadPan, 3), 0.25f);
    EXPECT_EQ(rig.padGrains(3)[0].extra, 0u) << "the grains come as the file has them";
}

TEST(LoopBin, AListKeepsItsPeaksWhateverBecomesOfTheGrains) {
    EditRig rig;
    rig.lay(0, loopFile(1));
    const auto before = rig.padGrains(0);
    const std::vector<float> peaks(before[0].plotData, before[0].plotData + 544 * 2);
    rig.engine.RemoveBinFile(0);
    rig.engine.ClearProject();
    EXPECT_TRUE(std::equal(peaks.begin(), peaks.end(), before[0].plotData));
    EXPECT_GT(peaks[1], 0.1f) << "a maximum of the sine";
}

TEST(LoopBin, AListHoldsEachPeakTableOnce) {
    EditRig rig;
    rig.lay(0, loopFile(1));
    rig.load(loopFile(2));
    rig.engine.AddGrain(1, 0, 0, 9 * kBeat);
    rig.engine.AddGrain(0, 2, 0, 10 * kBeat);
    const auto grains = rig.padGrains(0);
    ASSERT_EQ(grains.size(), 6u);
    const float* const first = grains[0].plotData;
    EXPECT_EQ(grains[3].plotData, first + 3 * 136 * 2);
    EXPECT_EQ(grains[5].plotData, first + 2 * 136 * 2) << "the third grain of the first file once more";
    EXPECT_EQ(grains[4].plotData, first + 545 * 2) << "the other file's table, behind the spare entry";
}

TEST(LoopBin, LaidGrainsShareSampleAndPeaksWithTheFile) {
    EditRig rig;
    rig.lay(0, loopFile(1));
    rig.engine.LoadPadFromBin(1, 0);
    const auto file = rig.binGrains(0);
    for (const std::int32_t pad : {0, 1}) {
        const auto grains = rig.padGrains(pad);
        for (std::size_t i = 0; i < 4; ++i) {
            ASSERT_EQ(grains[i].plotLength, 136);
            EXPECT_TRUE(std::equal(grains[i].plotData, grains[i].plotData + 136 * 2, file[i].plotData));
        }
    }
    EXPECT_LT(file[0].plotData[0], file[0].plotData[1]) << "there is something to plot";
    EXPECT_EQ(file[1].plotData, file[0].plotData + 136 * 2) << "a quarter of 544 entries of two values";
}

TEST(LoopBin, OfSegmentsBehindTheEndTheRestIsDropped) {
    EditRig rig;
    WaveFile file;
    file.frames(1000, sine).acid({.beats = 1});
    file.strc(2, {{.position = 400}, {.position = 1200}, {.position = 1300}});
    EXPECT_EQ(rig.load(file).result, S_OK);
    // 0 to 400 fits; 400 to 1200 ends behind frame 1000.
    EXPECT_EQ(rig.count(kBinLoop, 0), 1);
    EXPECT_EQ(rig.length(kBinLoop, 0), std::llround(0.4 * kBeat));
}

TEST(LoopBin, ALoopWhoseFirstSegmentDoesntFitHasNoGrainsAndIsRefused) {
    EditRig rig;
    WaveFile file;
    file.frames(1000, sine).acid({.beats = 1}).strc(2, {{.position = 1200}});
    EXPECT_EQ(rig.load(file).result, E_UNEXPECTED);
    EXPECT_EQ(rig.binFiles(), 0);
}

TEST(LoopBin, MarkersOutOfOrderEndTheCut) {
    EditRig rig;
    WaveFile file;
    file.frames(1000, sine).acid({.beats = 1});
    file.strc(2, {{.position = 600}, {.position = 200}, {.position = 800}});
    EXPECT_EQ(rig.load(file).result, S_OK);
    EXPECT_EQ(rig.count(kBinLoop, 0), 1) << "the second segment would run backwards";
}

TEST(LoopBin, EqualMarkersMakeAGrainOfNoFramesThatKeepsItsPlace) {
    EditRig rig;
    WaveFile file;
    file.frames(1000, sine).acid({.beats = 1});
    file.strc(2, {{.position = 500}, {.position = 500}});
    rig.lay(0, file);
    const auto grains = rig.padGrains(0);
    ASSERT_EQ(grains.size(), 3u);
    EXPECT_EQ(grains[1].startTicks, kBeat / 2);
    EXPECT_EQ(grains[1].endTicks, kBeat / 2);
    EXPECT_EQ(grains[2].endTicks, kBeat);
}

TEST(LoopBin, TheLastOf64GrainsMayReachOneEntryPastTheTable) {
    EditRig rig;
    WaveFile file;
    file.frames(64000, sine).acid({.beats = 16});
    rig.load(file);
    const auto grains = rig.binGrains(0);
    ASSERT_EQ(grains.size(), 64u);
    // 8.5 entries a grain, rounded up: offset 535.5 is 536, and 9 more make 545.
    EXPECT_EQ(grains[63].plotLength, 9);
    EXPECT_EQ(grains[63].plotData - grains[0].plotData, 536 * 2);
    for (int i = 0; i < 2 * grains[63].plotLength; ++i) EXPECT_TRUE(std::isfinite(grains[63].plotData[i]));
}

TEST(LoopBin, AForcedFormatIsReportedWithTheLoad) {
    EditRig rig;
    rig.context.rate = 48000;
    const TempPath path = plainFile(0.5).writeTemp();
    for (int i = 0; i < 2; ++i) {
        rig.engine.inputFormat.wFormatTag = WAVE_FORMAT_PCM;
        rig.engine.inputFormat.wBitsPerSample = 16;
        const auto loaded = rig.load(path);
        EXPECT_EQ(loaded.result, 1);
        EXPECT_EQ(loaded.status, kLoadedFormatForced);
        EXPECT_EQ(loaded.bin, 0);
        EXPECT_EQ(rig.engine.inputFormat.wFormatTag, WAVE_FORMAT_IEEE_FLOAT);
        EXPECT_EQ(rig.engine.inputFormat.nSamplesPerSec, 48000u);
    }
    rig.engine.inputFormat.nChannels = 3;
    const auto laid = rig.lay(6, path);
    EXPECT_EQ(laid.result, 1);
    EXPECT_EQ(laid.status, kLoadedFormatForced);
    EXPECT_EQ(rig.engine.inputFormat.nChannels, 2);
    EXPECT_EQ(rig.count(kPadLoop, 6), 1) << "the file is laid all the same";
}

TEST(LoopBin, NamesAndPathsComeBackAsTheyWere) {
    EditRig rig;
    const TempPath path = plainFile(0.1).writeTemp();
    rig.load(path);
    EXPECT_EQ(nameOf(rig, 0, 0), "file");
    EXPECT_EQ(nameOf(rig, 0, 1), path.string());
    EXPECT_EQ(nameOf(rig, 1, 0), "untouched");
    EXPECT_EQ(nameOf(rig, -1, 1), "untouched");
    EXPECT_EQ(rig.engine.GetBinFileName(0, 0, nullptr), S_OK);
}

TEST(LoopBin, ALongNameComesBackIn259Bytes) {
    EditRig rig;
    const TempPath path = plainFile(0.1).writeTemp();
    const std::string name(300, 'x');
    std::int32_t bin = -1;
    std::uint32_t status = 0;
    rig.engine.LoadFileToBin(name.c_str(), path.c_str(), &bin, &status);
    EXPECT_EQ(nameOf(rig, 0, 0), std::string(259, 'x'));
}

TEST(LoopBin, NullTextsAndPointersAreRefused) {
    EditRig rig;
    std::int32_t bin = -7;
    std::uint32_t status = 99;
    EXPECT_EQ(rig.engine.LoadFileToBin(nullptr, "x", &bin, &status), E_POINTER);
    EXPECT_EQ(rig.engine.LoadFileToBin("x", nullptr, &bin, &status), E_POINTER);
    EXPECT_EQ(rig.engine.LoadFileToBin("x", "x", nullptr, &status), E_POINTER);
    EXPECT_EQ(rig.engine.LoadFileToBin("x", "x", &bin, nullptr), E_POINTER);
    EXPECT_EQ(rig.engine.LoadFileToPad(0, "x", "x", &bin, nullptr), E_POINTER);
    EXPECT_EQ(rig.engine.LoadFileToPad(16, "x", "x", &bin, &status), E_INVALIDARG);
    EXPECT_EQ(rig.engine.LoadFileToPad(-1, "x", "x", &bin, &status), E_INVALIDARG);
    EXPECT_EQ(rig.engine.LoadPadFromBin(0, 0), E_INVALIDARG);
    EXPECT_EQ(bin, -7);
}

/// Files 0 to 4, and pad p with the grains of file p.
struct RemoveBinFileTest : testing::Test {
    void SetUp() override {
        for (std::int32_t pad = 0; pad < 5; ++pad) rig.lay(pad, loopFile(1, 8000));
    }
    EditRig rig;
};

TEST_F(RemoveBinFileTest, TurnsGrainsOfFile3IntoGrainsOfFile2) {
    EXPECT_EQ(rig.engine.RemoveBinFile(2), S_OK);
    EXPECT_EQ(rig.binFiles(), 4);
    EXPECT_EQ(rig.count(kPadLoop, 2), 0);
    EXPECT_EQ(rig.source(1, 3), std::make_pair(1, 3));
    EXPECT_EQ(rig.source(3, 3), std::make_pair(2, 3));
    EXPECT_EQ(rig.source(4, 0), std::make_pair(3, 0));
    // The remaining files' own grains are renumbered too: a copy says so.
    rig.engine.AddGrain(3, 1, 9, 0);
    EXPECT_EQ(rig.source(9, 0), std::make_pair(3, 1));
}

TEST_F(RemoveBinFileTest, TakesTheGrainsOffEveryPad) {
    rig.engine.AddGrain(1, 0, 0, 8 * kBeat);
    rig.engine.AddGrain(1, 2, 7, 0);
    rig.engine.RemoveBinFile(1);
    EXPECT_EQ(rig.count(kPadLoop, 0), 4);
    EXPECT_EQ(rig.count(kPadLoop, 7), 0);
    EXPECT_EQ(rig.length(kPadLoop, 7), 0);
}

TEST_F(RemoveBinFileTest, TheLastOneGoesLikeAnyOther) {
    EXPECT_EQ(rig.engine.RemoveBinFile(4), S_OK);
    EXPECT_EQ(rig.binFiles(), 4);
    EXPECT_EQ(rig.load(loopFile(1)).bin, 4);
    for (int i = 0; i < 5; ++i) EXPECT_EQ(rig.engine.RemoveBinFile(0), S_OK);
    EXPECT_EQ(rig.binFiles(), 0);
}

TEST_F(RemoveBinFileTest, ABadIndexIsAnAnswerOfNo) {
    EXPECT_EQ(rig.engine.RemoveBinFile(5), S_FALSE);
    EXPECT_EQ(rig.engine.RemoveBinFile(-1), S_FALSE);
    EXPECT_EQ(rig.binFiles(), 5);
}

TEST_F(RemoveBinFileTest, EndsEveryVoice) {
    rig.engine.AuditionPad(0, -1);
    rig.engine.AuditionBinFile(3, -1);
    rig.block(64);
    rig.engine.RemoveBinFile(4);
    EXPECT_EQ(rig.get(&Sampler::GetBinPlaying, 3), 0u);
    for (const float value : rig.render(1024)) ASSERT_EQ(value, 0.0f);
}

}  // namespace
}  // namespace marnoth::test::loop_bin_test
