#include "shellkit/media/WaveHeader.h"

#include <string_view>
#include <utility>

#include "platform/bytes/RiffStream.h"
#include "platform/com/Com.h"

namespace marnoth {

namespace {

/// A RIFF file's sizes have 32 bits; the headers take less than the rest.
constexpr std::int64_t kMostRiffDataBytes = 0xFFFFFFFFLL - 1024;
/// Stands where a size has gone to the "ds64" chunk.
constexpr std::uint32_t kSizeElsewhere = 0xFFFFFFFF;
constexpr std::int64_t kFormTypeBytes = 4;

/// A header as it grows, little-endian.
class HeaderBytes {
public:
    void add(std::string_view text) {
        for (const char letter : text) bytes_.push_back(static_cast<std::byte>(letter));
    }
    void add16(std::uint32_t value) { add(value, 2); }
    void add32(std::uint32_t value) { add(value, 4); }
    void add64(std::int64_t value) { add(static_cast<std::uint64_t>(value), 8); }

    std::vector<std::byte> take() { return std::move(bytes_); }

private:
    void add(std::uint64_t value, int width) {
        for (int i = 0; i < width; ++i) bytes_.push_back(static_cast<std::byte>(value >> 8 * i));
    }

    std::vector<std::byte> bytes_;
};

bool isFloat(const WaveFormat& format) {
    return format.samples == SampleFormat::float32;
}

/// What is no plain integers has an extension, be it empty, and tells its number of frames.
std::int64_t headerBytes(const WaveFormat& format, WaveForm form) {
    const std::int64_t riff = kChunkHeaderBytes + kFormTypeBytes;
    const std::int64_t sizes = form == WaveForm::rf64 ? kChunkHeaderBytes + 28 : 0;
    const std::int64_t formatAndFact =
        kChunkHeaderBytes + 16 + (isFloat(format) ? 2 + kChunkHeaderBytes + 4 : 0);
    return riff + sizes + formatAndFact + kChunkHeaderBytes;
}

std::int64_t fileBytes(const WaveFormat& format, WaveForm form, std::int64_t frames) {
    return headerBytes(format, form) + frames * format.frameBytes() + wavePadding(format, frames);
}

void addSizes(HeaderBytes& to, const WaveFormat& format, std::int64_t frames) {
    to.add("ds64");
    to.add32(28);
    to.add64(fileBytes(format, WaveForm::rf64, frames) - kChunkHeaderBytes);
    to.add64(frames * format.frameBytes());
    to.add64(frames);
    to.add32(0);  // entries of a table of further long chunks
}

void addFormat(HeaderBytes& to, const WaveFormat& format) {
    to.add("fmt ");
    to.add32(isFloat(format) ? 18 : 16);
    to.add16(isFloat(format) ? WAVE_FORMAT_IEEE_FLOAT : WAVE_FORMAT_PCM);
    to.add16(format.channels);
    to.add32(format.rate);
    to.add32(format.rate * format.frameBytes());
    to.add16(format.frameBytes());
    to.add16(8 * bytesOf(format.samples));
    if (isFloat(format)) to.add16(0);
}

void addFact(HeaderBytes& to, std::uint32_t frames) {
    to.add("fact");
    to.add32(4);
    to.add32(frames);
}

}  // namespace

WaveForm waveFormFor(const WaveFormat& format, std::int64_t frames) {
    return frames > kMostRiffDataBytes / format.frameBytes() ? WaveForm::rf64 : WaveForm::riff;
}

std::vector<std::byte> waveHeader(const WaveFormat& format, WaveForm form, std::int64_t frames) {
    const bool isLong = form == WaveForm::rf64;
    const auto narrow = [&](std::int64_t size) {
        return isLong ? kSizeElsewhere : static_cast<std::uint32_t>(size);
    };
    HeaderBytes header;
    header.add(isLong ? "RF64" : "RIFF");
    header.add32(narrow(fileBytes(format, form, frames) - kChunkHeaderBytes));
    header.add("WAVE");
    if (isLong) addSizes(header, format, frames);
    addFormat(header, format);
    if (isFloat(format)) addFact(header, narrow(frames));
    header.add("data");
    header.add32(narrow(frames * format.frameBytes()));
    return header.take();
}

std::int64_t wavePadding(const WaveFormat& format, std::int64_t frames) {
    return frames & format.frameBytes() & 1;
}

std::int64_t waveFileBytes(const WaveFormat& format, std::int64_t frames) {
    return fileBytes(format, waveFormFor(format, frames), frames);
}

}  // namespace marnoth
