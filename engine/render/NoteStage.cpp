#include "engine/render/NoteStage.h"

#include <algorithm>

#include "platform/system/Overflow.h"

namespace marnoth {

void NoteStage::render(NoteQueue& notes, bool stopAll) {
    for (QueuedEvent& note : notes) {
        if (note.event.type == SynthEventType::note && note.voice) renderNote(note, stopAll);
    }
}

void NoteStage::startNotes(NoteQueue& notes) {
    notes_ = &notes;
    for (QueuedEvent& note : notes) {
        if (note.event.type != SynthEventType::note || !note.voice) continue;
        if (take(note.voice->startPending))
            startNote(*note.voice, note.event, pads_.find(block_.model, note.event));
    }
}

void NoteStage::renderNote(QueuedEvent& note, bool stopAll) {
    VoiceState& voice = *note.voice;
    SynthEvent& event = note.event;
    const PlayList playList = pads_.find(block_.model, event);
    if (take(voice.startPending)) startNote(voice, event, playList);
    const bool held = holdsGate(voice, playList);
    if (stopAll && block_.steady && event.duration != kDurationReleased) event.duration = kDurationOff;
    if (event.duration == kDurationOff) takeNoteOff(voice, event);
    const std::int64_t from = release(voice);
    endShotLane(voice, held, from);
    if (stopAll && block_.steady) cutShots(voice, playList);
    if (stopAll || (voice.releasing && voice.shot.position >= voice.shot.end)) {
        voice.shot.kill();
        event.duration = block_.steady ? kDurationReleased : kDurationOff;
    }
    renderer_.render(block_, playList, voice, playing_, phase_, &playing_.padNoteSounded);
    // From its note-off on, the gate lane has exactly one block; where sound is steady, as many as its fade
    // takes.
    if (voice.releasing && !block_.steady) voice.gate.kill();
    block_.advance(voice);
}

void NoteStage::startNote(VoiceState& voice, const SynthEvent& event, PlayList playList) {
    if (event.duration == kDurationOpen) {
        voice.startBoth(block_.time.startTicks());
    } else {
        moveLater(voice);
    }
    for (const TrackPlayInfo& entry : playList) {
        switchGate(playing_.gate(entry.pad), voice, entry);
        setPhase(entry.pad, *entry.track, voice);
    }
}

void NoteStage::moveLater(VoiceState& voice) {
    const std::int64_t ticks = block_.positionSkew;
    for (VoiceLane* lane : {&voice.gate, &voice.shot}) {
        lane->start = plus(lane->start, ticks);
        lane->position = plus(lane->position, ticks);
        lane->from = plus(lane->from, ticks);
    }
    voice.gate.end = plus(voice.gate.end, ticks);
}

void NoteStage::switchGate(PadGate& gate, const VoiceState& voice, const TrackPlayInfo& entry) {
    const CGrooveTrack& track = *entry.track;
    if (track.GetSize() == 0) {
        gate = {};
        return;
    }
    gate.previous = gate.active;
    if (!track.oneShot) return;
    if (track.looping && gate.previous) {
        // A second note switches a latched loop off; the owner fades.
        if (block_.steady) cutShotsOn(entry.pad, voice);
        gate.active = 0;
    } else {
        gate.active = 1;
        gate.owner = &voice;
    }
}

void NoteStage::setPhase(std::int32_t pad, const CGrooveTrack& track, const VoiceState& voice) {
    phase_.of(pad) = {};
    if (!track.synced) return;
    if (!block_.transportRuns && block_.activePads == 0) {
        phase_.setZero(pad, voice.gate.start);
        return;
    }
    if (block_.transportRuns) phase_.anchor = 0;
    phase_.join(pad);
}

/// Of a one-shot pad, whatever notes sound on it.
void NoteStage::cutShotsOn(std::int32_t pad, const VoiceState& starting) {
    PadsOfNote others;
    for (const QueuedEvent& note : *notes_) {
        if (note.event.type != SynthEventType::note || !note.voice || note.voice == &starting) continue;
        for (const TrackPlayInfo& entry : others.find(block_.model, note.event))
            if (entry.pad == pad) renderer_.cut(block_, entry, *note.voice, phase_);
    }
}

void NoteStage::cutShots(const VoiceState& voice, PlayList playList) {
    for (const TrackPlayInfo& entry : playList) {
        const PadGate& gate = playing_.gate(entry.pad);
        if (entry.track->oneShot && gate.active) renderer_.cut(block_, entry, voice, phase_);
    }
}

bool NoteStage::holdsGate(const VoiceState& voice, PlayList playList) {
    for (const TrackPlayInfo& entry : playList) {
        const PadGate& gate = playing_.gate(entry.pad);
        if (entry.track->oneShot && gate.active && gate.owner == &voice) return true;
    }
    return false;
}

void NoteStage::takeNoteOff(VoiceState& voice, SynthEvent& event) {
    if (voice.gate.position == 0 && !block_.steady) {
        voice.shot.kill();
        return;
    }
    voice.releasing = 1;
    voice.gate.end = block_.fadeOutEnd();
    voice.gate.length = minus(voice.gate.end, voice.gate.start);
    event.duration = kDurationReleased;
}

std::int64_t NoteStage::release(VoiceState& voice) {
    const BlockTime& time = block_.time;
    std::int64_t from = time.startSamples();
    // A length that is known ends anywhere in a block, which a steady sound may not wait for the end of.
    const bool ends = voice.gate.end >= 1 && voice.gate.end < plus(time.startTicks(), time.lengthTicks());
    if (block_.steady && ends && !voice.releasing) {
        voice.releasing = 1;
        from = std::max(from, block_.time.firstFrameFrom(voice.gate.end));
    }
    if (voice.gate.ranOut()) {
        voice.releasing = 1;
        voice.gate.kill();
    }
    return from;
}

void NoteStage::endShotLane(VoiceState& voice, bool held, std::int64_t from) {
    VoiceLane& shot = voice.shot;
    const bool told = (!voice.releasing || held) && voice.stopRequest;
    const bool released = voice.releasing && !held && (shot.end == kOpenEnded || voice.stopRequest);
    if (!told && !released) return;
    voice.releasing = 1;
    voice.stopRequest = 0;
    shot.end = block_.fadeOutEndFrom(from);
    shot.length = minus(shot.end, shot.start);
    if (shot.end < shot.position && !block_.steady) {
        shot.end = plus(shot.end, block_.time.lengthTicks());
        shot.length = plus(shot.length, block_.time.lengthTicks());
    }
}

}  // namespace marnoth
