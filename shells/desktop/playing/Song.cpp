#include "shells/desktop/playing/Song.h"

#include <algorithm>
#include <limits>

#include "shellkit/midi/MidiFile.h"
#include "shellkit/text/InstrumentText.h"

namespace marnoth {

namespace {

std::int32_t endOf(const SynthEvent& note) {
    const std::int64_t end = std::int64_t{note.time} + note.duration;
    return static_cast<std::int32_t>(std::min<std::int64_t>(end, std::numeric_limits<std::int32_t>::max()));
}

}  // namespace

Song readSong(const std::string& file) {
    const MidiPart part = readMidi(file);
    Song song;
    song.name = utf8FromPath(pathFromUtf8(file).filename());
    for (const SynthEvent& note : part.notes)
        song.notes.push_back({note.time, endOf(note), note.channel, note.note, note.velocity});
    for (const TempoChange& change : part.tempo.changes())
        song.tempos.push_back({change.tick, change.beatsPerMinute});
    song.end = part.endTicks;
    return song;
}

}  // namespace marnoth
