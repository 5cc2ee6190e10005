#include "tools/GrooveMidi.h"

#include <smf.h>

#include <algorithm>
#include <cmath>
#include <memory>
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

struct SmfDeleter {
    void operator()(smf_t* smf) const { smf_delete(smf); }
};

int pulses(double beats) {
    return static_cast<int>(std::lround(beats * kPulsesPerBeat));
}

/// A message or a meta event. The track owns what it is given.
void add(smf_track_t* track, double beat, std::vector<unsigned char> bytes) {
    smf_event_t* event = smf_event_new_from_pointer(bytes.data(), static_cast<int>(bytes.size()));
    if (!event) throw std::runtime_error("a MIDI event can't be made");
    smf_track_add_event_pulses(track, event, pulses(beat));
}

smf_track_t* newTrack(smf_t* smf) {
    smf_track_t* track = smf_track_new();
    if (!track) throw std::runtime_error("a MIDI track can't be made");
    smf_add_track(smf, track);
    return track;
}

void addTempoTrack(smf_t* smf) {
    smf_track_t* track = newTrack(smf);
    const auto microseconds = static_cast<unsigned>(std::lround(60e6 / kTempo));
    const auto byte = [&](int shift) { return static_cast<unsigned char>(microseconds >> shift & 0xFF); };
    add(track, 0, {0xFF, 0x58, 4, 4, 2, 24, 8});
    add(track, 0, {0xFF, 0x51, 3, byte(16), byte(8), byte(0)});
    if (smf_track_add_eot_pulses(track, pulses(kBeats))) throw std::runtime_error("a MIDI track has no end");
}

void addPad(smf_t* smf, const Switches& pad) {
    smf_track_t* track = newTrack(smf);
    const auto key = static_cast<unsigned char>(pad.key);
    for (const double beat : pad.beats) {
        add(track, beat, {0x90, key, kVelocity});
        add(track, std::min<double>(beat + kNoteBeats, kBeats), {0x80, key, 64});
    }
    if (smf_track_add_eot_pulses(track, pulses(kBeats))) throw std::runtime_error("a MIDI track has no end");
}

}  // namespace

void writeGroove(const std::filesystem::path& path) {
    const std::unique_ptr<smf_t, SmfDeleter> smf(smf_new());
    if (!smf || smf_set_ppqn(smf.get(), kPulsesPerBeat))
        throw std::runtime_error("a MIDI file can't be made");
    addTempoTrack(smf.get());
    for (const Switches& pad : kPart) addPad(smf.get(), pad);
    if (smf_save(smf.get(), path.c_str())) throw std::runtime_error(path.string() + ": it can't be written");
}

}  // namespace marnoth::tools
