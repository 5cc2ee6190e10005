#include <cstddef>
#include <cstdint>

#include "fuzz/Check.h"
#include "shellkit/files/Failure.h"
#include "shellkit/midi/MidiFile.h"

/// The reader of standard MIDI files.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace marnoth;
    using namespace marnoth::fuzz;
    try {
        const MidiPart part = readMidi({data, size}, "file");
        require(!part.notes.empty(), "a part has notes");
        std::int64_t last = 0;
        for (const SynthEvent& note : part.notes) {
            require(note.time >= last, "notes come in the order of their times");
            require(note.duration >= 1, "a note lasts");
            require(std::int64_t{note.time} + note.duration <= std::int64_t{part.endTicks} + 1,
                    "a note ends with its file");
            require(note.note < 128 && note.velocity < 128 && note.channel < 16, "a note is of MIDI's range");
            last = note.time;
        }
        for (const TempoChange& change : part.tempo.changes())
            require(change.tick >= 0 && change.beatsPerMinute > 0, "a tempo is one");
    } catch (const FileFailure&) {
    }
    return 0;
}
