#pragma once

#include <array>
#include <cstdint>

#include "engine/render/Voice.h"
#include "seam/Limits.h"

namespace marnoth {

/// For each pad whether it sounds, as 0 or 1.
using PadFlags = std::array<std::uint32_t, kPads>;

/// What plays and how far it is: what the render writes from block to block, and a start or stop of the
/// transport forgets.
struct PlayState {
    std::array<VoiceState, kPads> padVoices{};      ///< pads played from the page
    std::array<VoiceState, kBinFiles> binVoices{};  ///< auditions of files
    VoiceState auditionVoice{};
    std::array<PadGate, kPads> padGates{};
    PadFlags padAuditionSounded{};      ///< the pad voice rendered in the last block
    PadFlags padNoteSounded{};          ///< a note rendered on the pad in this block
    PadFlags padSounded{};              ///< either of them, at the end of each block
    std::int64_t runningPosition = -1;  ///< samples; the engine's own count while the transport runs

    VoiceState& padVoice(std::int32_t pad) { return padVoices[static_cast<std::size_t>(pad)]; }
    VoiceState& binVoice(std::int32_t bin) { return binVoices[static_cast<std::size_t>(bin)]; }
    PadGate& gate(std::int32_t pad) { return padGates[static_cast<std::size_t>(pad)]; }
};

}  // namespace marnoth
