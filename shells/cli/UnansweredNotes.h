#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "seam/IGrooveSampler.h"
#include "seam/Pzi.h"

namespace marnoth {

inline constexpr std::int32_t kAnyChannel = -1;

/// Which notes a pad answers.
struct PadAnswers {
    KeyMapRecord keys{};
    std::int32_t channel = kAnyChannel;  ///< or 0 to 15
};

/// Tells of notes that none of these pads answers, a sentence for those on keys that no pad has and one for
/// those of another channel or velocity than the pads' that have their key. Nothing when each is answered.
std::vector<std::string> tellUnanswered(std::span<const SynthEvent> notes, std::span<const PadAnswers> pads);

}  // namespace marnoth
