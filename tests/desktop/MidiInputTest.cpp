#include <gtest/gtest.h>

#include <tuple>
#include <vector>

#include "shells/desktop/midi/MidiInput.h"

namespace marnoth::test::midi_input_test {
namespace {

using std::chrono::microseconds;

constexpr std::uint32_t kRate = 48000;
constexpr std::int32_t kFrames = 480;  // 10 milliseconds

/// The time of the tests, in microseconds from their start.
std::int64_t timeNow = 0;

StreamClock::Moment testTime() {
    return StreamClock::Moment() + microseconds(timeNow);
}

/// Notes what comes, and in which block.
struct Listener final : AudioClient {
    using Note = std::tuple<int, std::int32_t, int>;  // block, frame, first data byte

    bool prepare(std::uint32_t /*rate*/, std::int32_t /*mostFrames*/) override { return true; }
    void midi(std::int32_t frame, std::uint8_t status, std::uint8_t data1, std::uint8_t /*data2*/) override {
        notes.emplace_back(blocks, frame, data1);
        statuses.push_back(status);
    }
    void render(std::int32_t /*frames*/, OutputPointers /*outputs*/) override { ++blocks; }
    void dropout() override {}

    int blocks = 0;
    std::vector<Note> notes;
    std::vector<std::uint8_t> statuses;
};

/// Ports that send, and a system that asks for blocks.
struct Studio {
    Studio() { input.prepare(kRate, kFrames); }
    void noteAt(std::int64_t time, std::uint8_t key) {
        timeNow = time;
        input.receive(0x90, key, 100);
    }
    void blockAt(std::int64_t time) {
        timeNow = time;
        input.render(kFrames, {});
    }

    Listener listener;
    MidiInput input{listener, testTime};
};

using Notes = std::vector<Listener::Note>;

TEST(MidiInput, AMessageSoundsOneBlockLaterThanItCame) {
    Studio studio;
    studio.blockAt(0);
    studio.noteAt(0, 60);
    studio.noteAt(2'500, 61);
    studio.noteAt(9'975, 62);
    studio.blockAt(10'000);
    studio.noteAt(15'000, 63);
    studio.blockAt(20'000);
    EXPECT_EQ(studio.listener.notes, (Notes{{1, 0, 60}, {1, 120, 61}, {1, 479, 62}, {2, 240, 63}}));
}

TEST(MidiInput, ABlockThatComesLateMovesNoNote) {
    Studio studio;
    studio.blockAt(0);
    studio.noteAt(5'000, 60);
    studio.noteAt(11'000, 61);
    studio.blockAt(12'000);
    studio.blockAt(20'000);
    EXPECT_EQ(studio.listener.notes, (Notes{{1, 240, 60}, {2, 48, 61}}));
}

TEST(MidiInput, BlocksThatComeInPairsMoveNoNoteByMoreThanAFrame) {
    Studio studio;
    studio.blockAt(0);
    studio.blockAt(0);
    studio.noteAt(5'000, 60);
    studio.noteAt(15'000, 61);
    studio.blockAt(20'000);
    studio.blockAt(20'000);
    ASSERT_EQ(studio.listener.notes.size(), 2u);
    for (int note = 0; note < 2; ++note) {
        const auto [block, frame, key] = studio.listener.notes[static_cast<std::size_t>(note)];
        EXPECT_EQ(block, 2 + note);
        EXPECT_NEAR(frame, 240, 1);
        EXPECT_EQ(key, 60 + note);
    }
}

TEST(MidiInput, BehindAPauseNotesAreAsSoonAsBefore) {
    Studio studio;
    studio.blockAt(0);
    studio.noteAt(995'000, 60);
    studio.blockAt(1'000'000);
    EXPECT_EQ(studio.listener.notes, (Notes{{1, 240, 60}}));
}

TEST(MidiInput, FollowsAnotherClockWithinATenthOfABlock) {
    Studio studio;
    // 100 millionths slower than it says.
    constexpr std::int64_t kPeriod = 10'001;
    constexpr int kBlocks = 20'000;
    for (int block = 0; block < kBlocks; ++block) studio.blockAt(block * kPeriod);
    studio.noteAt(kBlocks * kPeriod - 5'000, 60);
    studio.blockAt(kBlocks * kPeriod);
    ASSERT_EQ(studio.listener.notes.size(), 1u);
    EXPECT_NEAR(std::get<1>(studio.listener.notes.front()), 240, kFrames / 10);
}

TEST(MidiInput, MoreThanItsRoomEndsAllNotes) {
    Studio studio;
    for (int i = 0; i < 1025; ++i) studio.noteAt(0, 60);
    studio.blockAt(0);
    studio.noteAt(5'000, 61);
    studio.blockAt(10'000);
    ASSERT_EQ(studio.listener.notes.size(), 17u);
    for (std::size_t channel = 0; channel < 16; ++channel) {
        EXPECT_EQ(studio.listener.notes[channel], Listener::Note(0, 0, 123));
        EXPECT_EQ(studio.listener.statuses[channel], 0xB0 + channel);
    }
    EXPECT_EQ(studio.listener.notes.back(), Listener::Note(1, 240, 61));
}

TEST(MidiInput, HearsNoClockAndNoSystemMessages) {
    Studio studio;
    for (const std::uint8_t status : {0x00, 0x7F, 0xF0, 0xF8, 0xFE, 0xFF}) studio.input.receive(status, 1, 2);
    studio.blockAt(0);
    EXPECT_TRUE(studio.listener.notes.empty());
}

}  // namespace
}  // namespace marnoth::test::midi_input_test
