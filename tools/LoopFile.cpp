#include "tools/LoopFile.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <stdexcept>

#include "platform/bytes/RiffStream.h"

namespace marnoth::tools {

namespace {

constexpr std::uint16_t kPcmTag = 1;
constexpr std::uint16_t kFloatTag = 3;
constexpr std::uint32_t kRootNoteSet = 2;
constexpr std::uint32_t kStretchOn = 4;
constexpr std::size_t kMarkerPadding = 12;
constexpr int kSixteenths = 4;

/// The body of a chunk, field by field, little-endian.
class Body {
public:
    Body& u16(std::uint32_t value) { return bytes(value, 2); }
    Body& u32(std::uint32_t value) { return bytes(value, 4); }
    Body& bytes(std::uint64_t value, int count) {
        for (int i = 0; i < count; ++i) data_ += static_cast<char>(value >> (8 * i) & 0xFF);
        return *this;
    }
    Body& text(const std::string& value) {
        data_ += value;
        data_ += '\0';
        return *this;
    }
    Body& zeros(std::size_t count) {
        data_.append(count, '\0');
        return *this;
    }
    const std::string& data() const { return data_; }

private:
    std::string data_;
};

int bitsOf(SampleKind kind) {
    return kind == SampleKind::pcm16 ? 16 : kind == SampleKind::pcm24 ? 24 : 32;
}

void appendSample(Body& body, float sample, SampleKind kind) {
    if (kind == SampleKind::float32) {
        body.u32(std::bit_cast<std::uint32_t>(sample));
        return;
    }
    const int bits = bitsOf(kind);
    const double top = std::exp2(bits - 1) - 1;
    const auto value = std::lround(std::clamp<double>(sample, -1, 1) * top);
    body.bytes(static_cast<std::uint64_t>(value), bits / 8);
}

Body formatBody(const Loop& loop, SampleKind kind) {
    const auto bits = static_cast<std::uint32_t>(bitsOf(kind));
    const std::uint32_t blockAlign = loop.channels * bits / 8;
    Body body;
    body.u16(kind == SampleKind::float32 ? kFloatTag : kPcmTag).u16(loop.channels);
    body.u32(loop.rate).u32(loop.rate * blockAlign).u16(blockAlign).u16(bits);
    if (kind == SampleKind::float32) body.u16(0);
    return body;
}

Body audioBody(const Loop& loop, SampleKind kind) {
    Body body;
    for (const float sample : loop.samples) appendSample(body, sample, kind);
    return body;
}

Body acidBody(const Loop& loop) {
    Body body;
    body.u32(kStretchOn | (loop.rootNote >= 0 ? kRootNoteSet : 0));
    body.u16(static_cast<std::uint32_t>(std::max(loop.rootNote, 0))).u16(0).u32(0);
    body.u32(loop.beats).u16(4).u16(4);
    body.u32(std::bit_cast<std::uint32_t>(static_cast<float>(loop.tempo)));
    return body;
}

Body stretchBody(const Loop& loop) {
    const int exponent = loop.divisionExponent >= 0 ? loop.divisionExponent : kSixteenths;
    Body body;
    body.u32(0).u32(static_cast<std::uint32_t>(loop.markers.size())).zeros(16);
    body.u32(static_cast<std::uint32_t>(exponent));
    for (const std::uint32_t position : loop.markers)
        body.u32(0).u32(0).u32(position).u32(0).u32(1).zeros(kMarkerPadding);
    return body;
}

class LoopWriter {
public:
    explicit LoopWriter(const std::filesystem::path& path) : path_(path) {
        need(stream_.open(path, FileMode::create) == kRiffOk);
    }

    void write(const Loop& loop, SampleKind kind) {
        ChunkInfo riff = open("WAVE", RiffCreate::riff);
        chunk("fmt ", formatBody(loop, kind));
        chunk("data", audioBody(loop, kind));
        ChunkInfo list = open("INFO", RiffCreate::list);
        chunk("INAM", Body().text(loop.title));
        chunk("IGNR", Body().text("Demo"));
        chunk("ISFT", Body().text("make_demo_loops"));
        need(stream_.ascend(list) == kRiffOk);
        chunk("acid", acidBody(loop));
        if (loop.divisionExponent >= 0 || !loop.markers.empty()) chunk("strc", stretchBody(loop));
        need(stream_.ascend(riff) == kRiffOk && stream_.close() == kRiffOk);
    }

private:
    ChunkInfo open(const char (&form)[5], RiffCreate kind) {
        ChunkInfo info;
        info.fccType = fourCC(form);
        need(stream_.createChunk(info, kind) == kRiffOk);
        return info;
    }

    void chunk(const char (&id)[5], const Body& body) {
        ChunkInfo info;
        info.ckid = fourCC(id);
        const auto bytes = static_cast<std::int64_t>(body.data().size());
        need(stream_.createChunk(info) == kRiffOk && stream_.write(body.data().data(), bytes) &&
             stream_.ascend(info) == kRiffOk);
    }

    void need(bool ok) const {
        if (!ok) throw std::runtime_error(path_.string() + ": it can't be written");
    }

    std::filesystem::path path_;
    RiffStream stream_;
};

}  // namespace

void writeLoop(const Loop& loop, SampleKind kind, const std::filesystem::path& path) {
    LoopWriter(path).write(loop, kind);
}

}  // namespace marnoth::tools
