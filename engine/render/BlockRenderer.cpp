#include "engine/render/BlockRenderer.h"

#include <algorithm>

#include "engine/render/NoteStage.h"
#include "engine/render/PadsOfNote.h"
#include "engine/render/PageStages.h"
#include "platform/system/FlagScope.h"
#include "platform/system/Overflow.h"

namespace marnoth {
namespace {

constexpr std::uint32_t kFadeInMilliseconds = 1;
constexpr std::uint32_t kFadeOutMilliseconds = 20;
constexpr std::uint32_t kMillisecondsPerSecond = 1000;

std::int32_t countOf(const PadFlags& flags) {
    return static_cast<std::int32_t>(
        std::count_if(flags.begin(), flags.end(), [](std::uint32_t flag) { return flag != 0; }));
}

}  // namespace

void Block::advance(VoiceState& voice) const {
    if (steady) {
        voice.moveTo(plus(time.startTicks(), time.lengthTicks()));
    } else {
        voice.advance(time.lengthTicks());
    }
}

void BlockRenderer::render(const Model& model, const Job& job) {
    const float* const input = job.input.silent ? nullptr : GetBufferData(job.input);
    const std::int32_t frames = job.input.frames;
    // Also where a grain that can't be played raises an exception.
    const FlagScope inBlock(inBlock_);
    BlockPins pins(job.pins, pins_, job.format);
    Block block{model, time_, pins, job.format, fades_};
    placeBlock(block, job.position, frames);
    pins.clearMix(frames);
    pins.passInput(input, frames);
    runStages(block, job.notes);
    renderer_.cuts().play(pins, frames, job.format.nChannels);
    levels_.endBlock(frames);
    pins.sumIntoMix(frames);
    playing_.runningPosition = plus(playing_.runningPosition, frames);
    format_ = job.format;
    end_ = plus(time_.startSamples(), frames);
    notes_ = job.notes;
}

void BlockRenderer::cutNotes(const Block& block, const NoteQueue& notes, double level) {
    PadsOfNote pads;
    for (const QueuedEvent& note : notes) {
        if (note.event.type != SynthEventType::note || !note.voice) continue;
        for (const TrackPlayInfo& entry : pads.find(block.model, note.event)) {
            if (!entry.track->oneShot || playing_.gate(entry.pad).active)
                renderer_.cut(block, entry, *note.voice, phase_, level);
        }
    }
}

void BlockRenderer::cutAll(const Block& block, double level) {
    if (notes_) cutNotes(block, *notes_, level);
    for (std::int32_t pad = 0; pad < kPads; ++pad) {
        const CGrooveTrack& track = block.model.pads[static_cast<std::size_t>(pad)];
        renderer_.cut(block, {PlayKind::pad, pad, &track, 0}, playing_.padVoice(pad), phase_, level);
    }
    for (std::int32_t bin = 0; bin < block.model.bin.size(); ++bin) cutBinFile(block, bin, level);
    renderer_.cut(block, {PlayKind::grainAudition, 0, &block.model.audition, 0}, playing_.auditionVoice,
                  phase_, level);
}

void BlockRenderer::cutBinFile(const Block& block, std::int32_t bin, double level) {
    if (!block.model.bin.has(bin)) return;
    renderer_.cut(block, {PlayKind::binAudition, 0, &block.model.bin[bin].track, 0}, playing_.binVoice(bin),
                  phase_, level);
}

void BlockRenderer::resetVoices(const Model& model) {
    cutInNextBlock(model, [this](const Block& block) { cutAll(block, 1); });
    forgetVoices();
    notes_ = nullptr;
    keys_.forget();
}

void BlockRenderer::stopBinFile(const Model& model, std::int32_t bin) {
    cutInNextBlock(model, [&](const Block& block) { cutBinFile(block, bin, 1); });
    playing_.binVoice(bin) = {};
}

void BlockRenderer::stopAllBinFiles(const Model& model) {
    for (std::int32_t bin = 0; bin < kBinFiles; ++bin) stopBinFile(model, bin);
}

void BlockRenderer::placeBlock(Block& block, std::int64_t position, std::int32_t frames) {
    if (playing_.runningPosition == -1) playing_.runningPosition = position;
    block.transportRuns = context_.IsTransportRunning() != 0;
    block.steady = steady_;
    // The graph's position may jump while the transport runs; music doesn't.
    time_.begin(block.transportRuns ? playing_.runningPosition : position, frames);
    if (steady_) placeSteadily(block);
    const std::int64_t middle = time_.toTicks(plus(position, frames / 2));
    block.projectKey = static_cast<std::int32_t>(context_.GetKeyAtTime(middle));
    block.positionSkew = std::max<std::int64_t>(minus(time_.startTicks(), time_.toTicks(position)), 0);
    block.activePads = countOf(playing_.padSounded);
}

void BlockRenderer::placeSteadily(Block& block) {
    levels_.beginBlock(block.model, playing_.padSounded, fades_.out);
    block.levels = &levels_;
    keys_.beginBlock(time_.startTicks(), plus(time_.startTicks(), time_.lengthTicks()));
    block.keys = &keys_;
}

void BlockRenderer::runStages(const Block& block, NoteQueue* notes) {
    playing_.padNoteSounded = {};
    NoteStage noteStage(block, playing_, phase_, renderer_);
    PageStages page(block, playing_, phase_, renderer_);
    // What begins may move what plays already: in the steady mode it does so from this frame on.
    if (block.steady && notes) noteStage.startNotes(*notes);
    if (block.steady) page.startPads();
    if (notes) noteStage.render(*notes, stopAll_);
    if (notes) stopAll_ = false;
    page.renderPads();
    page.renderBinAuditions();
    page.renderGrainAudition();
    for (std::size_t pad = 0; pad < playing_.padSounded.size(); ++pad)
        playing_.padSounded[pad] = playing_.padAuditionSounded[pad] | playing_.padNoteSounded[pad];
}

HRESULT BlockRenderer::createVoice(QueuedEvent& note) {
    note.voice = voices_.take();
    if (!note.voice) return E_OUTOFMEMORY;
    VoiceState& voice = *note.voice;
    voice.startPending = 1;
    // A note never reports its end: it goes when its lanes have run out.
    voice.finished = 1;
    const std::int64_t start = std::int64_t{note.event.time} * 65536;
    voice.startBoth(start);
    if (note.event.duration != kDurationOpen) {
        voice.gate.length = std::int64_t{note.event.duration} * 65536;
        voice.gate.end = start + voice.gate.length;
    }
    return S_OK;
}

bool BlockRenderer::releaseVoice(QueuedEvent& note, bool flush) {
    if (!note.voice) return true;
    const VoiceState& voice = *note.voice;
    const bool plays = voice.gate.position < voice.gate.end || voice.shot.position < voice.shot.end;
    if (!flush && plays) return false;
    for (PadGate& gate : playing_.padGates) {
        if (gate.owner == note.voice) gate.owner = nullptr;
    }
    voices_.give(note.voice);
    note.voice = nullptr;
    return true;
}

void BlockRenderer::startPad(std::int32_t pad) {
    playing_.padVoice(pad).requestStart();
    playing_.padVoice(pad).ignoreLength = 0;
}

void BlockRenderer::stopAllPads() {
    for (VoiceState& voice : playing_.padVoices) voice.stopRequest = 1;
    stopAll_ = true;
}

bool BlockRenderer::binFilePlays(std::int32_t bin) const {
    const VoiceState& voice = playing_.binVoices[static_cast<std::size_t>(bin)];
    return voice.startPending || voice.gate.length != 0;
}

void BlockRenderer::setSteady(bool on) {
    if (on == steady_) return;
    renderer_.cuts().setLength(on ? fades_.out : 0);
    levels_.forget();
    keys_.forget();
    steady_ = on;
}

void BlockRenderer::setRate(std::uint32_t sampleRate) {
    fades_.in = std::int64_t{sampleRate} * kFadeInMilliseconds / kMillisecondsPerSecond;
    fades_.out = std::int64_t{sampleRate} * kFadeOutMilliseconds / kMillisecondsPerSecond;
    renderer_.cuts().setLength(steady_ ? fades_.out : 0);
}

}  // namespace marnoth
