#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "engine/render/Block.h"
#include "engine/render/PlayState.h"
#include "engine/render/SelectGrains.h"
#include "engine/render/SyncPhase.h"
#include "engine/render/Voice.h"

namespace marnoth {

/// Values of the one working buffer, which takes what is about to be faded.
inline constexpr std::int32_t kScratchValues = 96000;

/// Plays one voice for one block: on each of its pads the grains that fall into the block, with a fade-in of
/// 1 ms at the voice's start and a fade-out of 20 ms at its end.
///
/// Owns the storage that this needs, all of it taken in advance. Streaming thread, under the engine's lock.
class VoiceRenderer {
public:
    VoiceRenderer();
    VoiceRenderer(const VoiceRenderer&) = delete;
    VoiceRenderer& operator=(const VoiceRenderer&) = delete;

    /// `soundedFlags` is told which pads sound; may be null. Asks the voice for its own end when everything
    /// on its pads has played out.
    void render(const Block& block, std::span<const TrackPlayInfo> playList, VoiceState& voice,
                PlayState& playing, SyncPhase& phase, PadFlags* soundedFlags);

private:
    class Pass;

    StreamEvents events_;               ///< the grains of one pad in one block
    std::unique_ptr<float[]> scratch_;  ///< one block, for fades
};

}  // namespace marnoth
