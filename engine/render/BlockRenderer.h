#pragma once

#include <cstdint>
#include <span>

#include "engine/model/PadBank.h"
#include "engine/render/Block.h"
#include "engine/render/KeyHistory.h"
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
    /// `change()` gives the present model other tracks, calls `forgetVoices`, or does both. In the steady
    /// mode what was heard fades out, and what goes on in its place fades in.
    template <class Change>
    void replace(const Model& model, Change change);
    /// As `resetVoices`, but what sounded is cut, and notes that are in play go on.
    void forgetVoices() { playing_ = {}; }
    /// What fades out since it was cut is silent from now on.
    void cutFades() { renderer_.cuts().forget(); }

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
    void placeSteadily(Block& block);
    void runStages(const Block& block, NoteQueue* notes);
    /// Calls `cut(const Block&)` with the block that would come next.
    template <class Cut>
    void cutInNextBlock(const Model& model, Cut cut);
    /// All that sounds is cut; `level` as for `VoiceRenderer::cut`.
    void cutAll(const Block& block, double level);
    void cutNotes(const Block& block, const NoteQueue& notes, double level);
    void cutBinFile(const Block& block, std::int32_t bin, double level);

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
    bool inBlock_ = false;
    PadLevels levels_;
    KeyHistory keys_{context_};
    // Of the last block.
    WAVEFORMATEX format_{};
    std::int64_t end_ = 0;        ///< samples
    NoteQueue* notes_ = nullptr;  ///< null once its notes have ended
};

template <class Cut>
void BlockRenderer::cutInNextBlock(const Model& model, Cut cut) {
    // Whoever comes in from within a block finds its storage in use.
    if (!steady_ || inBlock_ || format_.nChannels == 0 || renderer_.cuts().length() == 0) return;
    BlockPins none({}, pins_, format_);
    time_.begin(end_, 0);
    Block block{model, time_, none, format_, fades_};
    block.steady = true;
    block.levels = &levels_;
    block.keys = &keys_;
    cut(block);
}

template <class Change>
void BlockRenderer::replace(const Model& model, Change change) {
    cutInNextBlock(model, [this](const Block& block) { cutAll(block, 1); });
    change();
    cutInNextBlock(model, [this](const Block& block) { cutAll(block, -1); });
}

}  // namespace marnoth
