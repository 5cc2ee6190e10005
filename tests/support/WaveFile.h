#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "support/TempPath.h"

namespace marnoth::test {

using Bytes = std::vector<std::uint8_t>;

template <class T>
void append(Bytes& bytes, T value) {
    const auto at = bytes.size();
    bytes.resize(at + sizeof value);
    std::memcpy(bytes.data() + at, &value, sizeof value);
}

inline void append(Bytes& bytes, const std::string& text) {
    bytes.insert(bytes.end(), text.begin(), text.end());
}

/// One marker of a `strc` chunk.
struct StretchMarker {
    std::uint32_t position = 0;  ///< frames
    std::uint32_t type = 0;
    std::uint32_t activity = 1;
};

/// Builds wave files, sound ones and damaged ones, in a line each:
///
///     WaveFile().rate(44100).channels(2).frames(44100, sine).acid({.beats = 8}).writeTemp()
///
/// Without more it is 16-bit mono PCM at 44100 Hz of no frames. Chunks stand in the order `fmt `, `data`,
/// `LIST`, `acid`, `strc`, further ones behind those in the order of the calls, unless `moveBefore` says
/// otherwise.
class WaveFile {
public:
    struct Acid {
        std::uint32_t flags = 0;  ///< 1 one-shot, 2 root note set, 4 stretch, 8 disk-based
        std::int16_t root = 60;
        std::uint32_t beats = 4;
        float tempo = 120;
    };

    WaveFile& rate(std::uint32_t hertz) { return rate_ = hertz, *this; }
    WaveFile& channels(std::uint16_t count) { return channels_ = count, *this; }
    /// Before the frames, whose width it is.
    WaveFile& bits(std::uint16_t depth) { return bits_ = depth, *this; }
    WaveFile& tag(std::uint16_t formatTag) { return tag_ = formatTag, *this; }
    /// 32-bit float. Before the frames.
    WaveFile& floats() { return bits(32).tag(3); }
    /// The format is told in 40 bytes, with the tag as that of the sub-format.
    WaveFile& extensible() { return extensible_ = true, *this; }
    WaveFile& blockAlign(std::uint16_t bytes) { return blockAlign_ = bytes, *this; }
    WaveFile& bytesPerSecond(std::uint32_t bytes) { return bytesPerSecond_ = bytes, *this; }

    /// Audio from -1 to 1 by frame and channel, rounded to the depth.
    WaveFile& frames(std::int64_t count,
                     const std::function<double(std::int64_t frame, int channel)>& value) {
        for (std::int64_t i = 0; i < count; ++i) {
            for (int c = 0; c < channels_; ++c) addValue(value(i, c));
        }
        return *this;
    }
    /// Silence.
    WaveFile& frames(std::int64_t count) {
        audio_.resize(audio_.size() + static_cast<std::size_t>(count * channels_ * (bits_ / 8)));
        return *this;
    }
    /// Integers as they shall stand in the file, interleaved.
    WaveFile& values(const std::vector<std::int32_t>& samples) {
        for (const std::int32_t sample : samples) addInteger(sample);
        return *this;
    }
    /// Floats as they shall stand in the file, interleaved.
    WaveFile& values(const std::vector<float>& samples) {
        for (const float sample : samples) append(audio_, sample);
        return *this;
    }
    /// Bytes of audio as they shall stand in the file.
    WaveFile& audio(const Bytes& bytes) {
        return audio_.insert(audio_.end(), bytes.begin(), bytes.end()), *this;
    }

    WaveFile& acid(const Acid& loop) {
        Bytes body;
        append(body, loop.flags);
        append(body, loop.root);
        body.resize(12);
        append(body, loop.beats);
        append(body, std::uint32_t{0x00040004});
        append(body, loop.tempo);
        return setChunk("acid", body);
    }
    WaveFile& acid(std::uint32_t flags, std::int16_t root, std::uint32_t beats, float tempo) {
        return acid({flags, root, beats, tempo});
    }

    /// `exponent`: 0 whole notes to 6 sixty-fourth notes.
    WaveFile& strc(std::uint32_t exponent, const std::vector<StretchMarker>& markers = {}) {
        Bytes body;
        append(body, std::uint32_t{28});
        append(body, static_cast<std::uint32_t>(markers.size()));
        body.resize(16);
        append(body, std::uint32_t{16161616});
        append(body, std::uint32_t{20202020});
        append(body, exponent);
        for (const StretchMarker& marker : markers) {
            append(body, marker.type);
            append(body, std::uint32_t{0xAAAAAAAA});
            append(body, marker.position);
            append(body, std::uint32_t{0xBBBBBBBB});
            append(body, marker.activity);
            body.insert(body.end(), 12, 0xCC);
        }
        return setChunk("strc", body);
    }

    /// A tag of the `LIST`/`INFO` chunk.
    WaveFile& info(const std::string& code, const std::string& text) {
        append(tags_, code);
        append(tags_, static_cast<std::uint32_t>(text.size() + 1));
        append(tags_, text);
        tags_.push_back(0);
        if (tags_.size() % 2) tags_.push_back(0);
        return *this;
    }
    /// Any bytes into the `LIST`/`INFO` chunk.
    WaveFile& rawInfo(const Bytes& bytes) {
        return tags_.insert(tags_.end(), bytes.begin(), bytes.end()), *this;
    }
    WaveFile& listType(const std::string& type) { return listType_ = type, *this; }

    /// A chunk of one's own behind the rest, or another body for the `acid` or `strc` chunk that is there.
    WaveFile& setChunk(const std::string& id, const Bytes& body) {
        const auto it =
            std::find_if(extra_.begin(), extra_.end(), [&](const auto& c) { return c.first == id; });
        if (it != extra_.end()) {
            it->second = body;
        } else {
            extra_.emplace_back(id, body);
        }
        return *this;
    }
    /// One more chunk, whatever is there already.
    WaveFile& addChunk(const std::string& id, const Bytes& body) {
        return extra_.emplace_back(id, body), *this;
    }
    /// Puts the chunk `id` in front of the first chunk `other`.
    WaveFile& moveBefore(const std::string& id, const std::string& other) {
        return moves_.emplace_back(id, other), *this;
    }

    /// What the header of the first chunk `id` claims as its size ("RIFF" is the form).
    WaveFile& claim(const std::string& id, std::uint32_t size) {
        return claims_.emplace_back(id, size), *this;
    }
    WaveFile& formType(const std::string& type) { return formType_ = type, *this; }
    /// Cuts the file after `bytes`.
    WaveFile& truncate(std::size_t bytes) { return length_ = bytes, *this; }
    WaveFile& poke(std::size_t offset, std::uint8_t value) {
        return pokes_.emplace_back(offset, value), *this;
    }

    /// The whole file.
    Bytes bytes() const {
        const Bytes sound = soundBytes();
        Bytes file = sound;
        for (const auto& [id, size] : claims_) std::memcpy(file.data() + offsetOf(sound, id) + 4, &size, 4);
        for (const auto& [offset, value] : pokes_) file.at(offset) = value;
        if (length_) file.resize(std::min(file.size(), *length_));
        return file;
    }

    /// Where the header of the first chunk `id` stands.
    std::size_t offsetOf(const std::string& id) const { return offsetOf(soundBytes(), id); }

    void write(const std::filesystem::path& path) const { writeBytes(path, bytes()); }
    /// A file that goes with the returned object.
    TempPath writeTemp() const {
        TempPath path(".wav");
        write(path.path());
        return path;
    }

    static void writeBytes(const std::filesystem::path& path, const Bytes& bytes) {
        std::ofstream out(path, std::ios::binary | std::ios::trunc);
        out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        if (!out.flush()) throw std::runtime_error("can't write " + path.string());
    }

private:
    using Chunk = std::pair<std::string, Bytes>;

    void addValue(double value) {
        if (tag_ == 3) return append(audio_, static_cast<float>(value));
        const double scale = std::ldexp(1.0, bits_ - 1);
        addInteger(static_cast<std::int32_t>(std::clamp(std::round(value * scale), -scale, scale - 1)));
    }
    void addInteger(std::int32_t value) {
        for (int shift = 0; shift < bits_; shift += 8)
            audio_.push_back(static_cast<std::uint8_t>(value >> shift));
    }

    Bytes soundBytes() const {
        Bytes file;
        append(file, std::string("RIFF"));
        append(file, std::uint32_t{0});
        append(file, formType_);
        for (const auto& [id, body] : chunks()) appendChunk(file, id, body);
        const auto formBytes = static_cast<std::uint32_t>(file.size() - 8);
        std::memcpy(file.data() + 4, &formBytes, 4);
        return file;
    }

    Bytes formatBody() const {
        const auto align = blockAlign_.value_or(static_cast<std::uint16_t>(channels_ * bits_ / 8));
        Bytes body;
        append(body, extensible_ ? std::uint16_t{0xFFFE} : tag_);
        append(body, channels_);
        append(body, rate_);
        append(body, bytesPerSecond_.value_or(rate_ * align));
        append(body, align);
        append(body, bits_);
        if (extensible_) return appendExtension(body), body;
        if (tag_ != 1) append(body, std::uint16_t{0});
        return body;
    }

    void appendExtension(Bytes& body) const {
        append(body, std::uint16_t{22});
        append(body, bits_);
        append(body, std::uint32_t{3});  // where the channels stand in the room
        append(body, tag_);
        const Bytes family{0, 0, 0, 0, 0x10, 0, 0x80, 0, 0, 0xAA, 0, 0x38, 0x9B, 0x71};
        body.insert(body.end(), family.begin(), family.end());
    }

    std::vector<Chunk> chunks() const {
        std::vector<Chunk> all{{"fmt ", formatBody()}, {"data", audio_}};
        if (!tags_.empty()) {
            Bytes list;
            append(list, listType_);
            list.insert(list.end(), tags_.begin(), tags_.end());
            all.emplace_back("LIST", list);
        }
        for (const char* id : {"acid", "strc"}) {
            for (const Chunk& chunk : extra_) {
                if (chunk.first == id) all.push_back(chunk);
            }
        }
        for (const Chunk& chunk : extra_) {
            if (chunk.first != "acid" && chunk.first != "strc") all.push_back(chunk);
        }
        for (const auto& [id, other] : moves_) moveChunk(all, id, other);
        return all;
    }
    static std::vector<Chunk>::iterator findChunk(std::vector<Chunk>& all, const std::string& id) {
        const auto it =
            std::find_if(all.begin(), all.end(), [&](const Chunk& chunk) { return chunk.first == id; });
        if (it == all.end()) throw std::invalid_argument("no chunk " + id);
        return it;
    }
    static void moveChunk(std::vector<Chunk>& all, const std::string& id, const std::string& other) {
        const auto from = findChunk(all, id);
        const Chunk chunk = *from;
        all.erase(from);
        all.insert(findChunk(all, other), chunk);
    }
    static void appendChunk(Bytes& file, const std::string& id, const Bytes& body) {
        append(file, id);
        append(file, static_cast<std::uint32_t>(body.size()));
        file.insert(file.end(), body.begin(), body.end());
        if (body.size() % 2) file.push_back(0);
    }
    static std::size_t offsetOf(const Bytes& file, const std::string& id) {
        if (id == "RIFF") return 0;
        for (std::size_t at = 12; at + 8 <= file.size();) {
            if (std::equal(id.begin(), id.end(), file.begin() + static_cast<std::ptrdiff_t>(at))) return at;
            std::uint32_t size;
            std::memcpy(&size, file.data() + at + 4, 4);
            at += 8 + static_cast<std::size_t>(size) + (size & 1);
        }
        throw std::invalid_argument("no chunk " + id);
    }

    std::uint32_t rate_ = 44100;
    std::uint16_t channels_ = 1;
    std::uint16_t bits_ = 16;
    std::uint16_t tag_ = 1;
    bool extensible_ = false;
    std::optional<std::uint16_t> blockAlign_;
    std::optional<std::uint32_t> bytesPerSecond_;
    std::string formType_ = "WAVE";
    std::string listType_ = "INFO";
    Bytes audio_;
    Bytes tags_;
    std::vector<Chunk> extra_;
    std::vector<std::pair<std::string, std::string>> moves_;
    std::vector<std::pair<std::string, std::uint32_t>> claims_;
    std::vector<std::pair<std::size_t, std::uint8_t>> pokes_;
    std::optional<std::size_t> length_;
};

}  // namespace marnoth::test
