#include <algorithm>
#include <atomic>
#include <chrono>
#include <future>
#include <thread>

#include "host/SynthUnderTest.h"

namespace marnoth::test::event_intake_test {
namespace {

/// What one live message becomes, in an instrument that keeps everything.
SynthEvent fromMidi(std::uint8_t status, std::uint8_t data1, std::uint8_t data2) {
    SynthHost host;
    SynthEvent seen;
    host.pzi.isIgnored = [&](const SynthEvent& event) {
        seen = event;
        return S_OK;
    };
    host.attach();
    host.live({midi(1234, status, data1, data2)});
    return seen;
}

TEST(QueueEvents, NeedsAHost) {
    SynthHost host;
    EXPECT_EQ(host.queue({note(0, 60)}), E_UNEXPECTED);
}

TEST(QueueEvents, GivesBackWhatTheListSaysOfItsCount) {
    SynthHost host;
    host.attach();
    EventList failing{note(0, 60)};
    failing.countResult = E_ACCESSDENIED;
    EXPECT_EQ(host.synth.QueueEvents(0, 0, 0, &failing), E_ACCESSDENIED);
    EventList empty{};
    empty.countResult = S_FALSE;
    EXPECT_EQ(host.synth.QueueEvents(0, 0, 0, &empty), S_FALSE);
}

TEST(QueueEvents, KeepsNotesAndDropsEverythingElse) {
    SynthHost host;
    host.attach();
    SynthEvent wheel = note(0, 61);
    wheel.type = SynthEventType::pitchWheel;
    EXPECT_EQ(host.queue({wheel, note(0, 60)}), S_OK);
    EXPECT_EQ(host.queue({note(0, 62), wheel}), S_FALSE);
    host.drain(1);
    ASSERT_EQ(host.played().size(), 2u);
    EXPECT_EQ(host.played()[0].event.note, 60);
    EXPECT_EQ(host.played()[1].event.note, 62);
}

TEST(QueueEvents, EventsOfOneTimePlayInTheOrderOfArrival) {
    SynthHost host;
    host.attach();
    host.queue({note(5, 72), note(0, 60), note(0, 61)});
    host.queue({note(0, 59)});
    host.drain(44100);
    ASSERT_EQ(host.played().size(), 4u);
    EXPECT_EQ(host.played()[0].event.note, 60);
    EXPECT_EQ(host.played()[1].event.note, 61);
    EXPECT_EQ(host.played()[2].event.note, 59);
    EXPECT_EQ(host.played()[3].event.note, 72);
}

TEST(QueueEvents, AFailureInTheMiddleKeepsWhatCameBefore) {
    SynthHost host;
    host.attach();
    EventList list{note(0, 60), note(0, 61), note(0, 62)};
    list.failAt = 1;
    EXPECT_EQ(host.synth.QueueEvents(0, 0, 0, &list), E_FAIL);
    host.drain(1);
    ASSERT_EQ(host.played().size(), 1u);
    EXPECT_EQ(host.played().front().event.note, 60);
}

TEST(QueueEvents, LongListsPlayByTimeAndThenByTheirOrder) {
    SynthHost host;
    host.context.hasTimeConverter = true;
    host.attach();
    EventList list{};
    for (int i = 0; i < 1000; ++i) list.events.push_back(note(i * 37 % 100, 60, 480 + i));
    std::vector<SynthEvent> expected = list.events;
    std::stable_sort(expected.begin(), expected.end(),
                     [](const SynthEvent& a, const SynthEvent& b) { return a.time < b.time; });
    EXPECT_EQ(host.synth.QueueEvents(0, 0, 0, &list), S_OK);
    host.drain(44100);
    const auto played = host.played();
    ASSERT_EQ(played.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i)
        EXPECT_EQ(+played[i].event.duration, +expected[i].duration) << i;
}

TEST(QueueEvents, AFailureFarIntoAListKeepsWhatCameBefore) {
    SynthHost host;
    host.attach();
    EventList list{};
    for (int i = 0; i < 100; ++i) list.events.push_back(note(0, static_cast<std::uint8_t>(i)));
    list.failAt = 77;
    EXPECT_EQ(host.synth.QueueEvents(0, 0, 0, &list), E_FAIL);
    host.drain(1);
    ASSERT_EQ(host.played().size(), 77u);
    EXPECT_EQ(host.played().back().event.note, 76);
}

TEST(QueueEvents, AListThatStartsTheTransportGoesOnOnTheNewTimeline) {
    struct Starting : EventList {
        Starting(CSoftSynth& synth, int at) : EventList({}), synth(synth), at(at) {}
        CSoftSynth& synth;
        int at;
        HRESULT GetAt(std::int32_t index, SynthEvent* event) override {
            if (index == at) synth.StartPlayback(960);
            return EventList::GetAt(index, event);
        }
    };
    SynthHost host;
    host.attach();
    for (const int at : {1, 16, 20}) {
        Starting list(host.synth, at);
        for (int i = 0; i < 32; ++i) list.events.push_back(note(960, static_cast<std::uint8_t>(i)));
        EXPECT_EQ(host.synth.QueueEvents(0, 0, 0, &list), S_OK);
        host.drain(1);
        ASSERT_EQ(host.played().size(), static_cast<std::size_t>(32 - at));
        EXPECT_EQ(host.played().front().event.note, at);
    }
}

#ifndef _WIN32  // There a lock may be taken again before whoever waited for it wakes up.
TEST(QueueEvents, LetsOthersInBetweenTheEventsOfALongList) {
    struct Slow : EventList {
        Slow() : EventList({}) {}
        std::atomic<int> asked = 0;
        HRESULT GetAt(std::int32_t index, SynthEvent* event) override {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
            asked = index + 1;
            return EventList::GetAt(index, event);
        }
    } list;
    for (int i = 0; i < 200; ++i) list.events.push_back(note(0, 60));
    SynthHost host;
    host.attach();
    auto askedInBetween = std::async(std::launch::async, [&] {
        while (list.asked == 0) std::this_thread::yield();
        CAutoLock lock(host.pzi);
        return list.asked.load();
    });
    EXPECT_EQ(host.synth.QueueEvents(0, 0, 0, &list), S_OK);
    EXPECT_LT(askedInBetween.get(), 200);
}
#endif

TEST(QueueEvents, TheInstrumentsFailureEndsTheList) {
    SynthHost host;
    host.attach();
    host.pzi.isIgnored = [](const SynthEvent& event) { return event.note == 61 ? E_ABORT : S_OK; };
    EXPECT_EQ(host.queue({note(0, 60), note(0, 61), note(0, 62)}), E_ABORT);
    host.drain(1);
    EXPECT_EQ(host.played().size(), 1u);
}

TEST(QueueEvents, ClearsPortAndChannelBeforeTheHostFillsTheRecord) {
    struct Leaving : TestObject<IKvxEventList> {
        std::uint8_t port = 99, channel = 99;
        HRESULT reserved3() override { return E_NOTIMPL; }
        HRESULT GetCount(std::int32_t* count) override { return *count = 1, S_OK; }
        HRESULT GetAt(std::int32_t, SynthEvent* event) override {
            port = event->port;
            channel = event->channel;
            return S_OK;
        }
        void* find(REFIID) override { return nullptr; }
    } list;
    SynthHost host;
    host.attach();
    host.synth.QueueEvents(0, 0, 5, &list);
    EXPECT_EQ(list.port, 0);
    EXPECT_EQ(list.channel, 0);
}

TEST(QueueEvents, CarriesThePortBesideTheRecord) {
    SynthHost host;
    host.attach();
    host.queue({note(0, 60)}, 5);
    host.drain(1);
    ASSERT_EQ(host.played().size(), 1u);
    EXPECT_EQ(host.played().front().port, 5u);
}

TEST(QueueRawInput, ANullListIsABadPointerBeforeAnythingElse) {
    SynthHost host;
    EXPECT_EQ(host.synth.QueueRawInput(0, nullptr), E_POINTER);
    EXPECT_EQ(host.live({midi(0, 0x90, 60, 100)}), E_UNEXPECTED);
}

TEST(QueueRawInput, TheFirstEventLandsOnTheNextBlockWhateverItsTime) {
    SynthHost host;
    host.attach();
    host.drain(1000);
    EXPECT_EQ(host.live({midi(4000000000u, 0x90, 60, 100), midi(4000000960u, 0x90, 61, 100)}), S_OK);
    host.drain(512);
    ASSERT_EQ(host.played().size(), 1u);
    EXPECT_EQ(host.played().front().sampleTime, 1000);
    host.drain(22050);
    ASSERT_EQ(host.played().size(), 2u);
    EXPECT_EQ(host.played().back().sampleTime, 1000 + 22050);
}

TEST(QueueRawInput, AnEventBehindTheFirstIsPlacedBeforeTheBlockAndNeverPlays) {
    SynthHost host;
    host.attach();
    host.drain(100000);
    host.live({midi(960, 0x90, 60, 100), midi(0, 0x90, 61, 100)});
    host.drain(100000);
    ASSERT_EQ(host.played().size(), 1u);
    EXPECT_EQ(host.played().front().event.note, 60);
}

TEST(QueueRawInput, TheDifferenceOfTimesWraps) {
    SynthHost host;
    host.attach();
    host.live({midi(0xFFFFFFF0u, 0x90, 60, 100), midi(0xFFFFFFF0u + 960u, 0x90, 61, 100)});
    host.drain(22051);
    ASSERT_EQ(host.played().size(), 2u);
    EXPECT_EQ(host.played().back().sampleTime, 22050);
}

TEST(QueueRawInput, AnUnknownMessageIsPassedOverButItsTimeCounts) {
    SynthHost host;
    host.attach();
    EXPECT_EQ(host.live({midi(100, 0xF8, 0, 0), midi(1060, 0x90, 60, 100)}), S_OK);
    host.drain(22051);
    ASSERT_EQ(host.played().size(), 1u);
    EXPECT_EQ(host.played().front().sampleTime, 22050);
}

TEST(QueueRawInput, AFailureOfTheListIsGivenBack) {
    SynthHost host;
    host.attach();
    RawEventList list{midi(0, 0x90, 60, 100), midi(0, 0x90, 61, 100)};
    list.failAt = 1;
    EXPECT_EQ(host.synth.QueueRawInput(0, &list), E_FAIL);
    host.drain(1);
    EXPECT_EQ(host.played().size(), 1u);
}

TEST(LiveMidi, NoteOnIsAnOpenNoteWithTheUsualReleaseVelocity) {
    const SynthEvent event = fromMidi(0x9B, 0x80 | 60, 0x80 | 100);
    EXPECT_TRUE(event.type == SynthEventType::note);
    EXPECT_EQ(+event.time, 1234);
    EXPECT_EQ(event.port, 0);
    EXPECT_EQ(event.channel, 11);
    EXPECT_EQ(event.note, 60);
    EXPECT_EQ(event.velocity, 100);
    EXPECT_EQ(event.releaseVelocity, 64);
    EXPECT_EQ(+event.duration, 0xFFFFFFFFu);
}

TEST(LiveMidi, NoteOffAndNoteOnOfVelocityZeroAreNoteOffs) {
    const SynthEvent off = fromMidi(0x80, 60, 37);
    EXPECT_TRUE(off.type == SynthEventType::note);
    EXPECT_EQ(off.velocity, 37);
    EXPECT_EQ(+off.duration, 0u);
    const SynthEvent zero = fromMidi(0x90, 61, 0);
    EXPECT_TRUE(zero.type == SynthEventType::note);
    EXPECT_EQ(zero.note, 61);
    EXPECT_EQ(zero.velocity, 0);
    EXPECT_EQ(+zero.duration, 0u);
}

TEST(LiveMidi, OnlyAVelocityByteOfZeroMakesANoteOnANoteOff) {
    const SynthEvent event = fromMidi(0x90, 60, 0x80);
    EXPECT_EQ(event.velocity, 0);
    EXPECT_EQ(+event.duration, 0xFFFFFFFFu);
}

TEST(LiveMidi, AftertouchAndControllersCarryBothValues) {
    const SynthEvent key = fromMidi(0xA2, 0xC0, 0xC1);
    EXPECT_TRUE(key.type == SynthEventType::keyAftertouch);
    EXPECT_EQ(key.note, 0x40);
    EXPECT_EQ(key.velocity, 0x41);
    const SynthEvent controller = fromMidi(0xB0, 7, 99);
    EXPECT_TRUE(controller.type == SynthEventType::controller);
    EXPECT_EQ(controller.note, 7);
    EXPECT_EQ(controller.velocity, 99);
    const SynthEvent channel = fromMidi(0xD0, 0x80 | 55, 99);
    EXPECT_TRUE(channel.type == SynthEventType::channelAftertouch);
    EXPECT_EQ(channel.velocity, 55);
}

TEST(LiveMidi, APatchChangeHasNoBank) {
    const SynthEvent event = fromMidi(0xC0, 12, 34);
    EXPECT_TRUE(event.type == SynthEventType::patch);
    EXPECT_EQ(event.note, 12);
    EXPECT_EQ(event.velocity, 34);
    // The bank's 16 bits lie over the release velocity and the first byte of the length.
    EXPECT_EQ(event.releaseVelocity, 0xFF);
    EXPECT_EQ(+event.duration & 0xFF, 0xFFu);
}

TEST(LiveMidi, ThePitchWheelIsOneNumberOverTwoBytesUnmasked) {
    const SynthEvent centre = fromMidi(0xE0, 0, 64);
    EXPECT_TRUE(centre.type == SynthEventType::pitchWheel);
    EXPECT_EQ(centre.note + 256 * centre.velocity, 8192);
    const SynthEvent wild = fromMidi(0xE0, 255, 255);
    EXPECT_EQ(wild.note + 256 * wild.velocity, 255 * 128 + 255);
}

}  // namespace
}  // namespace marnoth::test::event_intake_test
