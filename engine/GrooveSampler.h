#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "engine/control/LastFault.h"
#include "engine/model/GrooveTrack.h"
#include "engine/model/KeyMap.h"
#include "engine/model/UndoRing.h"
#include "engine/render/PreAllocArray.h"
#include "engine/render/Voice.h"
#include "project/Project.h"
#include "seam/IGrooveSampler.h"
#include "seam/IMarnothFaults.h"
#include "seam/Limits.h"
#include "seam/Pzi.h"

namespace marnoth {

class RiffStream;
struct ProjectTracks;

inline constexpr std::int32_t kStreamEvents = 100;     ///< grains of one pad in one block
inline constexpr std::int32_t kScratchValues = 96000;  ///< bounds a stereo block to 48000 frames
inline constexpr std::uint32_t kNoPin = 0xFFFFFFFF;
inline constexpr std::int32_t kNoKey = -1;  ///< 0xFFFFFFFF: no project key, no root note

/// The instrument: sixteen pads, a Loop Bin, undo, a key map, and the playing state of every voice.
///
/// It has no thread of its own and knows neither host nor graph, but for the context given to the
/// constructor, which outlives it. The streaming thread enters once per block through `ProcessBlock`, with
/// the lock held by the caller; all other threads enter through `IGrooveSampler` and the rest of `CPzi`,
/// which take the lock themselves. `IUnknown` and `IDispatch` are left to the object that carries the engine.
class CGrooveSampler : public IGrooveSampler, public IMarnothFaults, public virtual CPzi {
public:
    explicit CGrooveSampler(CPziSynthContext* synthContext);
    CGrooveSampler(const CGrooveSampler&) = delete;
    CGrooveSampler& operator=(const CGrooveSampler&) = delete;

    // CPzi.
    HRESULT RegisterOutputs() override;
    HRESULT CheckInputFormat(const WAVEFORMATEX* format) override;
    HRESULT CheckOutputFormat(const WAVEFORMATEX* format) override;
    HRESULT CheckFormatPair(const WAVEFORMATEX* input, const WAVEFORMATEX* output) override;
    HRESULT ProposeOutputFormat(WAVEFORMATEX* format) override;
    HRESULT ProcessBlock(std::int64_t position, PinBuffer* input, PinBuffer* pins, std::int32_t pinCount,
                         std::int64_t reserved, NoteQueue* notes) override;
    HRESULT IsIgnoredEvent(const SynthEvent* event) override;
    HRESULT CreateVoice(QueuedEvent* event) override;
    HRESULT ReleaseVoice(QueuedEvent* event, std::int32_t flush) override;
    HRESULT PrepareResources() override { return S_OK; }
    HRESULT FreeResources() override { return S_OK; }
    std::int32_t GetPersistSize() override { return 0; }
    HRESULT LoadState(IStream* stream) override;
    HRESULT SaveState(IStream* stream) override;
    void ResetVoices() override;

    /// Makes the output pin "Chan N" of a pad, N = pad + 1. 1 when the pad has its pin already;
    /// `E_INVALIDARG` for a bad pad.
    HRESULT RegisterChannelPin(std::int32_t pad);
    /// Sets the fade lengths from the input format and gives 0; or, when that isn't mono or stereo float,
    /// forces it to stereo float at the context's rate and gives 1.
    std::int32_t CheckFormat();
    /// The host's graph has stopped: the common zero of synced pads goes back to 0.
    void ClearPhaseAnchor();

    // IGrooveSampler.
    HRESULT PushUndoState() override;
    HRESULT Undo() override;
    HRESULT Redo() override;
    HRESULT ClearProject() override;
    HRESULT LoadPadFromBin(std::int32_t pad, std::int32_t bin) override;
    HRESULT SaveProject(std::uint32_t unused, const char* path) override;
    HRESULT LoadProject(const char* path) override;
    HRESULT RemoveBinFile(std::int32_t bin) override;
    HRESULT CommitGrainEdits() override;
    HRESULT DeleteGrain(std::int32_t pad, std::int32_t grain, std::uint32_t markOnly) override;
    HRESULT ReplaceGrain(std::int32_t pad, std::int32_t grain, std::int32_t bin,
                         std::int32_t binGrain) override;
    HRESULT AddGrain(std::int32_t bin, std::int32_t binGrain, std::int32_t pad, std::int64_t time) override;
    HRESULT GetGrainSource(std::int32_t pad, std::int32_t grain, std::int32_t* bin,
                           std::int32_t* binGrain) override;
    HRESULT LoadFileToBin(const char* title, const char* path, std::int32_t* bin,
                          std::uint32_t* status) override;
    HRESULT LoadFileToPad(std::int32_t pad, const char* title, const char* path, std::int32_t* bin,
                          std::uint32_t* status) override;
    HRESULT AuditionPad(std::int32_t pad, std::int32_t grain) override;
    HRESULT StopPad(std::int32_t pad) override;
    HRESULT AuditionBinFile(std::int32_t bin, std::int32_t grain) override;
    HRESULT StopBinAudition(std::int32_t bin) override;
    HRESULT MoveGrain(std::int32_t pad, std::int32_t grain, std::int32_t toPad, std::int64_t time,
                      std::int32_t* newIndex, std::uint32_t markOnly) override;
    HRESULT CopyGrain(std::int32_t pad, std::int32_t grain, std::int32_t toPad, std::int64_t time,
                      std::int32_t* newIndex) override;
    HRESULT GetBinFileCount(std::int32_t* count) override;
    HRESULT GetBinFileName(std::int32_t bin, std::uint32_t wantPath, char* text) override;
    HRESULT GetPadLooping(std::int32_t pad, std::uint32_t* value) override;
    HRESULT SetPadLooping(std::int32_t pad, std::uint32_t value) override;
    HRESULT GetPadSynced(std::int32_t pad, std::uint32_t* value) override;
    HRESULT SetPadSynced(std::int32_t pad, std::uint32_t value) override;
    HRESULT GetPadPlayMode(std::int32_t pad, std::uint32_t* value) override;
    HRESULT SetPadPlayMode(std::int32_t pad, std::uint32_t value) override;
    HRESULT GetPadGrainList(std::int32_t pad, GrainListEntry** list, std::int32_t* count) override;
    HRESULT GetBinGrainList(std::int32_t bin, GrainListEntry** list, std::int32_t* count) override;
    HRESULT GetPadMute(std::int32_t pad, std::uint32_t* value) override;
    HRESULT SetPadMute(std::int32_t pad, std::uint32_t value) override;
    HRESULT GetLoopLength(std::uint32_t kind, std::uint32_t index, std::int64_t* ticks16) override;
    HRESULT SetLoopLength(std::uint32_t kind, std::uint32_t index, std::int64_t ticks16) override;
    HRESULT GetPadPlaying(std::int32_t pad, std::uint32_t* value) override;
    HRESULT GetBinPlaying(std::int32_t bin, std::uint32_t* value) override;
    HRESULT GetKeyMapEntry(KeyMapRecord* entry) override;
    HRESULT SetKeyMapEntry(const KeyMapRecord* entry) override;
    HRESULT GetAuditionEnabled(std::uint32_t* value) override;
    HRESULT SetAuditionEnabled(std::uint32_t value) override;
    HRESULT GetRefreshRequest(std::uint32_t* value) override;
    HRESULT SetRefreshRequest(std::uint32_t value) override;
    HRESULT GetPadVolume(std::int32_t pad, float* value) override;
    HRESULT SetPadVolume(std::int32_t pad, float value) override;
    HRESULT GetPadPan(std::int32_t pad, float* value) override;
    HRESULT SetPadPan(std::int32_t pad, float value) override;
    HRESULT GetPadTail(std::int32_t pad, std::uint32_t* value) override;
    HRESULT SetPadTail(std::int32_t pad, std::uint32_t value) override;
    HRESULT GetGrainTranspose(std::int32_t pad, std::int32_t grain, std::int32_t* semitones) override;
    HRESULT SetGrainTranspose(std::int32_t pad, std::int32_t grain, std::int32_t semitones) override;
    HRESULT GetGrainCount(std::uint32_t kind, std::uint32_t index, std::int32_t* count) override;
    HRESULT GetPadEndTime(std::int32_t pad, std::int64_t* ticks16) override;
    HRESULT GetPadFollowKey(std::int32_t pad, std::uint32_t* value) override;
    HRESULT SetPadFollowKey(std::int32_t pad, std::uint32_t value) override;
    HRESULT GetGrainVolume(std::int32_t pad, std::int32_t grain, float* value) override;
    HRESULT SetGrainVolume(std::int32_t pad, std::int32_t grain, float value) override;
    HRESULT GetGrainPan(std::int32_t pad, std::int32_t grain, float* value) override;
    HRESULT SetGrainPan(std::int32_t pad, std::int32_t grain, float value) override;
    HRESULT GetPadOutput(std::int32_t pad, std::uint32_t* output) override;
    HRESULT SetPadOutput(std::int32_t pad, std::uint32_t output) override;
    HRESULT GetPadSolo(std::int32_t pad, std::uint32_t* value) override;
    HRESULT SetPadSolo(std::int32_t pad, std::uint32_t value) override;
    HRESULT GetPadRootNote(std::int32_t pad, std::int32_t* note) override;
    HRESULT SetPadRootNote(std::int32_t pad, std::int32_t note) override;
    HRESULT GetPadChannel(std::int32_t pad, std::int32_t* channel) override;
    HRESULT SetPadChannel(std::int32_t pad, std::int32_t channel) override;
    HRESULT GetPadOneShot(std::int32_t pad, std::uint32_t* value) override;
    HRESULT SetPadOneShot(std::int32_t pad, std::uint32_t value) override;

    // IMarnothFaults.
    HRESULT GetLoadFault(LoadFault* fault) override;

protected:
    virtual ~CGrooveSampler();

private:
    /// What every stage of a block is told.
    struct BlockContext {
        std::int64_t startTicks;  ///< of the block, 16.16 ticks
        std::int64_t lengthTicks;
        std::int32_t activePads;  ///< pads that sounded in the last block
        PinBuffer* pins;
        std::int32_t pinCount;
        std::int32_t mixIndex;  ///< of the mix pin in `pins`, -1 if it isn't there
    };
    struct PadBlock;
    struct ClipTimes;
    struct GrainRun;
    struct VoiceTally;

    // EngineLife: from construction to teardown.
    void ResetKeyMap();
    void setFadeLengths(std::uint32_t sampleRate);

    // BlockFrame: the two ends of a block.
    /// Fixes the block's place in samples, the project's key and the skew.
    void placeBlock(std::int64_t position, std::int32_t frames);
    BlockContext describeBlock(std::int32_t frames, PinBuffer* pins, std::int32_t pinCount) const;
    void clearMix(const BlockContext& block, std::int32_t frames);
    /// Hands the input on to every pin but the mix; `input` null is silence.
    void passInput(const BlockContext& block, const float* input, std::int32_t frames);
    void sumIntoMix(const BlockContext& block, std::int32_t frames);
    std::size_t bytesOf(std::int32_t frames) const;

    // RenderStages: what each source of voices does with a block, in this order.
    void RenderNotes(NoteQueue& notes, const BlockContext& block);
    void RenderPadAuditions(const BlockContext& block);
    void RenderBinAuditions(const BlockContext& block);
    void RenderGrainAudition(const BlockContext& block);

    // The steps of a note.
    void renderNote(QueuedEvent& note, const BlockContext& block);
    void startNote(VoiceState& voice, const SynthEvent& event, const BlockContext& block);
    void switchGate(PadGate& gate, VoiceState& voice, const CGrooveTrack& track);
    void setNotePhase(CGrooveTrack& track, const VoiceState& voice, const BlockContext& block);
    bool holdsGate(const VoiceState& voice) const;
    void takeNoteOff(VoiceState& voice, SynthEvent& event);
    void endShotLane(VoiceState& voice, SynthEvent& event, bool held, const BlockContext& block);

    // The steps of a pad that is played from the page.
    void renderPadAudition(std::int32_t pad, const BlockContext& block);
    void pressPad(std::int32_t pad, const BlockContext& block);
    void setPressPhase(CGrooveTrack& track, VoiceState& voice, const BlockContext& block);
    void takeStopRequest(VoiceState& voice);
    void renderBinAudition(std::int32_t bin, const BlockContext& block);

    /// Renders the voice with `track` as the one entry of the play list, and moves on.
    void playAlone(const BlockContext& block, VoiceState& voice, PlayKind kind, std::int32_t pad,
                   CGrooveTrack& track, std::uint32_t* soundedFlags);
    /// Where a fade-out that begins with this block ends, 16.16 ticks.
    std::int64_t fadeOutEnd() const;

    // VoiceRender: one voice, one block. `soundedFlags` has 16 entries or is null.
    void RenderVoice(const BlockContext& block, VoiceState& voice, std::uint32_t* soundedFlags);
    VoiceTally renderEntry(const BlockContext& block, VoiceState& voice, const TrackPlayInfo& entry,
                           std::uint32_t* soundedFlags);
    PinBuffer* choosePin(const CGrooveTrack& track, const BlockContext& block) const;
    std::int64_t toSamples(std::int64_t ticks16) const;
    std::int32_t selectForBlock(VoiceState& voice, const PadBlock& pad);
    void renderSelected(const PadBlock& pad);
    void RenderStreamEvent(const StreamEventInfo& event, const PadBlock& pad);
    GrainRun placeRun(const StreamEventInfo& event, const ClipTimes& clip, const PadBlock& pad) const;
    ClipTimes timesInSamples(const StreamEventInfo& event, const CGrooveTrack& track) const;
    std::int32_t keyOffset(const CGrooveTrack& track) const;
    void renderFadeIn(const GrainRun& run, const ClipTimes& clip, const PadBlock& pad);
    void renderFadeOut(const GrainRun& run, const ClipTimes& clip, const PadBlock& pad,
                       std::int64_t fadeOutStart);
    /// Renders part of a run and adds it to the pad's pin at frame `offset`, under a gain that moves per
    /// frame.
    void renderFaded(const GrainRun& run, const PadBlock& pad, std::int64_t offset, double gain, double step);

    // SelectGrains.
    /// Fills `streamEvents`; gives their count, or -1 when a track that doesn't loop has played out.
    std::int32_t SelectGrains(CGrooveTrack& track, std::int64_t rangeStart, std::int64_t rangeEnd,
                              VoiceState& voice);
    bool silencedBySolo(const CGrooveTrack& track) const { return anySolo && !track.solo; }

    // ControlSurface: one field of a pad or grain, checked and under the lock. `refusal` answers a bad pad.
    template <class T, class Field>
    HRESULT getFromPad(std::int32_t pad, T* out, Field field, HRESULT refusal = E_INVALIDARG);
    template <class Write>
    HRESULT changePad(std::int32_t pad, Write write, HRESULT refusal = E_INVALIDARG);
    template <class T, class Read>
    HRESULT getFromGrain(std::int32_t pad, std::int32_t grain, T* out, Read read);
    template <class Write>
    HRESULT changeGrain(std::int32_t pad, std::int32_t grain, Write write);

    /// The track at an index; null when there is none.
    CGrooveTrack* padAt(std::int32_t pad) const;
    CGrooveTrack* binFileAt(std::int32_t bin) const;
    /// Either, by a `LoopKind`; null for any other.
    CGrooveTrack* trackOf(std::uint32_t kind, std::uint32_t index) const;
    void recomputeAnySolo();
    /// After pads changed places with their snapshots.
    void adoptSwappedPads();
    void auditionGrain(const CGrooveTrack& track, std::int32_t grain);
    /// A copy of a grain goes to `toPad`; `leave` says what becomes of the pad that it comes from.
    template <class Leave>
    HRESULT transferGrain(std::int32_t pad, std::int32_t grain, std::int32_t toPad, std::int64_t time,
                          std::int32_t* newIndex, Leave leave);

    /// What a project consisted of, for its owner to destroy after the lock is left.
    struct FormerProject;
    /// Empties everything that a project keeps but the key map, without destroying anything: whoever holds
    /// the lock keeps no block waiting.
    void removeProject(FormerProject& former);
    /// The same, and back to the default key map.
    void removeProjectAndKeys(FormerProject& former);

    // ProjectLoad.
    /// What a load leaves `anySolo` at.
    enum class Solo { kept, recomputed };
    /// Empties the project, and again when `load` fails or throws.
    template <class Load>
    HRESULT replaceProject(Load load);
    /// Both tell in `fault` why nothing has come in.
    HRESULT loadFile(const char* path, LoadFault& fault);
    /// Reads the form that is searched from the position of `stream` on and puts it in place of the project.
    HRESULT loadForm(RiffStream& stream, Solo solo, LoadFault& fault);
    void publish(const Project& project, ProjectTracks& tracks, Solo solo);

    // LoopBin. Texts in the system code page.
    /// `fault` tells why the file isn't loaded.
    HRESULT LoadFile(const char* name, const char* path, std::int32_t& index, std::uint32_t& status,
                     LoadFault& fault);
    std::int32_t findBinFile(const std::wstring& path) const;
    /// The file's grains and loop in place of those of the pad.
    HRESULT layOnPad(CGrooveTrack& pad, const CGrooveTrack& file);

    // ProjectTake.
    /// The present state, taken under the lock; samples are shared, not copied.
    Project takeProject();

    CPreAllocArray<TrackPlayInfo> playList;  ///< the pads of one `RenderVoice`, refilled per voice
    Pads pads;
    CPreAllocArray<std::unique_ptr<CGrooveTrack>> binFiles;  ///< in display order
    UndoRing undoRing;
    CGrooveTrack auditionTrack;  ///< the one copy of the grain being auditioned
    CKeyMap keyMap;
    CPreAllocArray<StreamEventInfo> streamEvents;   ///< the grains of one pad in one block
    std::array<VoiceState, kPads> padVoices{};      ///< pads played from the page
    std::array<VoiceState, kBinFiles> binVoices{};  ///< auditions of files
    VoiceState auditionVoice{};
    std::array<PadGate, kPads> padGates{};
    std::array<std::uint32_t, kPads> padAuditionSounded{};  ///< the pad voice rendered in the last block
    std::array<std::uint32_t, kPads> padNoteSounded{};      ///< a note rendered on the pad in this block
    std::array<std::uint32_t, kPads> padSounded{};          ///< either of them, at the end of each block
    std::unique_ptr<float[]> scratch;                       ///< one block, for fades
    std::int64_t blockStart = -1;                           ///< samples; the block being rendered
    std::int64_t runningPosition = -1;  ///< samples; the engine's own count while the transport runs
    std::int32_t projectKey = 0;        ///< the host's key at the middle of the block; `kNoKey` none
    std::int64_t positionSkew = 0;      ///< 16.16 ticks `blockStart` is ahead of the host's; never negative
    std::uint32_t mixPinId = kNoPin;
    std::array<std::uint32_t, kPads> padPinIds{};  ///< pin of each channel; 0 not made yet
    std::uint32_t anySolo = 0;
    std::uint32_t auditionEnabled = 0;
    std::uint32_t refreshRequest = 0;
    std::int64_t phaseAnchor = 0;  ///< 16.16 ticks; common zero of synced pads while stopped
    std::uint32_t stopAll = 0;
    std::int64_t fadeInFrames = 0;   ///< 1 ms
    std::int64_t fadeOutFrames = 0;  ///< 20 ms
    LastFault lastFault;
};

}  // namespace marnoth
