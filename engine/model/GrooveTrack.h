#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "engine/model/GrooveEvent.h"
#include "engine/render/PreAllocArray.h"
#include "engine/render/Voice.h"
#include "seam/LoadFault.h"
#include "seam/MusicalTime.h"
#include "seam/Pzi.h"

namespace marnoth {

class CAcidWave;
struct TrackRecord;

/// What the grains of a track have in common. Copies share the sample.
struct TrackFields {
    CPziSynthContext* context = nullptr;  ///< conversions of time; not owned
    RefPtr<CWaveMem> sample;              ///< the whole file; Loop Bin tracks only
    std::int64_t lengthSamples = 0;       ///< loop length
    std::int64_t lengthTicks = 0;         ///< loop length, 16.16 ticks
    double tempo = kDefaultTrackTempo;    ///< beats per minute
    std::uint32_t phaseOwner = 0;         ///< 1 for the block in which this pad set the common phase
    std::int64_t phaseOrigin = 0;         ///< zero of the loop when synced, 16.16 ticks
    std::uint32_t looping = 0;
    std::uint32_t synced = 0;   ///< follows the host's tempo and position
    std::uint32_t oneShot = 1;  ///< a note starts the pad and its end doesn't stop it
    std::uint32_t mute = 0;
    std::uint32_t tailOn = 0;
    std::uint32_t solo = 0;
    std::uint32_t followKey = 0;  ///< transposes with the project's key
    std::int32_t rootNote = -1;   ///< 0 to 11 counted from A, -1 none; up to 127 is kept
    std::wstring name;
    std::wstring path;              ///< identity of a Loop Bin file
    std::int32_t midiChannel = -1;  ///< 0 to 15, -1 omni
    std::uint32_t output = 0;       ///< 0 the mix, 1 to 16 the channel pins
    float volume = 1.0f;            ///< 0 to 2
    float pan = 0.5f;               ///< 0 to 1
};

/// Grains with what they have in common: one pad, or one Loop Bin file. Playback reads the grains in order
/// and relies on them being sorted by `startTicks`.
///
/// Owns its grains. No lock of its own: everything runs under the engine's lock, except while a file is
/// loaded into a track that nobody else can see yet. Grain indices out of range throw
/// `std::invalid_argument`.
class CGrooveTrack : public TrackFields {
public:
    explicit CGrooveTrack(CPziSynthContext* synthContext);
    /// Copies every field and grain, sharing samples.
    CGrooveTrack(const CGrooveTrack& other);
    CGrooveTrack& operator=(const CGrooveTrack&) = delete;
    ~CGrooveTrack() = default;

    std::int32_t GetSize() const { return static_cast<std::int32_t>(grains_.size()); }
    /// The grain at `index`. Throws `std::invalid_argument` when there is none.
    CGrooveEvent& GetAt(std::int32_t index) const;

    /// Loop length; kinds `kTicks16` and `kSamples`. Negative values are not written.
    std::int64_t GetLength(std::uint32_t kind) const;
    void SetLength(std::int64_t value, std::uint32_t kind);
    /// The tempo at which both lengths agree; 100 without a length in samples.
    void RecomputeTempo();
    /// Ignored unless -1 to 127.
    void SetRootNote(std::int32_t note);
    /// Also written into every grain.
    void SetTail(std::uint32_t on);
    void SetBinIndex(std::int32_t index);

    /// Deletes all grains; both lengths become 0, the tempo 100.
    void ClearGrains();
    /// Appends copies; lengths and flags stay. `E_OUTOFMEMORY` or `S_OK`.
    HRESULT CopyGrainsFrom(const CGrooveTrack& other);
    /// Puts a grain in front of the first that doesn't start before `startTicks`; gives its index.
    /// `growLength` lets the loop grow to the whole beat behind its last grain.
    std::int32_t InsertGrainSorted(std::unique_ptr<CGrooveEvent> grain, std::int64_t startTicks,
                                   bool growLength);
    /// Puts a grain at the end of the array, out of order: `PurgeAndSort` must follow.
    std::int32_t AppendGrain(std::unique_ptr<CGrooveEvent> grain, std::int64_t startTicks, bool growLength);
    /// Puts a grain at the end as it is.
    void append(std::unique_ptr<CGrooveEvent> grain) { grains_.push_back(std::move(grain)); }
    /// Becomes a track of one copy of `grain`, placed at 0 and just as long as that.
    void PlayAlone(const CGrooveEvent& grain);
    /// Takes over the lengths of `other`, and the tempo that follows from them.
    void TakeLengthsFrom(const CGrooveTrack& other);
    /// Deletes a grain and closes the gap. Without grains both lengths become 0, the tempo 100.
    void RemoveGrain(std::int32_t index);
    /// Marks a grain for `PurgeAndSort`. At or past the count: nothing; negative: throws.
    void MarkGrainDeleted(std::int32_t index);
    /// Deletes what is marked and sorts the rest by `startTicks`.
    void PurgeAndSort();

    /// Takes saved settings. A negative length counts as 0, a root note or an output that there isn't as
    /// none. Grains, name, sample and phase stay, and the tempo follows from the lengths.
    void FromRecord(const TrackRecord& record);
    /// What a project file keeps of the track, but for its grains, name and path.
    TrackRecord ToRecord() const;
    /// Moves everything that a project keeps of a pad out of `other`: settings and grains. Its phase stays
    /// this track's own. What this track had is `other`'s then, for the caller to destroy.
    void SwapPad(CGrooveTrack& other) noexcept;
    /// Gives all grains away in the time that takes a pointer or two; both lengths become 0, the tempo 100.
    std::vector<std::unique_ptr<CGrooveEvent>> TakeGrains() noexcept;

    /// Reads a whole file as float into `sample`, at the file's rate, with its peak table; sets the loop
    /// length in frames.
    LoadFault ReadSamples(CAcidWave& wave);
    /// Makes this track the Loop Bin entry of a file: reads it, brings it to the rate of `format` and cuts it
    /// into grains. `badValue` of beats, seconds or the rate when the file breaks a limit. After a fault the
    /// track is empty.
    LoadFault LoadFromWave(CAcidWave& wave, const std::wstring& newName, const std::wstring& newPath,
                           std::int32_t binIndex, const WAVEFORMATEX& format);

    /// Adds the grains that sound between `from` and `to` to `events`, loop repetitions included; 1 if there
    /// is any. Times are of `kind` (`kTicks16` or `kSamples`); `origin` is the zero of the loop.
    std::int32_t SelectRange(CPreAllocArray<StreamEventInfo>& events, std::int64_t origin, std::int64_t from,
                             std::int64_t to, std::uint32_t kind);
    /// The same for one cycle of the loop, `from` and `to` counted from the cycle's start.
    std::int32_t CollectCycle(CPreAllocArray<StreamEventInfo>& events, std::int64_t origin, std::int64_t from,
                              std::int64_t to, std::int64_t cycle, std::uint32_t kind);

private:
    void forgetLength();
    /// `forgetLength` when no grain is left.
    void forgetLengthWhenEmpty();
    /// What placing does once the grain is in the array.
    void settle(CGrooveEvent& grain, bool growLength);
    /// Grows the loop to the whole beat behind the last grain of the array.
    void growToBeat();

    void cutSegments(const CAcidWave& wave, std::int32_t binIndex);
    void cutWhole(std::int32_t binIndex);
    LoadFault readAndCut(CAcidWave& wave, std::int32_t binIndex, const WAVEFORMATEX& newFormat);

    std::vector<std::unique_ptr<CGrooveEvent>> grains_;
};

}  // namespace marnoth
