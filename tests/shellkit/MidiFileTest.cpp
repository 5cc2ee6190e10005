#include <gtest/gtest.h>

#include "shellkit/MidiBytes.h"
#include "shellkit/files/Failure.h"
#include "shellkit/midi/MidiFile.h"

namespace marnoth::test::midi_file_test {
namespace {

// Events are packed records: `+` takes a field's value, since no reference may be bound to the field itself.

MidiPart read(const Bytes& file) {
    const TempPath path(".mid");
    WaveFile::writeBytes(path.path(), file);
    return readMidi(path.string());
}

TEST(MidiFile, GivesNotesInTicksOfTheInstrument) {
    // 96 pulses to the beat: ten ticks each.
    const MidiPart part =
        read(midi(96, {0, 0x91, 60, 100, 96, 0x81, 60, 0, 1, 0x91, 62, 90, 47, 0x91, 62, 0}));
    ASSERT_EQ(part.notes.size(), 2u);
    EXPECT_EQ(+part.notes[0].time, 0);
    EXPECT_EQ(part.notes[0].channel, 1);
    EXPECT_EQ(part.notes[0].note, 60);
    EXPECT_EQ(part.notes[0].velocity, 100);
    EXPECT_EQ(+part.notes[0].duration, 960u);
    EXPECT_EQ(+part.notes[1].time, 970);
    EXPECT_EQ(+part.notes[1].duration, 470u);
}

TEST(MidiFile, RoundsPulsesThatAreNoWholeTicks) {
    // 7 pulses to the beat: pulse 1 is tick 137.14, pulse 3 tick 411.43.
    const MidiPart part = read(midi(7, {1, 0x90, 60, 1, 2, 0x80, 60, 0}));
    EXPECT_EQ(+part.notes.at(0).time, 137);
    EXPECT_EQ(+part.notes.at(0).duration, 411u - 137u);
}

TEST(MidiFile, ANoteOffEndsTheOldestNoteOfItsKeyAndChannel) {
    const MidiPart part =
        read(midi(96, {0, 0x90, 60, 1, 10, 0x90, 60, 2, 10, 0x91, 60, 0, 0, 0x80, 60, 0, 10, 0x80, 60, 0}));
    ASSERT_EQ(part.notes.size(), 2u);
    EXPECT_EQ(+part.notes[0].duration, 200u);
    EXPECT_EQ(+part.notes[1].duration, 200u);
}

TEST(MidiFile, OpenNotesEndWithTheFileAndNoneIsOfZeroLength) {
    const MidiPart part = read(midi(96, {0, 0x90, 60, 1, 0, 0x80, 60, 0, 0, 0x90, 64, 1}, 48));
    ASSERT_EQ(part.notes.size(), 2u);
    EXPECT_EQ(+part.notes[0].duration, 1u);
    EXPECT_EQ(+part.notes[1].duration, 480u);
}

TEST(MidiFile, TakesAllTempi) {
    // 600000 microseconds are 100 beats per minute, 300000 are 200.
    const MidiPart part = read(midi(96, {0,  0xFF, 0x51, 3, 0x09, 0x27, 0xC0, 0, 0x90, 60, 1,
                                         96, 0xFF, 0x51, 3, 0x04, 0x93, 0xE0, 0, 0x80, 60, 0}));
    ASSERT_EQ(part.tempo.changes().size(), 2u);
    EXPECT_EQ(part.tempo.changes()[0].tick, 0);
    EXPECT_DOUBLE_EQ(part.tempo.changes()[0].beatsPerMinute, 100);
    EXPECT_EQ(part.tempo.changes()[1].tick, 960);
    EXPECT_DOUBLE_EQ(part.tempo.changes()[1].beatsPerMinute, 200);
}

TEST(MidiFile, EndsAtAWholeBarOfItsTimeSignature) {
    EXPECT_EQ(read(midi(96, {0, 0x90, 60, 1, 97, 0x80, 60, 0})).endTicks, 4 * 960);
    // 3/4: four beats are two bars.
    EXPECT_EQ(read(midi(24, {0, 0xFF, 0x58, 4, 3, 2, 24, 8, 0, 0x90, 60, 1, 96, 0x80, 60, 0})).endTicks,
              6 * 960);
    // 6/8: a bar of three beats that the note fills.
    EXPECT_EQ(read(midi(24, {0, 0xFF, 0x58, 4, 6, 3, 24, 8, 0, 0x90, 60, 1, 72, 0x80, 60, 0})).endTicks,
              3 * 960);
}

TEST(MidiFile, RefusesWhatItCannotPlay) {
    EXPECT_THROW(readMidi("/nowhere/at/all.mid"), FileFailure);
    EXPECT_THROW(read(Bytes{'M', 'T', 'h', 'd', 0, 0}), FileFailure);
    EXPECT_THROW(read(Bytes(1000, 0xFF)), FileFailure);
    EXPECT_THROW(read(midi(96, {0, 0xC0, 5})), FileFailure);
    EXPECT_THROW(read(midi(0xE728, {0, 0x90, 60, 1})), FileFailure);
}

TEST(MidiFile, TakesTheTracksOfAPieceTogether) {
    // Tempo in the first, notes in the two others; the third holds the end.
    const MidiPart part = read(joined({midiHeader(1, 3, 96), midiTrack({96, 0xFF, 0x51, 3, 0x09, 0x27, 0xC0}),
                                       midiTrack({48, 0x90, 60, 1, 48, 0x80, 60, 0}),
                                       midiTrack({24, 0x91, 62, 1, 48, 0x81, 62, 0}, 120)}));
    ASSERT_EQ(part.notes.size(), 2u);
    EXPECT_EQ(part.notes[0].note, 62);
    EXPECT_EQ(+part.notes[0].time, 240);
    EXPECT_EQ(+part.notes[0].duration, 480u);
    EXPECT_EQ(part.notes[1].note, 60);
    EXPECT_EQ(+part.notes[1].time, 480);
    ASSERT_EQ(part.tempo.changes().size(), 2u);
    EXPECT_EQ(part.tempo.changes()[1].tick, 960);
    EXPECT_EQ(part.endTicks, 4 * 960);
}

TEST(MidiFile, AtOneTimeTheEarlierTrackComesFirst) {
    // The first ends a key at beat 1 that nobody holds yet; the second begins and holds it there.
    const MidiPart part = read(joined(
        {midiHeader(1, 2, 96), midiTrack({96, 0x80, 60, 0}), midiTrack({96, 0x90, 60, 7, 96, 0x80, 60, 0})}));
    ASSERT_EQ(part.notes.size(), 1u);
    EXPECT_EQ(+part.notes[0].duration, 960u);
}

TEST(MidiFile, PassesOverWhatIsNoTrack) {
    const Bytes notes = midiTrack({0, 0x90, 60, 1, 96, 0x80, 60, 0});
    const std::vector<Bytes> files{
        joined({midiHeader(0, 1, 96), midiChunk("XFIH", {1, 2, 3}), notes}),
        joined({midiHeader(0, 1, 96), notes, midiChunk("XFKM", {1, 2, 3})}),
        joined({midiHeader(0, 1, 96), notes, {0, 0, 0}}),
        joined({midiHeader(0, 1, 96), notes, Bytes(100, 0x1A)}),
        joined({midiHeader(1, 3, 96), notes}),
    };
    for (const Bytes& file : files) EXPECT_EQ(read(file).notes.size(), 1u);
}

TEST(MidiFile, SystemExclusiveMessagesMayComeInParts) {
    // The beginning, its rest, and bytes of any kind, between the two ends of a note.
    const MidiPart part = read(midi(96, {0,  0x90, 60, 1,    24, 0xF0, 2, 0x43, 0x10, 24, 0xF7, 2, 0x4C, 0xF7,
                                         24, 0xF7, 1,  0xF3, 0,  0xF0, 0, 24,   0x80, 60, 0}));
    ASSERT_EQ(part.notes.size(), 1u);
    EXPECT_EQ(+part.notes[0].duration, 960u);
}

TEST(MidiFile, ATrackNeedsNoEnd) {
    const Bytes note{0, 0x90, 60, 1, 96, 0x80, 60, 0};
    EXPECT_EQ(+read(joined({midiHeader(0, 1, 96), midiChunk("MTrk", note)})).notes.at(0).duration, 960u);
    // A time without an event counts still: four beats and one pulse are two bars.
    const Bytes later = joined({note, {0x82, 0x21}});
    EXPECT_EQ(read(joined({midiHeader(0, 1, 96), midiChunk("MTrk", later)})).endTicks, 8 * 960);
    const Bytes empty = midiChunk("MTrk", {});
    EXPECT_EQ(read(joined({midiHeader(1, 2, 96), empty, midiChunk("MTrk", note)})).notes.size(), 1u);
}

TEST(MidiFile, ARunningStatusStaysBehindMetaAndSystemEvents) {
    const MidiPart part = read(
        midi(96, {0, 0x90, 60, 1, 0, 0xFF, 1, 1, 'x', 96, 60, 0, 0, 0xF0, 1, 0xF7, 0, 62, 1, 96, 62, 0}));
    ASSERT_EQ(part.notes.size(), 2u);
    EXPECT_EQ(+part.notes[0].duration, 960u);
    EXPECT_EQ(part.notes[1].note, 62);
    EXPECT_EQ(+part.notes[1].time, 960);
}

Bytes rmid(const std::vector<Bytes>& chunks) {
    Bytes body;
    append(body, std::string("RMID"));
    for (const Bytes& chunk : chunks) body.insert(body.end(), chunk.begin(), chunk.end());
    Bytes file;
    append(file, std::string("RIFF"));
    append(file, static_cast<std::uint32_t>(body.size()));
    return joined({file, body});
}

Bytes riffChunk(const std::string& id, const Bytes& body) {
    Bytes chunk;
    append(chunk, id);
    append(chunk, static_cast<std::uint32_t>(body.size()));
    chunk.insert(chunk.end(), body.begin(), body.end());
    if (body.size() % 2) chunk.push_back(0);
    return chunk;
}

TEST(MidiFile, MayStandInARiffForm) {
    const Bytes file = midi(96, {0, 0x90, 60, 1, 96, 0x80, 60, 0});
    EXPECT_EQ(read(rmid({riffChunk("data", file)})).notes.size(), 1u);
    EXPECT_EQ(read(rmid({riffChunk("DISP", {1, 2, 3}), riffChunk("data", file)})).notes.size(), 1u);
    EXPECT_THROW(read(rmid({riffChunk("DISP", {1, 2, 3})})), FileFailure);
    EXPECT_THROW(read(rmid({})), FileFailure);
    EXPECT_THROW(read(WaveFile().frames(100).bytes()), FileFailure);
}

TEST(MidiFile, SaysWhatKindItDoesNotPlay) {
    const Bytes notes = midiTrack({0, 0x90, 60, 1, 96, 0x80, 60, 0});
    const auto reason = [&](const Bytes& head) -> std::string {
        try {
            read(joined({head, notes}));
        } catch (const FileFailure& failure) {
            return failure.what();
        }
        return "none";
    };
    // 25 film frames a second, 40 pulses each.
    EXPECT_NE(reason(midiHeader(0, 1, 0xE728)).find("film frames"), std::string::npos);
    EXPECT_NE(reason(midiHeader(2, 1, 96)).find("pieces of their own"), std::string::npos);
    EXPECT_NE(reason(midiHeader(0, 1, 0)).find("no length"), std::string::npos);
}

TEST(MidiFile, RefusesDamageAnywhere) {
    const Bytes good = midi(96, {0, 0x90, 60, 1, 10, 61, 1, 0, 0xF0, 2, 1, 0xF7, 0, 0xFF, 0x01, 1, 'x'}, 96);
    EXPECT_EQ(read(good).notes.size(), 2u);
    for (std::size_t length = 0; length < good.size(); ++length)
        EXPECT_THROW(read(Bytes(good.begin(), good.begin() + static_cast<std::ptrdiff_t>(length))),
                     FileFailure)
            << length;
    // No byte that is changed ends the program.
    for (std::size_t at = 0; at < good.size(); ++at) {
        for (const int value : {0x00, 0x7F, 0x80, 0xF0, 0xF7, 0xF8, 0xFF}) {
            Bytes damaged = good;
            damaged[at] = static_cast<std::uint8_t>(value);
            try {
                EXPECT_FALSE(read(damaged).notes.empty());
            } catch (const FileFailure&) {
            }
        }
    }
    EXPECT_THROW(read(midi(96, {0, 60, 1})), FileFailure) << "a running status from nowhere";
    EXPECT_THROW(read(midi(96, {0, 0x90, 60, 1, 0, 0xF8, 0, 62, 1})), FileFailure) << "a status of no file";
    EXPECT_THROW(read(midi(96, {0x80, 0x80, 0x80, 0x80, 0, 0x90, 60, 1})), FileFailure)
        << "a time of five bytes";
}

}  // namespace
}  // namespace marnoth::test::midi_file_test
