#include <gtest/gtest.h>

#include "shells/desktop/playing/SongReader.h"

namespace marnoth::test::song_reader_test {
namespace {

using Lines = std::vector<std::string>;

/// Two notes that meet, and one over both.
Song threeNotes() {
    Song song;
    song.notes = {{0, 1920, 0, 40, 100}, {480, 960, 0, 60, 100}, {960, 1440, 0, 60, 100}};
    song.tempos = {{0, 100.0}, {960, 150.0}};
    song.end = 3840;
    return song;
}

Lines read(SongReader& reader, double end) {
    Lines lines;
    const auto line = [&](const char* what, const Song::Note& note, double tick) {
        lines.push_back(what + std::to_string(note.key) + "@" + std::to_string(static_cast<int>(tick)));
    };
    reader.read(
        end, [&](const Song::Note& note, double tick) { line("on ", note, tick); },
        [&](const Song::Note& note, double tick) { line("off ", note, tick); });
    return lines;
}

TEST(SongReader, GivesWhatBeginsAndEndsBeforeTheEndOfAStretch) {
    const Song song = threeNotes();
    SongReader reader;
    reader.setSong(&song);
    EXPECT_EQ(read(reader, 480), (Lines{"on 40@0"}));
    EXPECT_EQ(read(reader, 481), (Lines{"on 60@480"}));
    EXPECT_EQ(read(reader, 5000), (Lines{"off 60@960", "on 60@960", "off 60@1440", "off 40@1920"}));
    EXPECT_EQ(read(reader, 9000), Lines{});
}

TEST(SongReader, GoesOnFromAnywhereWithTheNotesThatBeginThere) {
    const Song song = threeNotes();
    SongReader reader;
    reader.setSong(&song);
    read(reader, 700);
    reader.locate(960);
    EXPECT_EQ(read(reader, 1000), (Lines{"on 60@960"})) << "what sounded has ended with the jump";
    reader.locate(0);
    EXPECT_EQ(read(reader, 1), (Lines{"on 40@0"}));
}

TEST(SongReader, KnowsTheTempoAndItsNextChange) {
    const Song song = threeNotes();
    SongReader reader;
    EXPECT_EQ(reader.tempoAt(0, 77.0), 77.0) << "without a song";
    EXPECT_EQ(reader.nextTempoChange(0), SongReader::kNever);
    reader.setSong(&song);
    EXPECT_EQ(reader.tempoAt(959.9, 77.0), 100.0);
    EXPECT_EQ(reader.tempoAt(960, 77.0), 150.0);
    EXPECT_EQ(reader.tempoAt(-5, 77.0), 100.0);
    EXPECT_EQ(reader.nextTempoChange(0), 960);
    EXPECT_EQ(reader.nextTempoChange(960), SongReader::kNever);
}

TEST(SongReader, NotesBeyondItsRoomArePassedOver) {
    Song song;
    for (std::size_t note = 0; note < SongReader::kMostSounding + 10; ++note)
        song.notes.push_back({0, 10, 0, 1, 1});
    song.tempos = {{0, 120.0}};
    SongReader reader;
    reader.setSong(&song);
    EXPECT_EQ(read(reader, 1).size(), SongReader::kMostSounding);
    EXPECT_EQ(read(reader, 11).size(), SongReader::kMostSounding) << "each that began ends";
}

}  // namespace
}  // namespace marnoth::test::song_reader_test
