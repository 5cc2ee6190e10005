#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "engine/EditRig.h"
#include "platform/text/Text.h"
#include "project/ProjectSave.h"
#include "project/SavedProject.h"
#include "support/FaultyStream.h"

namespace marnoth::test::project_save_test {
namespace {

using Sampler = IGrooveSampler;

SavedBytes save(EditRig& rig) {
    const ProjectPath path;
    EXPECT_EQ(rig.engine.SaveProject(0, path.c_str()), S_OK);
    EXPECT_FALSE(std::filesystem::exists(path.backup()));
    return {fileBytes(path.path())};
}

SavedBytes save(const Project& project) {
    FaultyStream stream;
    EXPECT_EQ(saveProject(project, stream), S_OK);
    EXPECT_EQ(stream.position, stream.bytes.size());
    return {stream.bytes};
}

/// Fits both the whole and the empty project: an outer header, `comn` and a `keym` of 16 records.
constexpr std::size_t kKeys = 48;                     ///< the first record of `keym`
constexpr std::size_t kBehindKeys = kKeys + 16 * 40;  ///< 688
constexpr std::size_t kEmptyPad = 8 + 68 + 8 + 8;     ///< `pdtr`, and `pevt` without grains

TEST(ProjectLayout, AnEmptyProjectHasHeaderKeysAndSixteenEmptyPads) {
    EditRig rig;
    const SavedBytes file = save(rig);
    ASSERT_EQ(file.size(), kBehindKeys + 16 * kEmptyPad);
    EXPECT_EQ(file.text(0, 4), "RIFF");
    EXPECT_EQ(file.u32(4), file.size() - 8);
    EXPECT_EQ(file.text(8, 4), "marn");
    EXPECT_EQ(file.text(12, 4), "comn");
    EXPECT_EQ(file.u32(16), 16u);
    EXPECT_EQ(file.u32(20), 1u) << "version";
    EXPECT_EQ(file.u32(24), 0u) << "audition option";
    EXPECT_EQ(file.i32(28), 0) << "files";
    EXPECT_EQ(file.i32(32), 16) << "pads";
    EXPECT_EQ(file.text(36, 4), "keym");
    EXPECT_EQ(file.u32(40), 4u + 16 * 40);
    EXPECT_EQ(file.u32(44), 16u);
    for (std::uint32_t pad = 0; pad < 16; ++pad) {
        const std::size_t at = kBehindKeys + pad * kEmptyPad;
        EXPECT_EQ(file.text(at, 4), "pdtr");
        EXPECT_EQ(file.u32(at + 4), 68u);
        EXPECT_EQ(file.u32(at + 8), pad);
        EXPECT_EQ(file.text(at + 76, 4), "pevt");
        EXPECT_EQ(file.u32(at + 80), 8u);
        EXPECT_EQ(file.u32(at + 84), pad);
        EXPECT_EQ(file.i32(at + 88), 0);
    }
}

TEST(ProjectLayout, TheKeyMapStandsInRecordsOfFortyBytes) {
    EditRig rig;
    const KeyMapRecord keys{5, 10, 20, 15, 30, 90};
    rig.engine.SetKeyMapEntry(&keys);
    rig.engine.SetAuditionEnabled(7);
    const SavedBytes file = save(rig);
    EXPECT_EQ(file.u32(24), 7u);
    EXPECT_EQ(file.i32(kKeys), 0);
    EXPECT_EQ(file.i32(kKeys + 16), 60) << "the first pad's white key";
    const std::size_t at = kKeys + 5 * 40;
    EXPECT_EQ(file.i32(at), 5);
    EXPECT_EQ(file.i32(at + 4), 0);
    EXPECT_EQ(file.i64(at + 8), 0);
    EXPECT_EQ(file.i32(at + 16), 10);
    EXPECT_EQ(file.i32(at + 20), 20);
    EXPECT_EQ(file.i32(at + 24), 15);
    EXPECT_EQ(file.i32(at + 28), 30);
    EXPECT_EQ(file.i32(at + 32), 90);
    EXPECT_EQ(file.i32(at + 36), 0);
    EXPECT_EQ(file.i32(kKeys + 15 * 40), 15);
}

TEST(ProjectLayout, KeysThatALoadRefusesAreHeldToTheirRange) {
    EditRig rig;
    const KeyMapRecord keys{0, -3, 300, 15, -1, 128};
    rig.engine.SetKeyMapEntry(&keys);
    const SavedBytes file = save(rig);
    EXPECT_EQ(file.i32(kKeys + 16), 0);
    EXPECT_EQ(file.i32(kKeys + 20), 127);
    EXPECT_EQ(file.i32(kKeys + 28), 0);
    EXPECT_EQ(file.i32(kKeys + 32), 127);
}

TEST(ProjectLayout, EverySettingOfAPadHasItsPlace) {
    EditRig rig;
    IGrooveSampler& pad = rig.engine;
    pad.SetPadLooping(2, 1);
    pad.SetPadSynced(2, 2);
    pad.SetPadMute(2, 3);
    pad.SetPadSolo(2, 4);
    pad.SetPadOneShot(2, 5);
    pad.SetPadTail(2, 6);
    pad.SetPadFollowKey(2, 7);
    pad.SetPadRootNote(2, 8);
    pad.SetPadOutput(2, 9);
    pad.SetPadChannel(2, 10);
    pad.SetPadVolume(2, 1.25f);
    pad.SetPadPan(2, 0.75f);
    pad.SetLoopLength(kPadLoop, 2, 4 * kBeat);
    const SavedBytes file = save(rig);
    const std::size_t at = kBehindKeys + 2 * kEmptyPad + 12;
    EXPECT_EQ(file.i64(at), 105840) << "four beats at 100 beats per minute";
    EXPECT_EQ(file.i64(at + 8), 4 * kBeat);
    EXPECT_EQ(file.u32(at + 16), rig.get(&Sampler::GetPadLooping, 2));
    EXPECT_EQ(file.u32(at + 20), rig.get(&Sampler::GetPadSynced, 2));
    EXPECT_EQ(file.u32(at + 24), rig.get(&Sampler::GetPadMute, 2));
    EXPECT_EQ(file.u32(at + 28), rig.get(&Sampler::GetPadSolo, 2));
    EXPECT_EQ(file.u32(at + 32), rig.get(&Sampler::GetPadOneShot, 2));
    EXPECT_EQ(file.u32(at + 36), rig.get(&Sampler::GetPadTail, 2));
    EXPECT_EQ(file.u32(at + 40), rig.get(&Sampler::GetPadFollowKey, 2));
    EXPECT_EQ(file.i32(at + 44), 8);
    EXPECT_EQ(file.u32(at + 48), 9u);
    EXPECT_EQ(file.i32(at + 52), 10);
    EXPECT_EQ(file.at<float>(at + 56), 1.25f);
    EXPECT_EQ(file.at<float>(at + 60), 0.75f);
    EXPECT_NE(file.u32(at + 36), 0u);
}

/// A project with one mono file of 1001 frames, on pad 3 too. Where the path ends depends on its length.
struct OneFile {
    OneFile() : wave(WaveFile().frames(1001, sine).writeTemp()) {
        rig.load(wave);
        rig.engine.LoadPadFromBin(3, 0);
        rig.engine.SetGrainTranspose(3, 0, -5);
        rig.engine.SetGrainVolume(3, 0, 0.25f);
        rig.engine.SetGrainPan(3, 0, 0.125f);
        file = save(rig);
        pathLength = wave.string().size();
        behindSettings = 776 + pathLength + pathLength % 2;
        behindWave = behindSettings + 12 + 26 + 8 + 4016;
    }

    EditRig rig;
    TempPath wave;
    SavedBytes file;
    std::size_t pathLength;
    std::size_t behindSettings;  ///< where the inner form begins
    std::size_t behindWave;      ///< where `lbte` begins
};

TEST(ProjectLayout, AFilesSettingsCarryNameAndPath) {
    const OneFile one;
    const SavedBytes& file = one.file;
    EXPECT_EQ(file.u32(4), file.size() - 8);
    EXPECT_EQ(file.i32(28), 1);
    EXPECT_EQ(file.text(688, 4), "lbtr");
    EXPECT_EQ(file.u32(692), 4 + 64 + 4 + 4 + 4 + one.pathLength);
    EXPECT_EQ(file.u32(696), 0u);
    EXPECT_EQ(file.i64(700), 1001);
    EXPECT_EQ(file.i64(708), kBeat) << "the least that a file without loop data has";
    EXPECT_EQ(file.u32(716), 1u) << "looping: a file always does";
    EXPECT_EQ(file.u32(720), 0u);
    EXPECT_EQ(file.u32(724), 0u);
    EXPECT_EQ(file.u32(728), 0u);
    EXPECT_EQ(file.u32(732), 1u) << "one-shot";
    EXPECT_EQ(file.u32(736), 0u);
    EXPECT_EQ(file.u32(740), 0u);
    EXPECT_EQ(file.i32(744), -1);
    EXPECT_EQ(file.u32(748), 0u);
    EXPECT_EQ(file.i32(752), -1);
    EXPECT_EQ(file.at<float>(756), 1.0f);
    EXPECT_EQ(file.at<float>(760), 0.5f);
    EXPECT_EQ(file.u32(764), 4u);
    EXPECT_EQ(file.text(768, 4), "file");
    EXPECT_EQ(file.u32(772), one.pathLength);
    EXPECT_EQ(file.text(776, one.pathLength), one.wave.string());
}

TEST(ProjectLayout, TheAudioIsAWaveOfItsOwnWithGuardFrameAndRounding) {
    const OneFile one;
    const SavedBytes& file = one.file;
    const std::size_t at = one.behindSettings;
    EXPECT_EQ(file.text(at, 4), "RIFF");
    EXPECT_EQ(file.u32(at + 4), 4u + 8 + 18 + 8 + 4016);
    EXPECT_EQ(file.text(at + 8, 8), "WAVEfmt ");
    EXPECT_EQ(file.u32(at + 16), 18u);
    EXPECT_EQ(file.at<std::uint16_t>(at + 20), 3) << "float";
    EXPECT_EQ(file.at<std::uint16_t>(at + 22), 1);
    EXPECT_EQ(file.u32(at + 24), 44100u);
    EXPECT_EQ(file.u32(at + 28), 176400u);
    EXPECT_EQ(file.at<std::uint16_t>(at + 32), 4);
    EXPECT_EQ(file.at<std::uint16_t>(at + 34), 32);
    EXPECT_EQ(file.at<std::uint16_t>(at + 36), 0);
    EXPECT_EQ(file.text(at + 38, 4), "data");
    EXPECT_EQ(file.u32(at + 42), 4016u) << "1001 frames and a guard, rounded up to four values";
    const std::size_t audio = at + 46;
    for (std::size_t i : {0u, 1u, 500u, 1000u}) {
        EXPECT_NEAR(file.at<float>(audio + 4 * i), sine(static_cast<std::int64_t>(i), 0), 1.0 / 32768) << i;
    }
    EXPECT_EQ(file.at<float>(audio + 4 * 1001), file.at<float>(audio + 4 * 1000)) << "the guard frame";
    EXPECT_EQ(file.at<float>(audio + 4 * 1002), 0.0f);
    EXPECT_EQ(file.at<float>(audio + 4 * 1003), 0.0f);
}

TEST(ProjectLayout, AGrainIsARunningIndexAndARecordOf112Bytes) {
    const OneFile one;
    const SavedBytes& file = one.file;
    const std::size_t at = one.behindWave;
    EXPECT_EQ(file.text(at, 4), "lbte");
    EXPECT_EQ(file.u32(at + 4), 8u + 116);
    EXPECT_EQ(file.u32(at + 8), 0u) << "file";
    EXPECT_EQ(file.i32(at + 12), 1) << "grains";
    EXPECT_EQ(file.u32(at + 16), 0u) << "running index";
    const std::size_t grain = at + 20;
    EXPECT_EQ(file.i32(grain), 0);
    EXPECT_EQ(file.i32(grain + 4), 0);
    EXPECT_EQ(file.i64(grain + 8), 0);
    EXPECT_EQ(file.i64(grain + 16), 0);
    EXPECT_EQ(file.i64(grain + 24), kBeat);
    EXPECT_EQ(file.i64(grain + 32), 1001);
    EXPECT_EQ(file.i64(grain + 40), 2002) << "a tail is twice as long as its grain";
    EXPECT_EQ(file.u32(grain + 48), 0u);
    EXPECT_EQ(file.u32(grain + 52), 0u);
    EXPECT_EQ(file.at<double>(grain + 56), 1.0);
    EXPECT_EQ(file.i32(grain + 64), 0);
    EXPECT_EQ(file.u32(grain + 68), 0u);
    EXPECT_EQ(file.at<double>(grain + 72), 1.0);
    EXPECT_EQ(file.at<double>(grain + 80), 0.5);
    EXPECT_EQ(file.u32(grain + 88), 0u);
    EXPECT_EQ(file.u32(grain + 92), 0u);
    EXPECT_EQ(file.i64(grain + 96), 0);
    EXPECT_EQ(file.u32(grain + 104), 0u);
    EXPECT_EQ(file.u32(grain + 108), 544u);
}

TEST(ProjectLayout, APadsGrainsFollowItsSettings) {
    const OneFile one;
    const SavedBytes& file = one.file;
    const std::size_t pads = one.behindWave + 8 + 8 + 116;
    ASSERT_EQ(file.size(), pads + 16 * kEmptyPad + 116);
    const std::size_t at = pads + 3 * kEmptyPad;
    EXPECT_EQ(file.text(at, 4), "pdtr");
    EXPECT_EQ(file.u32(at + 8), 3u);
    EXPECT_EQ(file.i64(at + 12), 1001);
    EXPECT_EQ(file.text(at + 76, 4), "pevt");
    EXPECT_EQ(file.u32(at + 80), 8u + 116);
    EXPECT_EQ(file.u32(at + 84), 3u);
    EXPECT_EQ(file.i32(at + 88), 1);
    EXPECT_EQ(file.u32(at + 92), 0u);
    const std::size_t grain = at + 96;
    EXPECT_EQ(file.i32(grain + 64), -5);
    EXPECT_EQ(file.at<double>(grain + 72), 0.25);
    EXPECT_EQ(file.at<double>(grain + 80), 0.125);
    EXPECT_EQ(file.text(at + kEmptyPad + 116, 4), "pdtr");
}

TEST(ProjectLayout, AGrainOfALoopHasItsPlaceInTicksAndFrames) {
    EditRig rig;
    rig.load(loopFile(1, 44100));
    const SavedBytes file = save(rig);
    const std::string all = file.text(0, file.size());
    const std::size_t at = all.find("lbte");
    ASSERT_NE(at, std::string::npos);
    ASSERT_EQ(file.i32(at + 12), 4);
    const std::size_t third = at + 16 + 2 * 116;
    EXPECT_EQ(file.u32(third), 2u) << "running index";
    EXPECT_EQ(file.i32(third + 4), 0);
    EXPECT_EQ(file.i32(third + 4 + 4), 2);
    EXPECT_NEAR(static_cast<double>(file.i64(third + 4 + 8)), kBeat / 2.0, kBeat / 20000.0);
    EXPECT_NEAR(static_cast<double>(file.i64(third + 4 + 16)), 11025, 1);
    EXPECT_EQ(file.i64(third + 4 + 96), file.i64(third + 4 + 16));
    EXPECT_EQ(file.u32(third + 4 + 48), 1u) << "locked to the tempo";
    EXPECT_EQ(file.u32(third + 4 + 104), 272u) << "half of 544 peaks";
}

TEST(ProjectLayout, AResampledWaveIsNotRoundedUp) {
    EditRig rig(48000);
    rig.load(WaveFile().channels(2).frames(1001, sine));
    const SavedBytes file = save(rig);
    const std::string all = file.text(0, file.size());
    const std::size_t data = all.find("data");
    ASSERT_NE(data, std::string::npos);
    // 1001 * 48000 / 44100 = 1089.52, so 1090 frames and the guard; rounded up it would be 8736.
    EXPECT_EQ(file.u32(data + 4), 1091u * 2 * 4);
    EXPECT_EQ(file.u32(all.find("fmt ") + 12), 48000u);
}

TEST(ProjectLayout, UndefinedBytesAreZeroAndEverySaveIsTheSame) {
    const OneFile one;
    EditRig other;
    other.load(one.wave);
    other.engine.LoadPadFromBin(3, 0);
    other.engine.SetGrainTranspose(3, 0, -5);
    other.engine.SetGrainVolume(3, 0, 0.25f);
    other.engine.SetGrainPan(3, 0, 0.125f);
    EXPECT_EQ(save(other).bytes, one.file.bytes);
}

TEST(ProjectKeys, AMissingEntryIsTheOneBeforeOnceMore) {
    Project project = projectOf({});
    project.keys = {
        {0, 50, 51, 52, 1, 2}, {2, 60, 61, 62, 3, 4}, {1, 70, 71, 72, 5, 6}, {9, 80, 81, 82, 7, 8}};
    FaultyStream stream{save(project).bytes};
    EditRig rig;
    ASSERT_EQ(rig.engine.LoadState(&stream), S_OK);
    const SavedBytes file = save(rig);
    ASSERT_EQ(file.u32(44), 4u);
    // Pads 0 to 3 are asked for, and pad 3 has none; that of pad 9 is never asked for.
    const std::vector<std::pair<std::int32_t, std::int32_t>> padsAndKeys{{0, 50}, {1, 70}, {2, 60}, {2, 60}};
    for (std::size_t i = 0; i < padsAndKeys.size(); ++i) {
        EXPECT_EQ(file.i32(kKeys + i * 40), padsAndKeys[i].first);
        EXPECT_EQ(file.i32(kKeys + i * 40 + 16), padsAndKeys[i].second);
    }
}

TEST(ProjectLimits, ALoopLengthIsHeldAndItsTicksStay) {
    EditRig rig;
    rig.engine.SetLoopLength(kPadLoop, 0, 100000 * kBeat);
    const SavedBytes file = save(rig);
    EXPECT_EQ(file.i64(kBehindKeys + 12), 12288000);
    EXPECT_EQ(file.i64(kBehindKeys + 20), 100000 * kBeat);
    EXPECT_EQ(rig.length(kPadLoop, 0), 100000 * kBeat) << "the engine keeps what it has";
}

TEST(ProjectLimits, WhatASaveHadToBringIntoTheFormLoads) {
    EditRig rig(192000);
    rig.lay(0, WaveFile().channels(3).rate(192000).frames(5000, sine));
    rig.load(loopFile(1, 8000));
    rig.engine.SetLoopLength(kPadLoop, 5, 100000 * kBeat);
    const KeyMapRecord keys{0, -3, 300, 15, -1, 128};
    rig.engine.SetKeyMapEntry(&keys);
    FaultyStream stream{save(rig).bytes};
    EXPECT_EQ(rig.engine.LoadState(&stream), S_OK);
    EXPECT_EQ(rig.binFiles(), 2);
    EXPECT_EQ(rig.count(kPadLoop, 0), 1);
    EXPECT_EQ(rig.count(kBinLoop, 1), 4);
    EXPECT_EQ(rig.length(kPadLoop, 5), 100000 * kBeat);
}

TEST(ProjectLimits, AGrainWhoseFileIsGoneTakesNobodysPlaceInAFullBin) {
    EditRig rig;
    rig.lay(0, WaveFile().frames(900, sine));
    rig.engine.PushUndoState();
    ASSERT_EQ(rig.engine.RemoveBinFile(0), S_OK);
    ASSERT_EQ(rig.engine.Undo(), S_OK);
    for (std::int64_t i = 0; i < 16; ++i) rig.load(WaveFile().frames(100 + i, sine));
    ASSERT_EQ(rig.binFiles(), 16);
    FaultyStream stream{save(rig).bytes};
    ASSERT_EQ(rig.engine.LoadState(&stream), S_OK);
    EXPECT_EQ(rig.binFiles(), 16);
    EXPECT_EQ(rig.count(kPadLoop, 0), 0);
}

TEST(ProjectLimits, GrainsThatUndoBroughtBackNameTheirFileByItsPresentNumber) {
    EditRig rig;
    rig.lay(0, WaveFile().frames(900, sine));
    rig.lay(1, WaveFile().frames(800, sine));
    rig.engine.PushUndoState();
    ASSERT_EQ(rig.engine.RemoveBinFile(0), S_OK);
    ASSERT_EQ(rig.engine.Undo(), S_OK);
    ASSERT_EQ(rig.source(1, 0), std::pair(1, 0)) << "the number before the removal";
    FaultyStream stream{save(rig).bytes};
    ASSERT_EQ(rig.engine.LoadState(&stream), S_OK);
    EXPECT_EQ(rig.count(kPadLoop, 0), 0) << "its file is gone, and another's audio isn't its own";
    EXPECT_EQ(rig.count(kPadLoop, 1), 1);
    EXPECT_EQ(rig.source(1, 0), std::pair(0, 0));
}

TEST(ProjectPathRules, AnExtensionIsAppendedUnlessThereIsOne) {
    EditRig rig;
    const TempPath dir;
    std::filesystem::create_directory(dir.path());
    const auto saved = [&](const std::string& name) {
        EXPECT_EQ(rig.engine.SaveProject(0, (dir.string() + "/" + name).c_str()), S_OK);
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(dir.path())) {
            names.push_back(entry.path().filename().string());
            std::filesystem::remove(entry.path());
        }
        return names.size() == 1 ? names[0] : "(" + std::to_string(names.size()) + " files)";
    };
    EXPECT_EQ(saved("groove"), "groove.mrn");
    EXPECT_EQ(saved("groove.mrn"), "groove.mrn");
    EXPECT_EQ(saved("groove.MRN"), "groove.MRN");
    EXPECT_EQ(saved("groove.Mrn"), "groove.Mrn");
    EXPECT_EQ(saved("groove.wav"), "groove.wav.mrn");
    EXPECT_EQ(saved("groove.mrn.bak"), "groove.mrn.bak.mrn");
    EXPECT_EQ(saved("mrn"), "mrn.mrn");
    EXPECT_EQ(saved("a"), "a.mrn");
}

TEST(ProjectPathRules, ANameOfAnyLanguageIsTaken) {
    EditRig rig;
    const TempPath dir;
    std::filesystem::create_directory(dir.path());
    const std::string name = systemFromWide(dir.wide() + L"/\u00DCbung");
    EXPECT_EQ(rig.engine.SaveProject(0, name.c_str()), S_OK);
    const auto path = pathFromWide(wideFromSystem(name) + L".mrn");
    EXPECT_TRUE(std::filesystem::exists(path));
    std::filesystem::remove(path);
}

TEST(ProjectPathRules, NoPathAndNoStreamAreRefused) {
    EditRig rig;
    EXPECT_EQ(rig.engine.SaveProject(0, nullptr), E_POINTER);
    EXPECT_EQ(rig.engine.SaveState(nullptr), E_POINTER);
}

TEST(ProjectPathRules, APlaceThatCannotBeWrittenFailsTheSave) {
    EditRig rig;
    const TempPath missing;
    EXPECT_EQ(rig.engine.SaveProject(0, (missing.string() + "/groove.mrn").c_str()), E_FAIL);
    EXPECT_FALSE(std::filesystem::exists(missing.path()));
    FaultyStream stream;
    stream.failFromCall = 3;
    EXPECT_EQ(rig.engine.SaveState(&stream), E_FAIL);
}

TEST(ProjectStream, HoldsTheSameBytesAsTheFile) {
    OneFile one;
    FaultyStream stream;
    EXPECT_EQ(one.rig.engine.SaveState(&stream), S_OK);
    EXPECT_EQ(stream.bytes, one.file.bytes);
}

TEST(ProjectStream, TheFormStartsAtThePositionAndTheStreamStandsBehindIt) {
    EditRig rig;
    FaultyStream stream(Bytes(5000, 0xEE));
    stream.position = 1000;
    EXPECT_EQ(rig.engine.SaveState(&stream), S_OK);
    const SavedBytes all{stream.bytes};
    EXPECT_EQ(all.bytes[999], 0xEE);
    EXPECT_EQ(all.text(1000, 4), "RIFF");
    EXPECT_EQ(all.u32(1004), kBehindKeys + 16 * kEmptyPad - 8);
    EXPECT_EQ(stream.position, 1000 + kBehindKeys + 16 * kEmptyPad);
    EXPECT_EQ(all.bytes[static_cast<std::size_t>(stream.position)], 0xEE);
    EXPECT_EQ(stream.references, 1u);
}

}  // namespace
}  // namespace marnoth::test::project_save_test
