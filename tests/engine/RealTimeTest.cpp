#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <memory>
#include <thread>

#include "engine/VoiceRig.h"
#include "support/RealTimeGuard.h"

namespace marnoth::test::real_time_test {
namespace {

constexpr std::int32_t kBlock = 512;

/// Where the optimiser can't follow.
void* volatile keep;

TEST(RealTimeGuard, CountsMemoryTakenAndGivenBack) {
    RealTimeGuard guard;
    auto number = std::make_unique<int>(3);
    keep = number.get();
    number.reset();
    const auto offences = guard.finish();
    EXPECT_EQ(offences.allocations, 1);
    EXPECT_EQ(offences.frees, 1);
}

TEST(RealTimeGuard, CountsTheCAllocator) {
    if (!RealTimeGuard::watchesTheSystem()) GTEST_SKIP() << "only operator new and delete are watched here";
    RealTimeGuard guard;
    keep = std::malloc(10);
    std::free(keep);
    const auto offences = guard.finish();
    EXPECT_EQ(offences.allocations, 1);
    EXPECT_EQ(offences.frees, 1);
}

TEST(RealTimeGuard, CountsLocksButTheOneThatIsAllowed) {
    if (!RealTimeGuard::watchesTheSystem()) GTEST_SKIP() << "only operator new and delete are watched here";
    CCritSec allowed, other;
    {
        RealTimeGuard guard(&allowed, sizeof allowed);
        CAutoLock lock(allowed);
        EXPECT_EQ(guard.finish().waits, 0);
    }
    RealTimeGuard guard(&allowed, sizeof allowed);
    { CAutoLock lock(other); }
    EXPECT_EQ(guard.finish().waits, 1);
}

TEST(RealTimeGuard, CountsSleep) {
    if (!RealTimeGuard::watchesTheSystem()) GTEST_SKIP() << "only operator new and delete are watched here";
    RealTimeGuard guard;
    std::this_thread::sleep_for(std::chrono::microseconds(1));
    EXPECT_EQ(guard.finish().waits, 1);
}

TEST(RealTimeGuard, WatchesItsOwnThreadOnly) {
    std::atomic<bool> go{false}, done{false};
    std::thread other([&] {
        while (!go) std::this_thread::yield();
        keep = std::make_unique<int>(1).get();
        done = true;
    });
    RealTimeGuard guard;
    go = true;
    while (!done) {
    }
    EXPECT_EQ(guard.finish().total(), 0);
    other.join();
}

/// Seventeen stereo pins whose memory exists in advance.
struct BusyRig : VoiceRig {
    BusyRig() : VoiceRig(48000, 2) {
        memory.assign(context.pinIds.size(), std::vector<float>(2 * kBlock));
        for (std::size_t i = 0; i < memory.size(); ++i) {
            pins.push_back({kBlock, context.pinIds[i], nullptr, memory[i].data(), 1});
        }
        for (std::int32_t pad = 0; pad < kPads; ++pad) layLoop(pad, constant(2 * 24000, 0.01f), 1);
        for (std::int32_t pad = 0; pad < kPads; ++pad) setUp(pad);
        engine.SetAuditionEnabled(1);
        context.key = 5;
    }
    void setUp(std::int32_t pad) {
        engine.SetPadOneShot(pad, pad % 2);
        engine.SetPadSynced(pad, pad % 3 != 0);
        engine.SetPadOutput(pad, static_cast<std::uint32_t>(pad % 5));
        engine.SetPadFollowKey(pad, pad % 4 == 0);
        engine.SetPadRootNote(pad, 3);
        engine.SetPadTail(pad, pad == 7);
        const KeyMapRecord wide{pad, 0, 127, 60, 0, 127};
        engine.SetKeyMapEntry(&wide);
    }
    RealTimeGuard::Offences guardedBlock(float& loudest) {
        drain();
        PinBuffer input{kBlock, 0, nullptr, nullptr, 1};
        CAutoLock lock(engine);
        RealTimeGuard guard(&engine, sizeof engine);
        engine.ProcessBlock(position, &input, pins.data(), static_cast<std::int32_t>(pins.size()), 0, &notes);
        const auto offences = guard.finish();
        position += kBlock;
        loudest = std::max(loudest, peak(memory[0]));
        for (auto& pin : memory) std::fill(pin.begin(), pin.end(), 0.0f);
        retire();
        return offences;
    }

    std::vector<std::vector<float>> memory;
    std::vector<PinBuffer> pins;
};

/// What a player does before block `i`.
void playSomething(BusyRig& rig, int i) {
    const auto key = static_cast<std::uint8_t>(48 + i % 24);
    if (i % 3 == 0) rig.noteOn(key);
    if (i % 5 == 0) rig.sequence(key, static_cast<std::int32_t>(rig.position * 960 / 24000), 30);
    if (i % 7 == 0) rig.noteOff(static_cast<std::uint8_t>(48 + (i / 2) % 24));
    if (i % 11 == 0) rig.engine.AuditionPad(i % kPads, -1);
    if (i % 13 == 0) rig.engine.StopPad(i % kPads);
    if (i % 17 == 0) rig.engine.AuditionPad(i % kPads, i % 4);
    if (i % 19 == 0) rig.engine.AuditionBinFile(i % kPads, -1);
    if (i % 37 == 0) rig.engine.StopPad(-1);
    if (i % 41 == 0) rig.context.tempo = 90 + i % 60;
    if (i % 43 == 0) rig.context.running = !rig.context.running;
    if (i % 97 == 0) rig.engine.ResetVoices();
}

TEST(RealTime, BusyBlocksTakeNoMemoryAndWaitForNothing) {
    BusyRig rig;
    float loudest = 0;
    for (int i = 0; i < 300; ++i) {
        playSomething(rig, i);
        const auto offences = rig.guardedBlock(loudest);
        ASSERT_EQ(offences.allocations, 0) << "in block " << i;
        ASSERT_EQ(offences.frees, 0) << "in block " << i;
        ASSERT_EQ(offences.waits, 0) << "in block " << i;
    }
    EXPECT_GT(loudest, 0.1f);
}

}  // namespace
}  // namespace marnoth::test::real_time_test
