#include <gtest/gtest.h>

#include "engine/VoiceRig.h"

namespace marnoth::test::voice_life_test {
namespace {

QueuedEvent noteAt(std::int32_t ticks, std::uint32_t duration) {
    QueuedEvent note;
    note.event.time = ticks;
    note.event.duration = duration;
    return note;
}

TEST(NoteVoice, SequencedNoteHasItsEndAndAnOpenShotLane) {
    VoiceRig rig;
    QueuedEvent note = noteAt(960, 480);
    ASSERT_EQ(rig.engine.CreateVoice(&note), S_OK);
    const VoiceState& voice = *note.voice;
    EXPECT_EQ(voice.startPending, 1u);
    EXPECT_EQ(voice.finished, 1u);
    EXPECT_EQ(voice.stopRequest + voice.releasing + voice.fromPage + voice.ignoreLength, 0u);
    for (const VoiceLane* lane : {&voice.gate, &voice.shot}) {
        EXPECT_EQ(lane->start, 62914560);
        EXPECT_EQ(lane->position, 62914560);
        EXPECT_EQ(lane->from, 62914560);
    }
    EXPECT_EQ(voice.gate.length, 31457280);
    EXPECT_EQ(voice.gate.end, 94371840);
    EXPECT_EQ(voice.shot.length, 0x7FFFFFFF0000);
    EXPECT_EQ(voice.shot.end, 0x7FFFFFFF0000);
    EXPECT_EQ(rig.engine.ReleaseVoice(&note, 1), S_OK);
}

TEST(NoteVoice, LiveNoteIsOpenOnBothLanes) {
    VoiceRig rig;
    QueuedEvent note = noteAt(5, kDurationOpen);
    ASSERT_EQ(rig.engine.CreateVoice(&note), S_OK);
    EXPECT_EQ(note.voice->gate.length, 0x7FFFFFFF0000);
    EXPECT_EQ(note.voice->gate.end, 0x7FFFFFFF0000);
    EXPECT_EQ(note.voice->shot.length, 0x7FFFFFFF0000);
    rig.engine.ReleaseVoice(&note, 1);
}

TEST(NoteVoice, TimesBeforeZeroAndTheLongestDurationAreKept) {
    VoiceRig rig;
    QueuedEvent note = noteAt(INT32_MIN, 0xFFFFFFFE);
    ASSERT_EQ(rig.engine.CreateVoice(&note), S_OK);
    EXPECT_EQ(note.voice->gate.start, std::int64_t{INT32_MIN} * 65536);
    EXPECT_EQ(note.voice->gate.length, std::int64_t{0xFFFFFFFE} * 65536);
    rig.engine.ReleaseVoice(&note, 1);
}

TEST(NoteVoice, IsKeptWhileEitherLanePlays) {
    VoiceRig rig;
    QueuedEvent note = noteAt(0, 480);
    rig.engine.CreateVoice(&note);
    EXPECT_EQ(rig.engine.ReleaseVoice(&note, 0), 1);
    ASSERT_NE(note.voice, nullptr);
    note.voice->shot.end = 0;
    EXPECT_EQ(rig.engine.ReleaseVoice(&note, 0), 1);
    note.voice->gate.position = note.voice->gate.end;
    EXPECT_EQ(rig.engine.ReleaseVoice(&note, 0), 0);
    EXPECT_EQ(note.voice, nullptr);
}

TEST(NoteVoice, FlushFreesAVoiceThatPlays) {
    VoiceRig rig;
    QueuedEvent note = noteAt(0, 480);
    rig.engine.CreateVoice(&note);
    EXPECT_EQ(rig.engine.ReleaseVoice(&note, 1), 0);
    EXPECT_EQ(note.voice, nullptr);
}

TEST(NoteVoice, NoteWithoutAVoiceMayGo) {
    VoiceRig rig;
    QueuedEvent note = noteAt(0, 0);
    EXPECT_EQ(rig.engine.ReleaseVoice(&note, 0), 0);
}

TEST(NoteVoice, OnlyNotesAreKept) {
    VoiceRig rig;
    SynthEvent event;
    EXPECT_EQ(rig.engine.IsIgnoredEvent(&event), S_OK);
    for (const std::uint32_t type : {1u, 2u, 3u, 4u, 5u, 11u}) {
        event.type = static_cast<SynthEventType>(type);
        EXPECT_EQ(rig.engine.IsIgnoredEvent(&event), S_FALSE);
    }
}

TEST(NoteVoice, OtherEventsInTheQueueMakeNoSound) {
    VoiceRig rig;
    rig.laySound(0, constant(1000));
    QueuedEvent controller;
    controller.event.type = SynthEventType::controller;
    controller.event.note = 60;
    controller.event.velocity = 100;
    controller.event.duration = kDurationOpen;
    ASSERT_EQ(rig.engine.CreateVoice(&controller), S_OK);
    rig.notes.push_back(controller);
    rig.block(512);
    EXPECT_EQ(peak(rig.audio[0]), 0);
    EXPECT_EQ(rig.notes.front().voice->startPending, 1u);
}

TEST(NoteVoice, GateForgetsAReleasedVoice) {
    VoiceRig rig;
    rig.laySound(0, constant(100000));
    rig.engine.SetPadLooping(0, 1);
    rig.noteOn(60);
    rig.cycle(512);
    rig.engine.ReleaseVoice(&rig.notes.front(), 1);
    rig.notes.clear();
    // The next note switches the latched loop off. Were the old owner remembered, a new voice at its address
    // could pass the gate.
    for (int i = 0; i < 8; ++i) rig.noteOn(60);
    while (rig.notes.size() > 1) {
        rig.engine.ReleaseVoice(&rig.notes.back(), 1);
        rig.notes.pop_back();
    }
    rig.cycle(512);
    EXPECT_EQ(peak(rig.audio[0]), 0);
}

}  // namespace
}  // namespace marnoth::test::voice_life_test
