#pragma once

#include <cstddef>
#include <cstdint>

#include "engine/model/Pads.h"

namespace marnoth {

/// What a mixer sets of the pads. It changes at any time, also many times a second by a host's automation:
/// other edits neither wait for it nor begin anew.
struct PadMix {
    float volume = 1.0f;     ///< 0 to 2
    float pan = 0.5f;        ///< 0 to 1
    std::uint32_t mute = 0;  ///< not 0: on
    std::uint32_t solo = 0;
};
using PadMixes = std::array<PadMix, kPads>;

inline PadMixes mixesOf(const Pads& pads) {
    PadMixes mixes;
    for (std::size_t pad = 0; pad < mixes.size(); ++pad)
        mixes[pad] = {pads[pad].volume, pads[pad].pan, pads[pad].mute, pads[pad].solo};
    return mixes;
}

/// Gives `pads`, which were built while the mixes went from `before` to `now`, what has changed in between.
inline void carryOver(const PadMixes& before, const PadMixes& now, Pads& pads) {
    const auto carry = [](auto was, auto is, auto& field) {
        if (is != was) field = is;
    };
    for (std::size_t pad = 0; pad < now.size(); ++pad) {
        carry(before[pad].volume, now[pad].volume, pads[pad].volume);
        carry(before[pad].pan, now[pad].pan, pads[pad].pan);
        carry(before[pad].mute, now[pad].mute, pads[pad].mute);
        carry(before[pad].solo, now[pad].solo, pads[pad].solo);
    }
}

}  // namespace marnoth
