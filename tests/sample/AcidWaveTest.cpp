#include <gtest/gtest.h>

#include "sample/AcidWave.h"
#include "sample/OpenedWave.h"

namespace marnoth::test::acid_wave_test {
namespace {

using Numbers = std::vector<std::uint32_t>;

WaveFile plain(std::int64_t frames = 1000) {
    return WaveFile().frames(frames);
}

TEST(AcidWave, WaveWithoutAcidIsReadAndHasNoSegments) {
    const OpenedWave wave(plain());
    EXPECT_EQ(wave.result, S_OK);
    EXPECT_EQ(wave->hasFormat, 1u);
    EXPECT_EQ(wave->hasAcid, 0u);
    EXPECT_EQ(wave->GetSegmentCount(), 0);
    EXPECT_EQ(wave->lastError, 0u);
}

TEST(AcidWave, LoopWithoutStretchDataIsDividedIntoSixteenths) {
    const OpenedWave wave(plain(1000).acid({.beats = 8}));
    ASSERT_EQ(wave.result, S_OK);
    EXPECT_EQ(wave->hasAcid, 1u);
    EXPECT_EQ(wave->hasStretch, 0u);
    EXPECT_EQ(wave->divisionExponent, 4u);
    ASSERT_EQ(wave->GetSegmentCount(), 32);
    for (std::uint32_t i = 0; i < 32; ++i) {
        const std::uint32_t start = i * 1000 / 32;
        EXPECT_EQ(wave->GetSegment(static_cast<int>(i)).start, start);
        EXPECT_EQ(wave->GetSegment(static_cast<int>(i)).length, (i + 1) * 1000 / 32 - start);
        EXPECT_EQ(wave->GetSegment(static_cast<int>(i)).unused, 0u);
    }
}

TEST(AcidWave, LastSegmentOfADivisionTakesTheRounding) {
    const OpenedWave wave(plain(100).acid({.beats = 3}).strc(2));
    EXPECT_EQ(wave.starts(), (Numbers{0, 33, 66}));
    EXPECT_EQ(wave.lengths(), (Numbers{33, 33, 34}));
}

TEST(AcidWave, StretchDataWithoutMarkersDividesByItsExponent) {
    EXPECT_EQ(OpenedWave(plain().acid({.beats = 8}).strc(0))->GetSegmentCount(), 2);
    EXPECT_EQ(OpenedWave(plain().acid({.beats = 8}).strc(1))->GetSegmentCount(), 4);
    EXPECT_EQ(OpenedWave(plain().acid({.beats = 8}).strc(3))->GetSegmentCount(), 16);
    EXPECT_EQ(OpenedWave(plain().acid({.beats = 8}).strc(6))->GetSegmentCount(), 128);
}

TEST(AcidWave, MarkersThatDoNotCountLeaveTheDivision) {
    const OpenedWave wave(plain(100).acid({.beats = 2}).strc(2, {{0}, {40, 1}, {50, 3}, {60, 0, 0}}));
    ASSERT_EQ(wave.result, S_OK);
    EXPECT_EQ(wave->stretchMarkerCount, 4u);
    EXPECT_EQ(wave.starts(), (Numbers{0, 50}));
}

TEST(AcidWave, MarkersOfTypesZeroAndTwoCutTheFile) {
    const OpenedWave wave(plain(1000).acid({.beats = 4}).strc(4, {{300, 0}, {450, 2, 77}, {500, 1}}));
    EXPECT_EQ(wave->hasStretch, 1u);
    EXPECT_EQ(wave.starts(), (Numbers{0, 300, 450}));
    EXPECT_EQ(wave.lengths(), (Numbers{300, 150, 550}));
}

TEST(AcidWave, MarkersAreTakenAsTheyStand) {
    const OpenedWave wave(plain(100).acid({.beats = 4}).strc(4, {{80}, {30}, {5000}}));
    EXPECT_EQ(wave.starts(), (Numbers{0, 80, 30, 5000}));
    EXPECT_EQ(wave.lengths(), (Numbers{80, 0u - 50u, 4970, 100u - 5000u}));
}

TEST(AcidWave, StretchHeaderIsKept) {
    const OpenedWave wave(plain().acid({}).strc(5));
    EXPECT_EQ(wave->stretchField16, 16161616u);
    EXPECT_EQ(wave->stretchField20, 20202020u);
    EXPECT_EQ(wave->divisionExponent, 5u);
}

TEST(AcidWave, AcidInFrontOfDataIsNotSeen) {
    const OpenedWave wave(plain().acid({.beats = 8}).moveBefore("acid", "data"));
    EXPECT_EQ(wave.result, S_OK);
    EXPECT_EQ(wave->hasAcid, 0u);
    EXPECT_EQ(wave->GetSegmentCount(), 0);
}

TEST(AcidWave, StretchDataInFrontOfAcidIsNotSeen) {
    const OpenedWave wave(plain().acid({.beats = 2}).strc(2, {{100}}).moveBefore("strc", "acid"));
    EXPECT_EQ(wave->hasStretch, 0u);
    EXPECT_EQ(wave->GetSegmentCount(), 8);
}

TEST(AcidWave, DivisionIntoMoreThan4096LeavesTheFileWhole) {
    const OpenedWave wave(plain(1000).acid({.beats = 2000}));
    EXPECT_EQ(wave.result, S_OK);
    EXPECT_EQ(wave.starts(), Numbers{0});
    EXPECT_EQ(wave.lengths(), Numbers{1000});
    EXPECT_EQ(OpenedWave(plain(5000).acid({.beats = 1024}))->GetSegmentCount(), 4096);
    EXPECT_EQ(OpenedWave(plain(5000).acid({.beats = 4097}).strc(2))->GetSegmentCount(), 1);
}

TEST(AcidWave, DivisionThatFitsNoNumberLeavesTheFileWhole) {
    EXPECT_EQ(OpenedWave(plain().acid({.beats = 0xFFFFFFFF}))->GetSegmentCount(), 1);
    EXPECT_EQ(OpenedWave(plain().acid({.beats = 1}).strc(0xFFFFFFFF))->GetSegmentCount(), 1);
    EXPECT_EQ(OpenedWave(plain().acid({.beats = 0}).strc(0xFFFFFFFF))->GetSegmentCount(), 1);
}

TEST(AcidWave, NoBeatsLeaveTheFileWhole) {
    const OpenedWave wave(plain(1000).acid({.beats = 0}));
    EXPECT_EQ(wave.lengths(), Numbers{1000});
    // One beat of whole notes is a quarter of a segment: rounds to none.
    EXPECT_EQ(OpenedWave(plain(1000).acid({.beats = 1}).strc(0)).lengths(), Numbers{1000});
    // Two are half a segment: rounds to one.
    EXPECT_EQ(OpenedWave(plain(1000).acid({.beats = 2}).strc(0)).lengths(), Numbers{1000});
}

TEST(AcidWave, RootNoteCountsFromA) {
    const auto rootOf = [](std::int16_t note) { return OpenedWave(plain().acid({.root = note}))->rootNote; };
    EXPECT_EQ(rootOf(60), 3);
    EXPECT_EQ(rootOf(57), 0);
    EXPECT_EQ(rootOf(56), 11);
    EXPECT_EQ(rootOf(-4), -1);
    EXPECT_EQ(rootOf(-20), -5);
}

TEST(AcidWave, FlagsOfTheLoop) {
    const OpenedWave loop(plain().acid(0, 60, 7, 98.5f));
    EXPECT_EQ(loop->isLoop, 1u);
    EXPECT_EQ(loop->rootNoteSet, 0u);
    EXPECT_EQ(loop->stretchOn, 0u);
    EXPECT_EQ(loop->diskBased, 0u);
    EXPECT_EQ(loop->beats, 7u);
    EXPECT_EQ(loop->tempo, 98.5f);
    EXPECT_EQ(OpenedWave(plain().acid({.flags = 1}))->isLoop, 0u);
    EXPECT_EQ(OpenedWave(plain().acid({.flags = 2}))->rootNoteSet, 1u);
    EXPECT_EQ(OpenedWave(plain().acid({.flags = 4}))->stretchOn, 1u);
    EXPECT_EQ(OpenedWave(plain().acid({.flags = 8}))->diskBased, 1u);
}

TEST(AcidWave, ShortAcidChunkLeavesTheMissingFieldsZero) {
    const OpenedWave wave(plain().setChunk("acid", {2, 0, 0, 0, 57, 0}));
    EXPECT_EQ(wave.result, S_OK);
    EXPECT_EQ(wave->rootNoteSet, 1u);
    EXPECT_EQ(wave->rootNote, 0);
    EXPECT_EQ(wave->beats, 0u);
    EXPECT_EQ(wave->tempo, 0.0f);
}

TEST(AcidWave, LongAcidChunkIsReadToItsRecordAndPassedOver) {
    Bytes body(200, 0);
    body[12] = 2;
    const OpenedWave wave(plain(100).setChunk("acid", body).strc(2));
    EXPECT_EQ(wave->hasStretch, 1u);
    EXPECT_EQ(wave->GetSegmentCount(), 2);
}

TEST(AcidWave, UnknownTagLeavesAnEmptyRecordBetweenKnownOnes) {
    const OpenedWave wave(plain().info("INAM", "Loop").info("IXYZ", "?").info("IART", "Somebody"));
    ASSERT_EQ(wave.result, S_OK);
    EXPECT_EQ(wave->tags[0].label, "Name/Title:");
    EXPECT_EQ(wave->tags[0].value, "Loop");
    EXPECT_EQ(wave->tags[0].chunk.ckid, fourCC("INAM"));
    EXPECT_EQ(wave->tags[0].chunk.cksize, 5u);
    EXPECT_EQ(wave->tags[1].chunk.ckid, 0u);
    EXPECT_EQ(wave->tags[1].label, "");
    EXPECT_EQ(wave->tags[2].label, "Artist:");
    EXPECT_EQ(wave->tags[2].value, "Somebody");
    EXPECT_EQ(wave->tags[3].chunk.ckid, fourCC("    "));
}

TEST(AcidWave, NoMoreThan23TagsAreRead) {
    WaveFile file = plain();
    for (int i = 0; i < 30; ++i) file.info("ICMT", std::to_string(i));
    const OpenedWave wave(file.acid({.beats = 1}));
    EXPECT_EQ(wave.result, S_OK);
    EXPECT_EQ(wave->tags[22].value, "22");
    EXPECT_EQ(wave->tags[23].chunk.ckid, CAcidWave::kEndTag);
    EXPECT_EQ(wave->tags[23].value, "");
    EXPECT_EQ(wave->hasAcid, 1u);
}

TEST(AcidWave, EveryKnownTagHasItsLabel) {
    WaveFile file = plain();
    for (const TagLabel& row : kTagLabels) {
        const char code[5] = {static_cast<char>(row.code), static_cast<char>(row.code >> 8),
                              static_cast<char>(row.code >> 16), static_cast<char>(row.code >> 24), 0};
        file.info(code, "x");
    }
    const OpenedWave wave(file);
    EXPECT_EQ(wave->tags[0].label, "Archival Location:");
    EXPECT_EQ(wave->tags[2].label, "Commisioned:");
    EXPECT_EQ(wave->tags[14].label, "Name/Title:");
    EXPECT_EQ(wave->tags[22].label, "Technician:");
}

TEST(AcidWave, WithoutTagsTheEndMarkComesFirst) {
    EXPECT_EQ(OpenedWave(plain())->tags[0].chunk.ckid, CAcidWave::kEndTag);
    EXPECT_EQ(OpenedWave(plain().info("INAM", "x").listType("adtl"))->tags[0].chunk.ckid, CAcidWave::kEndTag);
}

TEST(AcidWave, TagsInFrontOfTheAudioAreNotSeen) {
    const OpenedWave wave(plain().info("INAM", "x").moveBefore("LIST", "data"));
    EXPECT_EQ(wave.result, S_OK);
    EXPECT_EQ(wave->tags[0].chunk.ckid, CAcidWave::kEndTag);
}

TEST(AcidWave, TagsAndLoopDataComeInEitherOrder) {
    const OpenedWave wave(plain().info("INAM", "x").acid({.beats = 2}).moveBefore("acid", "LIST"));
    EXPECT_EQ(wave->tags[0].value, "x");
    EXPECT_EQ(wave->GetSegmentCount(), 8);
}

TEST(AcidWave, TagThatTheFileCutsShortIsNoFailure) {
    const WaveFile file = plain().info("INAM", "A long name");
    const OpenedWave wave(WaveFile(file).truncate(file.offsetOf("LIST") + 12 + 8 + 6));
    EXPECT_EQ(wave.result, S_OK);
    EXPECT_EQ(wave->lastError, 261u);
    EXPECT_EQ(wave->tags[0].value, "A long");
}

TEST(AcidWave, FloatFormatIsReadWithTheSizeOfItsExtension) {
    const OpenedWave wave(WaveFile().floats().channels(2).values(std::vector<float>{0.5f, -0.5f}).acid({}));
    EXPECT_EQ(wave.result, S_OK);
    EXPECT_EQ(wave->format.wFormatTag, 3);
    EXPECT_EQ(wave->format.wBitsPerSample, 32);
    EXPECT_EQ(wave->format.nBlockAlign, 8);
    EXPECT_EQ(wave->format.cbSize, 0);
    EXPECT_EQ(wave->GetLength(3), 1);
    EXPECT_EQ(wave->hasAcid, 1u);
}

TEST(AcidWave, FormatIsKeptAsItStands) {
    const OpenedWave wave(WaveFile().rate(48000).channels(2).bits(24).frames(10));
    EXPECT_EQ(wave->format.nChannels, 2);
    EXPECT_EQ(wave->format.nSamplesPerSec, 48000u);
    EXPECT_EQ(wave->format.nAvgBytesPerSec, 288000u);
    EXPECT_EQ(wave->format.nBlockAlign, 6);
    EXPECT_EQ(wave->format.wBitsPerSample, 24);
    EXPECT_EQ(OpenedWave(WaveFile().bits(8).frames(4)).result, S_OK);
    EXPECT_EQ(OpenedWave(WaveFile().tag(0x55).frames(4)).result, S_OK);
}

TEST(AcidWave, FormatChunkOf16BytesWithATagOtherThanPcmIsRead) {
    const OpenedWave wave(WaveFile().floats().frames(10).claim("fmt ", 16));
    // The next chunk is looked for behind the 16 bytes, where the two of the extension size stand.
    EXPECT_EQ(wave.result, E_FAIL);
    Bytes bytes = WaveFile().bits(32).frames(10).bytes();
    bytes[20] = 3;
    EXPECT_EQ(OpenedWave(bytes).result, S_OK);
    EXPECT_EQ(OpenedWave(bytes)->GetLength(3), 10);
}

TEST(AcidWave, LengthsByKind) {
    const OpenedWave wave(plain(22050));
    EXPECT_EQ(wave->durationSeconds, 0.5f);
    EXPECT_EQ(wave->GetLength(2), 501);
    EXPECT_EQ(wave->GetLength(3), 22050);
    EXPECT_EQ(wave->GetLength(0), 0);
    EXPECT_EQ(wave->GetLength(1), 0);
    EXPECT_EQ(wave->GetLength(4), 0);
}

TEST(AcidWave, DurationWithoutAByteRateIsTheLongest) {
    EXPECT_EQ(OpenedWave(plain().bytesPerSecond(0))->durationMs, 0xFFFFFFFFu);
    EXPECT_EQ(OpenedWave(plain(22050).bytesPerSecond(1))->durationMs, 44100001u);
}

TEST(AcidWave, SegmentsOutsideTheListAreZero) {
    const OpenedWave wave(plain(1000).acid({.beats = 1}));
    for (const int index : {-1, 4, 5, 0x7FFFFFFF}) {
        EXPECT_EQ(wave->GetSegment(index).start, 0u);
        EXPECT_EQ(wave->GetSegment(index).length, 0u);
    }
}

TEST(AcidWave, SecondOpenForgetsTheFirst) {
    const OpenedWave wave(plain().acid({.beats = 8}).strc(2, {{10}}).info("INAM", "x"));
    const TempPath other = plain(5).writeTemp();
    EXPECT_EQ(wave->Open(other.c_str()), S_OK);
    EXPECT_EQ(wave->hasAcid, 0u);
    EXPECT_EQ(wave->hasStretch, 0u);
    EXPECT_EQ(wave->GetSegmentCount(), 0);
    EXPECT_EQ(wave->GetLength(3), 5);
    EXPECT_EQ(wave->tags[0].chunk.ckid, CAcidWave::kEndTag);
}

TEST(AcidWave, PathIsCutAt255Characters) {
    CAcidWave wave;
    EXPECT_EQ(wave.Open(std::string(400, 'x').c_str()), E_FAIL);
    EXPECT_EQ(wave.pathName, std::wstring(255, L'x'));
    EXPECT_EQ(wave.lastError, 259u);
}

TEST(AcidWave, PathOutsideAsciiIsOpened) {
    const TempPath file(pathFromWide(L"-gr\u00fc\u00dfe.wav"));
    plain().write(file.path());
    CAcidWave wave;
    EXPECT_EQ(wave.Open(file.c_str()), S_OK);
}

}  // namespace
}  // namespace marnoth::test::acid_wave_test
