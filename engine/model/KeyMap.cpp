#include "engine/model/KeyMap.h"

#include <algorithm>
#include <utility>

#include "engine/model/GrooveTrack.h"

namespace marnoth {
namespace {

bool within(std::int32_t value, std::int32_t low, std::int32_t high) {
    return low <= value && value <= high;
}

bool answers(const TrackKeyInfoImp& entry, std::int32_t key, std::int32_t channel, std::int32_t velocity) {
    const std::int32_t own = entry.track->midiChannel;
    return (own == -1 || own == channel) && within(key, entry.lowKey, entry.highKey) &&
           (velocity == -1 || within(velocity, entry.lowVelocity, entry.highVelocity));
}

TrackKeyInfoImp withOrderedKeys(TrackKeyInfoImp entry) {
    if (entry.lowKey > entry.highKey) std::swap(entry.lowKey, entry.highKey);
    return entry;
}

template <class Entries>
auto entryOf(Entries& entries, std::int32_t pad) {
    return std::find_if(entries.begin(), entries.end(),
                        [pad](const auto& entry) { return entry.pad == pad; });
}

}  // namespace

std::int32_t CKeyMap::AddOrReplace(const TrackKeyInfoImp& entry) {
    const auto place = entryOf(entries_, entry.pad);
    if (place != entries_.end()) {
        *place = withOrderedKeys(entry);
    } else {
        entries_.Add(entry);
    }
    return entries_.GetSize();
}

std::int32_t CKeyMap::FindPads(CPreAllocArray<TrackPlayInfo>& playList, std::int32_t key,
                               std::int32_t channel, std::int32_t velocity) const {
    playList.RemoveAll();
    for (const TrackKeyInfoImp& entry : entries_) {
        if (!answers(entry, key, channel, velocity)) continue;
        const auto semitones = static_cast<std::int32_t>(std::int64_t{key} - entry.rootKey);
        playList.Add({PlayKind::pad, entry.track->oneShot, entry.pad, entry.track, semitones, 1.0f});
    }
    return playList.GetSize();
}

const TrackKeyInfoImp* CKeyMap::find(std::int32_t pad) const {
    const auto place = entryOf(entries_, pad);
    return place != entries_.end() ? place : nullptr;
}

void CKeyMap::setTrack(std::int32_t pad, CGrooveTrack* track) {
    const auto place = entryOf(entries_, pad);
    if (place != entries_.end()) place->track = track;
}

}  // namespace marnoth
