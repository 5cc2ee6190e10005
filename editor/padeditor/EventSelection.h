#pragma once

#include <cstdint>
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
    void clear() { std::vector<EventSelectionInfo>().swap(items_); }
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
    std::vector<EventSelectionInfo> items_;
};

}  // namespace marnoth
