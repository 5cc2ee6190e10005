#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace marnoth {

/// One number for each gain of a crossfade: left and right of what fades out, then of what fades in.
using FadeSides = std::array<double, 4>;

/// Where the gains of a crossfade stand, and how they go on: parabolas by forward differences.
struct FadeState {
    FadeSides gain{};   ///< of the present frame
    FadeSides step{};   ///< from it to the next
    FadeSides curve{};  ///< by which the step changes

    /// To the next frame.
    void advance() {
        for (std::size_t side = 0; side < gain.size(); ++side) {
            gain[side] += step[side];
            step[side] += curve[side];
        }
    }
};

/// The gains of crossfades frame by frame, as long as they may be of use again. Each gain waits for the one
/// before it, so working out a ramp takes longer than fading with it; and pads that are played in step, at
/// one level, fade alike in every block.
///
/// Keeps the last few ramps; one thread at a time; allocates nothing.
class CrossfadeGains {
public:
    static constexpr std::int32_t kFrames = 512;  ///< of one ramp at most

    struct Ramp {
        FadeState begin;
        FadeState end;  ///< behind the last frame
        std::int32_t frames = 0;
        // Left and right of each frame, side by side.
        alignas(64) std::array<double, std::size_t{2} * kFrames> out;
        alignas(64) std::array<double, std::size_t{2} * kFrames> in;
    };

    /// The ramp of `frames` frames that begins just so, to the bit; null when it isn't there.
    const Ramp* find(const FadeState& begin, std::int32_t frames) const;
    /// Room for another one, in place of the oldest.
    Ramp& replaceOldest();

private:
    std::array<Ramp, 4> ramps_;
    std::size_t oldest_ = 0;
};

/// Adds the frames at `out` and `in`, of one or two channels, under the gains of `ramp` to the stereo frames
/// at `dest`: first those that fade out, then those that fade in.
void crossfadeBy(const CrossfadeGains::Ramp& ramp, float* dest, const float* out, const float* in,
                 std::int32_t channels);

}  // namespace marnoth
