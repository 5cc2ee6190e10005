#include "engine/GrooveSampler.h"
#include "platform/system/Overflow.h"
#include "seam/Limits.h"

namespace marnoth {
namespace {

void startBoth(VoiceState& voice, std::int64_t ticks) {
    for (VoiceLane* lane : {&voice.gate, &voice.shot}) {
        lane->start = lane->from = lane->position = ticks;
        lane->openEnd();
    }
}

void moveLater(VoiceState& voice, std::int64_t ticks) {
    for (VoiceLane* lane : {&voice.gate, &voice.shot}) {
        lane->start = plus(lane->start, ticks);
        lane->position = plus(lane->position, ticks);
        lane->from = plus(lane->from, ticks);
    }
    voice.gate.end = plus(voice.gate.end, ticks);
}

void endBoth(VoiceState& voice) {
    voice.gate.kill();
    voice.shot.kill();
}

void advance(VoiceState& voice, std::int64_t ticks) {
    voice.gate.position = plus(voice.gate.position, ticks);
    voice.shot.position = plus(voice.shot.position, ticks);
}

/// The lane's end is known and reached. An end of 0 is that of a dead lane.
bool ranOut(const VoiceLane& lane) {
    return lane.position >= lane.end && lane.end >= 1;
}

/// Reads the request and takes it away.
bool take(std::uint32_t& request) {
    const bool asked = request != 0;
    request = 0;
    return asked;
}

}  // namespace

std::int64_t CGrooveSampler::fadeOutEnd() const {
    return context().SamplesToTicks(plus(fadeOutFrames, blockStart));
}

void CGrooveSampler::RenderNotes(NoteQueue& notes, const BlockContext& block) {
    for (QueuedEvent& note : notes) {
        if (note.event.type == SynthEventType::note && note.voice) renderNote(note, block);
    }
    stopAll = 0;
}

void CGrooveSampler::renderNote(QueuedEvent& note, const BlockContext& block) {
    VoiceState& voice = *note.voice;
    SynthEvent& event = note.event;
    keyMap.FindPads(playList, event.note, event.channel, event.velocity);
    if (take(voice.startPending)) startNote(voice, event, block);
    const bool held = holdsGate(voice);
    if (event.duration == kDurationOff) takeNoteOff(voice, event);
    if (ranOut(voice.gate)) {
        voice.releasing = 1;
        voice.gate.kill();
    }
    endShotLane(voice, event, held, block);
    RenderVoice(block, voice, padNoteSounded.data());
    // From its note-off on, the gate lane has exactly one block.
    if (voice.releasing) voice.gate.kill();
    advance(voice, block.lengthTicks);
}

void CGrooveSampler::startNote(VoiceState& voice, const SynthEvent& event, const BlockContext& block) {
    if (event.duration == kDurationOpen) {
        startBoth(voice, block.startTicks);
    } else {
        moveLater(voice, positionSkew);
    }
    for (const TrackPlayInfo& entry : playList) {
        switchGate(padGates[entry.pad], voice, *entry.track);
        setNotePhase(*entry.track, voice, block);
    }
}

void CGrooveSampler::switchGate(PadGate& gate, VoiceState& voice, const CGrooveTrack& track) {
    if (track.GetSize() == 0) {
        gate = {};
        return;
    }
    gate.previous = gate.active;
    if (!track.oneShot) return;
    if (track.looping && gate.previous) {
        // A second note switches a latched loop off; the owner fades.
        gate.active = 0;
    } else {
        gate.active = 1;
        gate.owner = &voice;
    }
}

void CGrooveSampler::setNotePhase(CGrooveTrack& track, const VoiceState& voice, const BlockContext& block) {
    track.phaseOwner = 0;
    track.phaseOrigin = 0;
    if (!track.synced) return;
    if (context().IsTransportRunning()) {
        phaseAnchor = 0;
    } else if (block.activePads == 0) {
        track.phaseOwner = 1;
        phaseAnchor = voice.gate.start;
    }
    track.phaseOrigin = phaseAnchor;
}

bool CGrooveSampler::holdsGate(const VoiceState& voice) const {
    for (const TrackPlayInfo& entry : playList) {
        const PadGate& gate = padGates[entry.pad];
        if (entry.track->oneShot && gate.active && gate.owner == &voice) return true;
    }
    return false;
}

void CGrooveSampler::takeNoteOff(VoiceState& voice, SynthEvent& event) {
    if (voice.gate.position == 0) {
        voice.shot.kill();
        return;
    }
    voice.releasing = 1;
    voice.gate.end = fadeOutEnd();
    voice.gate.length = minus(voice.gate.end, voice.gate.start);
    event.duration = kDurationReleased;
}

void CGrooveSampler::endShotLane(VoiceState& voice, SynthEvent& event, bool held, const BlockContext& block) {
    VoiceLane& shot = voice.shot;
    const bool told = (!voice.releasing || held) && voice.stopRequest;
    const bool released = voice.releasing && !held && (shot.end == kOpenEnded || voice.stopRequest);
    if (told || released) {
        voice.releasing = 1;
        voice.stopRequest = 0;
        shot.end = fadeOutEnd();
        shot.length = minus(shot.end, shot.start);
        if (shot.end < shot.position) {
            shot.end = plus(shot.end, block.lengthTicks);
            shot.length = plus(shot.length, block.lengthTicks);
        }
    }
    if (stopAll || (voice.releasing && shot.position >= shot.end)) {
        shot.kill();
        event.duration = kDurationOff;
    }
}

void CGrooveSampler::RenderPadAuditions(const BlockContext& block) {
    for (std::int32_t pad = 0; pad < kPads; ++pad) {
        if (pads[pad]->GetSize() > 0) {
            renderPadAudition(pad, block);
        } else {
            padAuditionSounded[pad] = 0;
        }
    }
}

void CGrooveSampler::renderPadAudition(std::int32_t pad, const BlockContext& block) {
    VoiceState& voice = padVoices[pad];
    if (take(voice.startPending)) pressPad(pad, block);
    if (take(voice.stopRequest)) takeStopRequest(voice);
    padAuditionSounded[pad] = 0;
    if (ranOut(voice.gate)) endBoth(voice);
    if (voice.gate.length != 0) {
        playAlone(block, voice, PlayKind::pad, pad, *pads[pad], padAuditionSounded.data());
    }
}

void CGrooveSampler::pressPad(std::int32_t pad, const BlockContext& block) {
    CGrooveTrack& track = *pads[pad];
    VoiceState& voice = padVoices[pad];
    track.phaseOwner = 0;
    if (track.oneShot && padAuditionSounded[pad] && track.looping) {
        // Nothing else ends a loop that ignores the release of the button.
        voice.stopRequest = 1;
        return;
    }
    startBoth(voice, block.startTicks);
    setPressPhase(track, voice, block);
}

void CGrooveSampler::setPressPhase(CGrooveTrack& track, VoiceState& voice, const BlockContext& block) {
    if (!track.synced || context().IsTransportRunning()) {
        phaseAnchor = 0;
        if (track.synced) voice.gate.start = voice.shot.start = 0;
    } else if (block.activePads > 0) {
        voice.gate.start = voice.shot.start = minus(block.startTicks, phaseAnchor);
    } else {
        track.phaseOwner = 1;
        phaseAnchor = block.startTicks;
    }
    track.phaseOrigin = phaseAnchor;
}

void CGrooveSampler::takeStopRequest(VoiceState& voice) {
    if (voice.gate.length != kOpenEnded && voice.shot.length != kOpenEnded) return;
    voice.gate.end = voice.shot.end = fadeOutEnd();
    voice.gate.length = voice.shot.length = minus(voice.gate.end, voice.gate.start);
}

void CGrooveSampler::RenderBinAuditions(const BlockContext& block) {
    for (std::int32_t bin = 0; bin < binFiles.GetSize(); ++bin) {
        if (binFiles[bin]->GetSize() > 0) renderBinAudition(bin, block);
    }
}

void CGrooveSampler::renderBinAudition(std::int32_t bin, const BlockContext& block) {
    VoiceState& voice = binVoices[bin];
    if (take(voice.startPending)) startBoth(voice, block.startTicks);
    if (voice.gate.length == 0) return;
    playAlone(block, voice, PlayKind::binAudition, 0, *binFiles[bin], nullptr);
}

void CGrooveSampler::RenderGrainAudition(const BlockContext& block) {
    if (auditionTrack.GetSize() == 0) return;
    VoiceState& voice = auditionVoice;
    if (take(voice.startPending)) {
        startBoth(voice, block.startTicks);
        const std::int64_t length = auditionTrack.GetAt(0).lengthTicks;
        voice.gate.length = voice.shot.length = length;
        voice.gate.end = voice.shot.end = plus(length, block.startTicks);
    }
    if (ranOut(voice.gate)) endBoth(voice);
    if (voice.gate.length == 0) return;
    playAlone(block, voice, PlayKind::grainAudition, 0, auditionTrack, nullptr);
}

void CGrooveSampler::playAlone(const BlockContext& block, VoiceState& voice, PlayKind kind, std::int32_t pad,
                               CGrooveTrack& track, std::uint32_t* soundedFlags) {
    playList.RemoveAll();
    playList.Add({kind, 0, pad, &track, 0, 1.0f});
    RenderVoice(block, voice, soundedFlags);
    advance(voice, block.lengthTicks);
}

}  // namespace marnoth
