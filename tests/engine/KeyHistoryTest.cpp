#include <gtest/gtest.h>

#include <functional>

#include "engine/render/KeyHistory.h"
#include "support/EngineHost.h"

namespace marnoth::test::key_history_test {
namespace {

/// A host that has a key for each time.
struct KeyHost : FakeSynthContext {
    std::uint32_t GetKeyAtTime(std::int64_t ticks16) override { return plan(ticks16); }
    std::function<std::uint32_t(std::int64_t)> plan;
    void choose(std::uint32_t chosen) {
        plan = [chosen](std::int64_t) { return chosen; };
    }
};

constexpr std::int64_t kBlock = 100'000;

struct History {
    /// So many blocks, one behind the other.
    void blocks(int count) {
        for (int i = 0; i < count; ++i, now += kBlock) keys.beginBlock(now, now + kBlock);
    }
    KeyHost host;
    KeyHistory keys{host};
    std::int64_t now = 0;
};

TEST(KeyHistory, GrainKeepsTheKeyThatWasChosenWhenItBegan) {
    History it;
    it.host.choose(3);
    it.blocks(2);
    EXPECT_EQ(it.keys.at(kBlock + 5), 3);
    it.host.choose(7);
    it.blocks(2);
    EXPECT_EQ(it.keys.at(kBlock + 5), 3);
    EXPECT_EQ(it.keys.at(2 * kBlock - 1), 3);
    EXPECT_EQ(it.keys.at(2 * kBlock), 7);
    EXPECT_EQ(it.keys.at(3 * kBlock + 5), 7);
    it.host.choose(3);
    it.blocks(1);
    EXPECT_EQ(it.keys.at(5), 3);
    EXPECT_EQ(it.keys.at(2 * kBlock + 5), 7) << "also where it is chosen again";
    EXPECT_EQ(it.keys.at(4 * kBlock + 5), 3);
}

TEST(KeyHistory, PlannedKeysAreThoseOfTheTimeWhereverBlocksBegin) {
    const auto plan = [](std::int64_t ticks16) { return static_cast<std::uint32_t>(ticks16 / 130'000 % 12); };
    History it;
    it.host.plan = plan;
    it.blocks(10);
    for (std::int64_t tick = 0; tick < 10 * kBlock; tick += 7'000)
        EXPECT_EQ(it.keys.at(tick), static_cast<std::int32_t>(plan(tick))) << tick;
}

TEST(KeyHistory, BehindAJumpTheKeyIsAskedForAnew) {
    History it;
    it.host.choose(3);
    it.blocks(5);
    it.host.choose(7);
    it.now = 2 * kBlock;
    it.blocks(1);
    EXPECT_EQ(it.keys.at(kBlock), 7);
}

TEST(KeyHistory, LateKeysAreKnownAmongMany) {
    History it;
    for (std::uint32_t i = 0; i < 500; ++i) {
        it.host.choose(i % 12);
        it.blocks(1);
    }
    it.host.choose(50);
    for (std::int64_t i = 460; i < 499; ++i) EXPECT_EQ(it.keys.at(i * kBlock + 9), i % 12);
}

}  // namespace
}  // namespace marnoth::test::key_history_test
