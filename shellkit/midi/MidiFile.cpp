#include "shellkit/midi/MidiFile.h"

#include <algorithm>
#include <array>
#include <deque>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <span>

#include "seam/MusicalTime.h"
#include "shellkit/files/Failure.h"
#include "shellkit/midi/MidiEvents.h"
#include "shellkit/text/InstrumentText.h"

namespace marnoth {

namespace {

constexpr double kMicrosecondsPerMinute = 60e6;
constexpr int kLargestUnitExponent = 8;
constexpr std::uint16_t kFilmFrames = 0x8000;
constexpr std::uint16_t kOnePiece = 1;  ///< the highest format of a piece in one
constexpr std::uintmax_t kMostFileBytes = 64 << 20;

/// Turns the events of a file into a part, one after the other in the order of their times.
class PartBuilder {
public:
    PartBuilder(std::string file, int pulsesPerBeat)
        : file_(std::move(file)), pulsesPerBeat_(pulsesPerBeat) {}

    void take(const MidiEvent& event) {
        now_ = ticks(event.pulses);
        if (const auto* note = std::get_if<MidiNote>(&event.what)) takeNote(*note);
        if (const auto* tempo = std::get_if<MidiTempo>(&event.what)) takeTempo(*tempo);
        if (const auto* signature = std::get_if<MidiSignature>(&event.what)) takeSignature(*signature);
    }

    MidiPart finish() {
        for (auto& channel : open_)
            for (auto& key : channel)
                while (!key.empty()) end(key);
        if (part_.notes.empty()) throw FileFailure(file_ + ": it plays no notes");
        const std::int64_t bars = (now_ - barOrigin_ + barTicks_ - 1) / barTicks_;
        part_.endTicks = narrowed(barOrigin_ + std::max<std::int64_t>(bars, 1) * barTicks_);
        return std::move(part_);
    }

private:
    using OpenNotes = std::deque<std::size_t>;  ///< indices into the part's notes, the oldest first

    std::int32_t narrowed(std::int64_t ticks) const {
        if (ticks < 0 || ticks > std::numeric_limits<std::int32_t>::max())
            throw FileFailure(file_ + ": it is too long");
        return static_cast<std::int32_t>(ticks);
    }

    /// Rounded to the nearest tick.
    std::int32_t ticks(std::int64_t pulses) const {
        return narrowed((pulses * kTicksPerBeat * 2 + pulsesPerBeat_) / (2 * pulsesPerBeat_));
    }

    void takeTempo(MidiTempo tempo) {
        if (tempo.microsecondsPerBeat > 0)
            part_.tempo.add(now_, kMicrosecondsPerMinute / tempo.microsecondsPerBeat);
    }

    void takeSignature(MidiSignature signature) {
        if (signature.count == 0 || signature.unitExponent > kLargestUnitExponent) return;
        barTicks_ = std::max<std::int64_t>(1, 4 * kTicksPerBeat * signature.count >> signature.unitExponent);
        barOrigin_ = now_;
    }

    void takeNote(MidiNote told) {
        OpenNotes& open = open_[told.channel][told.key];
        if (told.velocity == 0) {
            if (!open.empty()) end(open);
            return;
        }
        SynthEvent note;
        note.type = SynthEventType::note;
        note.time = now_;
        note.channel = told.channel;
        note.note = told.key;
        note.velocity = told.velocity;
        open.push_back(part_.notes.size());
        part_.notes.push_back(note);
    }

    /// Ends the oldest of the notes. A duration of 0 would be a note-off.
    void end(OpenNotes& open) {
        SynthEvent& note = part_.notes[open.front()];
        note.duration = static_cast<std::uint32_t>(std::max(1, now_ - note.time));
        open.pop_front();
    }

    std::string file_;
    std::int64_t pulsesPerBeat_;
    std::int32_t now_ = 0;
    std::int64_t barTicks_ = 4 * kTicksPerBeat;
    std::int64_t barOrigin_ = 0;
    std::array<std::array<OpenNotes, 128>, 16> open_;
    MidiPart part_;
};

std::vector<std::uint8_t> readFile(const std::string& file) {
    std::error_code error;
    const std::filesystem::path path = pathFromUtf8(file);
    if (!std::filesystem::is_regular_file(path, error)) throw FileFailure(file + ": there is no such file");
    if (std::filesystem::file_size(path, error) > kMostFileBytes)
        throw FileFailure(file + ": it is too long");
    std::ifstream in(path, std::ios::binary);
    if (!in) throw FileFailure(file + ": it can't be opened");
    return {std::istreambuf_iterator<char>(in), {}};
}

/// Why a sound file can't be played, or nothing.
std::string problemOf(const MidiEvents& midi) {
    if (midi.division >= kFilmFrames) return "it counts in film frames, not in beats: export it in beats";
    if (midi.division == 0) return "it says that a beat has no length";
    if (midi.format > kOnePiece) return "its tracks are pieces of their own: export it as one piece";
    return {};
}

}  // namespace

MidiPart readMidi(const std::string& file) {
    return readMidi(readFile(file), file);
}

MidiPart readMidi(std::span<const std::uint8_t> bytes, const std::string& file) {
    const auto midi = readMidiEvents(bytes);
    if (!midi) throw FileFailure(file + ": it isn't a standard MIDI file, or it is damaged");
    const std::string problem = problemOf(*midi);
    if (!problem.empty()) throw FileFailure(file + ": " + problem);
    PartBuilder builder(file, midi->division);
    for (const MidiEvent& event : midi->events) builder.take(event);
    return builder.finish();
}

}  // namespace marnoth
