#pragma once

#include <cstdint>

#include "platform/com/Com.h"

namespace marnoth {

/// A grain as the editor reads it. `plotData` points into the sample's peak table (2 values per channel and
/// entry), which lies in the same block as the entry: whatever becomes of the grain, it is good until the
/// list is freed.
struct GrainListEntry {
    std::int64_t startTicks;  ///< 16.16 ticks
    std::int64_t endTicks;    ///< 16.16 ticks
    std::int32_t transpose;   ///< semitones
    float volume;
    const float* plotData;    ///< the grain's first peak entry; null without a table
    std::int32_t plotLength;  ///< peak entries that the grain covers
    std::int32_t channels;    ///< of the wave
    std::uint32_t extra;      ///< a pad's list: the grain's tail flag; a file's list: 0
};

/// A pad's entry in the key map. Keys and velocities are inclusive.
struct KeyMapRecord {
    std::int32_t pad;
    std::int32_t lowKey;
    std::int32_t highKey;
    std::int32_t rootKey;
    std::int32_t lowVelocity;
    std::int32_t highVelocity;
};

/// Values of the `kind` of `GetLoopLength`, `SetLoopLength` and `GetGrainCount`.
enum LoopKind : std::uint32_t { kBinLoop = 0, kPadLoop = 1 };

/// Values of the `status` of a file load.
enum LoadStatus : std::uint32_t {
    kLoaded = 0,
    kBinFull = 1,
    kLoadedFormatForced = 2,  ///< loaded, but the input had no usable format and the engine took its own
};

inline constexpr IID IID_IGrooveSampler{
    0x3E7A9D10, 0x5B42, 0x4F86, {0xA1, 0xC7, 0x60, 0x18, 0xD3, 0x9B, 0x2E, 0x74}};

/// The control surface: the one way by which an editor, a script or a test changes the engine.
///
/// Any thread; calls from within a block, as from a pin downstream, are allowed. Every operation holds the
/// engine's lock for moments only: what takes long is done beside the present state, which is then replaced
/// in one go. A change takes effect at the next block. Nothing is notified: callers poll.
///
/// Volume, pan, mute and solo of a pad may be set as often as a host's automation does, by the streaming
/// thread too, between blocks: no edit is lost, repeated or kept waiting by it, and nothing allocates.
///
/// Indices: `pad` 0 to 15, `bin` a position in the Loop Bin, `grain` a position in a track. A bad pad or file
/// gives `E_INVALIDARG` (exceptions stand at the operation), a null out-pointer `E_POINTER`; a bad grain
/// throws `std::invalid_argument`. Times are 16.16 ticks, 62914560 to the beat. Texts are in the system code
/// page. The operations stand in the order of their slots, 7 to 75.
struct IGrooveSampler : IDispatch {
    // Undo and the project as a whole.
    virtual HRESULT PushUndoState() = 0;
    /// `S_FALSE` when there is nothing to undo.
    virtual HRESULT Undo() = 0;
    virtual HRESULT Redo() = 0;
    virtual HRESULT ClearProject() = 0;
    /// Lays a file's grains on a pad in place of the pad's own. `E_FAIL` when they can't be copied.
    virtual HRESULT LoadPadFromBin(std::int32_t pad, std::int32_t bin) = 0;
    /// Writes the project, audio and all, to a file; ".mrn" is appended to any other name. What stood there
    /// is kept as ".bak" until the new file is whole. `E_FAIL` when it can't be written or is above 4 GiB.
    virtual HRESULT SaveProject(std::uint32_t unused, const char* path) = 0;
    /// Puts a file's project in place of this one, which is gone whatever comes of it. 1 when it has loaded
    /// and the input had no usable format; after a failure, or when a pad's grain names a grain below 0
    /// (`std::invalid_argument`), the project is empty.
    virtual HRESULT LoadProject(const char* path) = 0;
    /// Removes a file with all grains cut from it. A bad `bin` gives `S_FALSE`.
    virtual HRESULT RemoveBinFile(std::int32_t bin) = 0;

    // Editing grains.
    /// Deletes the marked grains of every pad and sorts the rest.
    virtual HRESULT CommitGrainEdits() = 0;
    /// `markOnly` non-zero leaves the deletion to `CommitGrainEdits`. A bad grain gives `E_INVALIDARG`.
    virtual HRESULT DeleteGrain(std::int32_t pad, std::int32_t grain, std::uint32_t markOnly) = 0;
    virtual HRESULT ReplaceGrain(std::int32_t pad, std::int32_t grain, std::int32_t bin,
                                 std::int32_t binGrain) = 0;
    virtual HRESULT AddGrain(std::int32_t bin, std::int32_t binGrain, std::int32_t pad,
                             std::int64_t time) = 0;
    virtual HRESULT GetGrainSource(std::int32_t pad, std::int32_t grain, std::int32_t* bin,
                                   std::int32_t* binGrain) = 0;

    // Files. `bin` is left alone after a failure and with the bin full.
    /// Negative: not loaded. 1: see `status`, a `LoadStatus`. 0: loaded, or there already.
    virtual HRESULT LoadFileToBin(const char* title, const char* path, std::int32_t* bin,
                                  std::uint32_t* status) = 0;
    virtual HRESULT LoadFileToPad(std::int32_t pad, const char* title, const char* path, std::int32_t* bin,
                                  std::uint32_t* status) = 0;

    // Playing from the page. `grain` -1 plays the whole pad or file.
    virtual HRESULT AuditionPad(std::int32_t pad, std::int32_t grain) = 0;
    /// A one-shot pad ignores it; -1 stops everything, one-shot pads and notes too. This one and
    /// `StopBinAudition` only set flags: the streaming thread may call them too, between blocks.
    virtual HRESULT StopPad(std::int32_t pad) = 0;
    virtual HRESULT AuditionBinFile(std::int32_t bin, std::int32_t grain) = 0;
    virtual HRESULT StopBinAudition(std::int32_t bin) = 0;

    /// `time` below 0 is the grain's own start. `newIndex` becomes -1. A bad grain throws.
    virtual HRESULT MoveGrain(std::int32_t pad, std::int32_t grain, std::int32_t toPad, std::int64_t time,
                              std::int32_t* newIndex, std::uint32_t markOnly) = 0;
    virtual HRESULT CopyGrain(std::int32_t pad, std::int32_t grain, std::int32_t toPad, std::int64_t time,
                              std::int32_t* newIndex) = 0;

    virtual HRESULT GetBinFileCount(std::int32_t* count) = 0;
    /// At most 259 bytes and a terminator into `text`. A bad `bin` writes nothing and gives `S_OK`.
    virtual HRESULT GetBinFileName(std::int32_t bin, std::uint32_t wantPath, char* text) = 0;

    // A bad pad gives `S_OK` in these six, and nothing is read or written.
    virtual HRESULT GetPadLooping(std::int32_t pad, std::uint32_t* value) = 0;
    virtual HRESULT SetPadLooping(std::int32_t pad, std::uint32_t value) = 0;
    virtual HRESULT GetPadSynced(std::int32_t pad, std::uint32_t* value) = 0;
    virtual HRESULT SetPadSynced(std::int32_t pad, std::uint32_t value) = 0;
    /// The same field as `GetPadOneShot`.
    virtual HRESULT GetPadPlayMode(std::int32_t pad, std::uint32_t* value) = 0;
    virtual HRESULT SetPadPlayMode(std::int32_t pad, std::uint32_t value) = 0;

    /// The caller frees the list with `CoTaskMemFree`; null without grains. A bad index gives `S_FALSE` and
    /// count 0.
    virtual HRESULT GetPadGrainList(std::int32_t pad, GrainListEntry** list, std::int32_t* count) = 0;
    virtual HRESULT GetBinGrainList(std::int32_t bin, GrainListEntry** list, std::int32_t* count) = 0;

    virtual HRESULT GetPadMute(std::int32_t pad, std::uint32_t* value) = 0;
    virtual HRESULT SetPadMute(std::int32_t pad, std::uint32_t value) = 0;
    /// `kind` is a `LoopKind`.
    virtual HRESULT GetLoopLength(std::uint32_t kind, std::uint32_t index, std::int64_t* ticks16) = 0;
    virtual HRESULT SetLoopLength(std::uint32_t kind, std::uint32_t index, std::int64_t ticks16) = 0;
    virtual HRESULT GetPadPlaying(std::int32_t pad, std::uint32_t* value) = 0;
    virtual HRESULT GetBinPlaying(std::int32_t bin, std::uint32_t* value) = 0;
    /// `entry->pad` says which; without an entry the record stays as it came.
    virtual HRESULT GetKeyMapEntry(KeyMapRecord* entry) = 0;
    virtual HRESULT SetKeyMapEntry(const KeyMapRecord* entry) = 0;
    virtual HRESULT GetAuditionEnabled(std::uint32_t* value) = 0;
    virtual HRESULT SetAuditionEnabled(std::uint32_t value) = 0;
    /// The one mailbox to the page: reading clears it. A page that is open reads it at each of its ticks, and
    /// only at 1 it reads everything again. So whoever changes the instrument beside the page, such as a
    /// shell that loads a project, calls `SetRefreshRequest(1)` behind it.
    virtual HRESULT GetRefreshRequest(std::uint32_t* value) = 0;
    virtual HRESULT SetRefreshRequest(std::uint32_t value) = 0;
    virtual HRESULT GetPadVolume(std::int32_t pad, float* value) = 0;
    /// Clamped to 0 to 2.
    virtual HRESULT SetPadVolume(std::int32_t pad, float value) = 0;
    virtual HRESULT GetPadPan(std::int32_t pad, float* value) = 0;
    /// Clamped to 0 (left) to 1 (right).
    virtual HRESULT SetPadPan(std::int32_t pad, float value) = 0;
    virtual HRESULT GetPadTail(std::int32_t pad, std::uint32_t* value) = 0;
    virtual HRESULT SetPadTail(std::int32_t pad, std::uint32_t value) = 0;
    virtual HRESULT GetGrainTranspose(std::int32_t pad, std::int32_t grain, std::int32_t* semitones) = 0;
    virtual HRESULT SetGrainTranspose(std::int32_t pad, std::int32_t grain, std::int32_t semitones) = 0;
    virtual HRESULT GetGrainCount(std::uint32_t kind, std::uint32_t index, std::int32_t* count) = 0;
    /// End of the last grain; 0 on an empty pad.
    virtual HRESULT GetPadEndTime(std::int32_t pad, std::int64_t* ticks16) = 0;
    virtual HRESULT GetPadFollowKey(std::int32_t pad, std::uint32_t* value) = 0;
    virtual HRESULT SetPadFollowKey(std::int32_t pad, std::uint32_t value) = 0;
    virtual HRESULT GetGrainVolume(std::int32_t pad, std::int32_t grain, float* value) = 0;
    virtual HRESULT SetGrainVolume(std::int32_t pad, std::int32_t grain, float value) = 0;
    virtual HRESULT GetGrainPan(std::int32_t pad, std::int32_t grain, float* value) = 0;
    virtual HRESULT SetGrainPan(std::int32_t pad, std::int32_t grain, float value) = 0;
    virtual HRESULT GetPadOutput(std::int32_t pad, std::uint32_t* output) = 0;
    /// 0 the mix, 1 to 16 the channel pins; anything else `E_INVALIDARG`.
    virtual HRESULT SetPadOutput(std::int32_t pad, std::uint32_t output) = 0;
    virtual HRESULT GetPadSolo(std::int32_t pad, std::uint32_t* value) = 0;
    virtual HRESULT SetPadSolo(std::int32_t pad, std::uint32_t value) = 0;
    virtual HRESULT GetPadRootNote(std::int32_t pad, std::int32_t* note) = 0;
    /// -1 to 127; anything else is ignored with `S_OK`.
    virtual HRESULT SetPadRootNote(std::int32_t pad, std::int32_t note) = 0;
    virtual HRESULT GetPadChannel(std::int32_t pad, std::int32_t* channel) = 0;
    /// Clamped to -1 (omni) to 15.
    virtual HRESULT SetPadChannel(std::int32_t pad, std::int32_t channel) = 0;
    virtual HRESULT GetPadOneShot(std::int32_t pad, std::uint32_t* value) = 0;
    virtual HRESULT SetPadOneShot(std::int32_t pad, std::uint32_t value) = 0;
};

}  // namespace marnoth
