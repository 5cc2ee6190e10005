#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <thread>
#include <vector>

#include "hostkit/CommandQueue.h"
#include "hostkit/LiveCommands.h"

namespace marnoth::test::live_commands_test {
namespace {

TEST(CommandQueue, GivesWhatCameInItsOrderAndRefusesWhenFull) {
    CommandQueue<int, 4> queue;
    EXPECT_FALSE(queue.pop());
    EXPECT_TRUE(queue.isEmpty());
    for (int round = 0; round < 10; ++round) {
        for (int i = 0; i < 4; ++i) EXPECT_TRUE(queue.push(10 * round + i));
        EXPECT_FALSE(queue.push(99));
        EXPECT_FALSE(queue.isEmpty());
        for (int i = 0; i < 4; ++i) EXPECT_EQ(queue.pop(), 10 * round + i);
        EXPECT_FALSE(queue.pop());
    }
}

TEST(CommandQueue, LosesAndDoublesNothingBetweenThreads) {
    struct Number {
        int thread;
        int value;
    };
    constexpr int kThreads = 3;
    constexpr int kNumbers = 2000;
    CommandQueue<Number, 16> queue;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < kThreads; ++thread)
        threads.emplace_back([&, thread] {
            for (int i = 0; i < kNumbers; ++i)
                while (!queue.push({thread, i})) std::this_thread::yield();
        });
    std::vector<int> next(kThreads, 0);
    bool inOrder = true;
    for (int taken = 0; taken < kThreads * kNumbers;) {
        const auto number = queue.pop();
        if (!number) {
            std::this_thread::yield();
            continue;
        }
        inOrder = inOrder && number->value == next[static_cast<std::size_t>(number->thread)]++;
        ++taken;
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_TRUE(inOrder);
    EXPECT_FALSE(queue.pop());
}

using Kind = LiveMessage::Kind;

LiveCommand message(Kind kind, std::uint8_t channel = 0, std::uint8_t key = 0) {
    return {LiveCommand::Kind::message, {0, kind, channel, key, 100}};
}

std::vector<LiveCommand> takeAll(LiveCommands& commands) {
    std::vector<LiveCommand> all;
    commands.takeAll([&](const LiveCommand& command) { all.push_back(command); });
    return all;
}

TEST(LiveCommands, ComeInTheirOrder) {
    LiveCommands commands;
    EXPECT_TRUE(commands.push({LiveCommand::Kind::locate, {}, 960.0}));
    EXPECT_TRUE(commands.push({LiveCommand::Kind::play}));
    const auto all = takeAll(commands);
    ASSERT_EQ(all.size(), 2u);
    EXPECT_EQ(all[0].kind, LiveCommand::Kind::locate);
    EXPECT_EQ(all[0].value, 960.0);
    EXPECT_EQ(all[1].kind, LiveCommand::Kind::play);
    EXPECT_TRUE(takeAll(commands).empty());
}

TEST(LiveCommands, NoteOffsAndTheEndOfSoundAreNeverRefused) {
    LiveCommands commands;
    while (commands.push(message(Kind::noteOn, 0, 60))) {
    }
    EXPECT_FALSE(commands.push({LiveCommand::Kind::play}));
    EXPECT_FALSE(commands.push(message(Kind::notesOff)));
    EXPECT_TRUE(commands.push(message(Kind::soundOff)));
    EXPECT_TRUE(commands.push(message(Kind::noteOff, 15, 127)));
    EXPECT_TRUE(commands.push(message(Kind::noteOff, 0, 0)));
    EXPECT_TRUE(commands.push(message(Kind::noteOff, 3, 64)));
    EXPECT_TRUE(commands.push(message(Kind::noteOff, 3, 64)));
    const auto all = takeAll(commands);
    ASSERT_EQ(all.size(), LiveCommands::kRoom + 5);
    std::vector<std::pair<int, int>> offs;
    for (std::size_t i = LiveCommands::kRoom; i < LiveCommands::kRoom + 4; ++i) {
        EXPECT_EQ(all[i].message.kind, Kind::noteOff);
        offs.emplace_back(all[i].message.channel, all[i].message.key);
    }
    const std::vector<std::pair<int, int>> expected{{0, 0}, {3, 64}, {3, 64}, {15, 127}};
    EXPECT_EQ(offs, expected);
    EXPECT_EQ(all.back().message.kind, Kind::soundOff);
    EXPECT_TRUE(takeAll(commands).empty());
}

}  // namespace
}  // namespace marnoth::test::live_commands_test
