/// What the streaming thread does from the sample that it sends in to those that it gets back: nothing that
/// takes memory, gives any back or waits, but for the one lock.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>

#include "host/FilterHost.h"
#include "support/EventLists.h"
#include "support/RealTimeGuard.h"
#include "support/WaveFile.h"

namespace marnoth::test {
namespace {

constexpr std::int32_t kBlock = 64;
constexpr int kLoops = 4;

/// An instrument in a graph, with a loop on each of four pads and two of them on pins of their own.
struct BusyHost : FilterHost {
    BusyHost() {
        for (int pin : {0, 1, 2}) {
            sink(pin).keepsAudio = false;
            sink(pin).allocator.samplesOfferSilence = pin != 1;
        }
        context.hasTimeConverter = true;
        // Ticks of 120 beats per minute at this rate.
        context.timeConverter.samplesPerTick = 25;
        context.timeConverter.rate = 48000;
        start({0, 1, 2}, 48000, 2, kBlock);
        EXPECT_EQ(attach(), S_OK);
        for (int pad = 0; pad < kLoops; ++pad) lay(pad);
        filter->SetPadOutput(1, 1);
        filter->SetPadOutput(2, 2);
        filter->SetPadOneShot(3, 1);
        EXPECT_EQ(filter->Run(0), S_OK);
    }

    void lay(int pad) {
        const auto wave =
            WaveFile()
                .rate(48000)
                .channels(2)
                .frames(48000, [](std::int64_t i, int) { return 0.1 + 0.1 * std::sin(0.05 * i); })
                .acid({.beats = 2})
                .writeTemp();
        std::int32_t bin = -1;
        std::uint32_t status = 0;
        EXPECT_EQ(filter->LoadFileToPad(pad, std::to_string(pad).c_str(), wave.c_str(), &bin, &status), S_OK);
        KeyMapRecord record{};
        record.pad = pad;
        EXPECT_EQ(filter->GetKeyMapEntry(&record), S_OK);
        keys[static_cast<std::size_t>(pad)] = static_cast<std::uint8_t>(record.rootKey);
    }

    /// A block, watched; `before` is what its thread does first.
    template <class Before>
    void block(Before before, HRESULT expected = S_OK) {
        for (int pin : {0, 1, 2})
            for (const auto& sample : sink(pin).allocator.samples) sample->lengthsSet.clear();
        in.lengthsSet.clear();
        RealTimeGuard guard(filter, sizeof *filter);
        before();
        const HRESULT hr = input().Receive(&in);
        const auto block = guard.finish();
        ASSERT_EQ(hr, expected);
        offences.allocations += block.allocations;
        offences.frees += block.frees;
        offences.waits += block.waits;
        mostNotes = std::max(mostNotes, filter->eventQueue().size());
    }
    void block() {
        block([] {});
    }
    bool sounds() {
        return std::any_of(sink(0).allocator.samples.begin(), sink(0).allocator.samples.end(),
                           [](const auto& sample) {
                               const auto* value = sample->floats();
                               return std::any_of(value, value + kBlock, [](float v) { return v != 0.0f; });
                           });
    }

    FakeSample in{kBlock * 8};
    std::array<std::uint8_t, kLoops> keys{};
    RealTimeGuard::Offences offences;
    std::size_t mostNotes = 0;
};

/// Notes by the hundred, and nothing taken or given back for them.
void expectNone(const BusyHost& it) {
    EXPECT_GT(it.filter->voicesMade, 100);
    EXPECT_EQ(it.offences.waits, 0);
    EXPECT_EQ(it.offences.allocations, 0);
    EXPECT_EQ(it.offences.frees, 0);
}

TEST(RealTimePath, NotesOfASequenceBeginAndEnd) {
    BusyHost it;
    EXPECT_EQ(it.filter->StartPlayback(0), S_OK);
    EventList list{};
    for (int i = 0; i < 2000; ++i) list.events.push_back(note(i, it.keys[i % kLoops], 1 + i % 40));
    ASSERT_EQ(it.filter->QueueEvents(0, 0, 3, &list), S_OK);
    for (int i = 0; i < 700; ++i) it.block();
    EXPECT_TRUE(it.sounds());
    EXPECT_GT(it.mostNotes, 10u);
    expectNone(it);
}

TEST(RealTimePath, LiveNotesComeInOnTheStreamingThread) {
    BusyHost it;
    for (int i = 0; i < 400; ++i) {
        const std::uint8_t key = it.keys[i % kLoops];
        RawEventList list{midi(0, 0x90, key, 100), midi(1, 0xB0, 1, 2), midi(1, 0x80, key, 0)};
        it.block([&] { it.filter->QueueRawInput(static_cast<std::uint32_t>(i), &list); });
    }
    EXPECT_TRUE(it.sounds());
    EXPECT_GT(it.mostNotes, 0u);
    expectNone(it);
}

TEST(RealTimePath, TheTransportStartsAndStopsOnTheStreamingThread) {
    BusyHost it;
    RawEventList held{midi(0, 0x90, it.keys[0], 100), midi(0, 0x90, it.keys[1], 100),
                      midi(0, 0x90, it.keys[3], 100)};
    for (int i = 0; i < 300; ++i) {
        it.block([&] {
            it.filter->QueueRawInput(0, &held);
            if (i % 5 == 2) it.filter->StartPlayback(i);
            if (i % 5 == 3) it.filter->LoopPlayback(0, 960);
            if (i % 5 == 4) it.filter->StopPlayback();
        });
    }
    EXPECT_TRUE(it.sounds());
    EXPECT_GT(it.mostNotes, 3u);
    expectNone(it);
}

TEST(RealTimePath, BlocksFailAndKeepTheirSamples) {
    BusyHost it;
    it.sink(2).allocator.getResult = E_FAIL;
    const auto samples = it.sink(0).allocator.samples.size();
    for (std::size_t i = 0; i < samples; ++i) it.block([] {}, E_FAIL);
    EXPECT_EQ(it.sink(0).allocator.samplesOut(), samples);
    EXPECT_EQ(it.offences.total(), 0);
}

TEST(RealTimePath, PortsAreMutedAndTheirNotesMoved) {
    BusyHost it;
    it.filter->onIsIgnored = [](const SynthEvent& event) {
        return event.type == SynthEventType::note || event.type == SynthEventType::mute ? S_OK : S_FALSE;
    };
    const SynthNotification louder{PortTransform::kVelocityA, 1, 20, 0};
    ASSERT_EQ(it.filter->Notify(&louder), S_OK);
    EXPECT_EQ(it.filter->StartPlayback(0), S_OK);
    // Each port is muted and let through again, and only port 1 has ever been named.
    for (std::uint32_t port = 0; port < 40; ++port) {
        EventList list{};
        for (int i = 0; i < 50; ++i) {
            SynthEvent mute;
            mute.type = SynthEventType::mute;
            mute.time = i * 4;
            mute.port = static_cast<std::uint8_t>(i % 2);
            mute.channel = 1;
            list.events.push_back(mute);
            list.events.push_back(note(i * 4, it.keys[i % kLoops], 3));
        }
        ASSERT_EQ(it.filter->QueueEvents(0, 0, port * 0x7654321, &list), S_OK);
    }
    for (int i = 0; i < 100; ++i) it.block();
    EXPECT_TRUE(it.sounds());
    EXPECT_GT(it.mostNotes, 10u);
    expectNone(it);
}

}  // namespace
}  // namespace marnoth::test
