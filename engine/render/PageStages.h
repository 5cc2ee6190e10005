#pragma once

#include <cstdint>

#include "engine/render/Block.h"
#include "engine/render/PlayState.h"
#include "engine/render/SyncPhase.h"
#include "engine/render/VoiceRenderer.h"

namespace marnoth {

/// The stages of a block behind the notes: what is played from the page. Pads, then files of the Loop Bin,
/// then the one auditioned grain.
///
/// Made for one block. Streaming thread, under the engine's lock.
class PageStages {
public:
    PageStages(const Block& block, PlayState& playing, SyncPhase& phase, VoiceRenderer& renderer)
        : block_(block), playing_(playing), phase_(phase), renderer_(renderer) {}

    /// Begins the pads that are pressed, ahead of `renderPads`, which begins those that are left.
    void startPads();
    void renderPads();
    void renderBinAuditions();
    void renderGrainAudition();

private:
    void renderPad(std::int32_t pad, const CGrooveTrack& track);
    void pressPad(std::int32_t pad, const CGrooveTrack& track);
    void setPhase(std::int32_t pad, const CGrooveTrack& track, VoiceState& voice);
    void takeStopRequest(VoiceState& voice);
    void renderBinAudition(const CGrooveTrack& track, VoiceState& voice);
    /// Renders the voice with one track as its whole play list, and moves on.
    void play(VoiceState& voice, const TrackPlayInfo& entry, PadFlags* soundedFlags);

    const Block& block_;
    PlayState& playing_;
    SyncPhase& phase_;
    VoiceRenderer& renderer_;
};

}  // namespace marnoth
