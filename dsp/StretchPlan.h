#pragma once

#include <cstdint>
#include <optional>

#include "dsp/SourceWave.h"
#include "dsp/Stretch.h"

/// The arithmetic of a stretch: how often the source is replayed, where the passes begin, how long they
/// overlap. Shared by the renders of this folder and internal to it. All lengths are frames; integer
/// divisions truncate.
namespace marnoth {

/// No length or position beyond this is rendered. It keeps every product of the formulas inside 64 bits.
inline constexpr std::int64_t kMostFrames = std::int64_t{1} << 60;

/// What a render is asked for, with hostile numbers taken out and the defaults put in.
struct StretchRequest {
    std::int64_t source = 0;  ///< at least 1
    std::int64_t target = 0;  ///< at least 1
    std::int64_t begin = 0;   ///< below `end`; may be negative
    std::int64_t end = 0;     ///< at most `target`
    std::int32_t sampleRate = 0;
};

/// Nothing when there is nothing to render or the numbers make no sense.
std::optional<StretchRequest> checkRequest(const StretchSource& source, const StretchSpan& span);

/// A target longer than its source: passes that replay the source, all ending where the source ends.
struct PassPlan {
    std::int64_t source = 0;
    std::int64_t target = 0;
    std::int64_t passes = 0;  ///< at least 2
    std::int64_t jump = 0;    ///< how far each further pass starts into the source
    std::int64_t step = 0;    ///< frames that each further pass adds; 0 only when target and source are equal
    std::int64_t fade = 0;    ///< length of the crossfade between two passes
};

/// One pass of a plan, as seen from a frame of the target.
struct Pass {
    std::int64_t toCome = 0;     ///< passes behind this one; below 1 this is the last
    std::int64_t end = 0;        ///< target frame at which the pass ends
    std::int64_t fadeStart = 0;  ///< target frame at which its crossfade to the next pass starts
    std::int64_t offset = 0;     ///< target frame that plays source frame 0 of this pass
};

/// `target` must be at least `source`, both in 1 to `kMostFrames`.
PassPlan planPasses(std::int64_t source, std::int64_t target, std::int32_t sampleRate);

/// The pass in which target frame `pos` lies.
Pass passAt(const PassPlan& plan, std::int64_t pos);

/// A target shorter than its source: the head, and a crossfade to the tail.
struct HeadTailPlan {
    std::int64_t fade = 0;       ///< length of the crossfade
    std::int64_t fadeStart = 0;  ///< target frame at which it starts
    std::int64_t skip = 0;       ///< source frames that are left out
};

HeadTailPlan planHeadTail(std::int64_t source, std::int64_t target, std::int32_t sampleRate);

}  // namespace marnoth
