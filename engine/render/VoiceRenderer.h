#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "dsp/CrossfadeGains.h"
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
    VoiceRenderer() = default;
    VoiceRenderer(const VoiceRenderer&) = delete;
    VoiceRenderer& operator=(const VoiceRenderer&) = delete;

    /// `soundedFlags` is told which pads sound; may be null. Asks the voice for its own end when everything
    /// on its pads has played out.
    void render(const Block& block, std::span<const TrackPlayInfo> playList, VoiceState& voice,
                PlayState& playing, SyncPhase& phase, PadFlags* soundedFlags);

private:
    class PadRender;
    class Pass;

    /// Where the render of a pad keeps what it works with.
    struct Workspace {
        StreamEvents events{kStreamEvents};  ///< the grains of one pad in one block
        std::unique_ptr<float[]> scratch = std::make_unique<float[]>(kScratchValues);  ///< for fades
        CrossfadeGains gains;
    };

    Workspace workspace_;
};

}  // namespace marnoth
