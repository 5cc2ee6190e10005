#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace marnoth {

/// The music of a MIDI file, as the transport plays it. Never changed once it is made. Ticks are 960 to the
/// beat.
struct Song {
    struct Note {
        std::int32_t start = 0;
        std::int32_t end = 0;  ///< behind `start`
        std::uint8_t channel = 0;
        std::uint8_t key = 0;
        std::uint8_t velocity = 0;
    };
    struct Tempo {
        std::int32_t tick = 0;
        double beatsPerMinute = 120.0;
    };

    std::string name;           ///< of the file, UTF-8, without folders
    std::vector<Note> notes;    ///< in the order of their starts
    std::vector<Tempo> tempos;  ///< in the order of their ticks; the first stands at 0
    std::int32_t end = 0;       ///< of a whole bar
};

/// Throws `FileFailure` with the reason when the file can't be played.
Song readSong(const std::string& file);

}  // namespace marnoth
