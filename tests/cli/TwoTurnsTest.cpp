#include <gtest/gtest.h>

#include "shells/cli/TwoTurns.h"

namespace marnoth::test::two_turns_test {
namespace {

SynthEvent note(std::int32_t tick, std::uint32_t duration) {
    SynthEvent event;
    event.time = tick;
    event.duration = duration;
    return event;
}

TEST(TwoTurns, NotesOfATurnComeAgainAndThoseBehindItNot) {
    MidiPart part;
    part.notes = {note(0, 10), note(1900, 500), note(1920, 5)};
    part.endTicks = 3840;
    const MidiPart twice = twoTurns(part, 1920);
    std::vector<std::pair<std::int32_t, std::uint32_t>> heard;
    for (const SynthEvent& event : twice.notes) heard.emplace_back(+event.time, +event.duration);
    EXPECT_EQ(heard, (std::vector<std::pair<std::int32_t, std::uint32_t>>{
                         {0, 10}, {1900, 500}, {1920, 10}, {3820, 500}}));
    EXPECT_EQ(twice.endTicks, 3840);
}

TEST(TwoTurns, EachTurnHasItsTempos) {
    MidiPart part;
    part.tempo = TempoTrack(100);
    part.tempo.add(960, 50);
    part.tempo.add(1920, 200);
    const MidiPart twice = twoTurns(part, 1920);
    std::vector<std::pair<std::int32_t, double>> tempos;
    for (const TempoChange& change : twice.tempo.changes())
        tempos.emplace_back(change.tick, change.beatsPerMinute);
    EXPECT_EQ(tempos,
              (std::vector<std::pair<std::int32_t, double>>{{0, 100}, {960, 50}, {1920, 100}, {2880, 50}}));
}

}  // namespace
}  // namespace marnoth::test::two_turns_test
