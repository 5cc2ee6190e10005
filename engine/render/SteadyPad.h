#pragma once

#include <cstdint>

#include "engine/model/PadPhase.h"
#include "engine/render/Block.h"
#include "engine/render/GrainRun.h"
#include "engine/render/GrainSearch.h"
#include "engine/render/Voice.h"

namespace marnoth {

struct RenderSpace;

/// One pad of a voice in the steady mode: each frame's sound comes from its place in time alone, so that it
/// has the same bits however time is cut into blocks. What a frame plays is found by samples, a fade by the
/// distance to its start.
///
/// Streaming thread, under the engine's lock; allocates nothing.
class SteadyPad {
public:
    /// All of them outlive this.
    SteadyPad(const Block& block, const TrackPlayInfo& entry, const VoiceState& voice, const PadPhase& phase,
              RenderSpace& space);

    /// Whether a track that doesn't loop has nothing more to play at a frame, counted in samples.
    bool hasPlayedOutAt(std::int64_t frame) const { return frame >= playedOut_; }
    /// Whether its voice lasts at a frame, and has something to play. A muted pad sounds too.
    bool soundsAt(std::int64_t frame) const { return frame < end_ && !hasPlayedOutAt(frame); }
    /// Adds the frames of `range`, in samples, to the interleaved ones at `dest`, at the level of the pad.
    void render(TimeRange range, float* dest) const;

private:
    struct Target;

    std::int64_t playedOutFrame() const;
    std::int64_t cycleAt(std::int64_t frame) const;
    std::int64_t endOfCycle(std::int64_t cycle, TimeRange frames) const;
    void renderCycle(std::int64_t cycle, TimeRange frames, const Target& target) const;
    template <std::uint32_t kind>
    void renderPart(const GrainPart& part, const GrainSearch<kind>& search, std::int64_t base,
                    TimeRange frames, const Target& target) const;
    void renderGrain(const CGrooveEvent& grain, TimeRange place, TimeRange frames,
                     const Target& target) const;
    void renderFaded(const GrainRun& run, std::int64_t firstFrame, float* dest) const;
    std::int32_t keyAt(std::int64_t frame) const;
    bool isPlainAt(std::int64_t frame) const;
    bool glidesAt(std::int64_t frame) const { return frame < glideEnd_; }
    std::int64_t endOfStretch(TimeRange frames) const;
    double gainAt(std::int64_t frame) const;

    const Block& block_;
    const CGrooveTrack& track_;
    const TrackPlayInfo& entry_;
    const VoiceState& voice_;
    RenderSpace& space_;
    const VoiceLane& lane_;
    const LevelGlide glide_;        ///< of the pad; an audition has none
    const std::int64_t from_;       ///< samples; the voice's start
    const std::int64_t glideEnd_;   ///< samples
    const std::int64_t end_;        ///< samples; the voice's end
    const std::int64_t origin_;     ///< the zero of the loop, in the time by which the track is played
    const std::int64_t length_;     ///< of the loop, likewise
    const std::int64_t playedOut_;  ///< the first frame that is; open-ended for what loops
};

}  // namespace marnoth
