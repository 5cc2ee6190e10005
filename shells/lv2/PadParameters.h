#pragma once

#include <lv2/urid/urid.h>

#include <array>
#include <cstdint>
#include <optional>

#include "platform/com/RefPtr.h"
#include "seam/IGrooveSampler.h"
#include "seam/IMarnothOptions.h"
#include "seam/Limits.h"

namespace marnoth {

/// What a host automates of each pad, by the pad's index.
enum class PadParameter : std::uint8_t {
    level,  ///< decibels, -75 to 6; silence at the lowest
    pan,    ///< -1 left to 1 right
    mute,   ///< 0 or 1
    solo,   ///< 0 or 1
};
inline constexpr std::size_t kPadParameters = 4;

/// The levels, pans, mutes and solos of the pads between a host, which knows them as properties
/// ("urn:marnoth:pad1:level"), and the instrument, which others change too.
///
/// What is set is the instrument's at once, without an undo state, and glides over 20 ms. The thread that
/// renders, between blocks; nothing allocates but the construction.
class PadParameters {
public:
    /// `sampler` outlives this.
    PadParameters(IGrooveSampler& sampler, const LV2_URID_Map& map);

    /// The place of a property in `set` and `tellChanges`; nothing for any other.
    std::optional<std::size_t> find(LV2_URID property) const;
    LV2_URID property(std::size_t index) const { return properties_[index]; }
    static bool isSwitch(std::size_t index);

    /// What can't be is held to the range, what is no number changes nothing, and a value that is as the host
    /// was told or has set it before leaves the instrument as it is, to the last digit.
    void set(std::size_t index, double value);
    static bool isController(std::uint8_t number);
    /// A controller of a channel, 7 (level) or 10 (pan): for all pads that answer the channel.
    void setByController(std::uint8_t channel, std::uint8_t number, std::uint8_t value);

    /// How many changes of the instrument all this made.
    std::uint64_t changes() const { return changes_; }

    /// Calls `tell(index, value)` with everything that has changed since the host last set it or was told it.
    /// What `tell` answers false to is told the next time.
    template <class Tell>
    void tellChanges(Tell tell) {
        if (!look()) return;
        for (std::size_t index = 0; index < kCount; ++index) {
            const float value = read(index);
            if (value == told_[index]) continue;
            if (!tell(index, value)) return askAgain();
            told_[index] = value;
        }
    }
    /// The next time everything is told.
    void tellAll();
    void tellAgain(std::size_t index);

private:
    static constexpr std::size_t kCount = kPadParameters * kPads;

    /// Not every level reads back as it was written, and hosts send the same one with each block.
    struct Setting {
        float wanted = 0;
        float read = 0;
        bool operator==(const Setting&) const = default;
    };

    /// Whether the instrument has changed since the last time.
    bool look();
    void askAgain() { seen_.reset(); }
    /// As the host knows it.
    float read(std::size_t index) const;
    void write(std::size_t index, float value);

    IGrooveSampler& sampler_;
    RefPtr<IMarnothOptions> options_;
    std::array<LV2_URID, kCount> properties_{};  ///< pad by pad
    std::array<Setting, kCount> set_{};          ///< by the host, the last time
    std::array<float, kCount> told_{};           ///< as the host knows them; it begins with their defaults
    std::uint64_t changes_ = 0;
    std::optional<std::uint64_t> seen_;  ///< the instrument's count of changes
};

}  // namespace marnoth
