#include "engine/model/KeyMap.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <utility>

namespace marnoth {
namespace {

bool within(std::int32_t value, std::int32_t low, std::int32_t high) {
    return low <= value && value <= high;
}

KeyMapRecord withOrderedKeys(KeyMapRecord entry) {
    if (entry.lowKey > entry.highKey) std::swap(entry.lowKey, entry.highKey);
    return entry;
}

}  // namespace

std::int32_t CKeyMap::AddOrReplace(const KeyMapRecord& entry) {
    if (const KeyMapRecord* own = find(entry.pad)) {
        put(static_cast<std::size_t>(own - entries_.data()), withOrderedKeys(entry));
    } else if (count_ < kPads) {
        put(static_cast<std::size_t>(count_++), entry);
    }
    return count_;
}

void CKeyMap::put(std::size_t at, const KeyMapRecord& entry) {
    entries_[at] = entry;
    const auto own = static_cast<EntrySet>(1u << at);
    for (std::int32_t key = 0; key < kKeys; ++key) {
        EntrySet& set = answering_[static_cast<std::size_t>(key)];
        set = static_cast<EntrySet>(within(key, entry.lowKey, entry.highKey) ? set | own : set & ~own);
    }
}

CKeyMap::EntrySet CKeyMap::entriesOf(std::int32_t key) const {
    if (within(key, 0, kKeys - 1)) return answering_[static_cast<std::size_t>(key)];
    EntrySet set = 0;
    for (std::size_t at = 0; at < entries().size(); ++at) {
        if (within(key, entries_[at].lowKey, entries_[at].highKey)) set |= static_cast<EntrySet>(1u << at);
    }
    return set;
}

std::span<const AnsweringPad> CKeyMap::FindPads(Answers& room, const Pads& pads, std::int32_t key,
                                                std::int32_t channel, std::int32_t velocity) const {
    std::size_t found = 0;
    for (EntrySet left = entriesOf(key); left; left &= static_cast<EntrySet>(left - 1)) {
        const KeyMapRecord& entry = entries_[static_cast<std::size_t>(std::countr_zero(left))];
        if (velocity != -1 && !within(velocity, entry.lowVelocity, entry.highVelocity)) continue;
        const std::int32_t own = pads[static_cast<std::size_t>(entry.pad)].midiChannel;
        if (own != -1 && own != channel) continue;
        room[found++] = {entry.pad, static_cast<std::int32_t>(std::int64_t{key} - entry.rootKey)};
    }
    return {room.data(), found};
}

const KeyMapRecord* CKeyMap::find(std::int32_t pad) const {
    const auto all = entries();
    const auto place =
        std::find_if(all.begin(), all.end(), [pad](const KeyMapRecord& entry) { return entry.pad == pad; });
    return place != all.end() ? &*place : nullptr;
}

}  // namespace marnoth
