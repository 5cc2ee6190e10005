#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>

#include "engine/control/LastFault.h"
#include "engine/model/PadBank.h"
#include "engine/model/UndoRing.h"
#include "engine/render/BlockRenderer.h"
#include "project/Project.h"
#include "seam/IGrooveSampler.h"
#include "seam/IMarnothFaults.h"
#include "seam/IMarnothOptions.h"
#include "seam/Limits.h"
#include "seam/Pzi.h"

namespace marnoth {

class RiffStream;
struct FormerProject;
struct ProjectTracks;

/// The instrument: sixteen pads, a Loop Bin, undo, a key map, and the playing state of every voice.
///
/// It has no thread of its own and knows neither host nor graph, but for the context given to the
/// constructor, which outlives it. The streaming thread enters once per block through `ProcessBlock`, with
/// the lock held by the caller; all other threads enter through `IGrooveSampler` and the rest of `CPzi`,
/// which take the locks themselves. `IUnknown` and `IDispatch` are left to the object that carries the
/// engine.
///
/// The model (`PadBank`) is edited by its operations and played by its renderer (`BlockRenderer`). Edits take
/// turns by a lock of their own, which is taken before the engine's and which audio never takes; they build
/// beside the present state and hold the engine's lock only to put the next one in place. An edit that comes
/// in under the engine's lock, as from a pin downstream, waits for nobody's turn: whoever was building then
/// builds anew.
class CGrooveSampler : public IGrooveSampler,
                       public IMarnothFaults,
                       public IMarnothOptions,
                       public virtual CPzi {
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
    bool IsSteady() const override { return renderer_.isSteady(); }
    bool IsSparse() const override { return sparse_; }

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
    HRESULT GetLoadDamage(LoadFault* damage) override;

    // IMarnothOptions.
    HRESULT SetSteady(std::uint32_t on) override;
    HRESULT GetSteady(std::uint32_t* on) override;
    HRESULT SetLenientFiles(std::uint32_t on) override;
    HRESULT GetLenientFiles(std::uint32_t* on) override;
    HRESULT GetChanges(std::uint64_t* count) override;
    HRESULT SetSparse(std::uint32_t on) override;
    HRESULT GetSparse(std::uint32_t* on) override;

protected:
    virtual ~CGrooveSampler();

private:
    /// What a load leaves `anySolo` at.
    enum class Solo { kept, recomputed };
    class WritersTurn;

    // control/Edit.h: how operations reach the model. `refusal` answers a bad pad.
    template <class T, class Read>
    HRESULT readPad(std::int32_t pad, T* out, Read read, HRESULT refusal = E_INVALIDARG);
    template <class Write>
    HRESULT changePad(std::int32_t pad, Write write, HRESULT refusal = E_INVALIDARG);
    template <class Write>
    HRESULT changeMix(std::int32_t pad, Write write);
    template <class Take, class Build, class Put>
    HRESULT edit(Take take, Build build, Put put, Model& (PadBank::*change)() = &PadBank::change);
    template <class Build>
    HRESULT editPad(std::int32_t pad, Build build);
    template <class Change>
    HRESULT editGrain(std::int32_t pad, std::int32_t grain, Change change);
    template <class Build>
    HRESULT editPadFromBin(std::int32_t pad, std::int32_t bin, Build build, HRESULT noFile = E_INVALIDARG);
    template <class Leave>
    HRESULT transferGrain(std::int32_t pad, std::int32_t grain, std::int32_t toPad, std::int64_t time,
                          std::int32_t* newIndex, Leave leave);
    template <class Find>
    HRESULT auditionGrain(std::int32_t grain, Find find);

    /// The present pads change places with those of `former`; `S_FALSE` for null.
    HRESULT changePlaces(PadsState* former);
    /// What blocks were played with while somebody changed the model from within them.
    void dropLeftOver();

    /// Back to the default key map, and every pad to what it answers by default. `model` is the present one.
    static void resetKeyMap(Model& model);
    /// Ends all voices and empties everything that a project keeps but the key map, without destroying
    /// anything: whoever holds the lock keeps no block waiting.
    void removeProject(FormerProject& former);
    /// The same, and back to the default key map.
    void removeProjectAndKeys(FormerProject& former);

    /// Texts in the system code page. `outcome` tells why the file isn't loaded, or what is damaged in it.
    HRESULT LoadFile(const char* name, const char* path, std::int32_t& index, std::uint32_t& status,
                     LoadOutcome& outcome);
    /// Puts a file that has been read behind the others of the Loop Bin, if there is room; `status` says so.
    HRESULT addToBin(const BinFile& file, std::int32_t& index, std::uint32_t& status);

    /// Empties the project, and again when `load` fails or throws.
    template <class Load>
    HRESULT replaceProject(Load load);
    /// Both tell in `fault` why nothing has come in.
    HRESULT loadFile(const char* path, LoadFault& fault);
    /// Reads the form that is searched from the position of `stream` on and puts it in place of the project.
    HRESULT loadForm(RiffStream& stream, Solo solo, LoadFault& fault);
    void publish(const Project& project, ProjectTracks& tracks, Solo solo);
    /// The present state; samples are shared, not copied.
    Project takeProject();

    LastFault lastFault_;           ///< any thread
    std::recursive_mutex writers_;  ///< edits take turns by it; before the engine's lock, never under it
    // All that follows is under the engine's lock.
    PadBank bank_;
    std::unique_ptr<UndoRing> undo_ = std::make_unique<UndoRing>();
    BlockRenderer renderer_;
    std::uint32_t auditionEnabled_ = 0;
    std::uint32_t lenientFiles_ = 0;  ///< 1 or 0
    bool sparse_ = false;
    std::uint32_t refreshRequest_ = 0;  ///< the one mailbox to the page
};

}  // namespace marnoth
