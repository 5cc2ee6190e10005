#include <gtest/gtest.h>

#include "sample/OpenedWave.h"

namespace marnoth::test::acid_wave_refusal_test {
namespace {

WaveFile plain(std::int64_t frames = 1000) {
    return WaveFile().frames(frames);
}

void expectRefused(const OpenedWave& wave, std::uint32_t error) {
    EXPECT_EQ(wave.result, E_FAIL);
    EXPECT_EQ(wave->lastError, error);
    EXPECT_EQ(wave->SeekFrame(0), E_FAIL) << "the file must be closed";
}

TEST(AcidWaveRefusal, FileThatIsNotThere) {
    CAcidWave wave;
    EXPECT_EQ(wave.Open(TempPath(".wav").c_str()), E_FAIL);
    EXPECT_EQ(wave.lastError, 259u);
    EXPECT_EQ(wave.Open(""), E_FAIL);
    EXPECT_EQ(wave.lastError, 259u);
}

TEST(AcidWaveRefusal, FolderInPlaceOfAFile) {
    CAcidWave wave;
    EXPECT_EQ(wave.Open(std::filesystem::temp_directory_path().string().c_str()), E_FAIL);
    EXPECT_EQ(wave.lastError, 259u);
}

TEST(AcidWaveRefusal, FirstChunkThatIsNoWave) {
    expectRefused(OpenedWave(plain().formType("AVI ")), 272);
    expectRefused(OpenedWave(plain().poke(3, 'X')), 272);
    expectRefused(OpenedWave(Bytes{}), 272);
    expectRefused(OpenedWave(Bytes(100000, 0)), 272);
}

TEST(AcidWaveRefusal, MissingFormatOrAudio) {
    expectRefused(OpenedWave(plain().poke(12, 'x')), 265);
    expectRefused(OpenedWave(plain().poke(36, 'x')), 265);
    expectRefused(OpenedWave(plain().claim("RIFF", 0)), 265);
    expectRefused(OpenedWave(plain().claim("RIFF", 28)), 265);
}

TEST(AcidWaveRefusal, AudioInFrontOfTheFormat) {
    expectRefused(OpenedWave(plain().moveBefore("data", "fmt ")), 265);
}

TEST(AcidWaveRefusal, AudioOfNoBytes) {
    expectRefused(OpenedWave(plain(0)), 272);
}

TEST(AcidWaveRefusal, BlocksOfNoBytes) {
    expectRefused(OpenedWave(plain().blockAlign(0)), 272);
}

TEST(AcidWaveRefusal, FormatThatTheFileCutsShort) {
    expectRefused(OpenedWave(plain().truncate(20 + 15)), 261);
    expectRefused(OpenedWave(WaveFile().floats().frames(4).truncate(20 + 17)), 261);
}

TEST(AcidWaveRefusal, LoopDataThatTheFileCutsShort) {
    const WaveFile file = plain().acid({.beats = 8});
    const std::size_t body = file.offsetOf("acid") + 8;
    expectRefused(OpenedWave(WaveFile(file).truncate(body + 23)), 261);
    EXPECT_EQ(OpenedWave(WaveFile(file).truncate(body + 24)).result, S_OK);
    expectRefused(OpenedWave(WaveFile(file).claim("acid", 25)), 261);
    expectRefused(OpenedWave(WaveFile(file).claim("acid", 0xFFFFFFFF)), 261);
}

TEST(AcidWaveRefusal, StretchHeaderThatTheFileCutsShort) {
    const WaveFile file = plain().acid({}).strc(4);
    const std::size_t body = file.offsetOf("strc") + 8;
    expectRefused(OpenedWave(WaveFile(file).truncate(body + 27)), 261);
    EXPECT_EQ(OpenedWave(WaveFile(file).truncate(body + 28)).result, S_OK);
}

TEST(AcidWaveRefusal, MarkersThatAreNotThere) {
    const WaveFile file = plain().acid({}).strc(4, {{100}, {200}});
    const std::size_t count = file.offsetOf("strc") + 8 + 4;
    expectRefused(OpenedWave(WaveFile(file).poke(count, 3)), 261);
    expectRefused(OpenedWave(WaveFile(file).poke(count + 3, 0xFF)), 261);
    expectRefused(OpenedWave(WaveFile(file).truncate(file.bytes().size() - 1)), 261);
}

TEST(AcidWaveRefusal, NotOfMarkersThatRunPastTheirChunk) {
    const WaveFile file = plain().acid({}).strc(4, {{100}, {200}});
    const OpenedWave wave(WaveFile(file).claim("strc", 28));
    EXPECT_EQ(wave.result, S_OK);
    EXPECT_EQ(wave->GetSegmentCount(), 3);
}

}  // namespace
}  // namespace marnoth::test::acid_wave_refusal_test
