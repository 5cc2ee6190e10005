#include "host/SynthUnderTest.h"
#include "support/AllocationMeter.h"

namespace marnoth::test {
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

TEST(NoteQueue, AllocatesOnlyToGrowBeyondItsLargestSize) {
    NoteQueue queue;
    passThrough(queue, 40, 1000);
    AllocationMeter meter;
    passThrough(queue, 30, 10000);
    EXPECT_EQ(meter.peakBytes(), 0u);
}

TEST(NoteQueue, GivesItsStorageBackWithTheTransport) {
    SynthHost host;
    passThrough(host.synth.eventQueue(), 1000, 0);
    host.synth.StopPlayback();
    AllocationMeter meter;
    passThrough(host.synth.eventQueue(), 1000, 0);
    EXPECT_GE(meter.peakBytes(), 900 * sizeof(QueuedEvent));
}

TEST(NoteQueue, CanBeCopiedAndMoved) {
    NoteQueue queue;
    for (int i = 0; i < 100; ++i) queue.push_back({{}, static_cast<std::uint32_t>(i), i, nullptr});
    NoteQueue copy = queue;
    NoteQueue moved = std::move(queue);
    copy.pop_front();
    moved = copy;
    copy.clear();
    ASSERT_EQ(moved.size(), 99u);
    EXPECT_EQ(moved.front().sampleTime, 1);
    EXPECT_EQ(moved.back().sampleTime, 99);
}

}  // namespace
}  // namespace marnoth::test
