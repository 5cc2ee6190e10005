#include "host/SynthUnderTest.h"
#include "support/AllocationMeter.h"

namespace marnoth::test::event_storage_test {
namespace {

/// As many notes as are held at a time come and go, over and over.
void passThrough(NoteQueue& queue, int held, int rounds) {
    for (int i = 0; i < held; ++i) queue.emplace_back();
    for (int i = 0; i < rounds; ++i) {
        queue.emplace_back();
        queue.pop_front();
    }
    queue.clear();
}

TEST(EventStorage, GrowsWithTheMostNotesAloneAndIsUsedAgain) {
    SynthHost host;
    passThrough(host.synth.eventQueue(), 40, 1000);
    AllocationMeter meter;
    passThrough(host.synth.eventQueue(), 30, 10000);
    EXPECT_EQ(meter.peakBytes(), 0u);
}

TEST(EventStorage, GoesBackWithTheTransport) {
    SynthHost host;
    passThrough(host.synth.eventQueue(), 1000, 0);
    host.synth.StopPlayback();
    AllocationMeter meter;
    passThrough(host.synth.eventQueue(), 1000, 0);
    EXPECT_GE(meter.peakBytes(), 900 * sizeof(QueuedEvent));
}

TEST(EventStorage, OfAnEventThatHasPlayedServesTheNext) {
    SynthHost host;
    host.attach();
    EventList noteOffs{noteOff(0, 60), noteOff(1, 61), noteOff(2, 62), noteOff(3, 63)};
    ASSERT_EQ(host.synth.QueueEvents(0, 0, 0, &noteOffs), S_OK);
    ASSERT_EQ(host.synth.DrainEvents(0, 22050), S_OK);
    AllocationMeter meter;
    ASSERT_EQ(host.synth.QueueEvents(0, 0, 0, &noteOffs), S_OK);
    ASSERT_EQ(host.synth.DrainEvents(0, 22050), S_OK);
    EXPECT_EQ(meter.peakBytes(), 0u);
    EXPECT_EQ(meter.frees(), 0u);
}

}  // namespace
}  // namespace marnoth::test::event_storage_test
