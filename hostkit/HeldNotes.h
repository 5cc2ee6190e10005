#pragma once

#include <array>
#include <cstdint>

#include "seam/Limits.h"

namespace marnoth {

/// Which notes are held, and which note-offs the instrument is still to be told.
///
/// The instrument pairs a note-off with the oldest open note of its key, whatever the channel, and takes
/// several note-offs of a key in one block as one; and a note that ends in the block of its start doesn't
/// start as a live one. So each block, which here is a piece between two cuts, gets one note-off of a key at
/// most, and none for a note that begins with it. What is left is owed to the next pieces.
///
/// One thread at a time; nothing allocates. Channels are 0 to 15, keys 0 to 127.
class HeldNotes {
public:
    /// A note that is told with the piece to come.
    void noteOn(int channel, int key);
    /// Ends a note of that channel and key. One that nobody holds is ignored.
    void noteOff(int channel, int key);
    void endChannel(int channel);
    void endAll();

    /// Calls `tell` with the key of each note-off that the piece to come can have, then counts its notes as
    /// begun.
    template <class Tell>
    void beginPiece(const Tell& tell) {
        if (owedCount_ > 0) tellOwed(tell);
        for (int key = 0; begunCount_ > 0 && key <= kHighestKey; ++key) {
            begunCount_ -= begun_[key];
            sounding_[key] += begun_[key];
            begun_[key] = 0;
        }
    }
    /// Whether a further piece has to come with note-offs.
    bool owesNoteOffs() const { return owedCount_ > 0; }

    /// The instrument has ended every note.
    void forgetAll() { *this = {}; }

private:
    using Counts = std::array<std::uint32_t, kHighestKey + 1>;

    template <class Tell>
    void tellOwed(const Tell& tell) {
        for (int key = 0; key <= kHighestKey; ++key) {
            if (owed_[key] == 0 || sounding_[key] == 0) continue;
            --owed_[key];
            --owedCount_;
            --sounding_[key];
            tell(static_cast<std::uint8_t>(key));
        }
    }
    void end(std::uint32_t& held, int key);

    std::array<Counts, kMidiChannels> held_{};  ///< notes whose end nobody has asked for
    Counts begun_{};                            ///< notes of the piece to come
    Counts sounding_{};                         ///< open notes of the instrument
    Counts owed_{};                             ///< note-offs that it is still to be told
    std::uint32_t begunCount_ = 0;
    std::uint32_t owedCount_ = 0;
};

}  // namespace marnoth
