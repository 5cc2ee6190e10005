#include <cmath>
#include <filesystem>
#include <numbers>
#include <stdexcept>
#include <string>

#include "engine/ProjectRig.h"

namespace marnoth::test::project_load_test {
namespace {

/// An engine with something of everything that a load clears.
struct FullRig : ProjectRig {
    explicit FullRig(std::uint32_t rate = 44100) : ProjectRig(rate) {
        EXPECT_EQ(lay(0, loop).result, S_OK);
        engine.PushUndoState();
        engine.SetPadSolo(0, 1);
        engine.SetPadMute(1, 1);
        KeyMapRecord keysOfPad{4, 1, 2, 3, 4, 5};
        engine.SetKeyMapEntry(&keysOfPad);
        engine.SetPadRootNote(2, 7);
    }
    TempPath loop = loopFile(1).writeTemp();
};

TEST(ProjectLoad, EmptyProjectLoadsWithoutAChange) {
    ProjectRig rig;
    EXPECT_EQ(rig.loadProject(ProjectBytes()), S_OK);
    rig.expectUsableAndEmpty(loopFile(1).writeTemp());
}

TEST(ProjectLoad, PutsFilesPadsAndKeysInPlaceOfTheOldOnes) {
    FullRig rig;
    ProjectBytes project = twoFilesFourPads(4000);
    project.keys[4] = {4, 10, 20, 15, 30, 40};
    project.pads[5].settings.output = 3;
    project.pads[5].settings.midiChannel = 9;
    project.pads[5].settings.volume = 0.5f;
    project.pads[5].settings.pan = 0.75f;
    project.pads[5].settings.mute = 1;
    project.pads[5].settings.followKey = 1;
    project.pads[5].settings.rootNote = 11;
    project.pads[5].settings.oneShot = 0;
    project.pads[5].settings.tailOn = 1;
    ASSERT_EQ(rig.loadProject(project), S_OK);
    EXPECT_EQ(rig.binFiles(), 2);
    char text[260];
    rig.engine.GetBinFileName(1, 0, text);
    EXPECT_STREQ(text, "file 1");
    rig.engine.GetBinFileName(1, 1, text);
    EXPECT_STREQ(text, "C:\\loops\\file 1.wav");
    EXPECT_EQ(rig.count(kBinLoop, 0), 4);
    EXPECT_EQ(rig.count(kPadLoop, 0), 4);
    EXPECT_EQ(rig.count(kPadLoop, 3), 0);
    EXPECT_EQ(rig.length(kPadLoop, 0), 4 * kBeat);
    EXPECT_EQ(rig.starts(2), (std::vector<std::int64_t>{3 * kBeat, 2 * kBeat, kBeat, 0}));
    EXPECT_EQ(rig.source(5, 1), std::pair(1, 1));
    EXPECT_EQ(rig.keys(4).lowKey, 10);
    EXPECT_EQ(rig.keys(4).highVelocity, 40);
    EXPECT_EQ(rig.get(&IGrooveSampler::GetPadOutput, 5), 3u);
    EXPECT_EQ(rig.get(&IGrooveSampler::GetPadChannel, 5), 9);
    EXPECT_EQ(rig.get(&IGrooveSampler::GetPadVolume, 5), 0.5f);
    EXPECT_EQ(rig.get(&IGrooveSampler::GetPadPan, 5), 0.75f);
    EXPECT_EQ(rig.get(&IGrooveSampler::GetPadMute, 5), 1u);
    EXPECT_EQ(rig.get(&IGrooveSampler::GetPadFollowKey, 5), 1u);
    EXPECT_EQ(rig.get(&IGrooveSampler::GetPadRootNote, 5), 11);
    EXPECT_EQ(rig.get(&IGrooveSampler::GetPadOneShot, 5), 0u);
    EXPECT_EQ(rig.get(&IGrooveSampler::GetPadTail, 5), 1u);
    EXPECT_EQ(rig.get(&IGrooveSampler::GetPadLooping, 5), 1u);
    EXPECT_EQ(rig.get(&IGrooveSampler::GetPadSynced, 5), 1u);
    EXPECT_EQ(rig.get(&IGrooveSampler::GetPadRootNote, 2), -1);
    EXPECT_EQ(rig.engine.Undo(), S_FALSE);
    EXPECT_GT(rig.playPad(0), 0.1f);
}

TEST(ProjectLoad, AuditionsEnd) {
    FullRig rig;
    rig.engine.SetPadSolo(0, 0);
    rig.engine.SetAuditionEnabled(1);
    rig.engine.AuditionPad(0, 0);
    rig.engine.AuditionBinFile(0, -1);
    EXPECT_GT(peakOf(rig.render(512)), 0.1f);
    ASSERT_EQ(rig.loadProject(twoFilesFourPads(4000)), S_OK);
    EXPECT_EQ(peakOf(rig.render(4096)), 0.0f);
}

TEST(ProjectLoad, OnlyKeysOfTheFileAreInTheKeyMap) {
    ProjectRig rig;
    ProjectBytes project;
    project.keys = {{3, 50, 51, 52, 1, 2}, {3, 60, 55, 52, 1, 2}};
    ASSERT_EQ(rig.loadProject(project), S_OK);
    EXPECT_EQ(rig.keys(3).lowKey, 55);  // the second replaced the first, its keys put in order
    EXPECT_EQ(rig.keys(3).highKey, 60);
    EXPECT_EQ(rig.keys(0).lowKey, -9);  // there is no entry
}

TEST(ProjectLoad, MissingFileLeavesAnEmptyProjectToo) {
    FullRig rig;
    EXPECT_EQ(rig.engine.LoadProject("no such file.mrn"), E_FAIL);
    rig.expectUsableAndEmpty(rig.loop);
}

TEST(ProjectLoad, FolderIsNoProject) {
    FullRig rig;
    const std::string folder = systemFromWide(wideFromPath(std::filesystem::temp_directory_path()));
    EXPECT_EQ(rig.engine.LoadProject(folder.c_str()), E_FAIL);
    rig.expectUsableAndEmpty(rig.loop);
}

TEST(ProjectLoad, NullPathIsRefusedWithNothingTouched) {
    FullRig rig;
    EXPECT_EQ(rig.engine.LoadProject(nullptr), E_POINTER);
    EXPECT_EQ(rig.engine.LoadState(nullptr), E_POINTER);
    EXPECT_EQ(rig.binFiles(), 1);
    EXPECT_EQ(rig.count(kPadLoop, 0), 4);
}

TEST(ProjectLoad, FifteenPadsFailAndLeaveAnEmptyProject) {
    FullRig rig;
    ProjectBytes project = twoFilesFourPads();
    project.padCount = 15;
    EXPECT_EQ(rig.loadProject(project), E_FAIL);
    rig.expectUsableAndEmpty(rig.loop);
}

TEST(ProjectLoad, ThreeChannelsFailAndLeaveAnEmptyProject) {
    FullRig rig;
    ProjectBytes project;
    project.files.push_back(projectFile(64, 1, 0, 3));
    EXPECT_EQ(rig.loadProject(project), E_FAIL);
    rig.expectUsableAndEmpty(rig.loop);
}

TEST(ProjectLoad, FailedStreamLeavesAnEmptyProjectToo) {
    FullRig rig;
    ProjectBytes project = twoFilesFourPads();
    project.padCount = 15;
    EXPECT_EQ(rig.loadStream(project.bytes()), E_FAIL);
    rig.expectUsableAndEmpty(rig.loop);
}

TEST(ProjectLoad, GrainOfAFileAboveTheCountIsDroppedAndTheRestLoads) {
    ProjectRig rig;
    ProjectBytes project = twoFilesFourPads(4000);
    project.pads[0].grains[0].binFile = 2;
    EXPECT_EQ(rig.loadProject(project), S_OK);
    EXPECT_EQ(rig.starts(0), (std::vector<std::int64_t>{kBeat, 2 * kBeat, 3 * kBeat}));
    EXPECT_EQ(rig.count(kPadLoop, 1), 2);
}

TEST(ProjectLoad, NegativeGrainThrowsAndLeavesAnEmptyProject) {
    FullRig rig;
    ProjectBytes project = twoFilesFourPads();
    project.pads[0].grains[0].binGrain = -1;
    EXPECT_THROW(rig.loadProject(project), std::invalid_argument);
    rig.expectUsableAndEmpty(rig.loop);
    EXPECT_THROW(rig.loadStream(project.bytes()), std::invalid_argument);
    rig.expectUsableAndEmpty(rig.loop);
}

TEST(ProjectLoad, GivesOneWhenTheFormatWasForced) {
    ProjectRig rig;
    rig.engine.inputFormat.wFormatTag = 1;
    EXPECT_EQ(rig.loadProject(twoFilesFourPads()), 1);
    EXPECT_EQ(rig.binFiles(), 2);
    EXPECT_EQ(rig.engine.inputFormat.wFormatTag, WAVE_FORMAT_IEEE_FLOAT);
    EXPECT_EQ(rig.loadProject(twoFilesFourPads()), S_OK);
    rig.engine.inputFormat.nChannels = 3;
    EXPECT_EQ(rig.loadStream(twoFilesFourPads().bytes()), 1);
    rig.engine.inputFormat.nChannels = 3;
    EXPECT_EQ(rig.loadProject(Bytes(100)), E_FAIL);
}

TEST(ProjectLoad, OptionToAuditionComesEvenWithAFileThatFails) {
    ProjectRig rig;
    ProjectBytes project = twoFilesFourPads();
    project.auditionEnabled = 1;
    ASSERT_EQ(rig.loadProject(project), S_OK);
    EXPECT_EQ(rig.auditionEnabled(), 1u);
    project.auditionEnabled = 0;
    project.padCount = 15;
    EXPECT_EQ(rig.loadProject(project), E_FAIL);
    EXPECT_EQ(rig.auditionEnabled(), 0u);
    rig.engine.SetAuditionEnabled(1);
    EXPECT_EQ(rig.loadProject(Bytes(100)), E_FAIL);
    EXPECT_EQ(rig.auditionEnabled(), 1u);
}

TEST(ProjectLoad, SoloCountsFromAFileAtOnce) {
    ProjectRig rig;
    ProjectBytes project = twoFilesFourPads(4000);
    project.pads[0].settings.solo = 1;
    ASSERT_EQ(rig.loadProject(project), S_OK);
    EXPECT_GT(rig.playPad(0), 0.1f);
    EXPECT_EQ(rig.playPad(1), 0.0f);
    project.pads[0].settings.solo = 0;
    ASSERT_EQ(rig.loadProject(project), S_OK);
    EXPECT_GT(rig.playPad(1), 0.1f);
}

TEST(ProjectLoad, SoloFromAStreamWaitsForTheNextChangeOfSolo) {
    ProjectRig rig;
    ProjectBytes project = twoFilesFourPads(4000);
    project.pads[0].settings.solo = 1;
    ASSERT_EQ(rig.loadStream(project.bytes()), S_OK);
    EXPECT_EQ(rig.get(&IGrooveSampler::GetPadSolo, 0), 1u);
    EXPECT_GT(rig.playPad(1), 0.1f);
    rig.engine.SetPadSolo(9, 0);
    EXPECT_EQ(rig.playPad(1), 0.0f);
    EXPECT_EQ(rig.loadStream(Bytes(100)), E_FAIL);
    rig.expectUsableAndEmpty(loopFile(1).writeTemp());
}

/// The file under a name that has no "." in it.
struct BareName {
    explicit BareName(const Bytes& content) : file(temp.path()) {
        file.replace_extension();
        WaveFile::writeBytes(file, content);
    }
    ~BareName() { std::filesystem::remove(file); }
    std::string name() const { return systemFromWide(wideFromPath(file)); }

    TempPath temp{"bare"};
    std::filesystem::path file;
};

TEST(ProjectLoad, FileWithoutAnExtensionMayBeWrapped) {
    ProjectRig rig;
    const Bytes form = twoFilesFourPads().bytes();
    Bytes wrapped(24, 0x11);
    wrapped.insert(wrapped.end(), form.begin(), form.end());
    const BareName bare(form);
    const BareName inWrapping(wrapped);
    ASSERT_EQ(bare.name().find('.'), std::string::npos);
    EXPECT_EQ(rig.engine.LoadProject(bare.name().c_str()), S_OK);
    EXPECT_EQ(rig.binFiles(), 2);
    EXPECT_EQ(rig.engine.LoadProject(inWrapping.name().c_str()), S_OK);
    EXPECT_EQ(rig.binFiles(), 2);
    // With an extension the search begins at the front: odd bytes there are no chunk.
    EXPECT_EQ(rig.loadProject(wrapped), E_FAIL);
    for (const std::size_t bytes : {0u, 3u, 4u, 24u}) {
        const BareName cut(Bytes(wrapped.begin(), wrapped.begin() + static_cast<std::ptrdiff_t>(bytes)));
        EXPECT_EQ(rig.engine.LoadProject(cut.name().c_str()), E_FAIL) << bytes;
    }
}

TEST(ProjectLoad, PathIsCutBehind259Characters) {
    ProjectRig rig;
    const TempPath path(".mrn");
    WaveFile::writeBytes(path.path(), ProjectBytes().bytes());
    std::filesystem::path padded = path.path().parent_path();
    std::string name = path.string();
    const std::size_t slash = name.find_last_of("/\\");
    // "./" says nothing, and makes the path as long as one likes.
    std::string front = name.substr(0, slash + 1);
    const std::string back = name.substr(slash + 1);
    while (front.size() + back.size() < 258) front += "./";
    if (front.size() + back.size() == 258) front.insert(slash, 1, name[slash]);
    ASSERT_EQ((front + back).size(), 259u);
    EXPECT_EQ(rig.engine.LoadProject((front + back).c_str()), S_OK);
    EXPECT_EQ(rig.engine.LoadProject((front + back + ".and more").c_str()), S_OK);
    EXPECT_EQ(rig.engine.LoadProject((front + "./" + back).c_str()), E_FAIL);
}

TEST(ProjectLoad, StreamStandsBehindTheFormAfterwards) {
    ProjectRig rig;
    const Bytes form = twoFilesFourPads().bytes();
    Bytes bytes(123, 0xAA);
    bytes.insert(bytes.end(), form.begin(), form.end());
    bytes.insert(bytes.end(), 77, 0xBB);
    FaultyStream stream(bytes);
    stream.position = 123;
    EXPECT_EQ(rig.engine.LoadState(&stream), S_OK);
    EXPECT_EQ(stream.position, 123 + form.size());
    EXPECT_EQ(stream.references, 1u);
    EXPECT_EQ(rig.binFiles(), 2);
}

TEST(ProjectLoad, FailedStreamStandsBehindWhatWasTouched) {
    ProjectRig rig;
    ProjectBytes project = twoFilesFourPads();
    project.version = 2;
    FaultyStream stream(project.bytes());
    EXPECT_EQ(rig.engine.LoadState(&stream), E_FAIL);
    EXPECT_EQ(stream.position, 12u + 8u + 16u);  // behind the common header
    EXPECT_EQ(stream.references, 1u);
}

TEST(ProjectLoad, FailsWithItsStreamAtEveryCall) {
    ProjectRig rig;
    const TempPath next = loopFile(1).writeTemp();
    FaultyStream whole(twoFilesFourPads().bytes());
    ASSERT_EQ(rig.engine.LoadState(&whole), S_OK);
    for (int call = 1; call < whole.calls; ++call) {
        FaultyStream stream(whole.bytes);
        stream.failFromCall = call;
        ASSERT_EQ(rig.engine.LoadState(&stream), E_FAIL) << call;
        EXPECT_EQ(stream.references, 1u);
        rig.expectEmpty();
    }
    rig.expectUsableAndEmpty(next);
}

/// A stream that gives fewer bytes than it says it has.
TEST(ProjectLoad, StreamThatEndsEarlyFailsWhereverItDoes) {
    ProjectRig rig;
    const Bytes form = twoFilesFourPads(16).bytes();
    for (std::size_t end = 0; end < form.size(); end += 3) {
        ASSERT_EQ(rig.loadStream(Bytes(form.begin(), form.begin() + static_cast<std::ptrdiff_t>(end))),
                  E_FAIL);
    }
    rig.expectUsableAndEmpty(loopFile(1).writeTemp());
}

TEST(ProjectLoad, SampleOfAFileAtAnotherRateIsResampled) {
    for (const std::uint32_t to : {44100u, 48000u, 96000u}) {
        ProjectRig rig(to);
        ProjectBytes project;
        project.files.push_back(projectFile(44100, 4));
        project.pads[0] = padOf(project.files[0]);
        // A tone of 441 Hz for a second, however many samples that takes.
        for (std::size_t i = 0; i <= 44100; ++i) {
            project.files[0].data[i] = static_cast<float>(std::sin(2 * std::numbers::pi * double(i) / 100));
        }
        ASSERT_EQ(rig.loadProject(project), S_OK);
        rig.engine.SetPadSynced(0, 0);
        rig.engine.AuditionPad(0, -1);
        const std::vector<float> sound = rig.render(to);
        int crossings = 0;
        for (std::size_t i = 2; i < sound.size(); i += 2) crossings += sound[i - 2] < 0 && sound[i] >= 0;
        EXPECT_NEAR(crossings, 441, 3) << to;
    }
}

/// What `SaveState` writes.
Bytes saved(ProjectRig& rig) {
    FaultyStream stream;
    EXPECT_EQ(rig.engine.SaveState(&stream), S_OK);
    return stream.bytes;
}

void expectSame(const TrackSettings& a, const TrackSettings& b) {
    EXPECT_EQ(encode(a), encode(b));
}

void expectSame(const std::vector<GrainSettings>& a, const std::vector<GrainSettings>& b) {
    ASSERT_EQ(a.size(), b.size());
    for (std::size_t i = 0; i < a.size(); ++i) EXPECT_EQ(encode(a[i]), encode(b[i]));
}

void expectSame(const Bytes& a, const Bytes& b) {
    Project first;
    Project second;
    ASSERT_EQ(readBytes(a, first), S_OK);
    ASSERT_EQ(readBytes(b, second), S_OK);
    ASSERT_EQ(first.files.size(), second.files.size());
    for (std::size_t i = 0; i < first.files.size(); ++i) {
        const ProjectFile& file = first.files[i];
        const ProjectFile& other = second.files[i];
        expectSame(file.settings, other.settings);
        expectSame(file.grains, other.grains);
        EXPECT_EQ(file.name, other.name);
        EXPECT_EQ(file.path, other.path);
        ASSERT_EQ(file.wave->frames, other.wave->frames);
        const std::int64_t values = (file.wave->frames + 1) * file.wave->format.nChannels;
        EXPECT_TRUE(std::equal(file.wave->samples.get(), file.wave->samples.get() + values,
                               other.wave->samples.get()));
    }
    for (std::size_t i = 0; i < first.pads.size(); ++i) {
        expectSame(first.pads[i].settings, second.pads[i].settings);
        expectSame(first.pads[i].grains, second.pads[i].grains);
    }
}

TEST(ProjectLoad, SavedProjectComesBackAsItWasAtItsRate) {
    for (const std::uint32_t rate : {44100u, 48000u, 96000u}) {
        ProjectRig rig(rate);
        const TempPath loop = loopFile(2, 44100).writeTemp();
        ASSERT_EQ(rig.lay(3, loop).result, S_OK);
        ASSERT_EQ(rig.load(plainFile(0.5)).result, S_OK);
        std::int32_t index;
        ASSERT_EQ(rig.engine.CopyGrain(3, 2, 7, 5 * kBeat / 2, &index), S_OK);
        ASSERT_EQ(rig.engine.AddGrain(1, 0, 7, kBeat), S_OK);
        rig.engine.SetGrainTranspose(7, 0, 5);
        rig.engine.SetPadVolume(7, 0.5f);
        const Bytes first = saved(rig);
        ProjectRig other(rate);
        ASSERT_EQ(other.loadStream(first), S_OK);
        const Bytes second = saved(other);
        expectSame(first, second);
        // What was read is rounded to fours, as a file is that was never resampled.
        ProjectRig third(rate);
        ASSERT_EQ(third.loadStream(second), S_OK);
        EXPECT_TRUE(saved(third) == second) << rate;
        EXPECT_EQ(rig.playPad(3), other.playPad(3));
    }
}

TEST(ProjectLoad, TheByteRateOfAWaveGoesThroughLoadsAndSavesAsItIsHeld) {
    ProjectRig at48(48000);
    // 44100 frames a second of one float. Conversion to another rate leaves the byte rate alone.
    ASSERT_EQ(at48.load(loopFile(1)).result, S_OK);
    for (int trip = 0; trip < 2; ++trip) {
        Project project;
        const Bytes bytes = saved(at48);
        ASSERT_EQ(readBytes(bytes, project), S_OK);
        EXPECT_EQ(project.files.at(0).wave->format.nSamplesPerSec, 48000u);
        EXPECT_EQ(project.files.at(0).wave->format.nAvgBytesPerSec, 176400u) << trip;
        ASSERT_EQ(at48.loadStream(bytes), S_OK);
    }
}

TEST(ProjectLoad, TenTripsBetweenTwoRatesLoseNothing) {
    ProjectRig at44(44100);
    ProjectRig at48(48000);
    ProjectBytes project;
    project.files.push_back(projectFile(30011, 7));
    project.files.push_back(projectFile(20021, 5, 1, 2));
    project.pads[0] = padOf(project.files[0]);
    project.pads[1] = padOf(project.files[1]);
    project.pads[2] = padOf(project.files[0]);
    for (std::size_t i = 0; i < 7; ++i) project.pads[2].grains[i].startSamples += 13 * std::int64_t(i) + 1;
    ASSERT_EQ(at44.loadProject(project), S_OK);
    const Bytes before = saved(at44);
    Bytes now = before;
    for (int trip = 0; trip < 10; ++trip) {
        ASSERT_EQ(at48.loadStream(now), S_OK);
        ASSERT_EQ(at44.loadStream(saved(at48)), S_OK);
        now = saved(at44);
    }
    Project first;
    Project last;
    ASSERT_EQ(readBytes(before, first), S_OK);
    ASSERT_EQ(readBytes(now, last), S_OK);
    const auto compare = [](const TrackSettings& a, const TrackSettings& b,
                            const std::vector<GrainSettings>& ga, const std::vector<GrainSettings>& gb) {
        EXPECT_EQ(a.lengthTicks, b.lengthTicks);
        // Up by 160/147 and back: a rounding of at most half a frame comes back as less than half a frame.
        EXPECT_EQ(a.lengthSamples, b.lengthSamples);
        ASSERT_EQ(ga.size(), gb.size());
        for (std::size_t i = 0; i < ga.size(); ++i) {
            EXPECT_EQ(ga[i].startTicks, gb[i].startTicks);
            EXPECT_EQ(ga[i].lengthTicks, gb[i].lengthTicks);
            EXPECT_EQ(ga[i].startSamples, gb[i].startSamples);
            EXPECT_EQ(ga[i].sampleOffset, gb[i].sampleOffset);
            EXPECT_NEAR(ga[i].lengthSamples, gb[i].lengthSamples, 1);
        }
    };
    for (std::size_t i = 0; i < 2; ++i) {
        compare(first.files[i].settings, last.files[i].settings, first.files[i].grains, last.files[i].grains);
        EXPECT_EQ(first.files[i].wave->frames, last.files[i].wave->frames);
    }
    for (std::size_t i = 0; i < 16; ++i) {
        compare(first.pads[i].settings, last.pads[i].settings, first.pads[i].grains, last.pads[i].grains);
    }
}

}  // namespace
}  // namespace marnoth::test::project_load_test
