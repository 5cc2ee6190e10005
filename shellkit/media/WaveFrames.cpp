#include "shellkit/media/WaveFrames.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "platform/bytes/RiffStream.h"
#include "shellkit/files/Failure.h"
#include "shellkit/text/InstrumentText.h"

namespace marnoth {

namespace {

constexpr std::int64_t kFormatBytes = 16;
constexpr std::int64_t kSubFormatOffset = 24;  ///< of the tag inside an extensible format

class WaveFile {
public:
    explicit WaveFile(const std::filesystem::path& path) : path_(path) {
        if (stream_.open(path, FileMode::read) != kRiffOk) fail("it can't be opened");
        riff_.fccType = fourCC("WAVE");
        if (stream_.descend(riff_, nullptr, RiffFind::riff) != kRiffOk) fail("it isn't a WAV file");
    }

    WaveFrames read() {
        WaveFrames wave;
        readFormat(wave);
        ChunkInfo data = find("data");
        const std::int64_t there = std::min<std::int64_t>(data.cksize, stream_.remaining().value_or(0));
        const std::int64_t frameBytes = 4 * static_cast<std::int64_t>(wave.channels);
        wave.samples.resize(static_cast<std::size_t>(there / frameBytes * wave.channels));
        const auto bytes = static_cast<std::int64_t>(wave.samples.size() * sizeof(float));
        if (!stream_.readExactly(wave.samples.data(), bytes)) fail("reading failed");
        return wave;
    }

private:
    void readFormat(WaveFrames& wave) {
        ChunkInfo format = find("fmt ");
        std::array<char, 40> body{};
        const auto size = std::min<std::int64_t>(format.cksize, body.size());
        if (size < kFormatBytes || !stream_.readExactly(body.data(), size)) fail("its format is cut short");
        const auto word = [&](std::int64_t offset) {
            std::uint16_t value;
            std::memcpy(&value, body.data() + offset, sizeof value);
            return value;
        };
        const std::uint16_t tag = word(0) == WAVE_FORMAT_EXTENSIBLE ? word(kSubFormatOffset) : word(0);
        wave.channels = word(2);
        std::memcpy(&wave.rate, body.data() + 4, sizeof wave.rate);
        if (tag != WAVE_FORMAT_IEEE_FLOAT || word(14) != 32) fail("it isn't 32-bit float, as the pin is");
        if (wave.channels < 1 || wave.channels > 2) fail("it is neither mono nor stereo");
        stream_.ascend(format);
    }

    ChunkInfo find(const char (&id)[5]) {
        ChunkInfo chunk;
        chunk.ckid = fourCC(id);
        if (stream_.descend(chunk, &riff_, RiffFind::chunk) != kRiffOk)
            fail("its \"" + std::string(id) + "\" chunk is missing");
        return chunk;
    }

    [[noreturn]] void fail(const std::string& reason) const {
        throw FileFailure(utf8FromPath(path_) + ": " + reason);
    }

    const std::filesystem::path& path_;
    RiffStream stream_;
    ChunkInfo riff_;
};

}  // namespace

WaveFrames readWaveFrames(const std::filesystem::path& path) {
    return WaveFile(path).read();
}

}  // namespace marnoth
