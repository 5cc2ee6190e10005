#include <functional>
#include <limits>

#include "project/ReadProject.h"

namespace marnoth::test::project_reader_test {
namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

/// The result of reading two files and four pads after a change.
HRESULT readChanged(const std::function<void(ProjectBytes&)>& change) {
    ProjectBytes project = twoFilesFourPads();
    change(project);
    return readResult(project);
}

TEST(ProjectReader, ReadsAnEmptyProject) {
    Project project;
    EXPECT_EQ(readBytes(ProjectBytes().bytes(), project), S_OK);
    EXPECT_TRUE(project.files.empty());
    EXPECT_EQ(project.keys.size(), 16u);
    for (const ProjectPad& pad : project.pads) EXPECT_TRUE(pad.grains.empty());
}

TEST(ProjectReader, GivesEverySettingAsItStands) {
    ProjectBytes bytes;
    bytes.auditionEnabled = 1;
    bytes.keys = {{7, 10, 20, 15, 30, 40}, {2, 100, 90, -3, 127, 0}};
    bytes.pads[4].settings = {1000, 2000, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 0.75f, 0.25f};
    Project project;
    ASSERT_EQ(readBytes(bytes.bytes(), project), S_OK);
    EXPECT_EQ(project.auditionEnabled, 1u);
    ASSERT_EQ(project.keys.size(), 2u);
    EXPECT_EQ(project.keys[0].pad, 7);
    EXPECT_EQ(project.keys[0].lowKey, 10);
    EXPECT_EQ(project.keys[0].highKey, 20);
    EXPECT_EQ(project.keys[0].rootKey, 15);
    EXPECT_EQ(project.keys[0].lowVelocity, 30);
    EXPECT_EQ(project.keys[0].highVelocity, 40);
    EXPECT_EQ(project.keys[1].lowKey, 100);
    EXPECT_EQ(project.keys[1].rootKey, -3);
    const TrackSettings& pad = project.pads[4].settings;
    EXPECT_EQ(pad.lengthSamples, 1000);
    EXPECT_EQ(pad.lengthTicks, 2000);
    EXPECT_EQ(pad.looping, 1u);
    EXPECT_EQ(pad.synced, 2u);
    EXPECT_EQ(pad.mute, 3u);
    EXPECT_EQ(pad.solo, 4u);
    EXPECT_EQ(pad.oneShot, 5u);
    EXPECT_EQ(pad.tailOn, 6u);
    EXPECT_EQ(pad.followKey, 7u);
    EXPECT_EQ(pad.rootNote, 8);
    EXPECT_EQ(pad.output, 9u);
    EXPECT_EQ(pad.midiChannel, 10);
    EXPECT_EQ(pad.volume, 0.75f);
    EXPECT_EQ(pad.pan, 0.25f);
}

TEST(ProjectReader, GivesAFileWithItsGrainsAndItsAudio) {
    ProjectBytes bytes;
    bytes.files.push_back(projectFile(100, 1, 0, 2, 48000));
    bytes.files[0].name = "loop";
    bytes.files[0].path = "D:\\loop.wav";
    bytes.files[0].grains = {{3, 4, 5, 6, 7, 8, 9, 1, 1.5, -12, 0.5, 0.25, 1, 10, 11, 12}};
    Project project;
    ASSERT_EQ(readBytes(bytes.bytes(), project), S_OK);
    ASSERT_EQ(project.files.size(), 1u);
    const ProjectFile& file = project.files[0];
    EXPECT_EQ(file.name, L"loop");
    EXPECT_EQ(file.path, L"D:\\loop.wav");
    EXPECT_EQ(file.wave->frames, 100);
    EXPECT_EQ(file.wave->format.nChannels, 2);
    EXPECT_EQ(file.wave->format.nSamplesPerSec, 48000u);
    EXPECT_TRUE(
        std::equal(bytes.files[0].data.begin(), bytes.files[0].data.begin() + 200, file.wave->samples.get()));
    ASSERT_EQ(file.grains.size(), 1u);
    const GrainSettings& grain = file.grains[0];
    EXPECT_EQ(grain.binFile, 3);
    EXPECT_EQ(grain.binGrain, 4);
    EXPECT_EQ(grain.startTicks, 5);
    EXPECT_EQ(grain.startSamples, 6);
    EXPECT_EQ(grain.lengthTicks, 7);
    EXPECT_EQ(grain.lengthSamples, 8);
    EXPECT_EQ(grain.tailLengthSamples, 9);
    EXPECT_EQ(grain.tempoLocked, 1u);
    EXPECT_EQ(grain.pitchRatio, 1.5);
    EXPECT_EQ(grain.transpose, -12);
    EXPECT_EQ(grain.volume, 0.5);
    EXPECT_EQ(grain.pan, 0.25);
    EXPECT_EQ(grain.tailOn, 1u);
    EXPECT_EQ(grain.sampleOffset, 10);
    EXPECT_EQ(grain.peakOffset, 11u);
    EXPECT_EQ(grain.peakCount, 12u);
}

TEST(ProjectReader, PassesOverStrangeChunksAndUndefinedBytes) {
    ProjectBytes project = twoFilesFourPads();
    project.strangers = true;
    project.undefined = 0xEE;
    EXPECT_EQ(readResult(project), S_OK);
}

TEST(ProjectReader, NeedsEveryChunk) {
    for (const char* id : {"comn", "keym", "lbtr", "RIFF", "fmt ", "data", "lbte", "pdtr", "pevt"}) {
        EXPECT_EQ(readChanged([&](auto& project) { project.leaveOut = id; }), E_FAIL) << id;
    }
    EXPECT_EQ(readChanged([](auto& project) { project.formType = "marm"; }), E_FAIL);
    EXPECT_EQ(readChanged([](auto& project) { project.files[1].waveType = "WAVF"; }), E_FAIL);
    EXPECT_EQ(readChanged([](auto& project) { project.formBytes = 0; }), E_FAIL);
}

TEST(ProjectReader, KnowsOneVersion) {
    for (const std::uint32_t version : {0u, 2u, 0xFFFFFFFFu}) {
        Project project;
        ProjectBytes bytes;
        bytes.version = version;
        bytes.auditionEnabled = 1;
        EXPECT_EQ(readBytes(bytes.bytes(), project), E_FAIL);
        EXPECT_EQ(project.auditionEnabled, 1u);
    }
}

TEST(ProjectReader, CountsUpToSixteenFilesAndExactlySixteenPads) {
    const auto withFiles = [](int files) {
        ProjectBytes project;
        for (int i = 0; i < files; ++i) project.files.push_back(projectFile(8, 1, i % 16));
        return readResult(project);
    };
    EXPECT_EQ(withFiles(16), S_OK);
    EXPECT_EQ(withFiles(17), E_FAIL);
    EXPECT_EQ(readChanged([](auto& project) { project.binCount = -1; }), E_FAIL);
    EXPECT_EQ(readChanged([](auto& project) { project.binCount = 3; }), E_FAIL);
    for (const std::int32_t pads : {-1, 0, 15, 17}) {
        EXPECT_EQ(readChanged([&](auto& project) { project.padCount = pads; }), E_FAIL) << pads;
    }
}

TEST(ProjectReader, TestsEachKeyRecord) {
    const auto withKeys = [](const ProjectBytes::Keys& keys) {
        ProjectBytes project;
        project.keys = {keys};
        return readResult(project);
    };
    EXPECT_EQ(withKeys({0, 0, 127, 500, 0, 127}), S_OK);
    EXPECT_EQ(withKeys({15, 200, -200, -500, 200, -200}), S_OK);
    EXPECT_EQ(withKeys({-1, 0, 127, 60, 0, 127}), E_FAIL);
    EXPECT_EQ(withKeys({16, 0, 127, 60, 0, 127}), E_FAIL);
    EXPECT_EQ(withKeys({0, -1, 127, 60, 0, 127}), E_FAIL);
    EXPECT_EQ(withKeys({0, 0, 128, 60, 0, 127}), E_FAIL);
    EXPECT_EQ(withKeys({0, 0, 127, 60, -1, 127}), E_FAIL);
    EXPECT_EQ(withKeys({0, 0, 127, 60, 0, 128}), E_FAIL);
}

TEST(ProjectReader, KnowsAtMostSixteenKeyRecordsAndOnlyThoseThatAreThere) {
    EXPECT_EQ(readChanged([](auto& project) { project.keys.clear(); }), S_OK);
    EXPECT_EQ(readChanged([](auto& project) { project.keys.push_back({}); }), E_FAIL);
    EXPECT_EQ(readChanged([](auto& project) { project.keys.resize(15), project.keyCount = 16; }), E_FAIL);
    EXPECT_EQ(readChanged([](auto& project) { project.keyCount = 0xFFFFFFFF; }), E_FAIL);
}

TEST(ProjectReader, TakesMidiChannelsFromOmniTo15) {
    for (const std::int32_t channel : {-1, 0, 15}) {
        EXPECT_EQ(readChanged([&](auto& p) { p.pads[3].settings.midiChannel = channel; }), S_OK);
        EXPECT_EQ(readChanged([&](auto& p) { p.files[1].settings.midiChannel = channel; }), S_OK);
    }
    for (const std::int32_t channel : {-2, 16, 0x7FFFFFFF, std::numeric_limits<std::int32_t>::min()}) {
        EXPECT_EQ(readChanged([&](auto& p) { p.pads[3].settings.midiChannel = channel; }), E_FAIL);
        EXPECT_EQ(readChanged([&](auto& p) { p.files[1].settings.midiChannel = channel; }), E_FAIL);
    }
}

TEST(ProjectReader, TakesLengthsOfAPadUpTo12288000Frames) {
    const auto withLength = [](std::int64_t frames) {
        return readChanged([&](auto& project) { project.pads[0].settings.lengthSamples = frames; });
    };
    EXPECT_EQ(withLength(0), S_OK);
    EXPECT_EQ(withLength(12288000), S_OK);
    EXPECT_EQ(withLength(12288001), E_FAIL);
    EXPECT_EQ(withLength(-1), E_FAIL);
    EXPECT_EQ(withLength(std::numeric_limits<std::int64_t>::max()), E_FAIL);
}

TEST(ProjectReader, TakesLengthsOfAFileUpTo12288000Frames) {
    const auto withLength = [](std::int64_t frames) {
        ProjectBytes project;
        project.files.push_back(projectFile(8));
        project.files[0].settings.lengthSamples = frames;
        project.files[0].data.resize(12288004);
        return readResult(project);
    };
    EXPECT_EQ(withLength(12288000), S_OK);
    EXPECT_EQ(withLength(12288001), E_FAIL);
    EXPECT_EQ(withLength(-1), E_FAIL);
}

TEST(ProjectReader, TakesFileIndicesBelow16) {
    EXPECT_EQ(readChanged([](auto& project) { project.files[0].index = 15; }), S_OK);
    EXPECT_EQ(readChanged([](auto& project) { project.files[0].index = 16; }), E_FAIL);
    EXPECT_EQ(readChanged([](auto& project) { project.files[0].index = 0xFFFFFFFF; }), E_FAIL);
}

TEST(ProjectReader, TakesTextsOfUpTo259Bytes) {
    for (const auto text : {&ProjectBytes::File::name, &ProjectBytes::File::path}) {
        const auto withText = [&](std::size_t bytes) {
            return readChanged([&](auto& project) { project.files[0].*text = std::string(bytes, 'x'); });
        };
        EXPECT_EQ(withText(0), S_OK);
        EXPECT_EQ(withText(259), S_OK);
        EXPECT_EQ(withText(260), E_FAIL);
    }
    // A length that the chunk can't hold.
    EXPECT_EQ(readChanged([](auto& project) { project.files[0].nameLength = 250; }), E_FAIL);
    EXPECT_EQ(readChanged([](auto& project) { project.files[0].pathLength = 250; }), E_FAIL);
}

TEST(ProjectReader, ReadsTextsAsUtf8WhereTheyAre) {
    ProjectBytes bytes = twoFilesFourPads();
    bytes.files[0].name = "caf\xC3\xA9 \xE6\x97\xA5";
    bytes.files[0].path = "caf\xE9";
    Project project;
    ASSERT_EQ(readBytes(bytes.bytes(), project), S_OK);
    EXPECT_EQ(project.files[0].name, L"caf\u00E9 \u65E5");
#ifndef _WIN32
    EXPECT_EQ(project.files[0].path, L"caf\u00E9");
#endif
}

TEST(ProjectReader, TakesOneAndTwoChannels) {
    const auto withChannels = [](std::uint16_t channels) {
        ProjectBytes project;
        project.files.push_back(projectFile(16, 1, 0, channels));
        return readResult(project);
    };
    EXPECT_EQ(withChannels(0), E_FAIL);
    EXPECT_EQ(withChannels(1), S_OK);
    EXPECT_EQ(withChannels(2), S_OK);
    EXPECT_EQ(withChannels(3), E_FAIL);
}

TEST(ProjectReader, TakesRatesFrom11025To96000) {
    const auto withRate = [](std::uint32_t rate) {
        return readChanged([&](auto& project) { project.files[0].rate = rate; });
    };
    EXPECT_EQ(withRate(11024), E_FAIL);
    EXPECT_EQ(withRate(11025), S_OK);
    EXPECT_EQ(withRate(96000), S_OK);
    EXPECT_EQ(withRate(96001), E_FAIL);
    EXPECT_EQ(withRate(0), E_FAIL);
}

TEST(ProjectReader, TakesTheAudioAsFloatWhateverTheFormatSaysBesides) {
    ProjectBytes bytes = twoFilesFourPads();
    bytes.files[0].tag = 1;
    bytes.files[0].bits = 16;
    Project project;
    ASSERT_EQ(readBytes(bytes.bytes(), project), S_OK);
    const WAVEFORMATEX& format = project.files[0].wave->format;
    EXPECT_EQ(format.wFormatTag, WAVE_FORMAT_IEEE_FLOAT);
    EXPECT_EQ(format.wBitsPerSample, 32);
    EXPECT_EQ(format.nBlockAlign, 4);
    EXPECT_EQ(project.files[0].wave->samples[5], bytes.files[0].data[5]);
}

TEST(ProjectReader, KeepsTheByteRateAsItStands) {
    ProjectBytes bytes = twoFilesFourPads();
    bytes.files[0].bytesPerSecond = 12345;
    Project project;
    ASSERT_EQ(readBytes(bytes.bytes(), project), S_OK);
    EXPECT_EQ(project.files[0].wave->format.nAvgBytesPerSec, 12345u);
    EXPECT_EQ(project.files[1].wave->format.nAvgBytesPerSec,
              4 * bytes.files[1].rate * bytes.files[1].channels);
}

TEST(ProjectReader, TakesGrainsOfKnownPlacesOnly) {
    const auto ofFile = [](std::int32_t binFile) {
        return readChanged([&](auto& project) { project.files[0].grains[1].binFile = binFile; });
    };
    EXPECT_EQ(ofFile(-5), S_OK);
    EXPECT_EQ(ofFile(15), S_OK);
    EXPECT_EQ(ofFile(16), E_FAIL);
    const auto ofPad = [](std::int32_t binFile) {
        return readChanged([&](auto& project) { project.pads[5].grains[1].binFile = binFile; });
    };
    EXPECT_EQ(ofPad(-1), E_FAIL);
    EXPECT_EQ(ofPad(15), S_OK);
    EXPECT_EQ(ofPad(16), E_FAIL);
}

TEST(ProjectReader, RefusesNumbersThatAreNone) {
    for (const double bad : {kNan, kInf, -kInf}) {
        for (const auto field :
             {&ProjectBytes::Grain::pitchRatio, &ProjectBytes::Grain::volume, &ProjectBytes::Grain::pan}) {
            EXPECT_EQ(readChanged([&](auto& p) { p.files[1].grains[0].*field = bad; }), E_FAIL);
            EXPECT_EQ(readChanged([&](auto& p) { p.pads[2].grains[3].*field = bad; }), E_FAIL);
        }
        for (const auto field : {&ProjectBytes::Settings::volume, &ProjectBytes::Settings::pan}) {
            EXPECT_EQ(readChanged([&](auto& p) { p.files[1].settings.*field = float(bad); }), E_FAIL);
            EXPECT_EQ(readChanged([&](auto& p) { p.pads[15].settings.*field = float(bad); }), E_FAIL);
        }
    }
    EXPECT_EQ(readChanged([](auto& p) { p.pads[2].grains[3].volume = 1e308; }), S_OK);
}

TEST(ProjectReader, RefusesGrainCountsThatTheChunkCannotHold) {
    for (const std::int32_t count : {-1, std::numeric_limits<std::int32_t>::min(), 5, 0x7FFFFFFF}) {
        EXPECT_EQ(readChanged([&](auto& p) { p.files[0].grainCount = count; }), E_FAIL) << count;
        EXPECT_EQ(readChanged([&](auto& p) { p.pads[0].grainCount = count; }), E_FAIL) << count;
    }
    // Fewer than there are is what it says.
    EXPECT_EQ(readChanged([](auto& p) { p.files[0].grainCount = 1; }), S_OK);
}

TEST(ProjectReader, ReadsManyGrains) {
    ProjectBytes bytes = twoFilesFourPads();
    bytes.pads[0].grains.resize(1000);
    for (std::int64_t i = 0; i < 1000; ++i) bytes.pads[0].grains[static_cast<std::size_t>(i)].startTicks = i;
    Project project;
    ASSERT_EQ(readBytes(bytes.bytes(), project), S_OK);
    ASSERT_EQ(project.pads[0].grains.size(), 1000u);
    for (std::size_t i = 0; i < 1000; ++i) EXPECT_EQ(project.pads[0].grains[i].startTicks, std::int64_t(i));
}

/// The frames of a mono or stereo file whose track has 10 frames and whose chunk holds `values` floats; -1
/// when it is refused.
std::int64_t framesOf(std::size_t values, std::uint16_t channels) {
    ProjectBytes bytes;
    bytes.files.push_back(projectFile(10, 1, 0, channels));
    bytes.files[0].data.assign(values, 0.25f);
    bytes.files[0].data[values - channels] = 0.5f;
    Project project;
    if (FAILED(readBytes(bytes.bytes(), project))) return -1;
    const CWaveMem& wave = *project.files[0].wave;
    for (int c = 0; c < channels; ++c) {
        EXPECT_EQ(wave.samples[static_cast<std::size_t>(wave.frames * channels + c)],
                  wave.samples[static_cast<std::size_t>((wave.frames - 1) * channels + c)]);
    }
    return wave.frames;
}

TEST(ProjectReader, TakesChunksFromTheLastFrameToTheRoundedSizeAsTheTrack) {
    EXPECT_EQ(framesOf(9, 1), -1);
    EXPECT_EQ(framesOf(10, 1), 10);
    EXPECT_EQ(framesOf(11, 1), 10);
    EXPECT_EQ(framesOf(12, 1), 10);  // 11 rounded up to fours
    EXPECT_EQ(framesOf(19, 2), -1);
    EXPECT_EQ(framesOf(20, 2), 10);
    EXPECT_EQ(framesOf(22, 2), 10);
    EXPECT_EQ(framesOf(24, 2), 10);  // 22 rounded up to fours
}

TEST(ProjectReader, TakesAllOfAWaveThatIsLongerThanItsTrack) {
    EXPECT_EQ(framesOf(13, 1), 12);
    EXPECT_EQ(framesOf(400, 1), 399);
    EXPECT_EQ(framesOf(26, 2), 12);
    EXPECT_EQ(framesOf(27, 2), 12);
}

TEST(ProjectReader, RefusesAudioThatIsNotThere) {
    for (const std::uint32_t claim : {0x7FFFFFF0u, 0xFFFFFFF0u}) {
        EXPECT_EQ(readChanged([&](auto& project) { project.files[1].dataBytes = claim; }), E_FAIL);
    }
}

TEST(ProjectReader, ReadsFromMediaThatDoNotTellTheirSize) {
    const Bytes bytes = twoFilesFourPads(200000).bytes();
    FaultyStream content(bytes);
    content.knowsSize = false;
    RiffStream stream;
    ASSERT_EQ(stream.open(&content), kRiffOk);
    Project project;
    EXPECT_FALSE(readProject(stream, project));
    EXPECT_EQ(project.files[0].wave->frames, 200000);
}

TEST(ProjectReader, RefusesAFormThatEndsEarlyWhereverItDoes) {
    const Bytes bytes = twoFilesFourPads().bytes();
    for (std::size_t end = 0; end < bytes.size(); ++end) {
        Project project;
        ASSERT_EQ(readBytes(Bytes(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(end)), project),
                  E_FAIL)
            << end;
    }
}

TEST(ProjectReader, FailsWithItsStreamAtEveryCall) {
    FaultyStream whole(twoFilesFourPads().bytes());
    {
        RiffStream stream;
        Project project;
        ASSERT_EQ(stream.open(&whole), kRiffOk);
        ASSERT_FALSE(readProject(stream, project));
    }
    for (int call = 2; call <= whole.calls; ++call) {
        FaultyStream content(whole.bytes);
        content.failFromCall = call;
        RiffStream stream;
        Project project;
        ASSERT_EQ(stream.open(&content), kRiffOk);
        // The last call is that of `close`.
        ASSERT_EQ(codeOf(readProject(stream, project)), call < whole.calls ? E_FAIL : S_OK) << call;
    }
}

}  // namespace
}  // namespace marnoth::test::project_reader_test
