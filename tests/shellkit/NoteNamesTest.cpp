#include <gtest/gtest.h>

#include "shellkit/text/NoteNames.h"

namespace marnoth::test::note_names_test {
namespace {

TEST(NoteNames, KeysCountFromA) {
    EXPECT_EQ(keyNamed("A"), 0u);
    EXPECT_EQ(keyNamed("Bb"), 1u);
    EXPECT_EQ(keyNamed("A#"), 1u);
    EXPECT_EQ(keyNamed("B"), 2u);
    EXPECT_EQ(keyNamed("C"), 3u);
    EXPECT_EQ(keyNamed("f#"), 9u);
    EXPECT_EQ(keyNamed("G"), 10u);
    EXPECT_EQ(keyNamed("Ab"), 11u);
    for (const char* text : {"", "H", "C##", "1", "Am", "@", "a4"}) EXPECT_FALSE(keyNamed(text)) << text;
}

TEST(NoteNames, AKeyIsWrittenWithASharp) {
    EXPECT_EQ(keyName(0), "A");
    EXPECT_EQ(keyName(1), "A#");
    EXPECT_EQ(keyName(3), "C");
    EXPECT_EQ(keyName(11), "G#");
    for (std::uint32_t key = 0; key < 12; ++key) EXPECT_EQ(keyNamed(keyName(static_cast<int>(key))), key);
}

TEST(NoteNames, RootsHaveTheScaleOfLoops) {
    // A file's A is 0 as its reader counts, and 3 once it is loaded.
    const char* const names[] = {"F#", "G", "G#", "A", "A#", "B", "C", "C#", "D", "D#", "E", "F"};
    for (int root = 0; root < 12; ++root) EXPECT_EQ(rootName(root), names[root]);
    EXPECT_EQ(rootName(-1), "-1");
    EXPECT_EQ(rootName(12), "12");
}

TEST(NoteNames, NoteSixtyIsC5) {
    EXPECT_EQ(noteName(60), "C5");
    EXPECT_EQ(noteName(0), "C0");
    EXPECT_EQ(noteName(69), "A5");
    EXPECT_EQ(noteName(127), "G10");
}

TEST(NoteNames, WhatIsNoKeyAndNoNoteIsItsNumber) {
    EXPECT_EQ(keyName(-1), "-1");
    EXPECT_EQ(keyName(12), "12");
    EXPECT_EQ(noteName(-1), "-1");
    EXPECT_EQ(noteName(128), "128");
}

}  // namespace
}  // namespace marnoth::test::note_names_test
