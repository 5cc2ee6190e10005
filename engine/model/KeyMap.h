#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "engine/model/Pads.h"
#include "seam/IGrooveSampler.h"
#include "seam/Limits.h"

namespace marnoth {

/// A pad that answers a note, and by how many semitones the note is above the pad's root key.
struct AnsweringPad {
    std::int32_t pad = 0;
    std::int32_t semitones = 0;
};

/// Decides which pads a note sounds, and by how many semitones: one entry per pad, at most 16. Ranges may
/// overlap. A pad's MIDI channel is one of the pad's own settings. A value; one thread at a time.
class CKeyMap {
public:
    /// Room for the pads that answer one note.
    using Answers = std::array<AnsweringPad, kPads>;

    /// Overwrites the pad's entry, its keys put in order; or appends the entry as given while there is room.
    /// Gives the entry count.
    std::int32_t AddOrReplace(const KeyMapRecord& entry);
    /// The pads that answer, in the order of the entries, written into `room`. `velocity` -1 is any.
    std::span<const AnsweringPad> FindPads(Answers& room, const Pads& pads, std::int32_t key,
                                           std::int32_t channel, std::int32_t velocity) const;

    void RemoveAll() { *this = {}; }
    /// The entry of `pad`, or null.
    const KeyMapRecord* find(std::int32_t pad) const;
    std::int32_t GetSize() const { return count_; }

private:
    std::span<const KeyMapRecord> entries() const {
        return {entries_.data(), static_cast<std::size_t>(count_)};
    }

    static constexpr std::int32_t kKeys = 128;
    using EntrySet = std::uint16_t;  ///< bit n: entry n

    void put(std::size_t at, const KeyMapRecord& entry);
    /// The entries in whose range the key lies.
    EntrySet entriesOf(std::int32_t key) const;

    std::array<KeyMapRecord, kPads> entries_{};
    std::array<EntrySet, kKeys> answering_{};  ///< for each key of a keyboard, so that a note needn't look
    std::int32_t count_ = 0;
};

}  // namespace marnoth
