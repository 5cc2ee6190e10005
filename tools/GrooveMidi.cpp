#include "tools/GrooveMidi.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <stdexcept>
#include <vector>

namespace marnoth::tools {

namespace {

constexpr int kPulsesPerBeat = 480;
constexpr int kTempo = 112;  // beats per minute: that of none of the loops
constexpr int kBeats = 64;
constexpr int kVelocity = 100;
constexpr double kNoteBeats = 0.25;
/// The loops go out a little before the last bar does, so that their fades have ended when it does.
constexpr double kEnd = kBeats - 0.2;

/// Keys of pads 1 to 4.
constexpr int kDrums = 60;
constexpr int kPercussion = 62;
constexpr int kBass = 64;
constexpr int kChords = 65;

/// The beats at which a pad's loop goes on, off, on again and so on.
struct Switches {
    int key;
    std::vector<double> beats;
};

/// Chords alone, percussion from bar 3, everything from bar 5, a break without drums and bass in bars 11 and
/// 12 that stops short, and all together to the end.
const std::vector<Switches> kPart{
    {kDrums, {16, 40, 48, kEnd}},
    {kPercussion, {8, 46, 48, kEnd}},
    {kBass, {16, 40, 48, kEnd}},
    {kChords, {0, 47, 48, kEnd}},
};

using Bytes = std::vector<std::uint8_t>;

std::uint32_t pulses(double beats) {
    return static_cast<std::uint32_t>(std::lround(beats * kPulsesPerBeat));
}

void appendBig(Bytes& bytes, std::uint32_t value, int count) {
    for (int shift = 8 * (count - 1); shift >= 0; shift -= 8)
        bytes.push_back(static_cast<std::uint8_t>(value >> shift));
}

/// Seven bits a byte, the highest first; all but the last are marked.
void appendVariable(Bytes& bytes, std::uint32_t value) {
    for (int shift = 21; shift > 0; shift -= 7)
        if (value >> shift) bytes.push_back(static_cast<std::uint8_t>(0x80 | (value >> shift & 0x7F)));
    bytes.push_back(value & 0x7F);
}

/// Events, each a message or a meta event, in the order of their times.
class Track {
public:
    void add(double beat, const Bytes& event) {
        appendVariable(events_, pulses(beat) - last_);
        last_ = pulses(beat);
        events_.insert(events_.end(), event.begin(), event.end());
    }

    /// Behind the chunks of a file, as the next of them.
    void appendTo(Bytes& file) {
        add(kBeats, {0xFF, 0x2F, 0});
        file.insert(file.end(), {'M', 'T', 'r', 'k'});
        appendBig(file, static_cast<std::uint32_t>(events_.size()), 4);
        file.insert(file.end(), events_.begin(), events_.end());
    }

private:
    Bytes events_;
    std::uint32_t last_ = 0;  ///< pulses
};

Track tempoTrack() {
    Track track;
    track.add(0, {0xFF, 0x58, 4, 4, 2, 24, 8});
    Bytes tempo{0xFF, 0x51, 3};
    appendBig(tempo, static_cast<std::uint32_t>(std::lround(60e6 / kTempo)), 3);
    track.add(0, tempo);
    return track;
}

Track padTrack(const Switches& pad) {
    Track track;
    const auto key = static_cast<std::uint8_t>(pad.key);
    for (const double beat : pad.beats) {
        track.add(beat, {0x90, key, kVelocity});
        track.add(std::min<double>(beat + kNoteBeats, kBeats), {0x80, key, 64});
    }
    return track;
}

}  // namespace

void writeGroove(const std::filesystem::path& path) {
    Bytes file{'M', 'T', 'h', 'd', 0, 0, 0, 6, 0, 1};
    appendBig(file, static_cast<std::uint32_t>(kPart.size() + 1), 2);
    appendBig(file, kPulsesPerBeat, 2);
    tempoTrack().appendTo(file);
    for (const Switches& pad : kPart) padTrack(pad).appendTo(file);
    std::ofstream out(path, std::ios::binary);
    out.write(reinterpret_cast<const char*>(file.data()), static_cast<std::streamsize>(file.size()));
    if (!out.flush()) throw std::runtime_error(path.string() + ": it can't be written");
}

}  // namespace marnoth::tools
