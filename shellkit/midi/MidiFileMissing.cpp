#include "shellkit/files/Failure.h"
#include "shellkit/midi/MidiFile.h"

namespace marnoth {

bool canReadMidi() {
    return false;
}

MidiPart readMidi(const std::string& file) {
    throw FileFailure(file + ": this build doesn't read MIDI files");
}

MidiPart readMidi(std::span<const std::uint8_t>, const std::string& file) {
    return readMidi(file);
}

}  // namespace marnoth
