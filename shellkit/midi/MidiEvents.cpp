#include "shellkit/midi/MidiEvents.h"

#include <algorithm>
#include <limits>

namespace marnoth {

namespace {

constexpr std::uint32_t kHeaderId = 0x4D546864;  // "MThd"
constexpr std::uint32_t kTrackId = 0x4D54726B;   // "MTrk"
constexpr std::uint32_t kFormId = 0x52494646;    // "RIFF"
constexpr std::uint32_t kFormType = 0x524D4944;  // "RMID"
constexpr std::uint32_t kDataId = 0x64617461;    // "data"
constexpr std::uint32_t kHeaderBytes = 6;
constexpr std::size_t kChunkHeadBytes = 8;
constexpr int kLongestVariableNumber = 4;  // bytes
// The first bytes of events; of messages without their channel.
constexpr std::uint8_t kNoteOff = 0x80;
constexpr std::uint8_t kNoteOn = 0x90;
constexpr std::uint8_t kProgram = 0xC0;  ///< one byte follows, as behind the next
constexpr std::uint8_t kPressure = 0xD0;
constexpr std::uint8_t kSystem = 0xF0;        ///< a whole message, or its beginning
constexpr std::uint8_t kSystemGoesOn = 0xF7;  ///< the rest of one, or any bytes
constexpr std::uint8_t kMeta = 0xFF;
// Kinds of meta events.
constexpr std::uint8_t kEndOfTrack = 0x2F;
constexpr std::uint8_t kTempo = 0x51;
constexpr std::uint8_t kSignature = 0x58;

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

    std::uint32_t big32() { return big(4); }
    std::uint32_t big24() { return big(3); }
    std::uint16_t big16() { return static_cast<std::uint16_t>(big(2)); }

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
    std::uint32_t big(std::size_t count) {
        std::uint32_t value = 0;
        for (const std::uint8_t byte : take(count)) value = value << 8 | byte;
        return value;
    }

    std::span<const std::uint8_t> rest_;
    bool ok_ = true;
};

/// Walks the events of a track up to its end.
class TrackReader {
public:
    TrackReader(std::span<const std::uint8_t> track, std::vector<MidiEvent>& events)
        : bytes_(track), events_(events) {}

    /// False for a track that isn't sound.
    bool read() {
        while (bytes_.size() > 0 && !ended_ && readTime()) event();
        if (!ended_) put({});
        return bytes_.ok();
    }

private:
    /// False, too, for a time at the very end, which no event follows.
    bool readTime() {
        pulses_ += bytes_.variableNumber();
        if (pulses_ > std::numeric_limits<std::int32_t>::max()) bytes_.fail();
        return bytes_.ok() && bytes_.size() > 0;
    }

    void event() {
        if (bytes_.peek() >= kSystem) return systemEvent(bytes_.byte());
        if (bytes_.peek() >= kNoteOff) running_ = bytes_.byte();
        if (!running_) return bytes_.fail();
        const std::uint8_t kind = *running_ & 0xF0;
        const auto data = bytes_.take(kind == kProgram || kind == kPressure ? 1 : 2);
        if (std::any_of(data.begin(), data.end(), [](std::uint8_t byte) { return byte >= 0x80; }))
            return bytes_.fail();
        put(bytes_.ok() ? message(kind, *running_ & 0x0F, data) : What{});
    }

    void systemEvent(std::uint8_t status) {
        if (status != kMeta && status != kSystem && status != kSystemGoesOn) return bytes_.fail();
        const std::uint8_t kind = status == kMeta ? bytes_.byte() : 0;
        if (kind >= 0x80) return bytes_.fail();
        const auto body = bytes_.take(bytes_.variableNumber());
        put(meta(kind, body));
        ended_ = kind == kEndOfTrack;
    }

    using What = decltype(MidiEvent::what);

    static What message(std::uint8_t kind, int channel, std::span<const std::uint8_t> data) {
        if (kind != kNoteOn && kind != kNoteOff) return {};
        const std::uint8_t velocity = kind == kNoteOn ? data[1] : std::uint8_t{0};
        return MidiNote{static_cast<std::uint8_t>(channel), data[0], velocity};
    }

    static What meta(std::uint8_t kind, std::span<const std::uint8_t> body) {
        if (kind == kTempo && body.size() == 3) return MidiTempo{Bytes(body).big24()};
        if (kind == kSignature && body.size() == 4) return MidiSignature{body[0], body[1]};
        return {};
    }

    void put(What what) { events_.push_back({pulses_, what}); }

    Bytes bytes_;
    std::vector<MidiEvent>& events_;
    std::int64_t pulses_ = 0;
    std::optional<std::uint8_t> running_;  ///< stays behind meta and system events, as many files have it
    bool ended_ = false;
};

/// Reads the chunk at the front, and its events if it is a track; false behind the last one.
bool takeChunk(Bytes& bytes, std::vector<MidiEvent>& events) {
    if (!bytes.ok() || bytes.size() < kChunkHeadBytes) return false;
    const bool isTrack = bytes.big32() == kTrackId;
    const std::uint32_t length = bytes.big32();
    if (!isTrack && length > bytes.size()) return false;
    const auto body = bytes.take(length);
    if (isTrack && bytes.ok() && !TrackReader(body, events).read()) bytes.fail();
    return bytes.ok();
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

}  // namespace

std::optional<MidiEvents> readMidiEvents(std::span<const std::uint8_t> file) {
    Bytes bytes(withoutForm(file));
    if (bytes.big32() != kHeaderId) return {};
    const std::uint32_t headerBytes = bytes.big32();
    if (headerBytes < kHeaderBytes) return {};
    Bytes header(bytes.take(headerBytes));
    MidiEvents midi;
    midi.format = header.big16();
    header.big16();
    midi.division = header.big16();
    while (takeChunk(bytes, midi.events)) {
    }
    if (!bytes.ok() || midi.events.empty()) return {};
    std::stable_sort(midi.events.begin(), midi.events.end(),
                     [](const MidiEvent& a, const MidiEvent& b) { return a.pulses < b.pulses; });
    return midi;
}

}  // namespace marnoth
