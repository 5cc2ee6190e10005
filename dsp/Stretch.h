#pragma once

#include <cstdint>

#include "dsp/CrossfadeGains.h"
#include "dsp/SourceWave.h"

namespace marnoth {

/// What a stretch reads: a run of `length` frames that begins at frame `first` of a wave.
///
/// Reads before the wave's first frame take its first frame, reads behind its guard frame take the guard
/// frame, each frame for itself, so no position can leave the wave's memory.
struct StretchSource {
    SourceWave wave;
    std::int64_t first = 0;       ///< frame of `wave` at which the run begins
    std::int64_t length = 0;      ///< S, frames of the run; below 1 renders nothing
    std::int32_t sampleRate = 0;  ///< R, frames per second; the crossfade lengths are fractions of it
    std::int32_t sampleBits = 32;
};

/// Which part of the stretched run to render: `frames` frames from target frame `pos` on, of a run that fills
/// `targetFrames` frames on the timeline. Frames at or beyond `targetFrames` are not rendered.
struct StretchSpan {
    std::int64_t pos = 0;
    std::int32_t frames = 0;
    std::int64_t targetFrames = 0;  ///< T; below 1 means the source's own length
};

/// Where it goes: added to the interleaved frames that begin at `frames`. 2 channels are stereo, all else
/// mono.
struct StretchDest {
    float* frames = nullptr;
    std::int32_t channels = 0;
};

/// Plain factors per side.
struct StereoGain {
    float left = 1;
    float right = 1;
};

/// Pad and grain level and balance as factors: f32(f32(l * a) * padVolume * grainVolume) for the left side,
/// where l = min(1, (1 - grainPan) * 2) in f64 and a = min(1, (1 - padPan) * 2) in f32; the right side
/// likewise with pan in place of 1 - pan. Everything behind the first rounding is computed in f64.
StereoGain grainGain(float padVolume, float padPan, double grainVolume, double grainPan);

/// From where the gains of a crossfade are worked out frame by frame: from the beginning of each run, or from
/// fixed places of the crossfade, so that a frame has the same bits in whatever run it is rendered.
enum class RampsFrom { runs, places };

/// How crossfades are rendered.
struct Ramps {
    CrossfadeGains* known = nullptr;  ///< what it remembers saves time and changes no bit; may be null
    RampsFrom from = RampsFrom::runs;
};

/// Renders untransposed: fills `targetFrames` without a change of pitch. A longer target replays the source
/// in passes with crossfades at each jump, a shorter one plays the head and crossfades to the tail, an equal
/// one is a plain copy under the gain. Keeps no state: any target frame can be rendered at any time; Audio
/// thread; no allocation.
void renderStretched(const StretchSource& source, const StretchSpan& span, const StretchDest& dest,
                     StereoGain gain, Ramps ramps = {});

/// Renders transposed by a change of playback speed: 2 ^ (semitones / 12) * pitchRatio, with linear
/// interpolation; the length on the timeline stays `targetFrames`, by the same passes counted in source
/// frames. A `pitchRatio` that isn't a finite number above 0 renders nothing. A stereo source into mono is
/// halved here.
void renderShifted(const StretchSource& source, const StretchSpan& span, const StretchDest& dest,
                   StereoGain gain, std::int32_t semitones, double pitchRatio, Ramps ramps = {});

}  // namespace marnoth
