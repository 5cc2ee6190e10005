#include <gtest/gtest.h>

#include <limits>

#include "support/Canvas.h"

namespace marnoth::test::surface_shapes_test {
namespace {

using test::Canvas;
using test::Rows;

TEST(SurfaceRectangle, HasItsBorderInsideAndLeavesOutTheRightAndBottomEdges) {
    Canvas canvas(7, 5);
    canvas.filled().Rectangle({1, 1, 6, 4});
    EXPECT_EQ(canvas.rows(), (Rows{".......",  //
                                   ".#####.",  //
                                   ".#ooo#.",  //
                                   ".#####.",  //
                                   "......."}));
}

TEST(SurfaceRectangle, WithoutABrushLeavesWhatIsInside) {
    Canvas canvas(5, 4);
    canvas.surface.Rectangle({0, 0, 5, 4});
    EXPECT_EQ(canvas.rows(), (Rows{"#####", "#...#", "#...#", "#####"}));
}

TEST(SurfaceRectangle, WithoutWidthOrTurnedAroundDrawsNothing) {
    Canvas canvas(4, 4);
    canvas.filled().Rectangle({1, 0, 1, 4});
    canvas.surface.Rectangle({0, 2, 4, 2});
    canvas.surface.Rectangle({3, 3, 1, 1});
    canvas.surface.RoundRect({2, 0, 2, 4}, 5, 5);
    canvas.surface.Ellipse({3, 0, 1, 4});
    EXPECT_EQ(canvas.rows(), Rows(4, "...."));
}

TEST(SurfaceRectangle, OfOnePixelIsAllBorder) {
    Canvas canvas(3, 3);
    canvas.filled().Rectangle({1, 1, 2, 2});
    EXPECT_EQ(canvas.rows(), (Rows{"...", ".#.", "..."}));
}

TEST(SurfaceRectangle, APenOfTwoTakesTwoPixelsInside) {
    Canvas canvas(8, 7);
    canvas.surface.SelectPen({test::kPenColor, 2});
    canvas.filled().Rectangle({1, 1, 8, 7});
    EXPECT_EQ(canvas.rows(), (Rows{"........",  //
                                   ".#######",  //
                                   ".#######",  //
                                   ".##ooo##",  //
                                   ".##ooo##",  //
                                   ".#######",  //
                                   ".#######"}));
}

TEST(SurfaceRectangle, IsARoundedOneWithSquareCorners) {
    for (int penWidth = 0; penWidth <= 5; ++penWidth)
        for (int width = 0; width <= 8; ++width)
            for (int height = 0; height <= 8; ++height) {
                Canvas plain(10, 10);
                Canvas rounded(10, 10);
                for (Canvas* canvas : {&plain, &rounded})
                    canvas->surface.SelectPen({test::kPenColor, penWidth});
                plain.filled().Rectangle(Rect::at(1, 1, width, height));
                rounded.filled().RoundRect(Rect::at(1, 1, width, height), 1, 1);
                EXPECT_EQ(plain.rows(), rounded.rows()) << penWidth << ' ' << width << ' ' << height;
            }
}

TEST(SurfaceRectangle, DottedAlternatesAlongEverySideInPenAndGround) {
    Canvas canvas(5, 4);
    canvas.surface.SelectPen({test::kPenColor, 0, true});
    canvas.filled().Rectangle({0, 0, 5, 4});
    EXPECT_EQ(canvas.rows(), (Rows{"#-#-#", "-ooo-", "#ooo#", "-#-#-"}));
}

TEST(SurfaceRoundRect, CornersOfFiveLoseOnePixelEach) {
    Canvas canvas(9, 8);
    canvas.filled().RoundRect({0, 0, 9, 8}, 5, 5);
    EXPECT_EQ(canvas.rows(), (Rows{".#######.",  //
                                   "#ooooooo#",  //
                                   "#ooooooo#",  //
                                   "#ooooooo#",  //
                                   "#ooooooo#",  //
                                   "#ooooooo#",  //
                                   "#ooooooo#",  //
                                   ".#######."}));
}

TEST(SurfaceRoundRect, CornersOfOneAreSquare) {
    Canvas canvas(7, 6);
    canvas.surface.SelectPen({test::kPenColor, 2});
    canvas.surface.RoundRect({0, 0, 7, 6}, 1, 1);
    EXPECT_EQ(canvas.rows(), (Rows{"#######",  //
                                   "#######",  //
                                   "##...##",  //
                                   "##...##",  //
                                   "#######",  //
                                   "#######"}));
}

// Half axes of 4 through the outermost pixels' centres: at a distance of 4 the curve is within half a pixel
// for 0 and 1 (3.87), not for 2 (3.46).
TEST(SurfaceRoundRect, CornersOfNineFollowTheCurve) {
    Canvas canvas(12, 10);
    canvas.filled().RoundRect({1, 0, 12, 10}, 9, 9);
    EXPECT_EQ(canvas.rows(), (Rows{"....#####...",  //
                                   "..##ooooo##.",  //
                                   "..#ooooooo#.",  //
                                   ".#ooooooooo#",  //
                                   ".#ooooooooo#",  //
                                   ".#ooooooooo#",  //
                                   ".#ooooooooo#",  //
                                   "..#ooooooo#.",  //
                                   "..##ooooo##.",  //
                                   "....#####..."}));
}

TEST(SurfaceRoundRect, CornersLargerThanTheRectangleMakeAnEllipse) {
    Canvas round(8, 6);
    Canvas ellipse(8, 6);
    round.filled().RoundRect({1, 1, 7, 5}, 100, std::numeric_limits<int>::max());
    ellipse.filled().Ellipse({1, 1, 7, 5});
    EXPECT_EQ(round.rows(), ellipse.rows());
    EXPECT_NE(round.rows(), Rows(6, "........"));
}

// The mark at the end of a pad.
TEST(SurfaceEllipse, OfSixBySevenTouchesAllFourEdges) {
    Canvas canvas(8, 9);
    canvas.filled().Ellipse({1, 1, 7, 8});
    EXPECT_EQ(canvas.rows(), (Rows{"........",  //
                                   "...##...",  //
                                   "..#oo#..",  //
                                   ".#oooo#.",  //
                                   ".#oooo#.",  //
                                   ".#oooo#.",  //
                                   "..#oo#..",  //
                                   "...##...",  //
                                   "........"}));
}

TEST(SurfaceEllipse, OfThreeOrLessIsWhatFits) {
    Canvas canvas(11, 3);
    canvas.filled().Ellipse({0, 0, 3, 3});
    canvas.surface.Ellipse({4, 0, 6, 2});
    canvas.surface.Ellipse({7, 0, 8, 3});
    canvas.surface.Ellipse({8, 2, 11, 3});
    EXPECT_EQ(canvas.rows(), (Rows{".#..##.#...",  //
                                   "#o#.##.#...",  //
                                   ".#.....####"}));
}

// The slopes, from above: 13, 13.75, 14.5, 15.25, 16; half a pixel goes to the left.
TEST(SurfacePolygon, OfAPentagonGoesThroughAllItsPoints) {
    Canvas canvas(18, 11);
    const std::vector<Point> points{{1, 1}, {13, 1}, {16, 5}, {13, 9}, {1, 9}};
    canvas.filled().Polygon(points);
    EXPECT_EQ(canvas.rows(), (Rows{"..................",  //
                                   ".#############....",  //
                                   ".#oooooooooooo#...",  //
                                   ".#oooooooooooo#...",  //
                                   ".#ooooooooooooo#..",  //
                                   ".#oooooooooooooo#.",  //
                                   ".#ooooooooooooo#..",  //
                                   ".#oooooooooooo#...",  //
                                   ".#oooooooooooo#...",  //
                                   ".#############....",  //
                                   ".................."}));
}

TEST(SurfacePolygon, OfATriangleIsSymmetric) {
    Canvas canvas(9, 7);
    const std::vector<Point> points{{4, 6}, {1, 1}, {7, 1}};
    canvas.filled().Polygon(points);
    EXPECT_EQ(canvas.rows(), (Rows{".........",  //
                                   ".#######.",  //
                                   "..#ooo#..",  //
                                   "..#ooo#..",  //
                                   "...#o#...",  //
                                   "...#o#...",  //
                                   "....#...."}));
}

TEST(SurfacePolygon, LeavesUnfilledWhatIsInsideTwice) {
    Canvas canvas(9, 9);
    const std::vector<Point> points{{0, 0}, {8, 0}, {8, 8}, {0, 8}, {0, 0},
                                    {2, 2}, {6, 2}, {6, 6}, {2, 6}, {2, 2}};
    canvas.filled().Polygon(points);
    EXPECT_EQ(canvas.rows(), (Rows{"#########",  //
                                   "##oooooo#",  //
                                   "#o#####o#",  //
                                   "#o#...#o#",  //
                                   "#o#...#o#",  //
                                   "#o#...#o#",  //
                                   "#o#####o#",  //
                                   "#ooooooo#",  //
                                   "#########"}));
}

TEST(SurfacePolygon, OfTwoPointsIsALineWithBothEnds) {
    Canvas canvas(5, 2);
    const std::vector<Point> points{{1, 1}, {3, 1}};
    canvas.filled().Polygon(points);
    canvas.surface.Polygon({});
    EXPECT_EQ(canvas.rows(), (Rows{".....", ".###."}));
}

TEST(SurfaceClip, HoldsShapesToTheAreaAndNothingLiftsIt) {
    Canvas canvas(6, 5);
    canvas.surface.SelectClipRgn(Rect{1, 1, 4, 3});
    canvas.filled().Rectangle({0, 1, 6, 5});
    EXPECT_EQ(canvas.rows(), (Rows{"......", ".###..", ".ooo..", "......", "......"}));
    canvas.surface.SelectClipRgn({});
    canvas.surface.Rectangle({4, 3, 6, 5});
    EXPECT_EQ(canvas.rows(), (Rows{"......", ".###..", ".ooo..", "....##", "....##"}));
}

TEST(SurfaceClip, OutsideTheBitmapHidesEverything) {
    Canvas canvas(3, 3);
    canvas.surface.SelectClipRgn(Rect{5, 5, 9, 9});
    canvas.filled().Rectangle({-1, -1, 10, 10});
    canvas.surface.SelectClipRgn(Rect{2, 2, 1, 1});
    canvas.surface.Rectangle({-1, -1, 10, 10});
    EXPECT_EQ(canvas.rows(), Rows(3, "..."));
}

Rows bltRows(const Bitmap& bitmap) {
    Rows rows;
    for (int y = 0; y < bitmap.height(); ++y) {
        rows.emplace_back();
        for (const Color& pixel : bitmap.row(y))
            rows.back() += pixel.blue == 0 ? std::string(" ..")
                                           : ' ' + std::to_string(pixel.red) + std::to_string(pixel.green);
    }
    return rows;
}

TEST(SurfaceBitBlt, CopiesThePartThatIsAsLargeAsTheDestination) {
    Canvas canvas(5, 4);
    canvas.surface.BitBlt({1, 1, 4, 3}, test::numbered(9, 9), {4, 6});
    EXPECT_EQ(bltRows(canvas.bitmap), (Rows{" .. .. .. .. ..",  //
                                            " .. 46 56 66 ..",  //
                                            " .. 47 57 67 ..",  //
                                            " .. .. .. .. .."}));
}

TEST(SurfaceBitBlt, LeavesWhatTheSourceLacks) {
    Canvas canvas(4, 4);
    canvas.surface.BitBlt({0, 0, 4, 4}, test::numbered(2, 2), {-1, -1});
    EXPECT_EQ(bltRows(canvas.bitmap), (Rows{" .. .. .. ..",  //
                                            " .. 00 10 ..",  //
                                            " .. 01 11 ..",  //
                                            " .. .. .. .."}));
}

TEST(SurfaceBitBlt, IsHeldToTheClipAreaAndTheBitmap) {
    Canvas canvas(4, 3);
    canvas.surface.SelectClipRgn(Rect{-5, 0, 3, 9});
    canvas.surface.BitBlt({-2, 1, 20, 20}, test::numbered(9, 9), {0, 0});
    EXPECT_EQ(bltRows(canvas.bitmap), (Rows{" .. .. .. ..",  //
                                            " 20 30 40 ..",  //
                                            " 21 31 41 .."}));
}

TEST(SurfaceBitBlt, MovesABitmapWithinItself) {
    Bitmap down = test::numbered(4, 4);
    RasterSurface(down).BitBlt({1, 1, 4, 4}, down, {0, 0});
    EXPECT_EQ(bltRows(down), (Rows{" 00 10 20 30", " 01 00 10 20", " 02 01 11 21", " 03 02 12 22"}));
    Bitmap up = test::numbered(4, 4);
    RasterSurface(up).BitBlt({0, 0, 3, 3}, up, {1, 1});
    EXPECT_EQ(bltRows(up), (Rows{" 11 21 31 30", " 12 22 32 31", " 13 23 33 32", " 03 13 23 33"}));
}

}  // namespace
}  // namespace marnoth::test::surface_shapes_test
