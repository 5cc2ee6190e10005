#pragma once

#include <cstdint>
#include <span>

#include "engine/model/PadBank.h"
#include "engine/render/Block.h"
#include "engine/render/PlayState.h"
#include "engine/render/SyncPhase.h"
#include "engine/render/VoicePool.h"
#include "engine/render/VoiceRenderer.h"
#include "platform/com/Com.h"
#include "seam/Pzi.h"

namespace marnoth {

/// Renders the instrument block by block, and owns all that only the streaming thread touches: voices, gates,
/// phases, and the storage of a block. It allocates nothing in a block, notes beyond the voice pool aside.
///
/// Everything runs under the engine's lock. Other threads come here to ask for a start or a stop, which the
/// next block takes up, and to read what sounds.
class BlockRenderer {
public:
    /// `context` outlives this.
    explicit BlockRenderer(CPziSynthContext& context) : context_(context), time_(context) {}
    BlockRenderer(const BlockRenderer&) = delete;
    BlockRenderer& operator=(const BlockRenderer&) = delete;

    /// What the shell gives for one block.
    struct Job {
        std::int64_t position;  ///< samples, as the graph counts
        PinBuffer& input;
        std::span<PinBuffer> pins;   ///< connected output pins
        const WAVEFORMATEX& format;  ///< of the audio
        NoteQueue* notes;            ///< may be null
    };
    /// Streaming thread.
    void render(const Model& model, const Job& job);

    /// The first voice state of a note, or null without memory.
    HRESULT createVoice(QueuedEvent& note);
    /// True when the note may go: its voice is freed, or there was none. A voice that still plays is kept
    /// unless `flush` is set.
    bool releaseVoice(QueuedEvent& note, bool flush);
    /// Ends every voice at once and unsets the running position; notes' voices are their queue's to release.
    /// In the steady mode what sounded of `model` fades out all the same.
    void resetVoices(const Model& model);

    // Asked for from the page. Pads and files are started from the top.
    void startPad(std::int32_t pad);
    void stopPad(std::int32_t pad) { playing_.padVoice(pad).stopRequest = 1; }
    void stopAllPads();
    void startBinFile(std::int32_t bin) { playing_.binVoice(bin).requestAudition(); }
    void stopBinFile(const Model& model, std::int32_t bin);
    void stopAllBinFiles(const Model& model);
    void startAudition() { playing_.auditionVoice.requestAudition(); }

    std::uint32_t padSounded(std::int32_t pad) const {
        return playing_.padSounded[static_cast<std::size_t>(pad)];
    }
    bool binFilePlays(std::int32_t bin) const;

    /// The sixteen pairs that undo keeps with the pads.
    PadPhases& phases() { return phase_.pads; }
    /// The common zero of synced pads goes back to 0.
    void clearPhaseAnchor() { phase_.anchor = 0; }
    /// Whether blocks are pieces of time in which nothing but their end happens, and sound the same however
    /// long they are.
    void setSteady(bool on);
    bool isSteady() const { return steady_; }
    /// Sets the lengths of the fades.
    void setRate(std::uint32_t sampleRate);
    PinIds& pins() { return pins_; }

private:
    /// Fixes the block's place in samples, the project's key and the skew.
    void placeBlock(Block& block, std::int64_t position, std::int32_t frames);
    void runStages(const Block& block, NoteQueue* notes);
    /// Calls `cut(const Block&)` with the block that would come next.
    template <class Cut>
    void cutInNextBlock(const Model& model, Cut cut);
    void cutAll(const Block& block);
    void cutNotes(const Block& block, const NoteQueue& notes);
    void cutBinFile(const Block& block, std::int32_t bin);

    CPziSynthContext& context_;
    PinIds pins_;
    BlockTime time_;
    VoicePool voices_;
    VoiceRenderer renderer_;
    PlayState playing_;
    SyncPhase phase_;
    FadeLengths fades_;
    bool stopAll_ = false;
    bool steady_ = false;
    PadLevels levels_;
    // Of the last block.
    WAVEFORMATEX format_{};
    std::int64_t end_ = 0;        ///< samples
    NoteQueue* notes_ = nullptr;  ///< null once its notes have ended
};

}  // namespace marnoth
