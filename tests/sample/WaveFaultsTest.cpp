#include <gtest/gtest.h>

#include <filesystem>

#include "sample/OpenedWave.h"
#include "sample/ReadWave.h"

namespace marnoth::test::wave_faults_test {
namespace {

using Kind = FaultKind;
using Quantity = FaultQuantity;

constexpr std::int64_t kMost32 = 0xFFFFFFFF;

/// Of opening a file.
LoadFault openFault(const WaveFile& content) {
    return OpenedWave(content)->fault;
}

LoadFault cutShort(const char (&chunk)[5], std::int64_t missing) {
    return {.kind = Kind::cutShort, .place = {fourCC(chunk)}, .value = missing};
}

LoadFault missing(const char (&chunk)[5]) {
    return {.kind = Kind::chunkMissing, .place = {fourCC(chunk)}};
}

/// Of reading the audio of a file that can be opened.
LoadFault audioFault(const WaveFile& content) {
    const OpenedWave opened(content);
    EXPECT_EQ(opened.result, S_OK);
    RefPtr<CWaveMem> wave;
    return readSamples(*opened, opened->format.nSamplesPerSec, wave);
}

WaveFile plain(std::int64_t frames = 100) {
    return WaveFile().frames(frames);
}

TEST(WaveFault, ASoundFileHasNone) {
    EXPECT_EQ(openFault(plain().acid({}).strc(4)), LoadFault{});
    EXPECT_EQ(audioFault(plain()), LoadFault{});
}

TEST(WaveFault, TellsWhyAFileCannotBeOpened) {
    CAcidWave wave;
    wave.Open(TempPath(".wav").c_str());
    EXPECT_EQ(wave.fault.kind, Kind::noSuchFile);
    wave.Open(std::filesystem::temp_directory_path().string().c_str());
    EXPECT_EQ(wave.fault.kind, Kind::notAFile);
    wave.Open(std::string(256, 'x').c_str());
    EXPECT_EQ(wave.fault, badValue(Quantity::pathCharacters, 256, 1, 255));
}

TEST(WaveFault, GoesWithTheNextFileThatOpens) {
    CAcidWave wave;
    wave.Open("");
    EXPECT_TRUE(wave.fault);
    const TempPath sound = plain().writeTemp();
    EXPECT_EQ(wave.Open(sound.c_str()), S_OK);
    EXPECT_FALSE(wave.fault);
}

TEST(WaveFault, TellsWhatIsNoWave) {
    EXPECT_EQ(openFault(plain().formType("AVI ")).kind, Kind::notAWave);
    EXPECT_EQ(OpenedWave(Bytes(100000, 0))->fault.kind, Kind::notAWave);
}

TEST(WaveFault, TellsAnEmptyFile) {
    EXPECT_EQ(OpenedWave(Bytes{})->fault.kind, Kind::emptyFile);
    EXPECT_EQ(OpenedWave(Bytes{'R'})->fault.kind, Kind::notAWave);
}

TEST(WaveFault, TellsOtherAudioFilesByTheirFirstBytes) {
    const auto typeOf = [](std::string begin) {
        Bytes bytes(begin.begin(), begin.end());
        bytes.resize(1000);
        const LoadFault fault = OpenedWave(bytes)->fault;
        EXPECT_EQ(fault.kind, fault.type == FileType::unknown ? Kind::notAWave : Kind::otherFileType);
        return fault.type;
    };
    EXPECT_EQ(typeOf("RF64\xFF\xFF\xFF\xFFWAVEds64"), FileType::rf64);
    EXPECT_EQ(typeOf("BW64\xFF\xFF\xFF\xFFWAVEds64"), FileType::rf64);
    EXPECT_EQ(typeOf("riff\x2E\x91\xCF\x11\xA5\xD6\x28\xDB\x04\xC1"), FileType::w64);
    EXPECT_EQ(typeOf("fLaC"), FileType::flac);
    EXPECT_EQ(typeOf(std::string("FORM\0\0\1\0AIFF", 12)), FileType::aiff);
    EXPECT_EQ(typeOf(std::string("FORM\0\0\1\0AIFC", 12)), FileType::aiff);
    EXPECT_EQ(typeOf(std::string("FORM\0\0\1\0ILBM", 12)), FileType::unknown);
    EXPECT_EQ(typeOf("OggS"), FileType::ogg);
    EXPECT_EQ(typeOf("ID3\x04"), FileType::mp3);
    // 128 kbit/s at 44100 Hz, layer III of MPEG 1.
    EXPECT_EQ(typeOf("\xFF\xFB\x90\x64"), FileType::mp3);
    // The same with a layer, a bit rate and a sample rate that there aren't, and a stream of AAC.
    for (const char* bytes : {"\xFF\xF9\x90\x64", "\xFF\xFB\xF0\x64", "\xFF\xFB\x9C\x64", "\xFF\xF1\x50\x80"})
        EXPECT_EQ(typeOf(bytes), FileType::unknown);
    EXPECT_EQ(typeOf("RIFX"), FileType::unknown);
}

TEST(WaveFault, NamesAChunkThatIsMissing) {
    EXPECT_EQ(openFault(plain().poke(12, 'x')), missing("fmt "));
    EXPECT_EQ(openFault(plain().poke(36, 'x')), missing("data"));
    EXPECT_EQ(openFault(plain().moveBefore("data", "fmt ")), missing("data"));
}

TEST(WaveFault, CountsTheBytesThatAChunkMisses) {
    // The format's 16 bytes begin at 20.
    EXPECT_EQ(openFault(plain().truncate(20 + 15)), cutShort("fmt ", 1));
    EXPECT_EQ(openFault(WaveFile().floats().frames(4).truncate(20 + 17)), cutShort("fmt ", 1));
    const WaveFile loop = plain().acid({.beats = 8}).strc(4, {{50}, {70}});
    const std::size_t acid = loop.offsetOf("acid") + 8;
    EXPECT_EQ(openFault(WaveFile(loop).truncate(acid + 20)), cutShort("acid", 4));
    const std::size_t strc = loop.offsetOf("strc") + 8;
    EXPECT_EQ(openFault(WaveFile(loop).truncate(strc + 27)), cutShort("strc", 1));
    // Two markers of 32 bytes behind 28 bytes.
    EXPECT_EQ(openFault(WaveFile(loop).truncate(strc + 28 + 40)), cutShort("strc", 24));
    EXPECT_EQ(openFault(WaveFile(loop).poke(strc + 4, 5)), cutShort("strc", 3 * 32));
}

TEST(WaveFault, TellsValuesThatNoFileMayHave) {
    EXPECT_EQ(openFault(plain(0)), badValue(Quantity::frames, 0, 1, kMost32, {fourCC("data")}));
    EXPECT_EQ(openFault(plain().blockAlign(0)),
              badValue(Quantity::blockBytes, 0, 1, 0xFFFF, {fourCC("fmt ")}));
    Bytes body(28 + 32 * (std::size_t{1} << 20) + 32);
    body[4 + 2] = 0x10;
    body[4] = 1;
    EXPECT_EQ(openFault(plain().acid({}).setChunk("strc", body)),
              badValue(Quantity::markers, (1 << 20) + 1, 0, 1 << 20, {fourCC("strc")}));
}

TEST(WaveFault, TellsFormatsThatAreNotTaken) {
    const auto notTaken = [](std::uint16_t tag, std::uint16_t bits) {
        return LoadFault{
            .kind = Kind::formatNotTaken, .formatTag = tag, .bits = bits, .place = {fourCC("fmt ")}};
    };
    EXPECT_EQ(audioFault(WaveFile().bits(8).frames(10)), notTaken(1, 8));
    EXPECT_EQ(audioFault(WaveFile().bits(32).frames(10)), notTaken(1, 32));
    // The channels don't hide it.
    EXPECT_EQ(audioFault(WaveFile().bits(8).channels(3).frames(10)), notTaken(1, 8));
    EXPECT_EQ(audioFault(WaveFile().bits(32).extensible().frames(10)), notTaken(1, 32));
    EXPECT_EQ(audioFault(WaveFile().bits(8).tag(6).extensible().frames(10)), notTaken(6, 8));
    // The blocks of what is compressed don't hide it either.
    EXPECT_EQ(audioFault(WaveFile().tag(0x11).blockAlign(512).audio(Bytes(1024))), notTaken(0x11, 16));
}

TEST(WaveFault, TellsNumbersOfTheFormatThatAreNotTaken) {
    const FaultPlace format{fourCC("fmt ")};
    EXPECT_EQ(audioFault(WaveFile().channels(257).frames(4)),
              badValue(Quantity::channels, 257, 1, 256, format));
    EXPECT_EQ(audioFault(plain().rate(0)), badValue(Quantity::rate, 0, 1, kMost32, format));
    EXPECT_EQ(audioFault(WaveFile().channels(2).blockAlign(6).frames(8)),
              badValue(Quantity::blockBytes, 6, 4, 4, format));
    EXPECT_EQ(audioFault(WaveFile().channels(2).audio(Bytes(3))),
              badValue(Quantity::frames, 0, 1, kMost32, {fourCC("data")}));
}

TEST(WaveFault, TellsHowMuchOfAClaimIsMissing) {
    // 44 bytes of headers and 1000 of audio.
    EXPECT_EQ(audioFault(plain(500).claim("data", 0xFFFFFFF0)), cutShort("data", 0xFFFFFFF0ll - 1000));
}

}  // namespace
}  // namespace marnoth::test::wave_faults_test
