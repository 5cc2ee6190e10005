#pragma once

#include <cstdint>

#include "engine/model/GrainList.h"
#include "engine/model/GrooveEvent.h"
#include "platform/com/Com.h"
#include "project/TrackSettings.h"
#include "seam/MusicalTime.h"

namespace marnoth {

/// Grains with what they have in common: one pad, or what a file of the Loop Bin is cut into. Playback relies
/// on the grains being sorted by `startTicks`.
///
/// A value that costs little to copy: copies share their grains, which are never changed. One thread at a
/// time. Grain indices out of range throw `std::invalid_argument`. `sampleRate` is the host's, in frames per
/// second.
class CGrooveTrack : public TrackSettings {
public:
    double tempo = kDefaultTrackTempo;  ///< beats per minute, at which both lengths agree

    /// All that a project keeps of the track but its grains.
    const TrackSettings& settings() const { return *this; }
    const GrainList& grains() const { return grains_; }
    std::int32_t GetSize() const { return grains_.size(); }
    /// The grain at `index`. Throws `std::invalid_argument` when there is none.
    const CGrooveEvent& GetAt(std::int32_t index) const;
    /// Puts the grain that `change(CGrooveEvent&)` makes of the one at `index` in its place.
    template <class Change>
    void ChangeAt(std::int32_t index, Change change) {
        CGrooveEvent grain = GetAt(index);
        change(grain);
        grains_.replace(index, std::move(grain));
    }
    /// The same for every grain; those for which it gives false stay.
    template <class Change>
    void ChangeAll(Change change) {
        auto parts = grains_.parts();
        bool changed = false;
        for (auto& part : parts) {
            CGrooveEvent grain = part->grain();
            if (!change(grain)) continue;
            part = GrainList::part(std::move(grain));
            changed = true;
        }
        if (changed) grains_ = GrainList(std::move(parts));
    }

    /// Loop length; kinds `kTicks16` and `kSamples`. Negative values are not written.
    std::int64_t GetLength(std::uint32_t kind) const;
    void SetLength(std::int64_t value, std::uint32_t kind);
    /// The tempo at which both lengths agree; 100 without a length in samples.
    void RecomputeTempo(std::int32_t sampleRate);
    /// Also written into every grain.
    void SetTail(std::uint32_t on);
    void SetBinIndex(std::int32_t index);

    /// Lets go of all grains; both lengths become 0, the tempo 100.
    void ClearGrains();
    /// Appends the grains of `other`; lengths and flags stay.
    void CopyGrainsFrom(const CGrooveTrack& other);
    /// Puts a grain in front of the first that doesn't start before `startTicks`; gives its index.
    /// `growLength` lets the loop grow to the whole beat behind its last grain.
    std::int32_t InsertGrainSorted(CGrooveEvent grain, std::int64_t startTicks, bool growLength,
                                   std::int32_t sampleRate);
    /// Puts a grain at the end, out of order: `PurgeAndSort` must follow.
    std::int32_t AppendGrain(CGrooveEvent grain, std::int64_t startTicks, bool growLength,
                             std::int32_t sampleRate);
    /// Has these grains, as they are; lengths and flags stay.
    void SetGrains(GrainList grains) { grains_ = std::move(grains); }
    /// Takes over what an empty pad takes over from the pad that its grains come from, and the tempo that
    /// follows.
    void TakeOver(const CGrooveTrack& source, std::int32_t sampleRate);
    /// Has the grains and the loop of a file in place of its own. A file loops in the bin whatever it is; on
    /// a pad only one that follows the tempo does.
    void LayOn(const CGrooveTrack& file, std::int32_t sampleRate);
    /// Becomes a track of one copy of `grain`, placed at 0 and just as long as that.
    void PlayAlone(const CGrooveEvent& grain);
    /// Takes a grain out. Without grains both lengths become 0, the tempo 100.
    void RemoveGrain(std::int32_t index);
    /// Takes out all grains of a file of the Loop Bin, likewise.
    void RemoveGrainsOf(std::int32_t binFile);
    /// Marks a grain for `PurgeAndSort`. At or past the count: nothing; negative: throws.
    void MarkGrainDeleted(std::int32_t index);
    /// Lets go of what is marked and sorts the rest by `startTicks`.
    void PurgeAndSort();

private:
    void forgetLength();
    /// `forgetLength` when no grain is left.
    void forgetLengthWhenEmpty();
    /// Puts a grain with everything that placing gives it at `index`.
    void place(std::int32_t index, CGrooveEvent grain, bool growLength, std::int32_t sampleRate);
    /// Grows the loop to the whole beat behind a grain that ends at `lastEnd`.
    void growToBeat(std::int64_t lastEnd, std::int32_t sampleRate);

    GrainList grains_;
};

}  // namespace marnoth
