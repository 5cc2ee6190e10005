#include "engine/render/PadLevels.h"

#include <algorithm>

namespace marnoth {
namespace {

SideLevels levelsOf(const Model& model, const CGrooveTrack& track) {
    if (track.mute || (model.anySolo && !track.solo)) return {};
    const double volume = track.volume;
    return {std::min((1.0f - track.pan) * 2.0f, 1.0f) * volume, std::min(track.pan * 2.0f, 1.0f) * volume};
}

}  // namespace

void PadLevels::beginBlock(const Model& model, const PadFlags& sounded, std::int64_t glideFrames) {
    for (std::size_t pad = 0; pad < glides_.size(); ++pad) {
        LevelGlide& glide = glides_[pad];
        const SideLevels next = levelsOf(model, model.pads[pad]);
        if (known_ && next == glide.to) continue;
        // One that is silenced may play on without being told as sounding.
        const bool glides = known_ && (sounded[pad] || !glide.to.isHeard());
        glide = {glide.at(0), next, glides ? glideFrames : 0, std::max<std::int64_t>(glideFrames, 1)};
    }
    known_ = true;
}

void PadLevels::endBlock(std::int64_t frames) {
    for (LevelGlide& glide : glides_) glide.left = std::max<std::int64_t>(glide.left - frames, 0);
}

}  // namespace marnoth
