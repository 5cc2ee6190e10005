#include "shellkit/midi/MidiChunks.h"

#include <algorithm>
#include <array>
#include <limits>
#include <optional>

namespace marnoth {

namespace {

constexpr std::uint32_t kHeaderId = 0x4D546864;  // "MThd"
constexpr std::uint32_t kTrackId = 0x4D54726B;   // "MTrk"
constexpr std::uint32_t kFormId = 0x52494646;    // "RIFF"
constexpr std::uint32_t kFormType = 0x524D4944;  // "RMID"
constexpr std::uint32_t kDataId = 0x64617461;    // "data"
constexpr std::uint32_t kHeaderBytes = 6;
constexpr std::size_t kChunkHeadBytes = 8;
constexpr int kLongestVariableNumber = 4;     // bytes
constexpr std::uint8_t kSystem = 0xF0;        ///< a whole message, or its beginning
constexpr std::uint8_t kSystemGoesOn = 0xF7;  ///< the rest of one, or any bytes
constexpr std::uint8_t kText = 0x01;
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

    std::uint32_t little32() {
        std::uint32_t value = 0;
        int shift = 0;
        for (const std::uint8_t byte : take(4)) value |= std::uint32_t{byte} << 8 * shift++;
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

/// Walks the events of a track up to its end, and writes them down as they should stand.
class TrackReader {
public:
    explicit TrackReader(std::span<const std::uint8_t> track) : bytes_(track) {}

    /// Nothing for a track that isn't sound.
    std::optional<std::vector<std::uint8_t>> read() {
        while (bytes_.size() > 0 && !ended_ && readTime()) event();
        if (!bytes_.ok()) return {};
        if (!ended_) putMeta(kEndOfTrack, {});
        return std::move(track_);
    }

private:
    /// False, too, for a time at the very end, which no event follows.
    bool readTime() {
        delta_ = bytes_.variableNumber();
        pulses_ += delta_;
        if (pulses_ > std::numeric_limits<std::int32_t>::max()) bytes_.fail();
        return bytes_.ok() && bytes_.size() > 0;
    }

    void event() {
        if (bytes_.peek() >= kSystem) return systemEvent(bytes_.byte());
        if (bytes_.peek() >= 0x80) running_ = bytes_.byte();
        if (!running_) return bytes_.fail();
        const std::uint8_t kind = *running_ & 0xF0;
        const bool hasOneByte = kind == 0xC0 || kind == 0xD0;
        const auto data = bytes_.take(hasOneByte ? 1 : 2);
        if (std::any_of(data.begin(), data.end(), [](std::uint8_t byte) { return byte >= 0x80; }))
            return bytes_.fail();
        putTime();
        track_.push_back(*running_);
        track_.insert(track_.end(), data.begin(), data.end());
    }

    void systemEvent(std::uint8_t status) {
        if (status != kMetaStatus && status != kSystem && status != kSystemGoesOn) return bytes_.fail();
        const std::uint8_t kind = status == kMetaStatus ? bytes_.byte() : kText;
        if (kind >= 0x80) return bytes_.fail();
        const auto body = bytes_.take(bytes_.variableNumber());
        ended_ = status == kMetaStatus && kind == kEndOfTrack;
        const bool isPlayed =
            (kind == kTempoMeta && body.size() == 3) || (kind == kSignatureMeta && body.size() == 4);
        if (ended_)
            putMeta(kEndOfTrack, {});
        else if (isPlayed)
            putMeta(kind, body);
        else
            putMeta(kText, std::array<std::uint8_t, 1>{' '});
    }

    void putMeta(std::uint8_t kind, std::span<const std::uint8_t> body) {
        putTime();
        track_.insert(track_.end(), {kMetaStatus, kind, static_cast<std::uint8_t>(body.size())});
        track_.insert(track_.end(), body.begin(), body.end());
    }

    void putTime() {
        for (int shift = 7 * (kLongestVariableNumber - 1); shift > 0; shift -= 7)
            if (delta_ >> shift) track_.push_back(static_cast<std::uint8_t>(0x80 | (delta_ >> shift & 0x7F)));
        track_.push_back(delta_ & 0x7F);
        delta_ = 0;
    }

    Bytes bytes_;
    std::uint32_t delta_ = 0;  ///< of the event that is being read
    std::int64_t pulses_ = 0;
    std::optional<std::uint8_t> running_;  ///< stays behind meta and system events, as many files have it
    bool ended_ = false;
    std::vector<std::uint8_t> track_;
};

/// Reads the chunk at the front and keeps it if it is a track; false behind the last one.
bool takeChunk(Bytes& bytes, MidiChunks& chunks) {
    if (!bytes.ok() || bytes.size() < kChunkHeadBytes) return false;
    const bool isTrack = bytes.big32() == kTrackId;
    const std::uint32_t length = bytes.big32();
    if (!isTrack && length > bytes.size()) return false;
    const auto body = bytes.take(length);
    if (!isTrack) return true;
    auto track = bytes.ok() ? TrackReader(body).read() : std::nullopt;
    if (!track) {
        bytes.fail();
        return false;
    }
    chunks.tracks.push_back(std::move(*track));
    return true;
}

/// The MIDI file within a RIFF form; any other file as it is.
std::span<const std::uint8_t> withoutForm(std::span<const std::uint8_t> file) {
    Bytes bytes(file);
    if (bytes.big32() != kFormId) return file;
    bytes.little32();
    if (bytes.big32() != kFormType) return file;
    while (bytes.ok()) {
        const bool isData = bytes.big32() == kDataId;
        const std::size_t length = bytes.little32();
        if (isData) return bytes.take(std::min(length, bytes.size()));
        bytes.take(length + length % 2);
    }
    return {};
}

void appendBig(std::vector<std::uint8_t>& file, std::size_t value, int bytes) {
    for (int shift = 8 * (bytes - 1); shift >= 0; shift -= 8)
        file.push_back(static_cast<std::uint8_t>(value >> shift));
}

}  // namespace

std::optional<MidiChunks> readMidiChunks(std::span<const std::uint8_t> file) {
    Bytes bytes(withoutForm(file));
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
