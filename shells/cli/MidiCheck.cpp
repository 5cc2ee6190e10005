#include "shells/cli/MidiCheck.h"

#include <limits>
#include <optional>

namespace marnoth {

namespace {

constexpr std::uint32_t kHeaderId = 0x4D546864;  // "MThd"
constexpr std::uint32_t kTrackId = 0x4D54726B;   // "MTrk"
constexpr std::uint32_t kHeaderBytes = 6;
constexpr int kLongestVariableNumber = 4;  // bytes
constexpr std::uint8_t kMeta = 0xFF;
constexpr std::uint8_t kSystem = 0xF0;
constexpr std::uint8_t kEndOfTrack = 0x2F;

/// Takes bytes off the front. Once something wasn't there, everything fails.
class Bytes {
public:
    explicit Bytes(std::span<const std::uint8_t> bytes) : rest_(bytes) {}

    bool empty() const { return rest_.empty(); }
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
        // Nothing runs on behind one of these.
        running_.reset();
        // Escapes (0xF7) are sound, but the library stumbles over them.
        if (status != kMeta && status != kSystem) return bytes_.fail();
        ended_ = status == kMeta && bytes_.peek() == kEndOfTrack;
        if (status == kMeta && bytes_.byte() >= 0x80) return bytes_.fail();
        const std::uint32_t length = bytes_.variableNumber();
        // A system message of no bytes is none.
        if (status != kMeta && length == 0) return bytes_.fail();
        bytes_.take(length);
    }

    Bytes bytes_;
    std::int64_t pulses_ = 0;
    std::optional<std::uint8_t> running_;
    bool ended_ = false;
};

}  // namespace

bool isMidiFile(std::span<const std::uint8_t> file) {
    Bytes bytes(file);
    if (bytes.big32() != kHeaderId) return false;
    const std::uint32_t headerBytes = bytes.big32();
    if (headerBytes < kHeaderBytes) return false;
    bytes.take(headerBytes);
    int tracks = 0;
    while (bytes.ok() && !bytes.empty()) {
        const bool isTrack = bytes.big32() == kTrackId;
        const auto body = bytes.take(bytes.big32());
        if (!isTrack) continue;
        if (!bytes.ok() || !TrackCheck(body).pass()) return false;
        ++tracks;
    }
    return bytes.ok() && tracks > 0;
}

}  // namespace marnoth
