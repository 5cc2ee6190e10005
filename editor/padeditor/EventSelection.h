#pragma once

#include <cstdint>
#include <unordered_set>
#include <vector>

namespace marnoth {

/// A grain by its track: a pad and a grain, or a Loop Bin file and a grain.
struct EventSelectionInfo {
    std::int32_t track = 0;
    std::int32_t grain = 0;

    friend bool operator==(const EventSelectionInfo&, const EventSelectionInfo&) = default;
};

/// Grains in the order of selecting: the first decides what read-outs show. Indices, not pointers: whatever
/// changes the tracks from elsewhere must clear it.
class CEventSelection {
public:
    void clear() { *this = {}; }
    bool contains(std::int32_t track, std::int32_t grain) const;
    /// Does nothing when the pair is there.
    void add(std::int32_t track, std::int32_t grain);
    /// Only this pair from now on.
    void set(std::int32_t track, std::int32_t grain);

    bool isEmpty() const { return items_.empty(); }
    std::int32_t size() const { return static_cast<std::int32_t>(items_.size()); }
    /// Throws `std::out_of_range`.
    const EventSelectionInfo& first() const { return items_.at(0); }
    auto begin() const { return items_.begin(); }
    auto end() const { return items_.end(); }

private:
    /// Of a pair, to find it among tens of thousands.
    static std::uint64_t key(std::int32_t track, std::int32_t grain) {
        return std::uint64_t{static_cast<std::uint32_t>(track)} << 32 | static_cast<std::uint32_t>(grain);
    }

    std::vector<EventSelectionInfo> items_;
    std::unordered_set<std::uint64_t> keys_;  ///< of `items_`
};

}  // namespace marnoth
