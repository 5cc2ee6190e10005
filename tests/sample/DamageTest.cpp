#include <gtest/gtest.h>

#include <ctime>

#include "sample/OpenedWave.h"
#include "sample/ReadWave.h"
#include "support/AllocationMeter.h"

namespace marnoth::test::damage_test {
namespace {

/// Of the processor, so that a busy machine or disk doesn't count.
double secondsSince(std::clock_t start) {
    return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

WaveFile shortLoop() {
    return WaveFile()
        .channels(2)
        .frames(20, [](auto i, int) { return 0.01 * static_cast<double>(i); })
        .info("INAM", "loop")
        .info("IART", "me")
        .acid({.beats = 2})
        .strc(4, {{5}, {10, 2}});
}

/// Everything that a load does with a file up to the cut into grains.
HRESULT load(CAcidWave& reader, const TempPath& file) {
    const HRESULT opened = reader.Open(file.c_str());
    if (FAILED(opened)) return opened;
    RefPtr<CWaveMem> wave;
    const HRESULT read = codeOf(readSamples(reader, 48000, wave));
    if (FAILED(read)) return read;
    return wave->samples ? S_OK : E_OUTOFMEMORY;
}

struct Attempt {
    HRESULT result;
    std::size_t peakBytes;
    double seconds;
};

Attempt attempt(CAcidWave& reader, const TempPath& file, const Bytes& content) {
    WaveFile::writeBytes(file.path(), content);
    const AllocationMeter meter;
    const auto start = std::clock();
    const HRESULT result = load(reader, file);
    return {result, meter.peakBytes(), secondsSince(start)};
}

constexpr std::size_t kMostForASmallFile = 1 << 20;
/// One that is taken may have lost its end: the audio that it claims is there as silence.
constexpr std::size_t kMostForAFileThatClaimsMore = 16 << 20;

TEST(DamagedWave, EveryByteAtEveryExtremeIsLoadedOrRefused) {
    const TempPath file(".wav");
    const auto reader = std::make_unique<CAcidWave>();
    const Bytes sound = shortLoop().bytes();
    ASSERT_EQ(attempt(*reader, file, sound).result, S_OK);
    int refused = 0;
    for (std::size_t at = 0; at < sound.size(); ++at) {
        for (const std::uint8_t value : {0x00, 0x7F, 0x80, 0xFF}) {
            Bytes damaged = sound;
            damaged[at] = value;
            const Attempt now = attempt(*reader, file, damaged);
            ASSERT_LT(now.seconds, 0.5) << at << ' ' << int{value};
            ASSERT_LT(now.peakBytes, kMostForAFileThatClaimsMore) << at << ' ' << int{value};
            if (SUCCEEDED(now.result)) continue;
            ++refused;
            ASSERT_LT(now.peakBytes, kMostForASmallFile) << at << ' ' << int{value};
        }
    }
    EXPECT_GT(refused, 50);
}

TEST(DamagedWave, EveryTruncationIsLoadedOrRefused) {
    const TempPath file(".wav");
    const auto reader = std::make_unique<CAcidWave>();
    const WaveFile content = shortLoop();
    const std::size_t audio = content.offsetOf("data") + 8;
    for (std::size_t length = 0; length < content.bytes().size(); ++length) {
        const Attempt now = attempt(*reader, file, WaveFile(content).truncate(length).bytes());
        ASSERT_LT(now.peakBytes, kMostForASmallFile) << length;
        ASSERT_LT(now.seconds, 0.5) << length;
        ASSERT_TRUE(length >= audio || FAILED(now.result)) << length;
    }
}

/// A refusal of `content` within time and memory that the file's size accounts for.
void expectCheapRefusal(const Bytes& content) {
    const TempPath file(".wav");
    const auto reader = std::make_unique<CAcidWave>();
    const Attempt now = attempt(*reader, file, content);
    EXPECT_LT(now.result, 0);
    EXPECT_LT(now.seconds, 1.0);
    EXPECT_LT(now.peakBytes, 4 * content.size() + kMostForASmallFile);
}

TEST(DamagedWave, MillionTinyChunksAreRefusedQuickly) {
    Bytes chunks;
    for (int i = 0; i < 1000000; ++i) {
        append(chunks, std::string("JUNK"));
        append(chunks, std::uint32_t{0});
    }
    Bytes content = WaveFile().frames(4).bytes();
    content.insert(content.begin() + 12, chunks.begin(), chunks.end());
    const auto formBytes = static_cast<std::uint32_t>(content.size() - 8);
    std::memcpy(content.data() + 4, &formBytes, 4);
    expectCheapRefusal(Bytes(content.begin(), content.end() - 60));
}

TEST(DamagedWave, MillionTinyChunksBehindTheAudioEndTheSearches) {
    Bytes content = WaveFile().bits(8).frames(4).bytes();
    for (int i = 0; i < 1000000; ++i) {
        append(content, std::string("JUNK"));
        append(content, std::uint32_t{0});
    }
    std::fill_n(content.begin() + 4, 4, std::uint8_t{0xFF});
    expectCheapRefusal(content);
}

TEST(DamagedWave, ManyDistantChunksAreRefusedQuickly) {
    // Sparse: a header every 64 KiB of a form of 4 GiB, without audio.
    const TempPath file(".wav");
    WaveFile content = WaveFile().frames(4).claim("RIFF", 0xFFFFFFFF);
    Bytes head = content.bytes();
    head.resize(36);
    WaveFile::writeBytes(file.path(), head);
    std::fstream out(file.path(), std::ios::binary | std::ios::in | std::ios::out);
    for (std::int64_t at = 36; at < (std::int64_t{1} << 30); at += 0x10000) {
        out.seekp(at);
        out.write("JUNK\xF8\xFF\0\0", 8);
    }
    out.close();
    CAcidWave reader;
    const auto start = std::clock();
    EXPECT_EQ(reader.Open(file.c_str()), E_FAIL);
    EXPECT_LT(secondsSince(start), 1.0);
}

TEST(DamagedWave, ClaimsOfGigabytesAreRefusedCheaply) {
    expectCheapRefusal(WaveFile().frames(100).claim("data", 0xFFFFFFFF).bytes());
    expectCheapRefusal(WaveFile().frames(100).acid({}).claim("acid", 0xFFFFFFFF).bytes());
    expectCheapRefusal(WaveFile().frames(100).claim("fmt ", 0xFFFFFFFF).bytes());
    WaveFile markers = WaveFile().frames(100).acid({}).strc(4);
    const std::size_t count = markers.offsetOf("strc") + 12;
    for (std::size_t i = 0; i < 4; ++i) markers.poke(count + i, 0xFF);
    expectCheapRefusal(markers.bytes());
}

TEST(DamagedWave, TagOfGigabytesIsReadAsFarAsItGoes) {
    WaveFile content = WaveFile().frames(100).info("INAM", "short");
    const std::size_t size = content.offsetOf("LIST") + 12 + 4;
    for (std::size_t i = 0; i < 4; ++i) content.poke(size + i, 0xFF);
    const TempPath file(".wav");
    const auto reader = std::make_unique<CAcidWave>();
    const Attempt now = attempt(*reader, file, content.bytes());
    EXPECT_EQ(now.result, S_OK);
    EXPECT_EQ(reader->tags[0].value, "short");
    EXPECT_LT(now.peakBytes, kMostForASmallFile);
}

TEST(DamagedWave, ChunksThatContainThemselvesComeToAnEnd) {
    // A list that claims the size of the form, full of lists that do the same.
    Bytes lists;
    for (int i = 0; i < 1000; ++i) {
        append(lists, std::string("LIST"));
        append(lists, std::uint32_t{0xFFFFFFFF});
        append(lists, std::string("INFO"));
    }
    const OpenedWave wave(WaveFile().frames(100).rawInfo(lists));
    EXPECT_EQ(wave.result, S_OK);
    EXPECT_EQ(wave->lastError, 261u);
}

}  // namespace
}  // namespace marnoth::test::damage_test
