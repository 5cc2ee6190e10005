#include "shellkit/midi/MidiCheck.h"

#include <limits>
#include <optional>

namespace marnoth {

namespace {

constexpr std::uint32_t kHeaderId = 0x4D546864;  // "MThd"
constexpr std::uint32_t kTrackId = 0x4D54726B;   // "MTrk"
constexpr std::uint32_t kHeaderBytes = 6;
constexpr std::size_t kChunkHeadBytes = 8;
constexpr int kLongestVariableNumber = 4;  // bytes
constexpr std::uint8_t kSystem = 0xF0;
constexpr std::uint8_t kEndOfTrack = 0x2F;

/// Takes bytes off the front. Once something wasn't there, everything fails.
class Bytes {
public:
    explicit Bytes(std::span<const std::uint8_t> bytes) : rest_(bytes) {}

    std::size_t size() const { return rest_.size(); }
    bool ok() const { return ok_; }
    std::uint8_t peek() const { return rest_.empty() ? 0 : rest_.front(); }

    std::span<const std::uint8_t> take(std::size_t count) {
        if (count > rest_.size()) ok_ = false;
        if (!ok_) return {};
        const auto taken = rest_.first(count);
        rest_ = rest_.subspan(count);
        return taken;
    }

    std::uint32_t big32() {
        std::uint32_t value = 0;
        for (const std::uint8_t byte : take(4)) value = value << 8 | byte;
        return value;
    }

    std::uint16_t big16() {
        std::uint16_t value = 0;
        for (const std::uint8_t byte : take(2)) value = static_cast<std::uint16_t>(value << 8 | byte);
        return value;
    }

    std::uint8_t byte() {
        const auto one = take(1);
        return one.empty() ? 0 : one[0];
    }

    std::uint32_t variableNumber() {
        std::uint32_t value = 0;
        for (int i = 0; i < kLongestVariableNumber; ++i) {
            const std::uint8_t next = byte();
            value = value << 7 | (next & 0x7F);
            if (next < 0x80) return value;
        }
        ok_ = false;
        return 0;
    }

    void fail() { ok_ = false; }

private:
    std::span<const std::uint8_t> rest_;
    bool ok_ = true;
};

/// Walks the events of a track up to its end.
class TrackCheck {
public:
    explicit TrackCheck(std::span<const std::uint8_t> track) : bytes_(track) {}

    bool pass() {
        while (bytes_.ok() && !ended_) {
            pulses_ += bytes_.variableNumber();
            if (pulses_ > std::numeric_limits<std::int32_t>::max()) return false;
            event();
        }
        return bytes_.ok();
    }

private:
    void event() {
        if (bytes_.peek() >= kSystem) return systemEvent(bytes_.byte());
        if (bytes_.peek() >= 0x80) running_ = bytes_.byte();
        if (!running_) return bytes_.fail();
        const std::uint8_t kind = *running_ & 0xF0;
        const bool hasOneByte = kind == 0xC0 || kind == 0xD0;
        for (const std::uint8_t data : bytes_.take(hasOneByte ? 1 : 2))
            if (data >= 0x80) bytes_.fail();
    }

    void systemEvent(std::uint8_t status) {
        // These end a running status.
        running_.reset();
        // Escapes (0xF7) are sound, but the library stumbles over them.
        if (status != kMetaStatus && status != kSystem) return bytes_.fail();
        ended_ = status == kMetaStatus && bytes_.peek() == kEndOfTrack;
        if (status == kMetaStatus && bytes_.byte() >= 0x80) return bytes_.fail();
        const std::uint32_t length = bytes_.variableNumber();
        // A system message without bytes doesn't count as one.
        if (status != kMetaStatus && length == 0) return bytes_.fail();
        bytes_.take(length);
    }

    Bytes bytes_;
    std::int64_t pulses_ = 0;
    std::optional<std::uint8_t> running_;
    bool ended_ = false;
};

/// Reads the chunk at the front and keeps it if it is a track; false behind the last one.
bool takeChunk(Bytes& bytes, MidiChunks& chunks) {
    if (!bytes.ok() || bytes.size() < kChunkHeadBytes) return false;
    const bool isTrack = bytes.big32() == kTrackId;
    const std::uint32_t length = bytes.big32();
    if (!isTrack && length > bytes.size()) return false;
    const auto body = bytes.take(length);
    if (!isTrack) return true;
    if (!bytes.ok() || !TrackCheck(body).pass()) {
        bytes.fail();
        return false;
    }
    chunks.tracks.push_back(body);
    return true;
}

void appendBig(std::vector<std::uint8_t>& file, std::size_t value, int bytes) {
    for (int shift = 8 * (bytes - 1); shift >= 0; shift -= 8)
        file.push_back(static_cast<std::uint8_t>(value >> shift));
}

}  // namespace

std::optional<MidiChunks> readMidiChunks(std::span<const std::uint8_t> file) {
    Bytes bytes(file);
    if (bytes.big32() != kHeaderId) return {};
    const std::uint32_t headerBytes = bytes.big32();
    if (headerBytes < kHeaderBytes) return {};
    Bytes header(bytes.take(headerBytes));
    MidiChunks chunks;
    chunks.format = header.big16();
    header.big16();
    chunks.division = header.big16();
    while (takeChunk(bytes, chunks)) {
    }
    if (!bytes.ok() || chunks.tracks.empty()) return {};
    return chunks;
}

std::vector<std::uint8_t> writeMidiChunks(const MidiChunks& chunks) {
    std::vector<std::uint8_t> file;
    appendBig(file, kHeaderId, 4);
    appendBig(file, kHeaderBytes, 4);
    appendBig(file, chunks.format, 2);
    appendBig(file, chunks.tracks.size(), 2);
    appendBig(file, chunks.division, 2);
    for (const auto& track : chunks.tracks) {
        appendBig(file, kTrackId, 4);
        appendBig(file, track.size(), 4);
        file.insert(file.end(), track.begin(), track.end());
    }
    return file;
}

}  // namespace marnoth
