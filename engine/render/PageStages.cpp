#include "engine/render/PageStages.h"

#include "platform/system/Overflow.h"

namespace marnoth {

void PageStages::startPads() {
    for (std::int32_t pad = 0; pad < kPads; ++pad) {
        const CGrooveTrack& track = block_.model.pads[static_cast<std::size_t>(pad)];
        if (track.GetSize() > 0 && take(playing_.padVoice(pad).startPending)) pressPad(pad, track);
    }
}

void PageStages::renderPads() {
    for (std::int32_t pad = 0; pad < kPads; ++pad) {
        const CGrooveTrack& track = block_.model.pads[static_cast<std::size_t>(pad)];
        if (track.GetSize() > 0) {
            renderPad(pad, track);
        } else {
            playing_.padAuditionSounded[static_cast<std::size_t>(pad)] = 0;
        }
    }
}

void PageStages::renderPad(std::int32_t pad, const CGrooveTrack& track) {
    VoiceState& voice = playing_.padVoice(pad);
    if (take(voice.startPending)) pressPad(pad, track);
    if (take(voice.stopRequest)) takeStopRequest(voice);
    playing_.padAuditionSounded[static_cast<std::size_t>(pad)] = 0;
    if (voice.gate.ranOut()) voice.endBoth();
    if (voice.gate.length != 0) play(voice, {PlayKind::pad, pad, &track, 0}, &playing_.padAuditionSounded);
}

void PageStages::pressPad(std::int32_t pad, const CGrooveTrack& track) {
    VoiceState& voice = playing_.padVoice(pad);
    phase_.of(pad).owner = 0;
    if (track.oneShot && playing_.padAuditionSounded[static_cast<std::size_t>(pad)] && track.looping) {
        // Nothing else ends a loop that ignores the release of the button.
        voice.stopRequest = 1;
        return;
    }
    voice.startBoth(block_.time.startTicks());
    setPhase(pad, track, voice);
}

void PageStages::setPhase(std::int32_t pad, const CGrooveTrack& track, VoiceState& voice) {
    const std::int64_t now = block_.time.startTicks();
    if (!track.synced || block_.transportRuns) {
        phase_.anchor = 0;
        if (track.synced) voice.gate.start = voice.shot.start = 0;
    } else if (block_.activePads > 0) {
        voice.gate.start = voice.shot.start = minus(now, phase_.anchor);
    } else {
        phase_.setZero(pad, now);
        return;
    }
    phase_.join(pad);
}

void PageStages::takeStopRequest(VoiceState& voice) {
    if (voice.gate.length != kOpenEnded && voice.shot.length != kOpenEnded) return;
    voice.gate.end = voice.shot.end = block_.fadeOutEnd();
    voice.gate.length = voice.shot.length = minus(voice.gate.end, voice.gate.start);
}

void PageStages::renderBinAuditions() {
    const LoopBin& bin = block_.model.bin;
    for (std::int32_t file = 0; file < bin.size(); ++file) {
        if (bin[file].track.GetSize() > 0) renderBinAudition(bin[file].track, playing_.binVoice(file));
    }
}

void PageStages::renderBinAudition(const CGrooveTrack& track, VoiceState& voice) {
    if (take(voice.startPending)) voice.startBoth(block_.time.startTicks());
    if (voice.gate.length != 0) play(voice, {PlayKind::binAudition, 0, &track, 0}, nullptr);
}

void PageStages::renderGrainAudition() {
    const CGrooveTrack& track = block_.model.audition;
    if (track.GetSize() == 0) return;
    VoiceState& voice = playing_.auditionVoice;
    if (take(voice.startPending)) {
        const std::int64_t now = block_.time.startTicks();
        const std::int64_t length = track.GetAt(0).lengthTicks;
        voice.startBoth(now);
        voice.gate.length = voice.shot.length = length;
        voice.gate.end = voice.shot.end = plus(length, now);
    }
    if (voice.gate.ranOut()) voice.endBoth();
    if (voice.gate.length != 0) play(voice, {PlayKind::grainAudition, 0, &track, 0}, nullptr);
}

void PageStages::play(VoiceState& voice, const TrackPlayInfo& entry, PadFlags* soundedFlags) {
    renderer_.render(block_, {&entry, 1}, voice, playing_, phase_, soundedFlags);
    block_.advance(voice);
}

}  // namespace marnoth
