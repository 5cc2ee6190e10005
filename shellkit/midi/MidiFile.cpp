#include "shellkit/midi/MidiFile.h"

#include <smf.h>

#include <algorithm>
#include <array>
#include <deque>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <memory>
#include <span>

#include "seam/MusicalTime.h"
#include "shellkit/files/Failure.h"
#include "shellkit/midi/MidiChunks.h"
#include "shellkit/text/InstrumentText.h"

namespace marnoth {

namespace {

constexpr double kMicrosecondsPerMinute = 60e6;
constexpr int kNoteOff = 0x80;
constexpr int kNoteOn = 0x90;
constexpr int kLargestDenominatorExponent = 8;
constexpr std::uint16_t kFilmFrames = 0x8000;
constexpr std::uint16_t kOnePiece = 1;  ///< the highest format of a piece in one
constexpr std::size_t kMostTracks = 0xFFFF;
constexpr std::uintmax_t kMostFileBytes = 64 << 20;

struct SmfDeleter {
    void operator()(smf_t* smf) const { smf_delete(smf); }
};
using Smf = std::unique_ptr<smf_t, SmfDeleter>;

/// What the library has to say about a damaged file would stand between our own lines.
void dropMessage(const gchar*, GLogLevelFlags, const gchar*, gpointer) {}

/// Turns the events of a file into a part, one after the other in the order of their times.
class PartBuilder {
public:
    PartBuilder(std::string file, int pulsesPerBeat)
        : file_(std::move(file)), pulsesPerBeat_(pulsesPerBeat) {}

    void take(const smf_event_t& event) {
        now_ = ticks(event.time_pulses);
        const std::span<const unsigned char> bytes(event.midi_buffer,
                                                   static_cast<std::size_t>(event.midi_buffer_length));
        if (bytes.size() >= 3 && bytes[0] == kMetaStatus)
            takeMeta(bytes);
        else if (bytes.size() >= 3 && bytes[0] < 0xF0)
            takeNote(bytes);
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

    void takeMeta(std::span<const unsigned char> bytes) {
        if (bytes[1] == kTempoMeta && bytes.size() >= 6) {
            const int microseconds = bytes[3] << 16 | bytes[4] << 8 | bytes[5];
            if (microseconds > 0) part_.tempo.add(now_, kMicrosecondsPerMinute / microseconds);
        } else if (bytes[1] == kSignatureMeta && bytes.size() >= 5) {
            if (bytes[3] == 0 || bytes[4] > kLargestDenominatorExponent) return;
            barTicks_ = std::max<std::int64_t>(1, 4 * kTicksPerBeat * bytes[3] >> bytes[4]);
            barOrigin_ = now_;
        }
    }

    void takeNote(std::span<const unsigned char> bytes) {
        const int kind = bytes[0] & 0xF0;
        if (kind != kNoteOn && kind != kNoteOff) return;
        OpenNotes& open = open_[bytes[0] & 0x0F][bytes[1] & 0x7F];
        if (kind == kNoteOff || bytes[2] == 0) {
            if (!open.empty()) end(open);
            return;
        }
        SynthEvent note;
        note.type = SynthEventType::note;
        note.time = now_;
        note.channel = bytes[0] & 0x0F;
        note.note = bytes[1] & 0x7F;
        note.velocity = bytes[2] & 0x7F;
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
std::string problemOf(const MidiChunks& chunks) {
    if (chunks.division >= kFilmFrames) return "it counts in film frames, not in beats: export it in beats";
    if (chunks.division == 0) return "it says that a beat has no length";
    if (chunks.format > kOnePiece) return "its tracks are pieces of their own: export it as one piece";
    if (chunks.tracks.size() > kMostTracks) return "it has too many tracks";
    return {};
}

Smf load(const std::vector<std::uint8_t>& file) {
    g_log_set_default_handler(dropMessage, nullptr);
    return Smf(smf_load_from_memory(file.data(), static_cast<int>(file.size())));
}

}  // namespace

bool canReadMidi() {
    return true;
}

MidiPart readMidi(const std::string& file) {
    return readMidi(readFile(file), file);
}

MidiPart readMidi(std::span<const std::uint8_t> bytes, const std::string& file) {
    const auto chunks = readMidiChunks(bytes);
    if (!chunks) throw FileFailure(file + ": it isn't a standard MIDI file, or it is damaged");
    const std::string problem = problemOf(*chunks);
    if (!problem.empty()) throw FileFailure(file + ": " + problem);
    const Smf smf = load(writeMidiChunks(*chunks));
    if (!smf) throw FileFailure(file + ": it isn't a standard MIDI file of a known kind");
    smf_rewind(smf.get());
    PartBuilder builder(file, smf->ppqn);
    while (const smf_event_t* event = smf_get_next_event(smf.get())) builder.take(*event);
    return builder.finish();
}

}  // namespace marnoth
