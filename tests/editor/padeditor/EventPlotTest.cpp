#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>

#include "editor/padeditor/EventPlot.h"
#include "editor/padeditor/EventSelection.h"
#include "editor/padeditor/TimeScale.h"

namespace marnoth::test::event_plot_test {
namespace {

constexpr std::int64_t kLast = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kFirst = std::numeric_limits<std::int64_t>::min();

/// A grain from one tick to another.
EventPlotInfo block(int left, int right) {
    return {0, left, {}, 0, right};
}

EventPlotInfo tail(int left, int right) {
    return {0, left, {}, 1, right};
}

/// Of a view that begins at tick 0 and at x 0, with `pixels` to the tick.
std::int32_t hitPlot(const EventPlot& plot, std::int32_t guess, int x, double pixels = 1.0) {
    TimeScale scale;
    scale.pixelsPerBeat = pixels * static_cast<double>(kTicks16PerBeat);
    return marnoth::hitPlot(scale, plot, guess, x);
}

TEST(EventPlot, RightOfTheGuessTheLaterOfOverlappingGrainsIsHit) {
    const EventPlot plot{block(100, 200), block(150, 300), block(320, 340)};
    EXPECT_EQ(hitPlot(plot, 0, 160), 1);
    EXPECT_EQ(hitPlot(plot, 0, 110), 0);
    EXPECT_EQ(hitPlot(plot, 0, 319), -1);
    EXPECT_EQ(hitPlot(plot, 0, 320), 2);
    EXPECT_EQ(hitPlot(plot, 0, 340), -1);
}

TEST(EventPlot, LeftOfTheGuessOnlyTheNearestEarlierGrainIsTried) {
    const EventPlot plot{block(100, 400), block(150, 160), block(320, 340)};
    EXPECT_EQ(hitPlot(plot, 2, 155), 1);
    EXPECT_EQ(hitPlot(plot, 2, 149), 0);
    EXPECT_EQ(hitPlot(plot, 2, 99), -1);
    // The first grain reaches that far, but the second begins nearer and doesn't.
    EXPECT_EQ(hitPlot(plot, 2, 200), -1);
    EXPECT_EQ(hitPlot(plot, 0, 200), 0);
}

TEST(EventPlot, ATailGrainIsHitOn15PixelsWhateverItsLength) {
    for (const int right : {102, 300}) {
        const EventPlot plot{tail(100, right), block(500, 510)};
        for (const int guess : {0, 1}) {
            EXPECT_EQ(hitPlot(plot, guess, 100), 0) << right;
            EXPECT_EQ(hitPlot(plot, guess, 114), 0) << right;
            EXPECT_EQ(hitPlot(plot, guess, 115), -1) << right;
        }
    }
}

TEST(EventPlot, AGrainOfNoWidthIsNeverHit) {
    EXPECT_EQ(hitPlot({block(100, 100)}, 0, 100), -1);
    EXPECT_EQ(hitPlot({block(100, 100), block(200, 210)}, 1, 100), -1);
}

TEST(EventPlot, TheScaleSaysWhereGrainsLieNotThePlaceWhereTheyWerePainted) {
    EventPlot plot{block(100, 200)};
    plot[0].rect = {7, 362, 9, 370};
    EXPECT_EQ(hitPlot(plot, 0, 8), -1);
    EXPECT_EQ(hitPlot(plot, 0, 150), 0);
    EXPECT_EQ(hitPlot(plot, 0, 399, 2.0), 0);
    EXPECT_EQ(hitPlot(plot, 0, 400, 2.0), -1);
}

TEST(EventPlot, NothingIsHitOnAnEmptyPlot) {
    EXPECT_EQ(hitPlot({}, 0, 100), -1);
}

TEST(EventPlot, AGuessOutsideThePlotIsRefused) {
    EXPECT_THROW(hitPlot({block(100, 200)}, 1, 100), std::invalid_argument);
    EXPECT_THROW(hitPlot({block(100, 200)}, -1, 100), std::invalid_argument);
}

TEST(EventPlot, TheGuessSpreadsGrainsEvenlyOverTheLoop) {
    EXPECT_EQ(guessGrain(2000, 4000, 10), 5);
    EXPECT_EQ(guessGrain(1000, 3000, 5), 1);  // 5 / 3, cut
    EXPECT_EQ(guessGrain(0, 4000, 10), 0);
}

TEST(EventPlot, TheGuessIsHeldToTheGrainsThatThereAre) {
    EXPECT_EQ(guessGrain(9000, 4000, 10), 9);
    EXPECT_EQ(guessGrain(kLast, 1, 256), 255);
    EXPECT_EQ(guessGrain(1000, -4000, 10), 0);
    EXPECT_EQ(guessGrain(kLast, kFirst, 10), 0);
    EXPECT_EQ(guessGrain(kFirst, kLast, 10), 0);
}

TEST(EventPlot, WithALoopLengthOf0TheFirstGuessIsTheFirstGrain) {
    EXPECT_EQ(guessGrain(0, 0, 10), 0);
    EXPECT_EQ(guessGrain(5000, 0, 10), 0);
}

TEST(EventSelection, KeepsTheOrderOfSelectingAndEachPairOnce) {
    CEventSelection selection;
    selection.add(3, 7);
    selection.add(1, 2);
    selection.add(3, 7);
    EXPECT_EQ(selection.size(), 2);
    EXPECT_EQ(selection.first(), (EventSelectionInfo{3, 7}));
    EXPECT_TRUE(selection.contains(1, 2));
    EXPECT_FALSE(selection.contains(2, 1));
    EXPECT_EQ(std::vector<EventSelectionInfo>(selection.begin(), selection.end()),
              (std::vector<EventSelectionInfo>{{3, 7}, {1, 2}}));
}

TEST(EventSelection, SettingLeavesOnePairAndClearingNone) {
    CEventSelection selection;
    selection.add(3, 7);
    selection.add(1, 2);
    selection.set(1, 2);
    EXPECT_EQ(selection.size(), 1);
    EXPECT_EQ(selection.first(), (EventSelectionInfo{1, 2}));
    selection.clear();
    EXPECT_TRUE(selection.isEmpty());
    EXPECT_FALSE(selection.contains(1, 2));
    EXPECT_THROW(selection.first(), std::out_of_range);
}

}  // namespace
}  // namespace marnoth::test::event_plot_test
