#pragma once

#include <cstdint>

#include "engine/render/Block.h"
#include "engine/render/PadsOfNote.h"
#include "engine/render/PlayState.h"
#include "engine/render/SyncPhase.h"
#include "engine/render/VoiceRenderer.h"
#include "seam/Pzi.h"

namespace marnoth {

/// The first stage of a block: the notes of the host's queue, each of them a voice.
///
/// Made for one block. Streaming thread, under the engine's lock.
class NoteStage {
public:
    NoteStage(const Block& block, PlayState& playing, SyncPhase& phase, VoiceRenderer& renderer)
        : block_(block), playing_(playing), phase_(phase), renderer_(renderer) {}

    /// Begins the notes that are new, ahead of `render`, which begins those that are left.
    void startNotes(NoteQueue& notes);
    /// `stopAll`: every voice's shot lane ends with this block.
    void render(NoteQueue& notes, bool stopAll);

private:
    using PlayList = PadsOfNote::List;

    void renderNote(QueuedEvent& note, bool stopAll);
    void startNote(VoiceState& voice, const SynthEvent& event, PlayList playList);
    void moveLater(VoiceState& voice);
    void switchGate(PadGate& gate, const VoiceState& voice, const TrackPlayInfo& entry);
    void cutShotsOn(std::int32_t pad, const VoiceState& starting);
    void cutShots(const VoiceState& voice, PlayList playList);
    void setPhase(std::int32_t pad, const CGrooveTrack& track, const VoiceState& voice);
    bool holdsGate(const VoiceState& voice, PlayList playList);
    void takeNoteOff(VoiceState& voice, SynthEvent& event);
    /// The frame from which on the note isn't held any more, if that comes with this block; else its first.
    std::int64_t release(VoiceState& voice);
    /// `from`: the frame at which its fade begins, if it has to end.
    void endShotLane(VoiceState& voice, bool held, std::int64_t from);

    const Block& block_;
    PlayState& playing_;
    SyncPhase& phase_;
    VoiceRenderer& renderer_;
    NoteQueue* notes_ = nullptr;  ///< those that are being rendered
    PadsOfNote pads_;
};

}  // namespace marnoth
