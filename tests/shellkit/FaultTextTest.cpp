#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <limits>

#include "platform/bytes/RiffStream.h"
#include "seam/IMarnothFaults.h"
#include "shellkit/files/FaultText.h"
#include "shellkit/text/InstrumentText.h"
#include "support/TempPath.h"

namespace marnoth::test::fault_text_test {
namespace {

using Kind = FaultKind;
using Quantity = FaultQuantity;

std::string ofKind(Kind kind, FaultPlace place = {}) {
    return inWords({.kind = kind, .place = place});
}

TEST(FaultText, OfTheFileItself) {
    EXPECT_EQ(ofKind(Kind::noMemory), "there isn't enough memory for it");
    EXPECT_EQ(ofKind(Kind::noSuchFile), "there is no such file");
    EXPECT_EQ(ofKind(Kind::notAFile), "it isn't a file");
    EXPECT_EQ(ofKind(Kind::cannotOpen), "it can't be opened");
    EXPECT_EQ(ofKind(Kind::cannotRead), "it can't be read");
    EXPECT_EQ(ofKind(Kind::emptyFile), "it is empty");
    EXPECT_EQ(ofKind(Kind::notAWave), "it isn't a WAV file");
    EXPECT_EQ(ofKind(Kind::notAProject), "it isn't a project");
    EXPECT_EQ(ofKind(Kind::neverFinished), "its saving was never finished");
    EXPECT_EQ(inWords(badValue(Quantity::pathCharacters, 300, 1, 259)),
              "its path is too long: 300 characters; the instrument takes 259; move it into a folder with a "
              "shorter path");
}

TEST(FaultText, OfNoFaultSaysNoMoreThanIsKnown) {
    EXPECT_EQ(inWords({}), "the instrument doesn't take it");
}

TEST(FaultText, OfAFileThatEndsTooEarlyCountsTheBytesWhereTheyAreKnown) {
    EXPECT_EQ(ofKind(Kind::cutShort), "it is cut short");
    EXPECT_EQ(inWords({.kind = Kind::cutShort, .value = std::int64_t{100}}),
              "it is cut short: 100 bytes are missing");
}

TEST(FaultText, OfAProjectSaysFromWhereOnItIsGone) {
    EXPECT_EQ(inWords({.kind = Kind::cutShort, .place = {fourCC("data"), 1}, .value = std::int64_t{100}}),
              "it is cut short: 100 bytes are missing, from file 2 on");
    EXPECT_EQ(ofKind(Kind::cannotRead, {fourCC("pevt"), 15}), "it can't be read, from pad 16 on");
}

TEST(FaultText, OfAChunkSaysWhichPartOfTheFileItIs) {
    EXPECT_EQ(ofKind(Kind::chunkMissing, {fourCC("fmt ")}),
              "its format or its audio data is missing or damaged");
    EXPECT_EQ(ofKind(Kind::chunkMissing, {fourCC("data")}),
              "its format or its audio data is missing or damaged");
    EXPECT_EQ(ofKind(Kind::chunkMissing, {fourCC("comn")}), "its \"comn\" chunk is missing or damaged");
    EXPECT_EQ(ofKind(Kind::chunkDamaged, {fourCC("keym"), -1, 15}),
              "its \"keym\" chunk is missing or damaged");
    // Files and pads count from 1.
    EXPECT_EQ(ofKind(Kind::chunkMissing, {fourCC("lbtr"), 2}), "file 3 of it is missing or damaged");
    EXPECT_EQ(ofKind(Kind::chunkDamaged, {fourCC("data"), 0}), "file 1 of it is missing or damaged");
    EXPECT_EQ(ofKind(Kind::chunkMissing, {fourCC("pevt"), 15}), "pad 16 of it is missing or damaged");
}

TEST(FaultText, OfAWaveNamesValueAndLimit) {
    const FaultPlace format{fourCC("fmt ")};
    EXPECT_EQ(inWords(badValue(Quantity::beats, 65, 0, 64)), "it has 65 beats; a loop may have 64");
    EXPECT_EQ(inWords(badReal(Quantity::loopSeconds, 130.5, 0, 128)),
              "it is too long: 130.5 seconds; a loop may have 128 seconds");
    EXPECT_EQ(inWords(badReal(Quantity::shotSeconds, 31, 0, 30)),
              "it is too long: 31 seconds; a file without loop data may have 30 seconds");
    EXPECT_EQ(inWords(badValue(Quantity::channels, 300, 1, 256, format)),
              "it has 300 channels; the instrument takes 1 to 256");
    EXPECT_EQ(inWords(badValue(Quantity::rate, 0, 1, 0xFFFFFFFF, format)), "its sample rate is 0 Hz");
    EXPECT_EQ(inWords(badValue(Quantity::blockBytes, 6, 4, 4, format)),
              "its format is damaged: it says that a frame has 6 bytes, where its channels and bits make 4");
    EXPECT_EQ(inWords(badValue(Quantity::blockBytes, 0, 1, 0xFFFF, format)),
              "its format is damaged: it says that a frame has 0 bytes");
    EXPECT_EQ(inWords(badValue(Quantity::frames, 0, 1, 0xFFFFFFFF)), "it holds no audio");
    EXPECT_EQ(inWords(badValue(Quantity::markers, 2000000, 0, 1048576)),
              "it has 2000000 stretch markers; a file may have 1048576");
    EXPECT_EQ(ofKind(Kind::noGrains), "it holds no audio that can be cut into grains");
}

TEST(FaultText, OfSamplesThatAreNotTakenSaysHowToSaveThem) {
    const auto ofFormat = [](std::uint16_t tag, std::uint16_t bits) {
        return inWords({.kind = Kind::formatNotTaken, .formatTag = tag, .bits = bits});
    };
    EXPECT_EQ(ofFormat(1, 8), "8-bit WAV files aren't read; save it with 16 bits or more");
    EXPECT_EQ(ofFormat(1, 32),
              "32-bit integer WAV files aren't read; save it with 24 bits, or with 32 bits of float");
    EXPECT_EQ(ofFormat(3, 64),
              "64-bit WAV files aren't read; save it with 24 bits, or with 32 bits of float");
    EXPECT_EQ(ofFormat(6, 8), "A-law WAV files aren't read; save it with 16 bits or more");
    EXPECT_EQ(ofFormat(7, 8), "mu-law WAV files aren't read; save it with 16 bits or more");
    EXPECT_EQ(ofFormat(2, 4), "ADPCM WAV files aren't read; save it with 16 bits or more");
    EXPECT_EQ(ofFormat(0x11, 4), "ADPCM WAV files aren't read; save it with 16 bits or more");
    EXPECT_EQ(ofFormat(0x31, 0),
              "0-bit WAV files of format tag 49 aren't read; save it with 16 bits or more");
}

TEST(FaultText, OfDamageSaysWhatIsDoneAboutIt) {
    EXPECT_EQ(damageInWords({.kind = Kind::cutShort, .value = std::int64_t{100}}),
              "it is cut short: 100 bytes are missing; what is there is taken");
    EXPECT_EQ(damageInWords({.kind = Kind::lengthUnknown}),
              "it doesn't say how long it is; what is there is taken");
    EXPECT_EQ(notFiniteText(1), "1 sample is not a number (NaN or infinite)");
    EXPECT_EQ(notFiniteText(2), "2 samples are not numbers (NaN or infinite)");
}

TEST(FaultText, OfOtherAudioFilesNamesTheirType) {
    using enum FileType;
    const std::vector<std::pair<FileType, std::string>> names{{rf64, "RF64"}, {w64, "W64"}, {flac, "FLAC"},
                                                              {aiff, "AIFF"}, {ogg, "Ogg"}, {mp3, "MP3"}};
    for (const auto& [type, name] : names)
        EXPECT_EQ(inWords({.kind = Kind::otherFileType, .type = type}),
                  name + " files aren't read; save it as a plain WAV file");
}

TEST(FaultText, OfAProjectNamesValueAndLimit) {
    const FaultPlace header{fourCC("comn")};
    EXPECT_EQ(inWords(badValue(Quantity::version, 2, 1, 1, header)),
              "it is of version 2; this program reads version 1");
    EXPECT_EQ(inWords(badValue(Quantity::files, -1, 0, 16, header)),
              "it claims -1 files; a project has up to 16");
    EXPECT_EQ(inWords(badValue(Quantity::pads, 15, 16, 16, header)), "it claims 15 pads; a project has 16");
}

TEST(FaultText, OfADamagedValueSaysWhoseItIs) {
    const std::string damaged = "it is damaged: a value in it is none that a project has ";
    EXPECT_EQ(inWords(badReal(Quantity::volume, std::numeric_limits<double>::infinity(), 0, 0,
                              {fourCC("pdtr"), 4})),
              damaged + "(volume of pad 5: inf)");
    EXPECT_EQ(inWords(badValue(Quantity::binFile, -1, 0, 15, {fourCC("pevt"), 5, 1})),
              damaged + "(file of the Loop Bin of grain 2 of pad 6: -1)");
    EXPECT_EQ(inWords(badValue(Quantity::lowKey, -3, 0, 127, {fourCC("keym"), -1, 1})),
              damaged + "(lowest key of key map record 2: -3)");
    EXPECT_EQ(inWords(badValue(Quantity::channels, 3, 1, 2, {fourCC("fmt "), 1})),
              damaged + "(channels of file 2: 3)");
    EXPECT_EQ(inWords(badValue(Quantity::tailFrames, 99, 0, 10)), damaged + "(frames of all tails: 99)");
}

/// Answers for its one fault, or for nothing.
class FakeInstrument : public IMarnothFaults {
public:
    explicit FakeInstrument(bool answers) : answers_(answers) {}

    HRESULT QueryInterface(REFIID iid, void** out) override {
        const bool asked = answers_ && IsEqualIID(iid, IID_IMarnothFaults);
        *out = asked ? static_cast<IMarnothFaults*>(this) : nullptr;
        return asked ? S_OK : E_NOINTERFACE;
    }
    ULONG AddRef() override { return 1; }
    ULONG Release() override { return 1; }
    HRESULT GetLoadFault(LoadFault* fault) override {
        *fault = {.kind = Kind::notAWave};
        return S_OK;
    }
    HRESULT GetLoadDamage(LoadFault* damage) override {
        *damage = {.kind = Kind::lengthUnknown};
        return S_OK;
    }

private:
    bool answers_;
};

TEST(FaultText, ComesFromTheInstrumentThatLoaded) {
    FakeInstrument telling(true);
    FakeInstrument silent(false);
    EXPECT_EQ(lastLoadFault(telling).kind, Kind::notAWave);
    EXPECT_FALSE(lastLoadFault(silent));
    EXPECT_EQ(lastLoadDamage(telling).kind, Kind::lengthUnknown);
    EXPECT_FALSE(lastLoadDamage(silent));
}

#ifndef _WIN32
TEST(FaultText, ANameThatTheInstrumentDoesNotGetIsTheReasonOfAFileThatIsThere) {
    const TempPath place;
    const std::string name = place.path().string() + "\xFF.wav";
    EXPECT_EQ(whyNotLoaded(name, {.kind = Kind::noSuchFile}), "there is no such file");
    std::ofstream(name) << "x";
    EXPECT_EQ(whyNotLoaded(name, {.kind = Kind::noSuchFile}), kNotSayable);
    std::filesystem::remove(name);
}
#endif

}  // namespace
}  // namespace marnoth::test::fault_text_test
