#include <atomic>
#include <thread>

#include "host/SynthUnderTest.h"

namespace marnoth::test::transport_test {
namespace {

TEST(StartPlayback, EndsAllVoicesAndEmptiesMapAndQueue) {
    SynthHost host;
    host.attach();
    host.queue({note(0, 60), note(0, 61), note(960, 62)});
    host.drain(512);
    ASSERT_EQ(host.pzi.liveVoices, 2);

    EXPECT_EQ(host.synth.StartPlayback(0), S_OK);
    EXPECT_EQ(host.pzi.resets, 1);
    EXPECT_EQ(host.pzi.liveVoices, 0);
    EXPECT_TRUE(host.played().empty());
    EXPECT_EQ(host.synth.position(), 0);
    host.drain(100000);
    EXPECT_TRUE(host.played().empty());
}

TEST(StartPlayback, ResetsTheInstrumentBeforeItFreesAVoice) {
    SynthHost host;
    host.attach();
    host.queue({note(0, 60)});
    host.drain(1);
    host.pzi.onReset = [&] { EXPECT_EQ(host.pzi.liveVoices, 1); };
    host.synth.StartPlayback(0);
    EXPECT_EQ(host.pzi.liveVoices, 0);
}

TEST(StartPlayback, MakesItsTickTheZeroOfTheTimeline) {
    SynthHost host;
    host.attach();
    EXPECT_EQ(host.synth.IsTransportRunning(), 0);
    host.synth.StartPlayback(960);
    EXPECT_EQ(host.synth.IsTransportRunning(), 1);
    host.queue({note(960, 60), note(1920, 61)});
    host.drain(1);
    ASSERT_EQ(host.played().size(), 1u);
    EXPECT_EQ(host.played().front().sampleTime, 0);
    host.drain(22049);
    EXPECT_EQ(host.played().size(), 1u);
    host.drain(1);
    ASSERT_EQ(host.played().size(), 2u);
    EXPECT_EQ(host.played().back().sampleTime, 22050);
}

TEST(StartPlayback, WhilePlayingIsARestart) {
    SynthHost host;
    host.attach();
    host.synth.StartPlayback(0);
    host.drain(512);
    host.synth.StartPlayback(1920);
    EXPECT_EQ(host.synth.position(), 0);
    host.queue({note(1920, 60)});
    host.drain(1);
    EXPECT_EQ(host.played().size(), 1u);
}

TEST(StopPlayback, EmptiesTheQueueAndGoesOnCounting) {
    SynthHost host;
    host.attach();
    host.synth.StartPlayback(0);
    host.queue({note(0, 60), note(9600, 61)});
    host.drain(512);
    EXPECT_EQ(host.synth.StopPlayback(), S_OK);
    EXPECT_EQ(host.synth.IsTransportRunning(), 0);
    EXPECT_EQ(host.pzi.liveVoices, 0);
    EXPECT_TRUE(host.played().empty());
    EXPECT_EQ(host.synth.position(), 512);
    host.drain(512);
    EXPECT_EQ(host.synth.position(), 1024);
}

TEST(StopPlayback, LeavesTheZeroOfTheTimelineInPlace) {
    SynthHost host;
    host.attach();
    host.synth.StartPlayback(960);
    host.synth.StopPlayback();
    host.queue({note(960, 60)});
    host.drain(1);
    EXPECT_EQ(host.played().size(), 1u);
}

TEST(LoopPlayback, MovesLaterEventsByTheLengthOfTheJump) {
    SynthHost host;
    host.attach();
    host.synth.StartPlayback(960);
    // From the end at 3 beats back to 1 beat: what is at 1 beat comes up 2 beats after the start.
    EXPECT_EQ(host.synth.LoopPlayback(960, 2880), S_OK);
    host.queue({note(960, 60)});
    host.drain(44100);
    EXPECT_TRUE(host.played().empty());
    host.drain(1);
    ASSERT_EQ(host.played().size(), 1u);
    EXPECT_EQ(host.played().front().sampleTime, 44100);
}

TEST(LoopPlayback, IsntTakenBackByAStop) {
    SynthHost host;
    host.attach();
    host.synth.LoopPlayback(0, 960);
    host.synth.StopPlayback();
    host.queue({note(0, 60)});
    host.drain(22050);
    EXPECT_TRUE(host.played().empty());
    host.drain(1);
    EXPECT_EQ(host.played().size(), 1u);
}

TEST(LoopPlayback, AddsUpUntilTheNextStart) {
    SynthHost host;
    host.attach();
    host.synth.StartPlayback(0);
    host.synth.LoopPlayback(0, 960);
    host.synth.LoopPlayback(0, 960);
    host.queue({note(0, 60)});
    host.drain(44101);
    ASSERT_EQ(host.played().size(), 1u);
    EXPECT_EQ(host.played().front().sampleTime, 44100);

    host.synth.StartPlayback(0);
    host.queue({note(0, 60)});
    host.drain(1);
    EXPECT_EQ(host.played().size(), 1u);
}

TEST(Transport, LeavesThePortsAsTheyAre) {
    SynthHost host;
    host.attach();
    host.notify(PortTransform::kMute, 3, 1, 1);
    host.synth.StartPlayback(0);
    host.synth.StopPlayback();
    host.queue({note(0, 60)}, 3);
    host.drain(1);
    EXPECT_TRUE(host.played().empty());
}

TEST(Transport, FreesTheVoiceOfEveryNoteHoweverMany) {
    SynthHost host;
    host.attach();
    EventList list{};
    for (int i = 0; i < 3000; ++i) list.events.push_back(note(i, 60, 480));
    host.synth.QueueEvents(0, 0, 0, &list);
    host.drain(1 << 20);
    EXPECT_EQ(host.pzi.liveVoices, 3000);
    host.synth.StopPlayback();
    EXPECT_EQ(host.pzi.liveVoices, 0);
}

TEST(Transport, OfOneThreadAndEventsOfAnotherMeetWithoutHarm) {
    SynthHost host;
    host.attach();
    EventList list{};
    for (int i = 0; i < 500; ++i) list.events.push_back(note(i, 60, 480));
    std::atomic<bool> done = false;
    const auto turn = [&](HRESULT (*operation)(SynthHost&)) {
        return std::thread([&host, &done, operation] {
            while (!done) ASSERT_EQ(operation(host), S_OK);
        });
    };
    std::vector<std::thread> others;
    others.push_back(turn([](SynthHost& host) { return host.synth.StartPlayback(0); }));
    others.push_back(turn([](SynthHost& host) { return host.synth.StopPlayback(); }));
    others.push_back(turn([](SynthHost& host) {
        CAutoLock lock(host.pzi);
        const HRESULT hr = host.drain(64);
        return SUCCEEDED(hr) ? host.synth.RetireEvents(host.synth.position(), 0) : hr;
    }));
    for (int i = 0; i < 200; ++i) ASSERT_EQ(host.synth.QueueEvents(0, 0, 0, &list), S_OK);
    done = true;
    for (std::thread& other : others) other.join();
    host.synth.StopPlayback();
    EXPECT_EQ(host.pzi.liveVoices, 0);
    EXPECT_TRUE(host.played().empty());
}

TEST(Transport, WorksWithoutAHost) {
    SynthHost host;
    EXPECT_EQ(host.synth.StartPlayback(960), S_OK);
    EXPECT_EQ(host.synth.LoopPlayback(0, 960), S_OK);
    EXPECT_EQ(host.synth.StopPlayback(), S_OK);
}

TEST(Transport, SurvivesHostTimesBeyondAllRange) {
    SynthHost host;
    host.context.hasTimeConverter = true;
    host.context.timeConverter.samplesPerTick = std::int64_t{1} << 32;
    host.attach();
    host.synth.StartPlayback(INT32_MIN);
    for (int i = 0; i < 4; ++i) host.synth.LoopPlayback(INT32_MIN, INT32_MAX);
    EXPECT_EQ(host.queue({note(INT32_MAX, 60)}), S_OK);
    EXPECT_EQ(host.drain(INT32_MAX), S_OK);
}

}  // namespace
}  // namespace marnoth::test::transport_test
