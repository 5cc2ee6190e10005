#include "dsp/StretchPlan.h"

#include <algorithm>
#include <bit>

namespace marnoth {
namespace {

/// From this ratio of lengths on a crossfade may be long.
constexpr float kLongFadeRatio = 1.04f;
static_assert(std::bit_cast<std::uint32_t>(kLongFadeRatio) == 0x3F851EB8);

bool isSmallChange(std::int64_t longer, std::int64_t shorter) {
    return !(static_cast<float>(longer) / static_cast<float>(shorter) >= kLongFadeRatio);
}

bool isLength(std::int64_t frames) {
    return frames >= 1 && frames <= kMostFrames;
}
bool isPosition(std::int64_t frame) {
    return frame >= -kMostFrames && frame <= kMostFrames;
}

bool canRead(const SourceWave& wave) {
    return wave.samples != nullptr && wave.channels >= 1 && wave.frames >= 0 && wave.frames <= kMostFrames;
}

/// The overlap assumed when passes are counted: 200 ms, but at most half of the source.
std::int64_t leastOverlap(std::int64_t source, std::int64_t rate) {
    return std::min(rate / 5, source * 5 / 10);
}

}  // namespace

std::optional<StretchRequest> checkRequest(const StretchSource& source, const StretchSpan& span) {
    const std::int64_t target = span.targetFrames < 1 ? source.length : span.targetFrames;
    if (!canRead(source.wave) || !isLength(source.length) || !isLength(target)) return {};
    if (!isPosition(source.first) || !isPosition(span.pos) || span.frames <= 0) return {};
    const std::int64_t end = std::min(span.pos + span.frames, target);
    if (span.pos >= end) return {};
    return StretchRequest{source.length, target, span.pos, end, std::max(source.sampleRate, 0)};
}

PassPlan planPasses(std::int64_t source, std::int64_t target, std::int32_t sampleRate) {
    const std::int64_t rate = sampleRate;
    const std::int64_t overlap = leastOverlap(source, rate);
    PassPlan plan;
    plan.source = source;
    plan.target = target;
    plan.passes = (target - overlap) / (source - overlap) + 1;
    plan.jump = (plan.passes * source - target) / (plan.passes - 1);
    plan.step = source - plan.jump;
    plan.fade = plan.passes < 3 ? std::min(plan.jump, rate / 4) : std::min(plan.step, 2 * plan.jump / 3);
    if (isSmallChange(target, source)) plan.fade = std::min(plan.fade, rate / 40);
    return plan;
}

Pass passAt(const PassPlan& plan, std::int64_t pos) {
    const std::int64_t further = plan.passes - 1;
    const std::int64_t toCome =
        plan.step == 0 ? further : std::min((plan.target - pos - 1) / plan.step, further);
    const std::int64_t end = plan.target - toCome * plan.step;
    // By the count of passes alone, every pass over a single frame would begin one frame before it.
    const std::int64_t offset = plan.source == 1 ? pos : (further - toCome) * plan.step;
    return {toCome, end, end - plan.fade, offset};
}

HeadTailPlan planHeadTail(std::int64_t source, std::int64_t target, std::int32_t sampleRate) {
    const std::int64_t rate = sampleRate;
    const auto mostOfTarget = static_cast<std::int64_t>(static_cast<double>(target) * 0.8);
    std::int64_t fade = std::min(rate / 4, mostOfTarget);
    if (isSmallChange(source, target)) fade = std::min(fade, rate / 40);
    return {fade, target - fade, source - target};
}

}  // namespace marnoth
