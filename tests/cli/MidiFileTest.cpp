#include <gtest/gtest.h>

#include "cli/CliRun.h"
#include "shellkit/files/Failure.h"
#include "shellkit/media/WaveFrames.h"
#include "shellkit/midi/MidiFile.h"
#include "support/WaveFile.h"

namespace marnoth::test::midi_file_test {
namespace {

// Events are packed records: `+` takes a field's value, since no reference may be bound to the field itself.

#ifdef _WIN32

TEST(MidiFile, IsRefusedInOneLine) {
    const CliRun run = marnoth({"render", "--pad", "1=a.wav", "--midi", "a.mid", "--out", "b.wav"});
    EXPECT_EQ(run.status, 2);
    EXPECT_NE(run.err.find("--midi needs a build for Linux"), std::string::npos) << run.err;
}

#else

void appendBig(Bytes& bytes, std::uint32_t value, int count) {
    for (int shift = 8 * (count - 1); shift >= 0; shift -= 8)
        bytes.push_back(static_cast<std::uint8_t>(value >> shift));
}

Bytes header(std::uint16_t format, std::uint16_t tracks, std::uint16_t pulsesPerBeat) {
    Bytes file;
    append(file, std::string("MThd"));
    appendBig(file, 6, 4);
    appendBig(file, format, 2);
    appendBig(file, tracks, 2);
    appendBig(file, pulsesPerBeat, 2);
    return file;
}

Bytes chunk(const std::string& id, const Bytes& body) {
    Bytes bytes;
    append(bytes, id);
    appendBig(bytes, static_cast<std::uint32_t>(body.size()), 4);
    bytes.insert(bytes.end(), body.begin(), body.end());
    return bytes;
}

/// A track of these events, which are bytes with delta times, and its end.
Bytes track(Bytes events, std::uint8_t endDelta = 0) {
    events.insert(events.end(), {endDelta, 0xFF, 0x2F, 0});
    return chunk("MTrk", events);
}

Bytes joined(const std::vector<Bytes>& parts) {
    Bytes file;
    for (const Bytes& part : parts) file.insert(file.end(), part.begin(), part.end());
    return file;
}

/// A standard MIDI file of one track.
Bytes midi(std::uint16_t pulsesPerBeat, const Bytes& events, std::uint8_t endDelta = 0) {
    return joined({header(0, 1, pulsesPerBeat), track(events, endDelta)});
}

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
    const MidiPart part = read(
        joined({header(1, 3, 96), track({96, 0xFF, 0x51, 3, 0x09, 0x27, 0xC0}),
                track({48, 0x90, 60, 1, 48, 0x80, 60, 0}), track({24, 0x91, 62, 1, 48, 0x81, 62, 0}, 120)}));
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

TEST(MidiFile, PassesOverWhatIsNoTrack) {
    const Bytes notes = track({0, 0x90, 60, 1, 96, 0x80, 60, 0});
    const std::vector<Bytes> files{
        joined({header(0, 1, 96), chunk("XFIH", {1, 2, 3}), notes}),
        joined({header(0, 1, 96), notes, chunk("XFKM", {1, 2, 3})}),
        joined({header(0, 1, 96), notes, {0, 0, 0}}),
        joined({header(0, 1, 96), notes, Bytes(100, 0x1A)}),
        joined({header(1, 3, 96), notes}),
    };
    for (const Bytes& file : files) EXPECT_EQ(read(file).notes.size(), 1u);
}

TEST(MidiFile, SaysWhatKindItDoesNotPlay) {
    const Bytes notes = track({0, 0x90, 60, 1, 96, 0x80, 60, 0});
    const auto reason = [&](const Bytes& head) -> std::string {
        try {
            read(joined({head, notes}));
        } catch (const FileFailure& failure) {
            return failure.what();
        }
        return "none";
    };
    // 25 film frames a second, 40 pulses each.
    EXPECT_NE(reason(header(0, 1, 0xE728)).find("film frames"), std::string::npos);
    EXPECT_NE(reason(header(2, 1, 96)).find("pieces of their own"), std::string::npos);
    EXPECT_NE(reason(header(0, 1, 0)).find("no length"), std::string::npos);
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
    EXPECT_THROW(read(midi(96, {0, 0x90, 60, 1, 0, 0xFF, 1, 0, 0, 60, 1})), FileFailure)
        << "a running status behind a meta event";
    EXPECT_THROW(read(midi(96, {0x80, 0x80, 0x80, 0x80, 0, 0x90, 60, 1})), FileFailure)
        << "a time of five bytes";
}

TEST(MidiFile, ANoteStartsALoopAndTheNextOneEndsIt) {
    const TempFolder folder;
    WaveFile()
        .floats()
        .channels(2)
        .frames(22050, [](auto, int) { return 0.25; })
        .acid({.beats = 1})
        .write(folder / "a.wav");
    // On from beat 1, off at beat 2, at 120.
    WaveFile::writeBytes(folder / "a.mid",
                         midi(24, {24, 0x90, 60, 1, 6, 0x80, 60, 0, 18, 0x90, 60, 1, 6, 0x80, 60, 0}));
    const CliRun run = marnoth({"render", "--pad", "1=" + folder.name("a.wav"), "--midi",
                                folder.name("a.mid"), "--out", folder.name("out.wav")});
    ASSERT_EQ(run.status, 0) << run.err;
    const WaveFrames wave = readWaveFrames(folder / "out.wav");
    ASSERT_EQ(wave.samples.size() / 2, 4 * 22050u);
    const auto at = [&](double beat) { return wave.samples[2 * static_cast<std::size_t>(beat * 22050)]; };
    EXPECT_EQ(at(0.5), 0.0f);
    EXPECT_NEAR(at(1.1), 0.25, 1e-3);
    EXPECT_NEAR(at(1.9), 0.25, 1e-3);
    EXPECT_EQ(at(2.2), 0.0f);
    EXPECT_EQ(at(3.5), 0.0f);
}

TEST(MidiFile, WithGatesANoteLastsAsLongAsItIsHeld) {
    const TempFolder folder;
    WaveFile()
        .floats()
        .channels(2)
        .frames(22050, [](auto, int) { return 0.25; })
        .acid({.beats = 1})
        .write(folder / "a.wav");
    WaveFile::writeBytes(folder / "a.mid", midi(24, {24, 0x90, 60, 1, 24, 0x80, 60, 0}));
    const CliRun run = marnoth({"render", "--pad", "1=" + folder.name("a.wav"), "--midi",
                                folder.name("a.mid"), "--gate", "--out", folder.name("out.wav")});
    ASSERT_EQ(run.status, 0) << run.err;
    const WaveFrames wave = readWaveFrames(folder / "out.wav");
    const auto at = [&](double beat) { return wave.samples[2 * static_cast<std::size_t>(beat * 22050)]; };
    EXPECT_EQ(at(0.5), 0.0f);
    EXPECT_NEAR(at(1.5), 0.25, 1e-3);
    EXPECT_EQ(at(2.1), 0.0f);
}

#endif

}  // namespace
}  // namespace marnoth::test::midi_file_test
