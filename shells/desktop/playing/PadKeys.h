#pragma once

#include <array>
#include <optional>

#include "seam/IGrooveSampler.h"
#include "seam/Limits.h"

namespace marnoth {

/// The computer's keys as pads: four rows of four, from 1 to V, lie as the pads do on the page. A key that is
/// held plays on; that it comes down again and again is one press.
class PadKeys {
public:
    struct Note {
        std::uint8_t key = 0;
        bool on = false;
    };

    /// `key` in the codes of `PageKey`. The note to send: the root key of the pad's range; nothing for other
    /// keys, for repeats, and for pads without one.
    std::optional<Note> press(int key, IGrooveSampler& sampler);
    /// The note that the key's press began, to be ended.
    std::optional<Note> release(int key);

private:
    static std::optional<int> padOf(int key);

    std::array<std::optional<std::uint8_t>, kPads> held_;
};

}  // namespace marnoth
