#include <gtest/gtest.h>

#include <limits>
#include <memory>

#include "hostkit/LiveMessages.h"

namespace marnoth::test::live_messages_test {
namespace {

using Kind = LiveMessage::Kind;

LiveMessage on(std::int32_t frame, std::uint8_t key, std::uint8_t channel = 0) {
    return {frame, Kind::noteOn, channel, key, 100};
}
LiveMessage off(std::int32_t frame, std::uint8_t key, std::uint8_t channel = 0) {
    return {frame, Kind::noteOff, channel, key, 0};
}

TEST(ReadLiveMessage, TakesNotesWithTheirChannel) {
    const auto note = readLiveMessage(7, 0x9A, 60, 99);
    ASSERT_TRUE(note);
    EXPECT_EQ(note->frame, 7);
    EXPECT_EQ(note->kind, Kind::noteOn);
    EXPECT_EQ(note->channel, 10);
    EXPECT_EQ(note->key, 60);
    EXPECT_EQ(note->velocity, 99);
    const auto end = readLiveMessage(8, 0x8F, 61, 64);
    ASSERT_TRUE(end);
    EXPECT_EQ(end->kind, Kind::noteOff);
    EXPECT_EQ(end->channel, 15);
    EXPECT_EQ(end->key, 61);
}

TEST(ReadLiveMessage, TakesANoteOnOfVelocityZeroForANoteOff) {
    EXPECT_EQ(readLiveMessage(0, 0x90, 60, 0)->kind, Kind::noteOff);
    EXPECT_EQ(readLiveMessage(0, 0x90, 60, 0x80)->kind, Kind::noteOff) << "the eighth bit is no data";
    EXPECT_EQ(readLiveMessage(0, 0x90, 0xBC, 1)->key, 60);
}

TEST(ReadLiveMessage, TakesThreeControllersAndPassesOverTheRest) {
    EXPECT_EQ(readLiveMessage(0, 0xB3, 120, 0)->kind, Kind::soundOff);
    EXPECT_EQ(readLiveMessage(0, 0xB3, 121, 0)->kind, Kind::notesOff);
    EXPECT_EQ(readLiveMessage(0, 0xB3, 123, 0)->kind, Kind::notesOff);
    EXPECT_EQ(readLiveMessage(0, 0xB3, 123, 0)->channel, 3);
    for (std::uint8_t controller : {0, 1, 7, 64, 119, 122, 124, 127})
        EXPECT_FALSE(readLiveMessage(0, 0xB0, controller, 0)) << int{controller};
    for (std::uint8_t status : {0x00, 0x60, 0xA0, 0xC0, 0xD0, 0xE0, 0xF0, 0xF8, 0xFF})
        EXPECT_FALSE(readLiveMessage(0, status, 60, 100)) << int{status};
}

TEST(LiveMessages, ComeByFrameAndThoseOfAFrameInTheirOrder) {
    LiveMessages messages;
    for (const LiveMessage& message : {on(40, 1), on(10, 2), on(40, 3), on(-5, 4), on(10, 5), on(0, 6)})
        EXPECT_TRUE(messages.add(message));
    std::vector<std::pair<int, int>> came;
    while (!messages.empty()) {
        const std::int32_t frame = messages.nextFrame();
        came.emplace_back(frame, messages.take().key);
    }
    const std::vector<std::pair<int, int>> expected{{0, 4}, {0, 6}, {10, 2}, {10, 5}, {40, 1}, {40, 3}};
    EXPECT_EQ(came, expected);
}

TEST(LiveMessages, BehindABlockWaitForTheNext) {
    LiveMessages messages;
    messages.add(on(63, 1));
    messages.add(on(64, 2));
    messages.add(on(1000, 3));
    messages.add(on(std::numeric_limits<std::int32_t>::max(), 4));
    EXPECT_EQ(messages.take().key, 1);
    messages.advance(64);
    EXPECT_EQ(messages.nextFrame(), 0);
    messages.take();
    EXPECT_EQ(messages.nextFrame(), 936);
    messages.advance(2000);
    EXPECT_EQ(messages.nextFrame(), 0) << "what should have come is due at once";
    messages.take();
    EXPECT_EQ(messages.nextFrame(), std::numeric_limits<std::int32_t>::max() - 2064);
}

TEST(LiveMessages, KeepTheirOrderWhileRoomIsUsedOverAndOver) {
    LiveMessages messages;
    int added = 0, taken = 0;
    for (int round = 0; round < 300; ++round) {
        for (int i = 0; i < 11; ++i) messages.add(on(i, static_cast<std::uint8_t>(added++ % 128)));
        for (int i = 0; i < 10; ++i) ASSERT_EQ(messages.take().key, taken++ % 128);
        messages.advance(11);
    }
    while (!messages.empty()) ASSERT_EQ(messages.take().key, taken++ % 128);
    EXPECT_EQ(taken, added);
}

TEST(LiveMessages, FullRoomRefusesNoteOnsAndLeavesSomeForControllers) {
    LiveMessages messages;
    for (std::size_t i = 0; i < LiveMessages::kRoomForNotes; ++i) ASSERT_TRUE(messages.add(on(5, 60)));
    EXPECT_FALSE(messages.add(on(5, 60)));
    EXPECT_TRUE(messages.add({0, Kind::notesOff}));
    EXPECT_EQ(messages.take().kind, Kind::notesOff);
    EXPECT_FALSE(messages.add(on(5, 60)));
    messages.take();
    EXPECT_TRUE(messages.add(on(5, 60)));
}

TEST(LiveMessages, NoteOffsWithoutRoomComeBehindWhatWaits) {
    LiveMessages messages;
    for (std::size_t i = 0; i < LiveMessages::kRoomForNotes; ++i) messages.add(on(50, 60));
    EXPECT_TRUE(messages.add(off(20, 127, 15)));
    EXPECT_TRUE(messages.add(off(20, 3, 2)));
    EXPECT_TRUE(messages.add(off(20, 127, 15)));
    EXPECT_EQ(messages.nextFrame(), 50);
    for (std::size_t i = 0; i < LiveMessages::kRoomForNotes; ++i)
        ASSERT_EQ(messages.take().kind, Kind::noteOn);
    messages.add(on(51, 1));
    std::vector<std::pair<int, int>> offs;
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(messages.nextFrame(), 50);
        const LiveMessage message = messages.take();
        EXPECT_EQ(message.kind, Kind::noteOff);
        offs.emplace_back(message.channel, message.key);
    }
    const std::vector<std::pair<int, int>> expected{{2, 3}, {15, 127}, {15, 127}};
    EXPECT_EQ(offs, expected);
    EXPECT_EQ(messages.take().key, 1);
    EXPECT_TRUE(messages.empty());
}

TEST(LiveMessages, LateNoteOffsWaitForTheirBlockToo) {
    LiveMessages messages;
    for (std::size_t i = 0; i < LiveMessages::kRoomForNotes; ++i) messages.add(on(0, 60));
    messages.add(off(100, 60));
    for (std::size_t i = 0; i < LiveMessages::kRoomForNotes; ++i) messages.take();
    messages.advance(64);
    EXPECT_EQ(messages.nextFrame(), 36);
    EXPECT_EQ(messages.take().key, 60);
    EXPECT_TRUE(messages.empty());
}

}  // namespace
}  // namespace marnoth::test::live_messages_test
