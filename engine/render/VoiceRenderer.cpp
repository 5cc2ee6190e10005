#include "engine/render/VoiceRenderer.h"

#include <algorithm>

#include "dsp/MixKernels.h"
#include "engine/render/GrainRun.h"
#include "engine/render/Semitones.h"
#include "engine/render/SteadyPad.h"
#include "platform/system/Overflow.h"

namespace marnoth {
namespace {

/// Whether a voice may sound a one-shot pad.
enum class GatePass { shut, open, fading };

GatePass passGate(PadGate& gate, const VoiceState& voice) {
    if (gate.active || voice.fromPage) return GatePass::open;
    if (gate.owner != &voice) return GatePass::shut;
    const bool justSwitchedOff = gate.previous == 1;
    gate.previous = 0;
    return justSwitchedOff ? GatePass::fading : GatePass::shut;
}

/// The voice has nothing left to play, and asks for its own end; once. In the steady mode it ends with the
/// block, before anything can happen that would let it play on.
void askForEnd(VoiceState& voice, bool steady) {
    if (voice.finished) return;
    if (steady) return voice.endBoth();
    voice.stopRequest = 1;
    voice.finished = 1;
}

/// A stream event in samples.
struct ClipTimes {
    std::int64_t start;
    std::int64_t end;
    std::int64_t clipStart;
    std::int64_t clipEnd;
};

/// One pad of a voice in one block: where its sound goes, and between which fades.
class PadRender {
public:
    PadRender(const Block& block, const TrackPlayInfo& entry, const VoiceLane& lane, PinBuffer& pin,
              float* dest, bool fadeNow, RenderSpace& space)
        : block_(block),
          track_(*entry.track),
          entry_(entry),
          dest_(dest),
          frames_(pin.frames),
          from_(block.time.toSamplesOrOpen(lane.from)),
          end_(block.time.toSamplesOrOpen(lane.end)),
          fadeNow_(fadeNow),
          space_(space) {}

    /// Fills `events`; gives their count, or -1 when a track that doesn't loop has played out.
    std::int32_t select(StreamEvents& events, const VoiceState& voice, const PadPhase& phase) const {
        const std::int64_t start = block_.time.startSamples();
        const TimeRange samples{start, plus(start, frames_)};
        if (!track_.synced) {
            return selectGrains(events, track_, phase, {from_, end_, minus(end_, from_), from_},
                                voice.ignoreLength != 0, samples, block_.time);
        }
        const VoiceLane& lane = track_.oneShot ? voice.shot : voice.gate;
        const TimeRange ticks{block_.time.toTicks(samples.from), block_.time.toTicks(samples.to)};
        return selectGrains(events, track_, phase, {lane.start, lane.end, lane.length, lane.from},
                            voice.ignoreLength != 0, ticks, block_.time);
    }

    void render(const StreamEventInfo& event) const {
        const ClipTimes clip = timesInSamples(event);
        const GrainRun run = placeRun(event, clip);
        // Each time is rounded by itself, and the tempo may just have changed: what doesn't fit waits a
        // block.
        if (run.count < 0 || run.count > frames_) return;
        if (run.destFrame < 0 || run.destFrame > frames_ - run.count) return;

        if (from_ < clip.clipEnd && plus(from_, block_.fades.in) > clip.clipStart) {
            renderFadeIn(run, clip);
        } else if (fadeOutStart() < clip.clipEnd && end_ > clip.clipStart) {
            renderFadeOut(run, clip);
        } else {
            run.render(dest_, block_.format, track_, {&space_.gains});
        }
    }

private:
    ClipTimes timesInSamples(const StreamEventInfo& event) const {
        if (!track_.synced) return {event.start, event.end, event.clipStart, event.clipEnd};
        BlockTime& time = block_.time;
        return {time.toSamples(event.start), time.toSamples(event.end), time.toSamples(event.clipStart),
                time.toSamples(event.clipEnd)};
    }

    GrainRun placeRun(const StreamEventInfo& event, const ClipTimes& clip) const {
        GrainRun run;
        run.grain = event.grain;
        run.semitones = semitonesOf(*event.grain, track_, block_.projectKey, entry_.semitones);
        run.targetFrames = minus(clip.end, clip.start);
        run.pos = static_cast<std::int32_t>(minus(clip.clipStart, clip.start));
        run.destFrame = minus(clip.clipStart, block_.time.startSamples());
        run.count = minus(clip.clipEnd, clip.clipStart);
        return run;
    }

    std::int64_t fadeOutStart() const {
        if (!fadeNow_) return minus(end_, block_.fades.out);
        return plus(block_.time.startSamples(), std::max<std::int64_t>(frames_ - block_.fades.out, 0));
    }

    void renderFadeIn(const GrainRun& run, const ClipTimes& clip) const {
        const std::int64_t first = std::max(from_, clip.clipStart);
        const std::int64_t last = std::min(plus(from_, block_.fades.in), clip.clipEnd);
        const std::int64_t frames = std::min<std::int64_t>(last - first, frames_);
        if (frames <= 0) return;
        const double step = 1.0 / static_cast<double>(block_.fades.in);
        const double gain = static_cast<double>(first - from_) / static_cast<double>(block_.fades.in);
        renderFaded(run.part(0, frames), first - block_.time.startSamples(), gain, step);
        if (run.count > frames)
            run.part(frames, run.count - frames).render(dest_, block_.format, track_, {&space_.gains});
    }

    void renderFadeOut(const GrainRun& run, const ClipTimes& clip) const {
        const std::int64_t first = std::max(fadeOutStart(), clip.clipStart);
        const std::int64_t last = std::min(end_, clip.clipEnd);
        const std::int64_t frames = std::min<std::int64_t>(last - first, frames_);
        if (frames <= 0) return;
        const std::int64_t plain = run.count - frames;
        if (plain > 0) run.part(0, plain).render(dest_, block_.format, track_, {&space_.gains});
        // Down to 0 at the end of the clip even where the fade goes on into the next block.
        const double step = -1.0 / static_cast<double>(block_.fades.out);
        const double gain = static_cast<double>(last - first) / static_cast<double>(block_.fades.out);
        renderFaded(run.part(plain, frames), first - block_.time.startSamples(), gain, step);
    }

    /// Renders part of a run and adds it to the pad's pin at frame `offset`, under a gain that moves per
    /// frame.
    void renderFaded(const GrainRun& run, std::int64_t offset, double gain, double step) const {
        const std::int64_t channels = block_.format.nChannels;
        // Only the frames between the two places are used of the block that the buffer stands for, so that
        // the length of a block has no bound, only that of a fade.
        const std::int64_t first = std::min(offset, run.destFrame);
        const std::int64_t span = std::max(offset, run.destFrame) + run.count - first;
        if (channels < 1 || span > kScratchValues / channels) return;
        float* const scratch = space_.scratch.get();
        std::fill_n(scratch, span * channels, 0.0f);
        GrainRun inScratch = run;
        inScratch.destFrame -= first;
        inScratch.render(scratch, block_.format, track_, {&space_.gains});

        MixArgs args;
        args.dest = dest_ + offset * channels;
        args.src = scratch + (offset - first) * channels;
        args.count = static_cast<std::int32_t>(run.count);
        args.gainL = args.gainR = gain;
        args.stepL = args.stepR = step;
        args.sampleBytes = sizeof(float);
        const auto layout = static_cast<std::uint32_t>(channels);
        GetMixKernel(32, layout, layout, 0, 1, 0)(&args);
    }

    const Block& block_;
    const CGrooveTrack& track_;
    const TrackPlayInfo& entry_;
    float* const dest_;          ///< the pin's memory
    const std::int32_t frames_;  ///< of the pin
    const std::int64_t from_;    ///< samples; the voice's start
    const std::int64_t end_;     ///< samples; the voice's end
    const bool fadeNow_;         ///< the gate has just been switched off: this block is the last
    RenderSpace& space_;
};

/// How the tracks of one voice stand.
struct VoiceTally {
    std::int32_t ended = 0;    ///< played out
    std::int32_t lasting = 0;  ///< end with the note, or loop
    std::int32_t shots = 0;    ///< play once
};

}  // namespace

/// One voice in one block.
class VoiceRenderer::Pass {
public:
    Pass(VoiceRenderer& owner, const Block& block, VoiceState& voice, PlayState& playing, SyncPhase& phase,
         PadFlags* soundedFlags)
        : owner_(owner),
          block_(block),
          voice_(voice),
          playing_(playing),
          phase_(phase),
          soundedFlags_(soundedFlags) {}

    void play(const TrackPlayInfo& entry) {
        if (block_.steady) return playSteadily(entry);
        const CGrooveTrack& track = *entry.track;
        const bool gated = track.oneShot && entry.kind == PlayKind::pad;
        const GatePass pass = gated ? passGate(playing_.gate(entry.pad), voice_) : GatePass::open;
        if (pass == GatePass::shut) return;
        PinBuffer* const pin = block_.pins.choose(track.output);
        float* const dest = pin ? GetBufferData(*pin) : nullptr;
        if (!dest) return;

        const VoiceLane& lane = track.oneShot ? voice_.shot : voice_.gate;
        const PadRender pad(block_, entry, lane, *pin, dest, pass == GatePass::fading, owner_.space_);
        const std::int32_t selected = select(pad, entry);
        ++(!track.oneShot || track.looping ? tally_.lasting : tally_.shots);
        if (selected == -1) ++tally_.ended;
        if (selected < 1 || track.mute) return;
        for (const StreamEventInfo& event : owner_.space_.events) pad.render(event);
    }

    /// Every one-shot track of the voice has played out, and none lasts.
    bool hasEnded() const { return tally_.shots == tally_.ended && tally_.lasting == 0; }

private:
    void playSteadily(const TrackPlayInfo& entry) {
        const CGrooveTrack& track = *entry.track;
        const bool gated = track.oneShot && entry.kind == PlayKind::pad;
        if (gated && passGate(playing_.gate(entry.pad), voice_) != GatePass::open) return;
        PinBuffer* const pin = block_.pins.choose(track.output);
        float* const dest = pin ? GetBufferData(*pin) : nullptr;
        if (!dest) return;

        const bool isPad = entry.kind == PlayKind::pad;
        const bool silencedBySolo = block_.model.anySolo && !track.solo;
        const PadPhase phase = isPad ? phase_.of(entry.pad) : PadPhase{};
        const SteadyPad pad(block_, entry, voice_, phase, owner_.space_);
        const std::int64_t first = block_.time.startSamples();
        const TimeRange frames{first, plus(first, pin->frames)};
        ++(!track.oneShot || track.looping ? tally_.lasting : tally_.shots);
        if (!silencedBySolo && pad.hasPlayedOutAt(frames.to)) ++tally_.ended;
        if (isPad && soundedFlags_ && !silencedBySolo && pad.soundsAt(frames.to - 1))
            (*soundedFlags_)[static_cast<std::size_t>(entry.pad)] = 1;
        if (isPad ? block_.levels->of(entry.pad).isHeard() : !track.mute && !silencedBySolo)
            pad.render(frames, dest);
    }

    /// The count of grains in the list of the block's events, -1 for a track that has played out. A muted pad
    /// counts as sounding.
    std::int32_t select(const PadRender& pad, const TrackPlayInfo& entry) {
        const bool isPad = entry.kind == PlayKind::pad;
        const bool silencedBySolo = block_.model.anySolo && !entry.track->solo;
        const PadPhase origin = isPad ? phase_.of(entry.pad) : PadPhase{};
        const std::int32_t selected = silencedBySolo ? 0 : pad.select(owner_.space_.events, voice_, origin);
        if (!isPad || selected == -1) return selected;
        if (soundedFlags_ && !silencedBySolo) (*soundedFlags_)[static_cast<std::size_t>(entry.pad)] = 1;
        // Counting from its own start serves exactly one selection.
        phase_.of(entry.pad).owner = 0;
        return selected;
    }

    VoiceRenderer& owner_;
    const Block& block_;
    VoiceState& voice_;
    PlayState& playing_;
    SyncPhase& phase_;
    PadFlags* const soundedFlags_;
    VoiceTally tally_;
};

void VoiceRenderer::cut(const Block& block, const TrackPlayInfo& entry, const VoiceState& voice,
                        const SyncPhase& phase, double level) {
    const CGrooveTrack& track = *entry.track;
    const VoiceLane& lane = track.oneShot ? voice.shot : voice.gate;
    if (lane.length < 1 || voice.startPending || cuts_.length() == 0) return;
    if (entry.kind == PlayKind::pad && !block.levels->of(entry.pad).isHeard()) return;
    const PadPhase pad =
        entry.kind == PlayKind::pad ? phase.pads[static_cast<std::size_t>(entry.pad)] : PadPhase{};
    const std::int64_t first = block.time.startSamples();
    SteadyPad(block, entry, voice, pad, space_)
        .render({first, plus(first, cuts_.length())}, cuts_.clearedSpace());
    cuts_.add(track.output, block.format.nChannels, level);
}

void VoiceRenderer::render(const Block& block, std::span<const TrackPlayInfo> playList, VoiceState& voice,
                           PlayState& playing, SyncPhase& phase, PadFlags* soundedFlags) {
    Pass pass(*this, block, voice, playing, phase, soundedFlags);
    for (const TrackPlayInfo& entry : playList)
        if (entry.track->GetSize() > 0) pass.play(entry);
    if (pass.hasEnded()) askForEnd(voice, block.steady);
}

}  // namespace marnoth
