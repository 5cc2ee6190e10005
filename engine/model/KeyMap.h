#pragma once

#include <cstdint>

#include "engine/render/PreAllocArray.h"
#include "engine/render/Voice.h"

namespace marnoth {

/// Which notes sound one pad. A pad's MIDI channel is a field of its track.
struct TrackKeyInfoImp {
    std::int32_t pad = 0;           ///< 0 to 15, the entry's identity
    CGrooveTrack* track = nullptr;  ///< not owned; rewritten when pads change places with undo
    std::int32_t lowKey = 0;        ///< inclusive
    std::int32_t highKey = 0;       ///< inclusive
    std::int32_t rootKey = 0;       ///< the note at which the pad plays untransposed
    std::int32_t lowVelocity = 0;   ///< inclusive
    std::int32_t highVelocity = 0;  ///< inclusive
};

/// Decides which pads a note sounds, and by how many semitones: one entry per pad, at most 16. Ranges may
/// overlap. All operations run under the engine's lock.
class CKeyMap {
public:
    CKeyMap() : entries_(16) {}
    virtual ~CKeyMap() = default;

    /// Overwrites the pad's entry, its keys put in order; or appends the entry as given while there is room.
    /// Gives the entry count.
    std::int32_t AddOrReplace(const TrackKeyInfoImp& entry);
    /// Refills `playList` with the pads that answer, in the order of the entries. `velocity` -1 is any. Gives
    /// the count.
    std::int32_t FindPads(CPreAllocArray<TrackPlayInfo>& playList, std::int32_t key, std::int32_t channel,
                          std::int32_t velocity) const;

    void RemoveAll() { entries_.RemoveAll(); }
    /// The entry of `pad`, or null.
    const TrackKeyInfoImp* find(std::int32_t pad) const;
    /// Points the entry of `pad` at another track.
    void setTrack(std::int32_t pad, CGrooveTrack* track);
    std::int32_t GetSize() const { return entries_.GetSize(); }

private:
    CPreAllocArray<TrackKeyInfoImp> entries_;
};

}  // namespace marnoth
