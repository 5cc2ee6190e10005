#include <gtest/gtest.h>

#include "shells/cli/UnansweredNotes.h"

namespace marnoth::test::unanswered_notes_test {
namespace {

SynthEvent noteOf(std::uint8_t key, std::uint8_t channel = 0, std::uint8_t velocity = 100) {
    SynthEvent note;
    note.type = SynthEventType::note;
    note.note = key;
    note.channel = channel;
    note.velocity = velocity;
    return note;
}

/// Of pads on the keys 60 to 62, and on 64 of channel 10 above velocity 50.
std::vector<std::string> told(const std::vector<SynthEvent>& notes) {
    const std::vector<PadAnswers> pads{{{0, 60, 62, 60, 0, 127}, -1}, {{3, 64, 64, 64, 51, 127}, 9}};
    return tellUnanswered(notes, pads);
}

using Sentences = std::vector<std::string>;

TEST(UnansweredNotes, NothingIsToldOfNotesThatAPadAnswers) {
    EXPECT_EQ(told({noteOf(60), noteOf(62, 15, 1), noteOf(64, 9, 51)}), Sentences{});
    EXPECT_EQ(told({}), Sentences{});
}

TEST(UnansweredNotes, AreCountedWithTheirLowestAndHighestKey) {
    std::vector<SynthEvent> notes{noteOf(60)};
    // Middle C, key 60, is C5: C2 is three octaves below.
    for (int i = 0; i < 37; ++i) notes.push_back(noteOf(static_cast<std::uint8_t>(24 + i % 12)));
    EXPECT_EQ(told(notes), Sentences{"37 notes on keys that no pad answers: C2 to B2"});
    EXPECT_EQ(told({noteOf(24)}), Sentences{"1 note on a key that no pad answers: C2"});
    EXPECT_EQ(told({noteOf(24), noteOf(24)}), Sentences{"2 notes on a key that no pad answers: C2"});
}

TEST(UnansweredNotes, OfAnotherChannelOrVelocityAreToldByThemselves) {
    EXPECT_EQ(told({noteOf(64, 8), noteOf(64, 9, 50), noteOf(64, 9), noteOf(63)}),
              (Sentences{"1 note on a key that no pad answers: D#5",
                         "2 notes whose channel or velocity no pad answers: E5"}));
}

}  // namespace
}  // namespace marnoth::test::unanswered_notes_test
