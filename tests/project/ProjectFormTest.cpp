#include <gtest/gtest.h>

#include "project/ProjectForm.h"
#include "project/ProjectSave.h"
#include "project/ProjectWriter.h"
#include "project/SavedProject.h"
#include "support/FaultyStream.h"

namespace marnoth::test::project_form_test {
namespace {

constexpr std::size_t kKeys = 48;  ///< the first record of `keym`

SavedBytes save(const Project& project) {
    FaultyStream stream;
    EXPECT_EQ(saveProject(project, stream), S_OK);
    EXPECT_EQ(stream.position, stream.bytes.size());
    return {stream.bytes};
}

TEST(ProjectLayout, TheSizeIsKnownBeforeAnythingIsWritten) {
    Project project = projectOf({countingWave(7), countingWave(8, 44100, 2)});
    for (const wchar_t* const name : {L"", L"a", L"ab", L"abc"}) {
        project.files[1].name = name;
        const SavedBytes file = save(project);
        EXPECT_EQ(projectBytes(project), static_cast<std::int64_t>(file.size()));
        EXPECT_EQ(file.u32(4), file.size() - 8);
    }
}

TEST(ProjectKeys, AMapOfFewerEntriesSaysSo) {
    Project project = projectOf({});
    project.keys.resize(3);
    const SavedBytes file = save(project);
    EXPECT_EQ(file.u32(40), 4u + 3 * 40);
    EXPECT_EQ(file.u32(44), 3u);
    EXPECT_EQ(file.text(kKeys + 3 * 40, 4), "pdtr");
}

TEST(ProjectText, AnOddLengthIsPaddedAndNotCounted) {
    Project project = projectOf({countingWave(4)});
    project.files[0].name = L"abc";
    project.files[0].path = L"";
    const SavedBytes file = save(project);
    EXPECT_EQ(file.u32(692), 4u + 64 + 4 + 3 + 4);
    EXPECT_EQ(file.u32(764), 3u);
    EXPECT_EQ(file.text(768, 3), "abc");
    EXPECT_EQ(file.u32(771), 0u) << "an empty path";
    EXPECT_EQ(file.bytes[775], 0) << "padding";
    EXPECT_EQ(file.text(776, 4), "RIFF");
}

TEST(ProjectText, ALongTextIsCutAtACharactersEnd) {
    Project project = projectOf({countingWave(4)});
    project.files[0].name = std::wstring(257, L'a') + L"\U0001F941" + L"b";
    project.files[0].path = std::wstring(300, L'p');
    const SavedBytes file = save(project);
    EXPECT_EQ(file.u32(764), 257u) << "the drum's four bytes don't fit into 259";
    EXPECT_EQ(file.text(768, 257), std::string(257, 'a'));
    EXPECT_EQ(file.u32(768 + 257), 259u);
    EXPECT_EQ(file.text(768 + 257 + 4, 259), std::string(259, 'p'));
    EXPECT_EQ(file.text(768 + 257 + 4 + 259, 4), "RIFF");
}

TEST(ProjectText, TheLengthIsThatOfTheBytes) {
    Project project = projectOf({countingWave(4)});
    project.files[0].name = L"\U0001F941";
    const SavedBytes file = save(project);
    EXPECT_EQ(file.u32(764), 4u);
    EXPECT_EQ(file.text(768, 4), "\xF0\x9F\xA5\x81");
}

TEST(ProjectLimits, OfMoreThanTwoChannelsTheFirstTwoAreSaved) {
    const Project project = projectOf({countingWave(10, 44100, 3)});
    const SavedBytes file = save(project);
    const std::size_t fmt = file.text(0, file.size()).find("fmt ");
    EXPECT_EQ(file.at<std::uint16_t>(fmt + 10), 2);
    EXPECT_EQ(file.u32(fmt + 12), 44100u);
    EXPECT_EQ(file.u32(fmt + 16), 44100u * 8);
    EXPECT_EQ(file.at<std::uint16_t>(fmt + 20), 8);
    EXPECT_EQ(file.u32(fmt + 30), 24u * 4) << "10 frames and a guard of two channels, rounded to four";
    for (std::size_t i = 0; i < 10; ++i) {
        EXPECT_EQ(file.at<float>(fmt + 34 + 8 * i), static_cast<float>(3 * i) / 65536);
        EXPECT_EQ(file.at<float>(fmt + 38 + 8 * i), static_cast<float>(3 * i + 1) / 65536);
    }
    EXPECT_EQ(file.at<float>(fmt + 34 + 80), 27.0f / 65536) << "the guard frame";
    EXPECT_EQ(file.at<float>(fmt + 38 + 80), 28.0f / 65536);
    EXPECT_EQ(project.files[0].wave->format.nChannels, 3) << "the engine's wave stays";
}

TEST(ProjectLimits, AFileAt192kHzIsSavedAt96WithAllItsFrameNumbers) {
    Project project = projectOf({countingWave(1001, 192000), countingWave(1000, 44100)});
    project.files[0].settings.lengthSamples = 1001;
    GrainSettings grain = wholeGrain(0, 500);
    grain.startSamples = grain.sampleOffset = 501;
    project.files[0].grains.push_back(grain);
    project.pads[0].grains = {grain};
    project.pads[0].settings.lengthSamples = 2001;
    ASSERT_EQ(fitToForm(project), S_OK);
    EXPECT_EQ(project.files[0].wave->format.nSamplesPerSec, 96000u);
    EXPECT_EQ(project.files[0].wave->format.nAvgBytesPerSec, 96000u * 4);
    EXPECT_EQ(project.files[0].wave->frames, 501) << "500.5 and a half, without its fraction";
    EXPECT_EQ(project.files[0].settings.lengthSamples, 501);
    for (const GrainSettings& half : {project.files[0].grains[1], project.pads[0].grains[0]}) {
        EXPECT_EQ(half.startSamples, 251) << "501 / 2 = 250.5";
        EXPECT_EQ(half.lengthSamples, 250) << "from 251 to 1001 / 2 = 500.5, which is 501";
        EXPECT_EQ(half.sampleOffset, 251);
        EXPECT_EQ(half.lengthTicks, kTicks16PerBeat);
    }
    EXPECT_EQ(project.pads[0].settings.lengthSamples, 1001) << "2001 / 2 = 1000.5";
    EXPECT_EQ(project.files[1].settings.lengthSamples, 1000) << "the other file is left alone";
    EXPECT_EQ(project.pads[1].grains[0].lengthSamples, 1000);
    EXPECT_EQ(project.pads[1].settings.lengthSamples, 1000);
    EXPECT_EQ(project.pads[5].settings.lengthSamples, 0);
}

TEST(ProjectLimits, AFileAt8kHzIsSavedAt11025) {
    Project project = projectOf({countingWave(800, 8000)});
    ASSERT_EQ(fitToForm(project), S_OK);
    EXPECT_EQ(project.files[0].wave->format.nSamplesPerSec, 11025u);
    EXPECT_EQ(project.files[0].wave->frames, 1103) << "800 * 11025 / 8000 = 1102.5";
    EXPECT_EQ(project.pads[0].grains[0].lengthSamples, 1103);
    EXPECT_EQ(project.pads[9].settings.lengthSamples, 0);
}

TEST(ProjectLimits, AGrainOfNoFileThatIsThereKeepsItsFrames) {
    Project project = projectOf({countingWave(1000, 192000)});
    project.pads[0].grains[0].binFile = 3;
    project.pads[0].settings.lengthSamples = 1000;
    ASSERT_EQ(fitToForm(project), S_OK);
    EXPECT_EQ(project.pads[0].grains[0].lengthSamples, 1000);
    EXPECT_EQ(project.pads[0].settings.lengthSamples, 500) << "by the first file";
}

}  // namespace
}  // namespace marnoth::test::project_form_test
