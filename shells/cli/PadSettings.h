#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "seam/IGrooveSampler.h"

namespace marnoth {

/// An inclusive range of notes or velocities.
struct ValueRange {
    std::int32_t low = 0;
    std::int32_t high = 0;
};

/// What a user wants of a pad beside its file; what isn't given stays as it is.
struct PadSettings {
    std::optional<float> volume;             ///< a factor, 0 to 2
    std::optional<float> pan;                ///< 0 (left) to 1 (right)
    std::optional<std::int32_t> transpose;   ///< semitones, of each grain
    std::optional<std::uint32_t> output;     ///< 0 the mix, 1 to 16
    std::optional<std::int32_t> root;        ///< a root number of loops, or -1 for none
    std::optional<std::uint32_t> followKey;  ///< flags are 0 or 1
    std::optional<std::uint32_t> mute;
    std::optional<std::uint32_t> solo;
    std::optional<std::uint32_t> oneShot;
    std::optional<std::uint32_t> synced;
    std::optional<std::uint32_t> looping;
    std::optional<std::int64_t> length;  ///< of its loop, in 16.16 ticks
    std::optional<std::uint32_t> tail;
    std::optional<std::int32_t> channel;  ///< 0 to 15, or -1 for any
    std::optional<ValueRange> notes;
    std::optional<std::int32_t> center;  ///< the note that plays untransposed
    std::optional<ValueRange> velocities;
};

/// A word that sets one of them, as `--pad` takes it: `NAME=VALUE`.
struct PadSettingWord {
    std::string name;
    std::string values;   ///< what may stand behind "=", for whoever writes it
    std::string meaning;  ///< a few words for a table of all of them
    /// False when the value isn't one of `values`.
    std::function<bool(PadSettings& settings, std::string_view value)> read;
};

/// All of them, in the order in which they are told.
const std::vector<PadSettingWord>& padSettingWords();

/// Lays settings on a pad, 0 to 15, and its grains. Throws a `FileFailure` when the instrument refuses.
void applySettings(IGrooveSampler& sampler, std::int32_t pad, const PadSettings& settings);

}  // namespace marnoth
