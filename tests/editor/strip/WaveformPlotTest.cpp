#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

#include "editor/PageLayout.h"
#include "editor/PlainFont.h"
#include "editor/padeditor/EventSelection.h"
#include "editor/strip/WaveformPlot.h"
#include "platform/drawing/RecordingSurface.h"
#include "seam/IGrooveSampler.h"

namespace marnoth::test::waveform_plot_test {
namespace {

using Calls = std::vector<std::string>;

// Waves lie from 12 pixels below the plot's top to its bottom: 260 to 327, 67 pixels. The middle is at
// 260 + 67 / 2 = 293, the lanes' middles at 260 + 67 / 4 = 276 and 260 + 3 * 67 / 4 = 310. The amplitude is
// 0.45 * 67 = 30.15, of a lane 15.075. The first grain begins at 37 + 8 = 45.

GrainListEntry grainOf(const float* plotData, int width, int channels) {
    return {0, 0, 0, 1.0f, plotData, width, channels, 0};
}

class WaveformPlot : public testing::Test {
protected:
    EventPlot draw(std::span<const GrainListEntry> grains) {
        return drawWaveforms(surface, kStripPlot, grains, 4, selection);
    }

    RecordingSurface surface;
    CEventSelection selection;
};

TEST_F(WaveformPlot, AMonoWaveIsAColumnForEachPairOfValues) {
    const float peaks[] = {1.0f, -1.0f, 0.5f, -0.25f};
    const GrainListEntry grains[] = {grainOf(peaks, 2, 1)};
    const EventPlot plot = draw(grains);
    // 0.5 * 30.15 is 15.1 and 0.25 * 30.15 is 7.5, cut.
    EXPECT_EQ(surface.calls(),
              (Calls{"SelectPen 152,214,147", "MoveTo 45,293", "LineTo 47,293", "MoveTo 45,263",
                     "LineTo 45,323", "MoveTo 46,278", "LineTo 46,300", "SetGroundColor 0,0,0",
                     "SelectPen 255,255,255 dotted", "MoveTo 45,260", "LineTo 45,327"}));
    ASSERT_EQ(plot.size(), 1u);
    EXPECT_EQ(plot[0].rect, (Rect{45, 260, 47, 327}));
    EXPECT_EQ(plot[0].grain, 0);
}

TEST_F(WaveformPlot, AStereoWaveHasALaneForEachChannel) {
    const float peaks[] = {1.0f, -1.0f, 0.5f, 0.0f};
    const GrainListEntry grains[] = {grainOf(peaks, 1, 2)};
    draw(grains);
    EXPECT_EQ(surface.calls(), (Calls{"SelectPen 152,214,147", "MoveTo 45,276", "LineTo 46,276",
                                      "MoveTo 45,310", "LineTo 46,310", "MoveTo 45,261", "LineTo 45,291",
                                      "MoveTo 45,303", "LineTo 45,310", "SetGroundColor 0,0,0",
                                      "SelectPen 255,255,255 dotted", "MoveTo 45,260", "LineTo 45,327"}));
}

TEST_F(WaveformPlot, ASelectedGrainHasALightGroundAndADarkWave) {
    selection.add(3, 0);
    selection.add(4, 1);
    const GrainListEntry grains[] = {grainOf(nullptr, 10, 1), grainOf(nullptr, 20, 1)};
    draw(grains);
    const std::vector<std::string>& calls = surface.calls();
    EXPECT_EQ(calls[0], "SelectPen 152,214,147");
    EXPECT_EQ(Calls(calls.begin() + 7, calls.end()),
              (Calls{"SelectPen 160,172,191", "SelectBrush 160,172,191", "Rectangle 55,260,75,327",
                     "SelectPen 90,128,88", "MoveTo 55,293", "LineTo 75,293", "SetGroundColor 0,0,0",
                     "SelectPen 255,255,255 dotted", "MoveTo 55,260", "LineTo 55,327"}));
}

TEST_F(WaveformPlot, GrainsLieSideBySideByTheirWidths) {
    const GrainListEntry grains[] = {grainOf(nullptr, 10, 1), grainOf(nullptr, 0, 2), grainOf(nullptr, 5, 2)};
    const EventPlot plot = draw(grains);
    ASSERT_EQ(plot.size(), 3u);
    EXPECT_EQ(plot[1].rect, (Rect{55, 260, 55, 327}));
    EXPECT_EQ(plot[2].rect, (Rect{55, 260, 60, 327}));
    EXPECT_EQ(plot[2].grain, 2);
}

TEST_F(WaveformPlot, EndsWithTheOffsetAboveThePlotsRightEdge) {
    // Offsets 8, 581 and 582: the second is not above 581, though its grain can't be seen any more.
    const GrainListEntry grains[] = {grainOf(nullptr, 573, 1), grainOf(nullptr, 1, 1),
                                     grainOf(nullptr, 1, 1)};
    const EventPlot plot = draw(grains);
    ASSERT_EQ(plot.size(), 2u);
    EXPECT_EQ(plot[1].rect.left, 37 + 581);
}

TEST_F(WaveformPlot, ColumnsBehindThePlotAreNotDrawn) {
    const std::vector<float> peaks(2 * 5000, 0.1f);
    const GrainListEntry grains[] = {grainOf(peaks.data(), 5000, 1)};
    const EventPlot plot = draw(grains);
    EXPECT_EQ(plot[0].rect.right, 5045);
    // A pen, the middle line, columns from 45 to 580, and the boundary's four calls.
    EXPECT_EQ(surface.calls().size(), 1u + 2 + 2 * 536 + 4);
}

TEST_F(WaveformPlot, HostileWidthsAndValuesStayPixels) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float peaks[] = {nan, -std::numeric_limits<float>::infinity()};
    const GrainListEntry grains[] = {grainOf(nullptr, -7, 1), grainOf(peaks, 1, 1),
                                     grainOf(nullptr, std::numeric_limits<int>::max(), 2),
                                     grainOf(nullptr, 1, 1)};
    const EventPlot plot = draw(grains);
    ASSERT_EQ(plot.size(), 3u);
    EXPECT_EQ(plot[0].rect.width(), 0);
    EXPECT_NE(std::find(surface.calls().begin(), surface.calls().end(), "MoveTo 45,293"),
              surface.calls().end());
    EXPECT_GT(plot[2].rect.right, 100000000);
}

TEST_F(WaveformPlot, AFileWithoutGrainsDrawsNothing) {
    EXPECT_TRUE(draw({}).empty());
    EXPECT_TRUE(surface.calls().empty());
}

TEST_F(WaveformPlot, APathOf99CharactersIsShownWholeAndOf100Shortened) {
    const std::string path = "C:\\" + std::string(96, 'x');
    EXPECT_EQ(shownPath(path), path);
    EXPECT_EQ(shownPath(path + "y"), "..." + std::string(96, 'x') + "y");
    EXPECT_EQ(shownPath(""), "");
}

TEST_F(WaveformPlot, APathIsCutBetweenCharacters) {
    std::string umlauts;
    for (int i = 0; i < 97; ++i) umlauts += "\xC3\xA4";
    EXPECT_EQ(shownPath("\xC3\xB6"
                        "a" +
                        umlauts),
              "\xC3\xB6"
              "a" +
                  umlauts);
    EXPECT_EQ(shownPath("\xC3\xB6"
                        "ab" +
                        umlauts),
              "..." + umlauts);
}

TEST_F(WaveformPlot, ThePathStandsOverTheWaves) {
    test::PlainFont small{12};
    drawPath(surface, kStripPlot, "D:\\beat.wav", small);
    EXPECT_EQ(surface.calls(), (Calls{"SelectFont 12", "SetTextColor 152,214,147", "SetGroundColor 37,43,52",
                                      "TextOut 39,248 \"D:\\beat.wav\""}));
}

}  // namespace
}  // namespace marnoth::test::waveform_plot_test
