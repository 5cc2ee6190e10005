#include "engine/render/SteadyPad.h"

#include <algorithm>

#include "engine/render/RenderSpace.h"
#include "engine/render/Semitones.h"
#include "platform/system/Overflow.h"

namespace marnoth {
namespace {

/// Rounded down, also below 0; `b` above 0.
std::int64_t floorQuotient(std::int64_t a, std::int64_t b) {
    return a / b - (a % b < 0 ? 1 : 0);
}

}  // namespace

/// Where sound goes: the frame at `dest` is frame `first`.
struct SteadyPad::Target {
    float* dest;
    std::int64_t first;
};

SteadyPad::SteadyPad(const Block& block, const TrackPlayInfo& entry, const VoiceState& voice,
                     const PadPhase& phase, RenderSpace& space)
    : block_(block),
      track_(*entry.track),
      entry_(entry),
      voice_(voice),
      space_(space),
      lane_(track_.oneShot ? voice.shot : voice.gate),
      glide_(block.levels && entry.kind == PlayKind::pad ? block.levels->of(entry.pad)
                                                         : LevelGlide{{}, {1, 1}}),
      from_(block.time.toSamplesOrOpen(lane_.from)),
      glideEnd_(plus(block.time.startSamples(), glide_.left)),
      end_(lane_.end == kOpenEnded ? kOpenEnded : block.time.firstFrameFrom(lane_.end)),
      origin_(track_.synced ? phase.origin : from_),
      length_(track_.GetLength(track_.synced ? kTicks16 : kSamples)),
      playedOut_(playedOutFrame()) {}

/// The first frame at which a track that doesn't loop has nothing more to play. It never has again, also
/// where another note moves the zero of its loop.
std::int64_t SteadyPad::playedOutFrame() const {
    if (track_.looping || voice_.ignoreLength || lane_.length < 1 || track_.lengthTicks < 1)
        return kOpenEnded;
    if (track_.synced) return block_.time.firstFrameFrom(plus(plus(length_, lane_.from), 1));
    return plus(plus(length_, from_), 1);
}

void SteadyPad::render(TimeRange range, float* dest) const {
    if (lane_.length < 1 || track_.lengthTicks < 1 || length_ < 1) return;
    const std::int64_t silence = glide_.to.isHeard() ? kOpenEnded : glideEnd_;
    const std::int64_t end = std::min({range.to, end_, playedOut_, silence});
    for (std::int64_t frame = std::max(range.from, from_), next = 0; frame < end; frame = next) {
        const std::int64_t cycle = cycleAt(frame);
        next = endOfCycle(cycle, {frame, end});
        // Nothing plays ahead of the zero, and without a loop only what follows it.
        if (cycle == 0 || (cycle > 0 && track_.looping))
            renderCycle(cycle, {frame, next}, {dest, range.from});
    }
}

std::int64_t SteadyPad::cycleAt(std::int64_t frame) const {
    const std::int64_t place = track_.synced ? block_.time.toTicks(frame) : frame;
    return floorQuotient(minus(place, origin_), length_);
}

/// The first of the frames behind the first one that isn't in its cycle; their end when all are.
std::int64_t SteadyPad::endOfCycle(std::int64_t cycle, TimeRange frames) const {
    if (cycleAt(frames.to - 1) == cycle) return frames.to;
    const std::int64_t behind = plus(times(plus(cycle, 1), length_), origin_);
    std::int64_t end =
        std::clamp(track_.synced ? block_.time.toSamples(behind) : behind, frames.from + 1, frames.to);
    // A conversion there and back may be one frame off.
    if (end > frames.from + 1 && cycleAt(end - 1) != cycle) --end;
    if (end < frames.to && cycleAt(end) == cycle) ++end;
    return end;
}

void SteadyPad::renderCycle(std::int64_t cycle, TimeRange frames, const Target& target) const {
    const GrainPart* const grains = track_.grains().root();
    if (!grains) return;
    const std::int64_t base = plus(times(cycle, length_), origin_);
    if (track_.synced) {
        // A frame more on either side, for grains are placed by ticks and cut by samples.
        const TimeRange ticks{minus(block_.time.toTicks(minus(frames.from, 1)), base),
                              minus(block_.time.toTicks(plus(frames.to, 1)), base)};
        renderPart(*grains, GrainSearch<kTicks16>(grains->reach, ticks, block_.time), base, frames, target);
    } else {
        const TimeRange samples{minus(frames.from, base), minus(frames.to, base)};
        renderPart(*grains, GrainSearch<kSamples>(grains->reach, samples, block_.time), base, frames, target);
    }
}

template <std::uint32_t kind>
void SteadyPad::renderPart(const GrainPart& part, const GrainSearch<kind>& search, std::int64_t base,
                           TimeRange frames, const Target& target) const {
    if (!search.maySound(part.reach)) return;
    if (!part.isGrain()) {
        for (const auto& inner : part) renderPart(*inner, search, base, frames, target);
        return;
    }
    const CGrooveEvent& grain = part.grain();
    const std::int64_t start = grain.GetStart(kind);
    TimeRange place{plus(start, base), plus(search.endOf(grain, start), base)};
    if (kind == kTicks16) place = {block_.time.toSamples(place.from), block_.time.toSamples(place.to)};
    renderGrain(grain, place, frames, target);
}

/// What falls into `frames` of a grain that lies at `place`.
void SteadyPad::renderGrain(const CGrooveEvent& grain, TimeRange place, TimeRange frames,
                            const Target& target) const {
    const TimeRange heard{std::max(place.from, frames.from), std::min(place.to, frames.to)};
    if (heard.from >= heard.to) return;
    GrainRun whole;
    whole.grain = &grain;
    whole.semitones = semitonesOf(grain, track_, keyAt(place.from), entry_.semitones);
    whole.targetFrames = minus(place.to, place.from);
    whole.pos = static_cast<std::int32_t>(minus(heard.from, place.from));
    whole.destFrame = minus(heard.from, target.first);
    whole.count = heard.to - heard.from;
    for (std::int64_t frame = heard.from, next = 0; frame < heard.to; frame = next) {
        next = endOfStretch({frame, heard.to});
        const GrainRun run = whole.part(frame - heard.from, next - frame);
        if (isPlainAt(frame)) {
            run.render(target.dest, block_.format, track_, {&space_.gains, RampsFrom::places});
        } else {
            renderFaded(run, frame, target.dest);
        }
    }
}

/// The key that a grain keeps which begins there.
std::int32_t SteadyPad::keyAt(std::int64_t frame) const {
    return followsKey(track_) ? block_.keys->at(block_.time.toTicks(frame)) : kNoKey;
}

/// The frames up to which all fade, or none does; no more than there is room for.
std::int64_t SteadyPad::endOfStretch(TimeRange frames) const {
    const std::int64_t room = kScratchValues / std::max<std::int64_t>(block_.format.nChannels, 1);
    std::int64_t end = std::min(frames.to, plus(frames.from, room));
    for (const std::int64_t edge : {plus(from_, block_.fades.in), minus(end_, block_.fades.out), glideEnd_}) {
        if (frames.from < edge) end = std::min(end, edge);
    }
    return end;
}

bool SteadyPad::isPlainAt(std::int64_t frame) const {
    return frame >= plus(from_, block_.fades.in) && frame < minus(end_, block_.fades.out) && !glidesAt(frame);
}

double SteadyPad::gainAt(std::int64_t frame) const {
    double gain = 1;
    if (frame < plus(from_, block_.fades.in))
        gain *= static_cast<double>(frame - from_) / static_cast<double>(block_.fades.in);
    if (frame >= minus(end_, block_.fades.out))
        gain *= static_cast<double>(end_ - frame) / static_cast<double>(block_.fades.out);
    return gain;
}

void SteadyPad::renderFaded(const GrainRun& run, std::int64_t firstFrame, float* dest) const {
    const std::int64_t channels = block_.format.nChannels;
    float* const scratch = space_.scratch.get();
    std::fill_n(scratch, run.count * channels, 0.0f);
    GrainRun inScratch = run;
    inScratch.destFrame = 0;
    const Ramps ramps{&space_.gains, RampsFrom::places};
    const bool glides = glidesAt(firstFrame);
    if (glides) {
        inScratch.render(scratch, block_.format, 1.0f, 0.5f, ramps);
    } else {
        inScratch.render(scratch, block_.format, track_, ramps);
    }
    float* const to = dest + run.destFrame * channels;
    for (std::int64_t i = 0; i < run.count; ++i) {
        const std::int64_t frame = firstFrame + i;
        const double fade = gainAt(frame);
        const SideLevels level =
            glides ? glide_.at(minus(frame, block_.time.startSamples())) : SideLevels{1, 1};
        for (std::int64_t c = 0; c < channels; ++c) {
            const double gain = fade * (c == 1 ? level.right : level.left);
            to[i * channels + c] += static_cast<float>(static_cast<double>(scratch[i * channels + c]) * gain);
        }
    }
}

}  // namespace marnoth
