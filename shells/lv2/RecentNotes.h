#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace marnoth {

/// The notes that began in the host's last block and are held.
///
/// A host that goes round a loop in the middle of a block sends the first notes of the new round with that
/// block, but tells the place with the next one. What is found there to be a jump would end them.
///
/// The thread that renders; nothing allocates.
class RecentNotes {
public:
    struct Note {
        std::uint8_t status = 0;  ///< a note-on of a channel
        std::uint8_t key = 0;
        std::uint8_t velocity = 0;
    };

    void beginBlock() {
        last_ = present_;
        present_ = {};
    }
    /// A message of the present block.
    void take(std::uint8_t status, std::uint8_t key, std::uint8_t velocity) {
        const auto kind = static_cast<std::uint8_t>(status & 0xF0);
        if (kind == kController && key >= kFirstChannelMode) return forget();
        if (kind != kNoteOff && kind != kNoteOn) return;
        const auto noteOn = static_cast<std::uint8_t>(kNoteOn | (status & 0x0F));
        if (kind == kNoteOn && velocity > 0) return present_.add({noteOn, key, velocity});
        present_.end(noteOn, key);
        last_.end(noteOn, key);
    }
    /// Those of the last block, in order.
    std::span<const Note> notes() const { return last_.held(); }

private:
    static constexpr std::uint8_t kNoteOff = 0x80;
    static constexpr std::uint8_t kNoteOn = 0x90;
    static constexpr std::uint8_t kController = 0xB0;
    /// From here on controllers are about all notes at once, "all sound off" and "all notes off" among them.
    static constexpr std::uint8_t kFirstChannelMode = 120;

    /// What doesn't fit in was never there.
    class Notes {
    public:
        void add(const Note& note) {
            if (count_ < notes_.size()) notes_[count_++] = note;
        }
        void end(std::uint8_t noteOn, std::uint8_t key) {
            const auto left =
                std::remove_if(notes_.begin(), notes_.begin() + static_cast<std::ptrdiff_t>(count_),
                               [=](const Note& note) { return note.status == noteOn && note.key == key; });
            count_ = static_cast<std::size_t>(left - notes_.begin());
        }
        std::span<const Note> held() const { return std::span(notes_).first(count_); }

    private:
        std::array<Note, 64> notes_{};
        std::size_t count_ = 0;
    };

    void forget() {
        last_ = {};
        present_ = {};
    }

    Notes last_;
    Notes present_;
};

}  // namespace marnoth
