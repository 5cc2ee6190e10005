#include <set>

#include "host/SynthUnderTest.h"
#include "support/AllocationMeter.h"

namespace marnoth::test::event_storage_test {
namespace {

constexpr int kAlways = static_cast<int>(EventStore::kRoom);

/// Live note-ons, each at its own tick.
RawEventList liveNotes(int count) {
    RawEventList list{};
    for (int i = 0; i < count; ++i)
        list.events.push_back(
            midi(static_cast<std::uint32_t>(i), 0x90, static_cast<std::uint8_t>(i % 128), 1));
    return list;
}

EventList sequence(int count) {
    EventList list{};
    for (int i = 0; i < count; ++i) list.events.push_back(note(i, static_cast<std::uint8_t>(i % 128)));
    return list;
}

TEST(EventStorage, TakesLiveInputWithoutMemoryFromTheSystem) {
    SynthHost host;
    host.attach();
    auto input = liveNotes(kAlways);
    AllocationMeter meter;
    ASSERT_EQ(host.synth.QueueRawInput(0, &input), S_OK);
    EXPECT_EQ(meter.peakBytes(), 0u);
}

TEST(EventStorage, OfEventsThatHavePlayedServesTheNext) {
    SynthHost host;
    host.attach();
    // Refused: voices are the instrument's own storage.
    host.pzi.onCreate = [](const QueuedEvent&) { return S_FALSE; };
    auto input = liveNotes(kAlways);
    AllocationMeter meter;
    for (int round = 0; round < 3; ++round) {
        ASSERT_EQ(host.synth.QueueRawInput(0, &input), S_OK);
        ASSERT_EQ(host.drain(kAlways * 23), S_OK);
    }
    EXPECT_EQ(meter.peakBytes(), 0u);
    EXPECT_EQ(meter.frees(), 0u);
}

TEST(EventStorage, IsKeptByStartsAndStopsOfTheTransport) {
    SynthHost host;
    host.attach();
    host.pzi.onCreate = [](const QueuedEvent&) { return S_FALSE; };
    auto input = liveNotes(kAlways);
    AllocationMeter meter;
    for (int round = 0; round < 3; ++round) {
        ASSERT_EQ(host.synth.QueueRawInput(0, &input), S_OK);
        ASSERT_EQ(host.drain(64), S_OK);
        ASSERT_EQ(host.synth.StartPlayback(0), S_OK);
        ASSERT_EQ(host.synth.QueueRawInput(0, &input), S_OK);
        ASSERT_EQ(host.synth.StopPlayback(), S_OK);
    }
    EXPECT_EQ(meter.peakBytes(), 0u);
    EXPECT_EQ(meter.frees(), 0u);
}

TEST(EventStorage, OfALongSequenceGoesBackWithTheTransport) {
    SynthHost host;
    host.attach();
    auto list = sequence(100 * kAlways);
    ASSERT_EQ(host.synth.QueueEvents(0, 0, 0, &list), S_OK);
    {
        AllocationMeter meter;
        host.synth.StopPlayback();
        EXPECT_GE(meter.frees(), 99u);
    }
    AllocationMeter meter;
    ASSERT_EQ(host.synth.QueueEvents(0, 0, 0, &list), S_OK);
    EXPECT_GE(meter.peakBytes(), 99 * EventStore::kRoom * sizeof(QueuedEvent));
}

TEST(EventStorage, OfALongSequenceLeavesRoomForLiveInput) {
    SynthHost host;
    host.attach();
    auto list = sequence(10 * kAlways);
    auto input = liveNotes(kAlways / 2);
    ASSERT_EQ(host.synth.QueueEvents(0, 0, 0, &list), S_OK);
    AllocationMeter meter;
    ASSERT_EQ(host.synth.QueueRawInput(0, &input), S_OK);
    EXPECT_EQ(meter.peakBytes(), 0u);
}

TEST(EventStorage, WithoutMemoryForMoreKeepsWhatCameBefore) {
    SynthHost host;
    host.attach();
    auto list = sequence(2 * kAlways);
    {
        AllocationMeter meter;
        meter.refuseFrom(1);
        EXPECT_EQ(host.synth.QueueEvents(0, 0, 0, &list), E_OUTOFMEMORY);
    }
    host.drain(64);
    EXPECT_FALSE(host.played().empty());
}

TEST(EventStorage, OfPortsIsMadeByNotificationsAndNeverByABlock) {
    SynthHost host;
    host.attach();
    host.pzi.onCreate = [](const QueuedEvent&) { return S_FALSE; };
    host.notify(PortTransform::kNoteA, 7, 12);
    const std::set<std::uint32_t> ports{0, 7, 8, 0xFFFFFFFF, 0x80000000};
    for (const std::uint32_t port : ports) host.queue({note(0, 60)}, port);
    AllocationMeter meter;
    EXPECT_EQ(host.drain(64), S_OK);
    EXPECT_EQ(meter.peakBytes(), 0u);
}

}  // namespace
}  // namespace marnoth::test::event_storage_test
