#include "shells/cli/TwoTurns.h"

namespace marnoth {

MidiPart twoTurns(const MidiPart& part, std::int32_t turnTicks) {
    MidiPart twice;
    twice.endTicks = 2 * turnTicks;
    twice.tempo = TempoTrack(part.tempo.changes().front().beatsPerMinute);
    for (const std::int32_t start : {0, turnTicks}) {
        for (const TempoChange& change : part.tempo.changes())
            if (change.tick < turnTicks) twice.tempo.add(start + change.tick, change.beatsPerMinute);
        for (SynthEvent note : part.notes) {
            if (note.time >= turnTicks) continue;
            note.time += start;
            twice.notes.push_back(note);
        }
    }
    return twice;
}

}  // namespace marnoth
