#include <algorithm>

#include "dsp/MixKernels.h"
#include "engine/GrooveSampler.h"
#include "platform/system/Overflow.h"

namespace marnoth {
namespace {

constexpr std::int32_t kSemitonesPerOctave = 12;

/// Whether a voice may sound a one-shot pad.
enum class GatePass { shut, open, fading };

GatePass passGate(PadGate& gate, const VoiceState& voice) {
    if (gate.active || voice.fromPage) return GatePass::open;
    if (gate.owner != &voice) return GatePass::shut;
    const bool justSwitchedOff = gate.previous == 1;
    gate.previous = 0;
    return justSwitchedOff ? GatePass::fading : GatePass::shut;
}

/// The voice has nothing left to play, and asks for its own end; once.
void askForEnd(VoiceState& voice) {
    if (voice.finished) return;
    voice.stopRequest = 1;
    voice.finished = 1;
}

/// The part before the point, kept far inside the 32-bit range.
std::int32_t wholeSemitones(float semitones) {
    return static_cast<std::int32_t>(std::clamp(semitones, -1e9f, 1e9f));
}

}  // namespace

/// One entry of the play list in this block.
struct CGrooveSampler::PadBlock {
    const TrackPlayInfo& entry;
    const CGrooveTrack& track;
    float* dest;          ///< the pin's memory
    std::int32_t frames;  ///< of the pin
    std::int64_t from;    ///< samples; the voice's start
    std::int64_t end;     ///< samples; the voice's end
    bool fadeNow;         ///< the gate has just been switched off: this block is the last
};

/// A stream event in samples.
struct CGrooveSampler::ClipTimes {
    std::int64_t start;
    std::int64_t end;
    std::int64_t clipStart;
    std::int64_t clipEnd;
};

/// A stretch of one grain, placed in the block.
struct CGrooveSampler::GrainRun {
    const CGrooveEvent* grain;
    std::int32_t semitones;
    std::int64_t targetFrames;  ///< that the whole grain fills
    std::int32_t pos;           ///< frame of the grain at which the run begins
    std::int64_t destFrame;     ///< frame of the block at which it goes
    std::int64_t count;         ///< frames

    GrainRun part(std::int64_t first, std::int64_t frames) const {
        GrainRun run = *this;
        run.pos = static_cast<std::int32_t>(pos + first);
        run.destFrame += first;
        run.count = frames;
        return run;
    }

    void render(float* dest, const WAVEFORMATEX& format, const CGrooveTrack& track) const {
        const auto frames = static_cast<std::int32_t>(count);
        if (semitones == 0) {
            grain->Render(pos, destFrame, frames, targetFrames, dest, &format, track.volume, track.pan);
        } else {
            grain->RenderShifted(pos, destFrame, frames, targetFrames, dest, &format, track.volume, track.pan,
                                 semitones);
        }
    }
};

/// How the tracks of one voice stand.
struct CGrooveSampler::VoiceTally {
    std::int32_t ended = 0;    ///< played out
    std::int32_t lasting = 0;  ///< end with the note, or loop
    std::int32_t shots = 0;    ///< play once
};

void CGrooveSampler::RenderVoice(const BlockContext& block, VoiceState& voice, std::uint32_t* soundedFlags) {
    VoiceTally all;
    for (const TrackPlayInfo& entry : playList) {
        if (entry.track->GetSize() == 0) continue;
        const VoiceTally one = renderEntry(block, voice, entry, soundedFlags);
        all.ended += one.ended;
        all.lasting += one.lasting;
        all.shots += one.shots;
    }
    if (all.shots == all.ended && all.lasting == 0) askForEnd(voice);
}

CGrooveSampler::VoiceTally CGrooveSampler::renderEntry(const BlockContext& block, VoiceState& voice,
                                                       const TrackPlayInfo& entry,
                                                       std::uint32_t* soundedFlags) {
    CGrooveTrack& track = *entry.track;
    const VoiceLane& lane = track.oneShot ? voice.shot : voice.gate;
    const bool gated = track.oneShot && entry.kind == PlayKind::pad;
    const GatePass pass = gated ? passGate(padGates[entry.pad], voice) : GatePass::open;
    if (pass == GatePass::shut) return {};
    PinBuffer* pin = choosePin(track, block);
    float* dest = pin ? GetBufferData(*pin) : nullptr;
    if (!dest) return {};

    const PadBlock pad{
        entry, track, dest, pin->frames, toSamples(lane.from), toSamples(lane.end), pass == GatePass::fading};
    const std::int32_t selected = selectForBlock(voice, pad);
    VoiceTally tally;
    ++(!track.oneShot || track.looping ? tally.lasting : tally.shots);
    if (selected == -1) {
        tally.ended = 1;
        return tally;
    }
    if (entry.kind == PlayKind::pad && soundedFlags && !silencedBySolo(track)) soundedFlags[entry.pad] = 1;
    // Counting from its own start serves exactly one selection.
    track.phaseOwner = 0;
    if (!track.mute) renderSelected(pad);
    return tally;
}

PinBuffer* CGrooveSampler::choosePin(const CGrooveTrack& track, const BlockContext& block) const {
    const std::uint32_t channel = track.output - 1;
    if (channel < padPinIds.size() && padPinIds[channel] != kNoPin) {
        for (std::int32_t i = 0; i < block.pinCount; ++i) {
            if (block.pins[i].pinId == padPinIds[channel]) return &block.pins[i];
        }
    }
    return block.mixIndex >= 0 ? &block.pins[block.mixIndex] : nullptr;
}

std::int64_t CGrooveSampler::toSamples(std::int64_t ticks16) const {
    return ticks16 == kOpenEnded ? kOpenEnded : context().TicksToSamples(ticks16);
}

std::int32_t CGrooveSampler::selectForBlock(VoiceState& voice, const PadBlock& pad) {
    const std::int64_t blockEnd = plus(blockStart, pad.frames);
    if (pad.track.synced) {
        return SelectGrains(*pad.entry.track, context().SamplesToTicks(blockStart),
                            context().SamplesToTicks(blockEnd), voice);
    }
    voice.sampleFrom = pad.from;
    voice.sampleEnd = pad.end;
    voice.sampleLength = minus(pad.end, pad.from);
    return SelectGrains(*pad.entry.track, blockStart, blockEnd, voice);
}

void CGrooveSampler::renderSelected(const PadBlock& pad) {
    for (const StreamEventInfo& event : streamEvents) RenderStreamEvent(event, pad);
}

void CGrooveSampler::RenderStreamEvent(const StreamEventInfo& event, const PadBlock& pad) {
    const ClipTimes clip = timesInSamples(event, pad.track);
    const GrainRun run = placeRun(event, clip, pad);
    // Times are rounded each for itself, and the tempo may just have changed: what doesn't fit waits a block.
    if (run.count < 0 || run.count > pad.frames) return;
    if (run.destFrame < 0 || run.destFrame > pad.frames - run.count) return;

    const std::int64_t lastBlockFade =
        plus(blockStart, std::max<std::int64_t>(pad.frames - fadeOutFrames, 0));
    const std::int64_t fadeOutStart = pad.fadeNow ? lastBlockFade : minus(pad.end, fadeOutFrames);
    if (pad.from < clip.clipEnd && plus(pad.from, fadeInFrames) > clip.clipStart) {
        renderFadeIn(run, clip, pad);
    } else if (fadeOutStart < clip.clipEnd && pad.end > clip.clipStart) {
        renderFadeOut(run, clip, pad, fadeOutStart);
    } else {
        run.render(pad.dest, inputFormat, pad.track);
    }
}

CGrooveSampler::GrainRun CGrooveSampler::placeRun(const StreamEventInfo& event, const ClipTimes& clip,
                                                  const PadBlock& pad) const {
    const auto own = static_cast<float>(event.grain->transpose) + static_cast<float>(keyOffset(pad.track));
    GrainRun run{};
    run.grain = event.grain;
    run.semitones = static_cast<std::int32_t>(std::int64_t{wholeSemitones(own)} + pad.entry.semitones);
    run.targetFrames = minus(clip.end, clip.start);
    run.pos = static_cast<std::int32_t>(minus(clip.clipStart, clip.start));
    run.destFrame = minus(clip.clipStart, blockStart);
    run.count = minus(clip.clipEnd, clip.clipStart);
    return run;
}

CGrooveSampler::ClipTimes CGrooveSampler::timesInSamples(const StreamEventInfo& event,
                                                         const CGrooveTrack& track) const {
    if (!track.synced) return {event.start, event.end, event.clipStart, event.clipEnd};
    CPziSynthContext& time = context();
    return {time.TicksToSamples(event.start), time.TicksToSamples(event.end),
            time.TicksToSamples(event.clipStart), time.TicksToSamples(event.clipEnd)};
}

std::int32_t CGrooveSampler::keyOffset(const CGrooveTrack& track) const {
    if (!track.followKey || projectKey == kNoKey || track.rootNote == kNoKey) return 0;
    // The short way round: -6 to 5 for keys of one octave.
    std::int64_t offset = std::int64_t{projectKey} - track.rootNote;
    if (offset > 5) offset -= kSemitonesPerOctave;
    if (offset < -6) offset += kSemitonesPerOctave;
    return static_cast<std::int32_t>(offset);
}

void CGrooveSampler::renderFadeIn(const GrainRun& run, const ClipTimes& clip, const PadBlock& pad) {
    const std::int64_t first = std::max(pad.from, clip.clipStart);
    const std::int64_t last = std::min(plus(pad.from, fadeInFrames), clip.clipEnd);
    const std::int64_t frames = std::min<std::int64_t>(last - first, pad.frames);
    if (frames <= 0) return;
    const double step = 1.0 / static_cast<double>(fadeInFrames);
    const double gain = static_cast<double>(first - pad.from) / static_cast<double>(fadeInFrames);
    renderFaded(run.part(0, frames), pad, first - blockStart, gain, step);
    if (run.count > frames) run.part(frames, run.count - frames).render(pad.dest, inputFormat, pad.track);
}

void CGrooveSampler::renderFadeOut(const GrainRun& run, const ClipTimes& clip, const PadBlock& pad,
                                   std::int64_t fadeOutStart) {
    const std::int64_t first = std::max(fadeOutStart, clip.clipStart);
    const std::int64_t last = std::min(pad.end, clip.clipEnd);
    const std::int64_t frames = std::min<std::int64_t>(last - first, pad.frames);
    if (frames <= 0) return;
    const std::int64_t plain = run.count - frames;
    if (plain > 0) run.part(0, plain).render(pad.dest, inputFormat, pad.track);
    // Down to 0 at the end of the clip even where the fade goes on into the next block.
    const double step = -1.0 / static_cast<double>(fadeOutFrames);
    const double gain = static_cast<double>(last - first) / static_cast<double>(fadeOutFrames);
    renderFaded(run.part(plain, frames), pad, first - blockStart, gain, step);
}

void CGrooveSampler::renderFaded(const GrainRun& run, const PadBlock& pad, std::int64_t offset, double gain,
                                 double step) {
    const std::int64_t channels = inputFormat.nChannels;
    // Only the frames between the two places are used of the block that `scratch` stands for, so that the
    // length of a block has no bound, only that of a fade.
    const std::int64_t first = std::min(offset, run.destFrame);
    const std::int64_t span = std::max(offset, run.destFrame) + run.count - first;
    if (channels < 1 || span > kScratchValues / channels) return;
    std::fill_n(scratch.get(), span * channels, 0.0f);
    GrainRun inScratch = run;
    inScratch.destFrame -= first;
    inScratch.render(scratch.get(), inputFormat, pad.track);

    MixArgs args;
    args.dest = pad.dest + offset * channels;
    args.src = scratch.get() + (offset - first) * channels;
    args.count = static_cast<std::int32_t>(run.count);
    args.gainL = args.gainR = gain;
    args.stepL = args.stepR = step;
    args.sampleBytes = sizeof(float);
    const auto layout = static_cast<std::uint32_t>(channels);
    GetMixKernel(32, layout, layout, 0, 1, 0)(&args);
}

}  // namespace marnoth
