#include <limits>
#include <stdexcept>

#include "engine/ProjectRig.h"

namespace marnoth::test::project_tracks_test {
namespace {

constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();

/// n * to / from, halves up, in whole numbers.
std::int64_t scaled(std::int64_t n, std::int64_t from, std::int64_t to) {
    return (2 * n * to + from) / (2 * from);
}

/// The tracks of a project at a rate.
struct Tracks {
    explicit Tracks(const ProjectBytes& bytes, std::uint32_t rate = 44100) {
        Project project;
        EXPECT_EQ(readBytes(bytes.bytes(), project), S_OK);
        fault = buildTracks(project, {floatFormat(rate, 2), static_cast<std::int32_t>(rate)}, tracks);
        result = codeOf(fault);
    }
    const BinFile& bin(std::int32_t index) { return tracks.files[index]; }
    const CGrooveTrack& file(std::int32_t index) { return tracks.files[index].track; }
    const CGrooveTrack& pad(std::size_t index) { return tracks.pads.at(index); }

    ProjectTracks tracks;
    LoadFault fault;
    HRESULT result = E_UNEXPECTED;
};

/// One file of `frames` frames, and pad 0 with one grain of it.
ProjectBytes onePadGrain(std::int64_t frames, std::int64_t offset, std::int64_t length,
                         std::int64_t start = 0, std::uint32_t rate = 44100) {
    ProjectBytes project;
    project.files.push_back(projectFile(frames, 1, 0, 1, rate));
    ProjectBytes::Grain grain;
    grain.sampleOffset = offset;
    grain.lengthSamples = length;
    grain.startSamples = start;
    project.pads[0].grains = {grain};
    return project;
}

TEST(ProjectTracks, AtTheSameRateEverythingStays) {
    const ProjectBytes bytes = twoFilesFourPads(1000);
    Tracks now(bytes);
    ASSERT_EQ(now.result, S_OK);
    ASSERT_EQ(now.tracks.files.size(), 2);
    EXPECT_EQ(now.bin(0).names->name, L"file 0");
    EXPECT_EQ(now.bin(1).names->path, L"C:\\loops\\file 1.wav");
    EXPECT_EQ(now.bin(0).sample->peakPoints, 544);
    EXPECT_EQ(now.pad(2).GetSize(), 4);
    for (std::int32_t i = 0; i < 4; ++i) {
        const CGrooveEvent& grain = now.pad(2).GetAt(i);
        const ProjectBytes::Grain& saved = bytes.pads[2].grains[static_cast<std::size_t>(i)];
        EXPECT_EQ(grain.binGrain, 3 - i);
        EXPECT_EQ(grain.startTicks, saved.startTicks);
        EXPECT_EQ(grain.startSamples, saved.startSamples);
        EXPECT_EQ(grain.lengthTicks, saved.lengthTicks);
        EXPECT_EQ(grain.lengthSamples, 250);
        EXPECT_EQ(grain.sampleOffset, saved.sampleOffset);
        EXPECT_EQ(grain.sample, now.bin(0).sample);
        EXPECT_EQ(grain.format.nSamplesPerSec, 44100u);
        EXPECT_EQ(grain.peakOffset, saved.peakOffset);
        EXPECT_EQ(grain.peakCount, saved.peakCount);
        EXPECT_EQ(grain.tailLengthSamples, 500);
    }
    // Four beats in 1000 frames.
    EXPECT_DOUBLE_EQ(now.pad(0).tempo, 4.0 * 44100 * 60 / 1000);
}

TEST(ProjectTracks, GivesBackWhatAGrainSaysOfItself) {
    ProjectBytes bytes = onePadGrain(100, 10, 20);
    ProjectBytes::Grain& saved = bytes.pads[0].grains[0];
    saved.transpose = -5;
    saved.pitchRatio = 1.25;
    saved.volume = 0.5;
    saved.pan = 0.125;
    saved.tempoLocked = 1;
    saved.tailOn = 1;
    saved.tailLengthSamples = 999;
    Tracks now(bytes);
    const CGrooveEvent& grain = now.pad(0).GetAt(0);
    EXPECT_EQ(grain.transpose, -5);
    EXPECT_EQ(grain.pitchRatio, 1.25);
    EXPECT_EQ(grain.volume, 0.5);
    EXPECT_EQ(grain.pan, 0.125);
    EXPECT_EQ(grain.tempoLocked, 1u);
    EXPECT_EQ(grain.tailOn, 1u);
    EXPECT_EQ(grain.tailLengthSamples, 40);
    EXPECT_EQ(grain.tailWave->frames, 40);
}

TEST(ProjectTracks, AtAnotherRateAllFrameNumbersAreScaledAndTicksStay) {
    for (const std::uint32_t from : {44100u, 48000u, 96000u}) {
        for (const std::uint32_t to : {44100u, 48000u, 96000u}) {
            ProjectBytes bytes;
            bytes.files.push_back(projectFile(10007, 7, 0, 2, from));
            bytes.pads[0] = padOf(bytes.files[0]);
            Tracks now(bytes, to);
            ASSERT_EQ(now.result, S_OK);
            const CWaveMem& wave = *now.bin(0).sample;
            EXPECT_EQ(wave.format.nSamplesPerSec, to);
            EXPECT_EQ(wave.frames, scaled(10007, from, to));
            for (const CGrooveTrack* track : {&now.file(0), &now.pad(0)}) {
                EXPECT_EQ(track->lengthSamples, scaled(10007, from, to));
                EXPECT_EQ(track->lengthTicks, 7 * kBeat);
                EXPECT_DOUBLE_EQ(track->tempo, 7.0 * 60 * to / static_cast<double>(scaled(10007, from, to)));
                ASSERT_EQ(track->GetSize(), 7);
                for (std::int32_t i = 0; i < 7; ++i) {
                    const CGrooveEvent& grain = track->GetAt(i);
                    const std::int64_t start = 10007 * i / 7;
                    const std::int64_t end = 10007 * (i + 1) / 7;
                    EXPECT_EQ(grain.startSamples, scaled(start, from, to));
                    EXPECT_EQ(grain.lengthSamples, scaled(end, from, to) - scaled(start, from, to));
                    EXPECT_EQ(grain.sampleOffset, scaled(start, from, to));
                    EXPECT_EQ(grain.startTicks, i * kBeat);
                    EXPECT_EQ(grain.lengthTicks, kBeat);
                    EXPECT_EQ(grain.tailLengthSamples, 2 * grain.lengthSamples);
                }
            }
        }
    }
}

TEST(ProjectTracks, LengthIsScaledByItsEndOnTheTrack) {
    // 100 * 160/147 = 108.84, 101 * 160/147 = 109.93: a grain of one frame stays one; from 104 to 105 it
    // becomes 114 - 113 = 1, from 107 to 108 it becomes 118 - 116 = 2.
    for (const auto& [start, length] : {std::pair{100, 1}, {104, 1}, {107, 2}}) {
        Tracks now(onePadGrain(1000, 500, 1, start), 48000);
        EXPECT_EQ(now.pad(0).GetAt(0).startSamples, scaled(start, 44100, 48000));
        EXPECT_EQ(now.pad(0).GetAt(0).lengthSamples, length) << start;
        EXPECT_EQ(now.pad(0).GetAt(0).sampleOffset, 544);
    }
}

TEST(ProjectTracks, PadGoesByTheFileOfItsFirstGrain) {
    ProjectBytes bytes;
    bytes.files.push_back(projectFile(100, 1, 0, 1, 48000));
    bytes.files.push_back(projectFile(100, 1, 1, 1, 24000));
    for (auto& pad : bytes.pads) pad.settings.lengthSamples = 1000;
    bytes.pads[0].grains = bytes.files[1].grains;
    bytes.pads[1].grains = bytes.files[1].grains;
    bytes.pads[1].grains[0].binGrain = 1;  // which isn't there
    Tracks now(bytes, 48000);
    EXPECT_EQ(now.pad(0).lengthSamples, 2000);
    EXPECT_EQ(now.pad(1).GetSize(), 0);
    EXPECT_EQ(now.pad(1).lengthSamples, 1000);
    EXPECT_EQ(now.pad(2).lengthSamples, 1000);
    std::swap(bytes.files[0], bytes.files[1]);
    EXPECT_EQ(Tracks(bytes, 48000).pad(2).lengthSamples, 2000);
    EXPECT_EQ(Tracks(ProjectBytes()).pad(2).lengthSamples, 0);
}

TEST(ProjectTracks, PadKeepsItsLengthInAProjectWithoutFiles) {
    ProjectBytes bytes;
    bytes.pads[9].settings.lengthSamples = 12288000;
    EXPECT_EQ(Tracks(bytes, 96000).pad(9).lengthSamples, 12288000);
}

std::int32_t keptAt(std::int64_t offset, std::int64_t length) {
    Tracks now(onePadGrain(100, offset, length));
    EXPECT_EQ(now.result, S_OK);
    return now.pad(0).GetSize();
}

TEST(ProjectTracks, DropsAPadsGrainThatDoesNotLieInItsWave) {
    EXPECT_EQ(keptAt(0, 100), 1);
    EXPECT_EQ(keptAt(0, 101), 0);
    EXPECT_EQ(keptAt(99, 1), 1);
    EXPECT_EQ(keptAt(99, 2), 0);
    EXPECT_EQ(keptAt(99, 0), 1);
    EXPECT_EQ(keptAt(100, 0), 0);
    EXPECT_EQ(keptAt(-1, 1), 0);
    EXPECT_EQ(keptAt(kMost, 1), 0);
    EXPECT_EQ(keptAt(1, kMost), 0);
    EXPECT_EQ(keptAt(kLeast, kMost), 0);
}

TEST(ProjectTracks, NegativeLengthOfAPadsGrainIsNone) {
    for (const std::int64_t length : {std::int64_t{-1}, kLeast}) {
        Tracks now(onePadGrain(100, 50, length));
        ASSERT_EQ(now.pad(0).GetSize(), 1);
        EXPECT_EQ(now.pad(0).GetAt(0).lengthSamples, 0);
        EXPECT_FALSE(now.pad(0).GetAt(0).tailWave);
    }
}

TEST(ProjectTracks, DropsAPadsGrainOfAFileOrGrainThatIsNotThereAndKeepsTheRest) {
    ProjectBytes bytes = twoFilesFourPads();
    bytes.pads[0].grains[1].binFile = 2;
    bytes.pads[0].grains[2].binGrain = 4;
    Tracks now(bytes);
    ASSERT_EQ(now.result, S_OK);
    ASSERT_EQ(now.pad(0).GetSize(), 2);
    EXPECT_EQ(now.pad(0).GetAt(0).binGrain, 0);
    EXPECT_EQ(now.pad(0).GetAt(1).binGrain, 3);
    EXPECT_EQ(now.pad(1).GetSize(), 2);
    EXPECT_EQ(now.pad(5).GetSize(), 2);
}

TEST(ProjectTracks, NegativeGrainOfAPadIsAFault) {
    ProjectBytes bytes = twoFilesFourPads();
    bytes.pads[5].grains[1].binGrain = -1;
    EXPECT_EQ(Tracks(bytes).fault,
              badValue(FaultQuantity::binGrain, -1, 0, 0x7FFFFFFF, {fourCC("pevt"), 5, 1}));
    // Of a file that isn't there nothing is asked.
    bytes.pads[5].grains[1].binFile = 9;
    EXPECT_FALSE(Tracks(bytes).fault);
}

TEST(ProjectTracks, FrameTooManyFromRoundingIsCutAtAnotherRate) {
    // 103 frames are 112.1 at 48000 Hz. From 4 to 107 on the track goes to 4.4 to 116.5: 112 frames. From 5
    // to 108 goes to 5.4 to 117.6: 113 frames.
    for (const std::int64_t start : {4, 5}) {
        Tracks now(onePadGrain(103, 0, 103, start), 48000);
        ASSERT_EQ(now.pad(0).GetSize(), 1) << start;
        EXPECT_EQ(now.pad(0).GetAt(0).lengthSamples, 112);
    }
    // Two too many are no matter of rounding.
    EXPECT_EQ(Tracks(onePadGrain(103, 0, 105, 4), 48000).pad(0).GetSize(), 0);
}

TEST(ProjectTracks, LastFrameStaysAGrainAtALowerRate) {
    // Frame 99 of 100 at 96000 Hz goes to 49.5 of 50 at 48000 Hz, which rounds to 50.
    Tracks now(onePadGrain(100, 99, 1, 99, 96000), 48000);
    ASSERT_EQ(now.pad(0).GetSize(), 1);
    EXPECT_EQ(now.pad(0).GetAt(0).sampleOffset, 49);
    EXPECT_LE(now.pad(0).GetAt(0).lengthSamples, 1);
}

TEST(ProjectTracks, GrainsOfAFileAreCutToItsWave) {
    ProjectBytes bytes;
    bytes.files.push_back(projectFile(100, 4));
    auto& grains = bytes.files[0].grains;
    grains[0].sampleOffset = -7, grains[0].lengthSamples = 200;
    grains[1].sampleOffset = 101;
    grains[2].sampleOffset = 60, grains[2].lengthSamples = kMost;
    grains[3].lengthSamples = kLeast;
    Tracks now(bytes);
    ASSERT_EQ(now.result, S_OK);
    const auto expectGrain = [&](std::int32_t index, std::int64_t offset, std::int64_t length) {
        EXPECT_EQ(now.file(0).GetAt(index).sampleOffset, offset);
        EXPECT_EQ(now.file(0).GetAt(index).lengthSamples, length);
    };
    expectGrain(0, 0, 100);
    expectGrain(1, 100, 0);
    expectGrain(2, 60, 40);
    expectGrain(3, 75, 0);
}

TEST(ProjectTracks, PeaksOfGrainsStayWithinTheTable) {
    ProjectBytes bytes;
    bytes.files.push_back(projectFile(100, 4));
    auto& grains = bytes.files[0].grains;
    grains[0].peakOffset = 544, grains[0].peakCount = 1;
    grains[1].peakOffset = 544, grains[1].peakCount = 2;
    grains[2].peakOffset = 0xFFFFFFFF, grains[2].peakCount = 0xFFFFFFFF;
    grains[3].peakOffset = 1, grains[3].peakCount = 0xFFFFFFFF;
    bytes.pads[0] = padOf(bytes.files[0]);
    Tracks now(bytes);
    for (const CGrooveTrack* track : {&now.file(0), &now.pad(0)}) {
        for (std::int32_t i = 0; i < 4; ++i) {
            const CGrooveEvent& grain = track->GetAt(i);
            EXPECT_LE(std::uint64_t{grain.peakOffset} + grain.peakCount, 545u);
        }
        EXPECT_EQ(track->GetAt(0).peakCount, 1u);
        EXPECT_EQ(track->GetAt(3).peakCount, 544u);
    }
}

TEST(ProjectTracks, TimesThatCannotBeAreNone) {
    ProjectBytes bytes = twoFilesFourPads();
    ProjectBytes::Grain& grain = bytes.pads[0].grains[0];
    grain.startTicks = grain.lengthTicks = grain.startSamples = -1;
    for (auto* settings : {&bytes.files[0].settings, &bytes.pads[0].settings}) {
        settings->lengthTicks = kLeast;
        settings->rootNote = -2;
        settings->output = 17;
    }
    bytes.pads[1].settings.rootNote = 128;
    bytes.pads[2].settings.rootNote = 127;
    bytes.pads[2].settings.output = 16;
    Tracks now(bytes);
    EXPECT_EQ(now.pad(0).GetAt(0).startTicks, 0);
    EXPECT_EQ(now.pad(0).GetAt(0).lengthTicks, 0);
    EXPECT_EQ(now.pad(0).GetAt(0).startSamples, 0);
    for (const CGrooveTrack* track : {&now.file(0), &now.pad(0)}) {
        EXPECT_EQ(track->lengthTicks, 0);
        EXPECT_EQ(track->rootNote, -1);
        EXPECT_EQ(track->output, 0u);
    }
    EXPECT_EQ(now.pad(1).rootNote, -1);
    EXPECT_EQ(now.pad(2).rootNote, 127);
    EXPECT_EQ(now.pad(2).output, 16u);
}

TEST(ProjectTracks, GrainsOfAFileThatComeFromNowhereComeFromIt) {
    ProjectBytes bytes = twoFilesFourPads();
    bytes.files[1].grains[1].binFile = -3;
    bytes.files[1].grains[1].binGrain = -3;
    Tracks now(bytes);
    EXPECT_EQ(now.file(1).GetAt(1).binFile, 1);
    EXPECT_EQ(now.file(1).GetAt(1).binGrain, 1);
}

TEST(ProjectTracks, GrainsOfOnePlaceAndLengthShareTheirTail) {
    ProjectBytes bytes = twoFilesFourPads(1000);
    bytes.pads[0].grains[1].lengthSamples = 200;
    Tracks now(bytes);
    EXPECT_EQ(now.pad(0).GetAt(0).tailWave, now.file(0).GetAt(0).tailWave);
    EXPECT_EQ(now.pad(2).GetAt(0).tailWave, now.file(0).GetAt(3).tailWave);
    EXPECT_EQ(now.pad(0).GetAt(0).tailLengthSamples, 500);
    EXPECT_FALSE(now.pad(0).GetAt(1).tailWave == now.file(0).GetAt(1).tailWave);
    EXPECT_EQ(now.pad(0).GetAt(1).tailLengthSamples, 400);
}

TEST(ProjectTracks, TailsAreThoseOfGrainsThatWereCutByHand) {
    ProjectBytes bytes;
    for (std::int32_t i = 0; i < 5; ++i) bytes.files.push_back(projectFile(20000 + 1000 * i, 3, i, 2));
    Tracks now(bytes);
    for (std::size_t file = 0; file < 5; ++file) {
        for (std::int32_t i = 0; i < 3; ++i) {
            const CGrooveEvent& grain = now.file(file).GetAt(i);
            CGrooveEvent alone;
            alone.AttachSample(grain.sample, grain.sampleOffset);
            alone.lengthSamples = grain.lengthSamples;
            ASSERT_EQ(alone.BuildTail(), S_OK);
            EXPECT_TRUE(std::equal(alone.tailWave->samples.get(),
                                   alone.tailWave->samples.get() + 2 * (grain.tailLengthSamples + 1),
                                   grain.tailWave->samples.get()));
        }
    }
}

TEST(ProjectTracks, TailsAreBoundedByTheAudio) {
    // Tails of grains of 100, 99, ... frames: 2 * 100 + 2 * 99 + ... may come to 16 * 100.
    const auto withGrains = [](std::int64_t count) {
        ProjectBytes bytes;
        bytes.files.push_back(projectFile(100));
        for (std::int64_t i = 1; i < count; ++i) {
            ProjectBytes::Grain grain;
            grain.lengthSamples = 100 - i;
            bytes.pads[0].grains.push_back(grain);
        }
        return Tracks(bytes).result;
    };
    EXPECT_EQ(withGrains(8), S_OK);  // 1544 frames
    EXPECT_EQ(withGrains(9), E_FAIL);
}

TEST(ProjectTracks, AHundredThousandGrainsOfOnePlaceAreNoBurden) {
    ProjectBytes bytes = onePadGrain(1000, 0, 1000);
    bytes.pads[0].grains.resize(100000, bytes.pads[0].grains[0]);
    Tracks now(bytes);
    EXPECT_EQ(now.result, S_OK);
    EXPECT_EQ(now.pad(0).GetSize(), 100000);
}

TEST(ProjectTracks, FileWithoutFramesIsAFile) {
    ProjectBytes bytes;
    bytes.files.push_back(projectFile(1));
    bytes.files[0].settings.lengthSamples = 0;
    bytes.files[0].data.resize(1);
    for (const std::uint32_t rate : {44100u, 48000u}) {
        Tracks now(bytes, rate);
        EXPECT_EQ(now.result, S_OK);
        EXPECT_EQ(now.bin(0).sample->frames, 0);
        EXPECT_EQ(now.file(0).tempo, 100.0);
    }
}

}  // namespace
}  // namespace marnoth::test::project_tracks_test
