#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <random>
#include <vector>

#include "hostkit/LivePieces.h"
#include "hostkit/MakeObject.h"

namespace marnoth::test::live_pieces_test {
namespace {

/// What one piece was told: its first frame, and the messages as text.
struct Told {
    std::int32_t frame;
    std::string what;
    friend bool operator==(const Told&, const Told&) = default;
    friend std::ostream& operator<<(std::ostream& out, const Told& told) {
        return out << told.frame << ": " << told.what;
    }
};

struct Rig {
    void on(std::int32_t frame, int key, int channel = 0) { add(frame, 0x90 | channel, key, 100); }
    void off(std::int32_t frame, int key, int channel = 0) { add(frame, 0x80 | channel, key, 64); }
    void controller(std::int32_t frame, int number, int channel = 0) {
        add(frame, 0xB0 | channel, number, 0);
    }
    void add(std::int32_t frame, int status, int data1, int data2) {
        const auto message =
            readLiveMessage(frame, static_cast<std::uint8_t>(status), static_cast<std::uint8_t>(data1),
                            static_cast<std::uint8_t>(data2));
        EXPECT_TRUE(!message || pieces->add(*message));
    }

    std::vector<Told> block(std::int32_t frames) {
        std::vector<Told> told;
        for (std::int32_t frame = 0; frame < frames;) {
            const LivePiece piece = pieces->next(frame, *batch);
            EXPECT_GT(piece.end, frame);
            std::string what;
            for (const RawMidiEvent& event : batch->events()) {
                what += (event.status & 0xF0) == 0x90 ? " on " : " off ";
                what += std::to_string(event.data1);
            }
            if (piece.stopsSound) what += " stop";
            told.push_back({frame, what});
            frame = std::min(piece.end, frames);
        }
        pieces->advance(frames);
        return told;
    }

    std::unique_ptr<LivePieces> pieces = std::make_unique<LivePieces>();
    RefPtr<RawEventBatch> batch = makeObject<RawEventBatch>();
};

using Pieces = std::vector<Told>;

TEST(LivePieces, ABlockWithoutMessagesIsOnePiece) {
    Rig rig;
    EXPECT_EQ(rig.block(64), (Pieces{{0, ""}}));
}

TEST(LivePieces, CutAtEachFrameWithNotes) {
    Rig rig;
    rig.on(0, 60);
    rig.on(10, 61);
    rig.on(10, 62);
    rig.off(63, 60);
    EXPECT_EQ(rig.block(64), (Pieces{{0, " on 60"}, {10, " on 61 on 62"}, {63, " off 60"}}));
    EXPECT_EQ(rig.block(64), (Pieces{{0, ""}}));
}

TEST(LivePieces, OrderByFrameWhateverOrderTheyCameIn) {
    Rig rig;
    rig.off(30, 60);
    rig.on(10, 60);
    EXPECT_EQ(rig.block(64), (Pieces{{0, ""}, {10, " on 60"}, {30, " off 60"}}));
}

TEST(LivePieces, OfOtherMessagesNothingComesAndNothingIsCut) {
    Rig rig;
    rig.controller(10, 64);
    rig.add(20, 0xE0, 0, 64);
    EXPECT_EQ(rig.block(64), (Pieces{{0, ""}}));
}

TEST(LivePieces, ANoteLastsAFrameAtLeast) {
    Rig rig;
    rig.on(10, 60);
    rig.off(10, 60);
    EXPECT_EQ(rig.block(64), (Pieces{{0, ""}, {10, " on 60"}, {11, " off 60"}}));
}

TEST(LivePieces, ANoteOffOfTheLastFrameComesWithTheNextBlock) {
    Rig rig;
    rig.on(63, 60);
    rig.off(63, 60);
    EXPECT_EQ(rig.block(64), (Pieces{{0, ""}, {63, " on 60"}}));
    EXPECT_EQ(rig.block(64), (Pieces{{0, " off 60"}}));
}

TEST(LivePieces, SeveralNoteOffsOfAKeyComeOneByOne) {
    Rig rig;
    rig.on(0, 60, 0);
    rig.on(0, 60, 1);
    rig.on(0, 60, 2);
    rig.on(0, 61, 2);
    EXPECT_EQ(rig.block(16), (Pieces{{0, " on 60 on 60 on 60 on 61"}}));
    rig.off(4, 60, 0);
    rig.off(4, 60, 1);
    rig.off(4, 60, 2);
    rig.off(4, 61, 2);
    EXPECT_EQ(rig.block(16), (Pieces{{0, ""}, {4, " off 60 off 61"}, {5, " off 60"}, {6, " off 60"}}));
}

TEST(LivePieces, ANoteOffNobodyWaitsForEndsNothing) {
    Rig rig;
    rig.off(3, 60);
    rig.on(5, 60);
    EXPECT_EQ(rig.block(16), (Pieces{{0, ""}, {3, ""}, {5, " on 60"}}));
    rig.off(5, 60, 7);
    EXPECT_EQ(rig.block(16), (Pieces{{0, ""}, {5, ""}})) << "the note of another channel is held";
}

TEST(LivePieces, AKeyStruckAgainOnTheFrameOfItsEndEndsTheFormerNote) {
    Rig rig;
    rig.on(0, 60);
    rig.block(16);
    rig.off(4, 60);
    rig.on(4, 60);
    EXPECT_EQ(rig.block(16), (Pieces{{0, ""}, {4, " on 60 off 60"}}));
    rig.off(4, 60);
    EXPECT_EQ(rig.block(16), (Pieces{{0, ""}, {4, " off 60"}}));
}

TEST(LivePieces, AllNotesOffEndsTheNotesOfItsChannel) {
    for (int number : {121, 123}) {
        Rig rig;
        rig.on(0, 60, 0);
        rig.on(0, 61, 1);
        rig.on(0, 62, 1);
        rig.block(16);
        rig.controller(7, number, 1);
        EXPECT_EQ(rig.block(16), (Pieces{{0, ""}, {7, " off 61 off 62"}})) << number;
        rig.off(0, 61, 1);
        rig.off(1, 60, 0);
        EXPECT_EQ(rig.block(16), (Pieces{{0, ""}, {1, " off 60"}}));
    }
}

TEST(LivePieces, AllSoundOffEndsEveryNoteAndThenAllSound) {
    Rig rig;
    rig.on(0, 60, 0);
    rig.on(0, 61, 1);
    rig.on(0, 61, 2);
    rig.block(16);
    rig.controller(7, 120, 5);
    EXPECT_EQ(rig.block(16), (Pieces{{0, ""}, {7, " off 60 off 61"}, {8, " off 61 stop"}}));
}

TEST(LivePieces, AllSoundOffAmongNotesOfItsFrameEndsThoseBeforeItAlone) {
    Rig rig;
    rig.on(7, 60);
    rig.controller(7, 120);
    rig.on(7, 61);
    EXPECT_EQ(rig.block(16), (Pieces{{0, ""}, {7, " on 60"}, {8, " off 60 stop"}, {9, " on 61"}}));
}

TEST(LivePieces, AllSoundOffIsToldThoughNoNoteIsHeld) {
    Rig rig;
    rig.controller(15, 120);
    EXPECT_EQ(rig.block(16), (Pieces{{0, ""}, {15, " stop"}}));
}

TEST(LivePieces, ForgetWhatSoundedButNotWhatWaits) {
    Rig rig;
    rig.on(0, 60);
    rig.on(20, 61);
    rig.block(16);
    rig.pieces->forgetSounding();
    rig.off(0, 60);
    EXPECT_EQ(rig.block(16), (Pieces{{0, ""}, {4, " on 61"}}));
}

TEST(LivePieces, NotesRefusedForWantOfRoomLeaveNoNoteHanging) {
    Rig rig;
    int refused = 0;
    for (int i = 0; i < 1500; ++i)
        refused +=
            !rig.pieces->add({i / 100, LiveMessage::Kind::noteOn, 0, static_cast<std::uint8_t>(i % 128), 1});
    for (int i = 0; i < 1500; ++i)
        EXPECT_TRUE(
            rig.pieces->add({20, LiveMessage::Kind::noteOff, 0, static_cast<std::uint8_t>(i % 128), 0}));
    EXPECT_EQ(refused, 1500 - static_cast<int>(LiveMessages::kRoomForNotes));
    std::map<std::string, int> count;
    for (const Told& told : rig.block(1000)) {
        for (std::size_t at = 0; (at = told.what.find(" o", at)) != std::string::npos; ++at)
            ++count[told.what.substr(at, 3)];
    }
    EXPECT_EQ(count[" on"], static_cast<int>(LiveMessages::kRoomForNotes));
    EXPECT_EQ(count[" of"], count[" on"]);
}

/// The instrument's pairing, as told: in each piece a flag for each key with note-offs, and each flag ends
/// the oldest open note of its key.
struct Pairing {
    std::map<int, std::vector<int>> open;  ///< piece of each open note's start, by key, the oldest first
    int piece = 0;

    void take(const RawEventBatch& batch) {
        std::map<int, bool> off;
        for (const RawMidiEvent& event : batch.events()) {
            if ((event.status & 0xF0) == 0x90)
                open[event.data1].push_back(piece);
            else
                off[event.data1] = true;
        }
        for (const auto& [key, _] : off) {
            ASSERT_FALSE(open[key].empty()) << "a note-off without a note";
            EXPECT_LT(open[key].front(), piece) << "a note that ends in the piece of its start";
            open[key].erase(open[key].begin());
        }
        ++piece;
    }
};

TEST(LivePieces, WhateverIsPlayedNoNoteHangs) {
    std::mt19937 random(5);
    const auto any = [&](int count) { return static_cast<int>(random() % static_cast<unsigned>(count)); };
    for (int run = 0; run < 50; ++run) {
        Rig rig;
        Pairing instrument;
        std::map<std::pair<int, int>, int> held;
        const auto play = [&](std::int32_t frames) {
            for (std::int32_t frame = 0; frame < frames;) {
                const LivePiece piece = rig.pieces->next(frame, *rig.batch);
                instrument.take(*rig.batch);
                frame = std::min(piece.end, frames);
            }
            rig.pieces->advance(frames);
        };
        for (int block = 0; block < 40; ++block) {
            for (int frame = 0; frame < 32; frame += any(12)) {
                const int key = 60 + any(4), channel = any(3);
                if (any(2))
                    rig.on(frame, key, channel), ++held[{channel, key}];
                else
                    rig.off(frame, key, channel),
                        held[{channel, key}] = std::max(0, held[{channel, key}] - 1);
            }
            play(32);
        }
        play(2000);
        int expected = 0, open = 0;
        for (const auto& [_, count] : held) expected += count;
        for (const auto& [_, notes] : instrument.open) open += static_cast<int>(notes.size());
        ASSERT_EQ(open, expected) << run;
        rig.controller(0, 120);
        play(2000);
        for (const auto& [key, notes] : instrument.open) ASSERT_TRUE(notes.empty()) << key;
    }
}

}  // namespace
}  // namespace marnoth::test::live_pieces_test
