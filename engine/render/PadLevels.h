#pragma once

#include <array>
#include <cstdint>

#include "engine/model/PadBank.h"
#include "engine/render/PlayState.h"

namespace marnoth {

/// Factors of a pad's volume and pan; 0 for one that is muted, or silenced by a solo.
struct SideLevels {
    double left = 0;
    double right = 0;

    bool isHeard() const { return left != 0 || right != 0; }
    friend bool operator==(const SideLevels&, const SideLevels&) = default;
};

/// On the way from one level to another.
struct LevelGlide {
    SideLevels from;
    SideLevels to;
    std::int64_t left = 0;  ///< frames to go, from the first of the block on; 0: it is there
    std::int64_t length = 1;

    /// `frame` frames behind the first of the block.
    SideLevels at(std::int64_t frame) const {
        if (frame >= left) return to;
        const double done = static_cast<double>(length - left + frame) / static_cast<double>(length);
        return {from.left + (to.left - from.left) * done, from.right + (to.right - from.right) * done};
    }
    bool isHeard() const { return to.isHeard() || (left > 0 && from.isHeard()); }
};

/// The levels of the pads in the steady mode: a pad that sounds glides to a level that it is given, is muted
/// or silenced, as it fades out.
///
/// Streaming thread, under the engine's lock.
class PadLevels {
public:
    /// Takes up the levels of `model`, for the block that begins.
    void beginBlock(const Model& model, const PadFlags& sounded, std::int64_t glideFrames);
    void endBlock(std::int64_t frames);
    /// The next block begins with its levels, without a glide.
    void forget() { known_ = false; }

    const LevelGlide& of(std::int32_t pad) const { return glides_[static_cast<std::size_t>(pad)]; }

private:
    std::array<LevelGlide, kPads> glides_;
    bool known_ = false;
};

}  // namespace marnoth
