#pragma once

#include <cstdint>
#include <span>

#include "engine/render/Block.h"
#include "engine/render/CutFades.h"
#include "engine/render/PlayState.h"
#include "engine/render/RenderSpace.h"
#include "engine/render/SyncPhase.h"
#include "engine/render/Voice.h"

namespace marnoth {

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

    /// In the steady mode: what the voice would go on to play on a pad fades out from the first frame of the
    /// block on, and doesn't end with it. It begins at `level` times what it would be: where the voice goes
    /// on instead, at -1 that fades in.
    void cut(const Block& block, const TrackPlayInfo& entry, const VoiceState& voice, const SyncPhase& phase,
             double level = 1);
    CutFades& cuts() { return cuts_; }

private:
    class Pass;

    RenderSpace space_;
    CutFades cuts_;
};

}  // namespace marnoth
