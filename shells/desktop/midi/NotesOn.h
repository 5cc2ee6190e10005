#pragma once

#include <bitset>
#include <cstddef>
#include <cstdint>

namespace marnoth {

/// The notes that messages have switched on and not off again. One thread.
class NotesOn {
public:
    void take(std::uint8_t status, std::uint8_t key, std::uint8_t velocity) {
        const unsigned kind = status & 0xF0u;
        if (kind != kNoteOn && kind != kNoteOff) return;
        notes_[(status & 0x0Fu) * kKeys + (key & 0x7Fu)] = kind == kNoteOn && velocity > 0;
    }
    /// Ends them: `send(status, key)` for each.
    template <class Send>
    void end(Send send) {
        for (unsigned note = 0; note < notes_.size(); ++note)
            if (notes_[note])
                send(static_cast<std::uint8_t>(kNoteOff | note / kKeys),
                     static_cast<std::uint8_t>(note % kKeys));
        notes_.reset();
    }

private:
    static constexpr unsigned kNoteOn = 0x90;
    static constexpr unsigned kNoteOff = 0x80;
    static constexpr unsigned kKeys = 128;

    std::bitset<std::size_t{16} * kKeys> notes_;
};

}  // namespace marnoth
