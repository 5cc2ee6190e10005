#include "host/SynthUnderTest.h"

namespace marnoth::test::event_drain_test {
namespace {

std::vector<int> keys(const std::vector<QueuedEvent>& notes) {
    std::vector<int> all;
    for (const QueuedEvent& event : notes) all.push_back(event.event.note);
    return all;
}

TEST(Drain, TakesWhatFallsIntoTheBlock) {
    SynthHost host;
    host.attach();
    // 960 ticks are 22050 samples.
    host.queue({note(0, 60), note(960, 61)});
    EXPECT_EQ(host.drain(22050), S_OK);
    EXPECT_EQ(keys(host.played()), std::vector{60});
    EXPECT_EQ(host.drain(1), S_OK);
    EXPECT_EQ(keys(host.played()), (std::vector{60, 61}));
    EXPECT_EQ(host.pzi.liveVoices, 2);
}

TEST(Drain, AnEventThatComesTooLateStaysUnplayedUntilTheTransportStarts) {
    SynthHost host;
    host.attach();
    host.synth.StartPlayback(0);
    host.drain(44100);
    host.queue({note(960, 60)});
    host.drain(44100);
    EXPECT_TRUE(host.played().empty());
    // It is still there: a drain of its own time finds it, as no block does.
    EXPECT_EQ(host.synth.DrainEvents(22050, 1), S_OK);
    EXPECT_EQ(host.played().size(), 1u);

    host.synth.StopPlayback();
    host.queue({note(960, 60)});
    host.synth.StartPlayback(0);
    host.drain(100000);
    EXPECT_TRUE(host.played().empty());
}

TEST(Drain, NoteOffAndNoteOnInOneBlockLeaveAReleasedNote) {
    SynthHost host;
    host.attach();
    host.queue({note(0, 60), noteOff(1, 60)});
    host.drain(512);
    ASSERT_EQ(host.played().size(), 1u);
    EXPECT_EQ(+host.played().front().event.duration, 0u);
    EXPECT_NE(host.played().front().voice, nullptr);
    EXPECT_EQ(host.pzi.liveVoices, 1);
}

TEST(Drain, ANoteOffEndsTheOldestNoteOfItsKeyOnAnyChannel) {
    SynthHost host;
    host.attach();
    host.queue({note(0, 60, kDurationOpen, 100, 1), note(1, 60, kDurationOpen, 100, 2)});
    host.drain(512);
    host.queue({noteOff(100, 60, 9)}, 4);
    host.drain(22050);
    ASSERT_EQ(host.played().size(), 2u);
    EXPECT_EQ(host.played()[0].event.channel, 1);
    EXPECT_EQ(+host.played()[0].event.duration, 0u);
    EXPECT_EQ(host.played()[1].event.channel, 2);
    EXPECT_EQ(+host.played()[1].event.duration, 0xFFFFFFFFu);
}

TEST(Drain, SeveralNoteOffsOfOneKeyCountAsOne) {
    SynthHost host;
    host.attach();
    host.queue({note(0, 60), note(0, 60), noteOff(1, 60), noteOff(2, 60)});
    host.drain(512);
    ASSERT_EQ(host.played().size(), 2u);
    EXPECT_EQ(+host.played()[0].event.duration, 0u);
    EXPECT_EQ(+host.played()[1].event.duration, 0xFFFFFFFFu);
}

TEST(Drain, ANoteOffWithoutANoteIsLost) {
    SynthHost host;
    host.attach();
    host.queue({noteOff(0, 60), note(0, 61)});
    host.drain(1);
    host.queue({note(10, 60)});
    host.drain(512);
    ASSERT_EQ(host.played().size(), 2u);
    EXPECT_EQ(+host.played()[0].event.duration, 0xFFFFFFFFu);
    EXPECT_EQ(+host.played()[1].event.duration, 0xFFFFFFFFu);
}

TEST(Drain, ANoteWithALengthIsNeverPaired) {
    SynthHost host;
    host.attach();
    host.queue({note(0, 60, 480), note(0, 60), noteOff(0, 60)});
    host.drain(1);
    ASSERT_EQ(host.played().size(), 2u);
    EXPECT_EQ(+host.played()[0].event.duration, 480u);
    EXPECT_EQ(+host.played()[1].event.duration, 0u);
}

TEST(Drain, ANoteClosedBeforeThatNoBlockTookUpGoesWithItsVoice) {
    SynthHost host;
    host.attach();
    host.queue({note(0, 60), noteOff(0, 60), note(0, 61), noteOff(0, 61)});
    host.drain(1);
    ASSERT_EQ(host.played().size(), 2u);
    // The engine takes up one of the two releases.
    host.synth.eventQueue().back().event.duration = kDurationReleased;
    host.drain(1);
    EXPECT_EQ(keys(host.played()), std::vector{61});
    EXPECT_EQ(host.pzi.liveVoices, 1);
}

TEST(Drain, AFailedVoiceEndsTheDrainAndLosesItsEvent) {
    SynthHost host;
    host.attach();
    host.pzi.onCreate = [](const QueuedEvent& event) {
        return event.event.note == 61 ? E_OUTOFMEMORY : S_OK;
    };
    host.queue({note(0, 60), note(0, 61), note(0, 62)});
    EXPECT_EQ(host.synth.DrainEvents(0, 1), E_OUTOFMEMORY);
    EXPECT_EQ(keys(host.played()), std::vector{60});
    EXPECT_EQ(host.synth.DrainEvents(0, 1), S_OK);
    EXPECT_EQ(keys(host.played()), (std::vector{60, 62}));
}

TEST(Drain, AVoiceRefusedWithoutFailureDropsTheEventAlone) {
    SynthHost host;
    host.attach();
    host.pzi.onCreate = [](const QueuedEvent& event) { return event.event.note == 61 ? S_FALSE : S_OK; };
    host.queue({note(0, 60), note(0, 61), note(0, 62)});
    EXPECT_EQ(host.drain(1), S_OK);
    EXPECT_EQ(keys(host.played()), (std::vector{60, 62}));
}

TEST(Drain, OnlyNotesGetAVoice) {
    SynthHost host;
    host.pzi.isIgnored = [](const SynthEvent&) { return S_OK; };
    host.attach();
    SynthEvent controller = note(0, 7);
    controller.type = SynthEventType::controller;
    host.queue({controller});
    host.drain(1);
    ASSERT_EQ(host.played().size(), 1u);
    EXPECT_EQ(host.pzi.liveVoices, 0);
    EXPECT_EQ(host.played().front().voice, nullptr);
}

TEST(Ports, MuteDropsAtTheDrainAndUnmuteLetsThrough) {
    SynthHost host;
    host.attach();
    host.queue({note(0, 60), note(960, 61)}, 2);
    host.notify(PortTransform::kMute, 2, 1, 1);
    host.drain(22050);
    EXPECT_TRUE(host.played().empty());
    host.notify(PortTransform::kMute, 2, 0, 1);
    host.drain(22050);
    EXPECT_EQ(keys(host.played()), std::vector{61});
}

TEST(Ports, MuteChangesOnlyTheBitsOfItsMask) {
    SynthHost host;
    host.attach();
    host.notify(PortTransform::kMute, 0, 3, 3);
    host.notify(PortTransform::kMute, 0, 0, 1);
    host.queue({note(0, 60)});
    host.drain(1);
    EXPECT_TRUE(host.played().empty());
    host.notify(PortTransform::kMute, 0, 0, 2);
    host.queue({note(10, 61)});
    host.drain(512);
    EXPECT_EQ(keys(host.played()), std::vector{61});
}

TEST(Ports, AMuteOfOnePortLeavesTheOthers) {
    SynthHost host;
    host.attach();
    host.notify(PortTransform::kMute, 1, 1, 1);
    host.queue({note(0, 60)}, 0);
    host.drain(1);
    EXPECT_EQ(host.played().size(), 1u);
}

TEST(Ports, AMuteEventWorksLikeANotification) {
    SynthHost host;
    host.pzi.isIgnored = [](const SynthEvent&) { return S_OK; };
    host.attach();
    SynthEvent mute;
    mute.type = SynthEventType::mute;
    mute.port = 1;     // the value
    mute.channel = 1;  // the mask
    SynthEvent unmute = mute;
    unmute.time = 960;
    unmute.port = 0;
    host.queue({mute, note(0, 60), unmute, note(960, 61)});
    host.drain(22050);
    EXPECT_TRUE(host.played().empty());
    host.drain(1);
    ASSERT_EQ(host.played().size(), 2u);
    EXPECT_TRUE(host.played()[0].event.type == SynthEventType::mute);
    EXPECT_EQ(host.played()[1].event.note, 61);
}

TEST(Ports, OffsetsAddUpAndStayWithinSevenBits) {
    SynthHost host;
    host.attach();
    host.notify(PortTransform::kVelocityA, 0, 20);
    host.notify(PortTransform::kVelocityB, 0, 20);
    host.notify(PortTransform::kNoteA, 0, -10);
    host.notify(PortTransform::kNoteB, 0, 0);
    host.queue({note(0, 5, kDurationOpen, 100)});
    host.drain(1);
    ASSERT_EQ(host.played().size(), 1u);
    EXPECT_EQ(host.played().front().event.velocity, 127);
    EXPECT_EQ(host.played().front().event.note, 0);
}

TEST(Ports, NoteOffsMoveWithTheirNotes) {
    SynthHost host;
    host.attach();
    host.notify(PortTransform::kNoteA, 0, 12);
    host.notify(PortTransform::kNoteB, 0, -1);
    host.queue({note(0, 60), noteOff(0, 60)});
    host.drain(1);
    ASSERT_EQ(host.played().size(), 1u);
    EXPECT_EQ(host.played().front().event.note, 71);
    EXPECT_EQ(+host.played().front().event.duration, 0u);
}

TEST(Ports, AForcedChannelCountsItsLowFourBits) {
    SynthHost host;
    host.attach();
    host.notify(PortTransform::kChannel, 0, 0x1F);
    host.queue({note(0, 60, kDurationOpen, 100, 3)});
    host.drain(1);
    host.notify(PortTransform::kChannel, 0, 255);
    host.queue({note(10, 61, kDurationOpen, 100, 3)});
    host.drain(512);
    ASSERT_EQ(host.played().size(), 2u);
    EXPECT_EQ(host.played()[0].event.channel, 15);
    EXPECT_EQ(host.played()[1].event.channel, 3);
}

TEST(Ports, AnUnknownKindChangesNothing) {
    SynthHost host;
    host.attach();
    host.notify(6, 0, 1, 1);
    host.notify(0xFFFFFFFF, 0, 1, 1);
    host.queue({note(0, 60, kDurationOpen, 100, 3)});
    host.drain(1);
    ASSERT_EQ(host.played().size(), 1u);
    EXPECT_EQ(host.played().front().event.note, 60);
    EXPECT_EQ(host.played().front().event.channel, 3);
}

TEST(Retire, KeepsANoteAsLongAsItsVoiceHasMoreToPlay) {
    SynthHost host;
    host.attach();
    host.queue({note(0, 60), note(0, 61)});
    host.drain(512);
    host.pzi.onRelease = [](const QueuedEvent& event) { return event.event.note == 60 ? S_OK : S_FALSE; };
    EXPECT_EQ(host.synth.RetireEvents(512, 0), S_OK);
    EXPECT_EQ(keys(host.played()), std::vector{61});
    EXPECT_EQ(host.synth.RetireEvents(512, 1), S_OK);
    EXPECT_TRUE(host.played().empty());
    EXPECT_EQ(host.pzi.liveVoices, 0);
}

TEST(Retire, KeepsAnythingElseUntilItsTimeIsPast) {
    SynthHost host;
    host.pzi.isIgnored = [](const SynthEvent&) { return S_OK; };
    host.attach();
    SynthEvent controller = note(960, 7);
    controller.type = SynthEventType::controller;
    host.queue({controller});
    host.drain(22051);
    EXPECT_EQ(host.synth.RetireEvents(22050, 0), S_OK);
    EXPECT_EQ(host.played().size(), 1u);
    EXPECT_EQ(host.synth.RetireEvents(22051, 0), S_OK);
    EXPECT_TRUE(host.played().empty());
}

TEST(Retire, AFailureStopsTheWalk) {
    SynthHost host;
    host.attach();
    host.queue({note(0, 60), note(0, 61), note(0, 62)});
    host.drain(1);
    host.pzi.onRelease = [](const QueuedEvent& event) { return event.event.note == 61 ? E_FAIL : S_OK; };
    EXPECT_EQ(host.synth.RetireEvents(1, 0), E_FAIL);
    EXPECT_EQ(keys(host.played()), (std::vector{61, 62}));
}

TEST(Retire, NoVoiceOutlivesTheSynth) {
    FakePzi pzi;
    FakeHostContext context;
    {
        SynthUnderTest synth(pzi);
        context.AddRef();
        synth.AttachHost(&context);
        EventList list{note(0, 60), note(0, 61)};
        synth.QueueEvents(0, 0, 0, &list);
        synth.DrainEvents(0, 1);
        ASSERT_EQ(pzi.liveVoices, 2);
    }
    EXPECT_EQ(pzi.liveVoices, 0);
}

}  // namespace
}  // namespace marnoth::test::event_drain_test
