#include "engine/render/GrainRun.h"

namespace marnoth {

GrainRun GrainRun::part(std::int64_t first, std::int64_t frames) const {
    GrainRun run = *this;
    run.pos = static_cast<std::int32_t>(pos + first);
    run.destFrame += first;
    run.count = frames;
    return run;
}

void GrainRun::render(float* dest, const WAVEFORMATEX& format, const CGrooveTrack& track, Ramps ramps) const {
    render(dest, format, track.volume, track.pan, ramps);
}

void GrainRun::render(float* dest, const WAVEFORMATEX& format, float volume, float pan, Ramps ramps) const {
    const auto frames = static_cast<std::int32_t>(count);
    if (semitones == 0) {
        grain->Render(pos, destFrame, frames, targetFrames, dest, &format, volume, pan, ramps);
    } else {
        grain->RenderShifted(pos, destFrame, frames, targetFrames, dest, &format, volume, pan, semitones,
                             ramps);
    }
}

}  // namespace marnoth
