#include <gtest/gtest.h>

#include <limits>
#include <utility>

#include "support/Canvas.h"

namespace marnoth::test::surface_lines_test {
namespace {

using test::Canvas;
using test::Rows;

void draw(Canvas& canvas, Point from, Point to) {
    canvas.surface.MoveTo(from);
    canvas.surface.LineTo(to);
}

Rows rowsOfLine(Point from, Point to) {
    Canvas canvas(15, 15);
    draw(canvas, from, to);
    return canvas.rows();
}

TEST(SurfaceLine, LeavesOutItsEndPoint) {
    Canvas canvas(6, 5);
    draw(canvas, {1, 0}, {5, 0});
    draw(canvas, {0, 1}, {0, 4});
    EXPECT_EQ(canvas.rows(), (Rows{".####.",  //
                                   "#.....",  //
                                   "#.....",  //
                                   "#.....",  //
                                   "......"}));
}

TEST(SurfaceLine, BackwardsLeavesOutTheOtherEnd) {
    Canvas canvas(6, 5);
    draw(canvas, {5, 0}, {1, 0});
    draw(canvas, {0, 4}, {0, 1});
    EXPECT_EQ(canvas.rows(), (Rows{"..####",  //
                                   "......",  //
                                   "#.....",  //
                                   "#.....",  //
                                   "#....."}));
}

TEST(SurfaceLine, WithoutLengthDrawsNothing) {
    EXPECT_EQ(rowsOfLine({3, 3}, {3, 3}), Rows(15, std::string(15, '.')));
}

TEST(SurfaceLine, GoesOnFromTheEndOfTheLast) {
    Canvas canvas(6, 5);
    draw(canvas, {0, 4}, {4, 4});
    canvas.surface.LineTo({4, 0});
    canvas.surface.LineTo({6, 0});
    EXPECT_EQ(canvas.rows(), (Rows{"....##",  //
                                   "....#.",  //
                                   "....#.",  //
                                   "....#.",  //
                                   "#####."}));
}

/// Rows with the pixels at `centre` + (along, across) of the octant that `mirrorX`, `mirrorY` and `swapped`
/// tell.
struct Octant {
    int signX;
    int signY;
    bool swapped;

    Point turn(Point p) const {
        if (swapped) std::swap(p.x, p.y);
        return {7 + signX * p.x, 7 + signY * p.y};
    }
};

const std::vector<Octant> kOctants{{1, 1, false}, {1, -1, false}, {-1, 1, false}, {-1, -1, false},
                                   {1, 1, true},  {1, -1, true},  {-1, 1, true},  {-1, -1, true}};

Rows rowsWith(const Octant& octant, const std::vector<Point>& pixels) {
    Rows rows(15, std::string(15, '.'));
    for (const Point pixel : pixels) {
        const Point at = octant.turn(pixel);
        rows[static_cast<std::size_t>(at.y)][static_cast<std::size_t>(at.x)] = '#';
    }
    return rows;
}

// Two across in five along: 0, 0.4, 0.8, 1.2, 1.6, and the end left out.
TEST(SurfaceLine, TakesTheNearestPixelsInAllEightOctants) {
    for (const Octant& octant : kOctants)
        EXPECT_EQ(rowsOfLine(octant.turn({0, 0}), octant.turn({5, 2})),
                  rowsWith(octant, {{0, 0}, {1, 0}, {2, 1}, {3, 1}, {4, 2}}))
            << octant.signX << ' ' << octant.signY << ' ' << octant.swapped;
}

TEST(SurfaceLine, TowardsTheMiddleLeavesOutTheMiddleInAllEightOctants) {
    for (const Octant& octant : kOctants)
        EXPECT_EQ(rowsOfLine(octant.turn({5, 2}), octant.turn({0, 0})),
                  rowsWith(octant, {{1, 0}, {2, 1}, {3, 1}, {4, 2}, {5, 2}}))
            << octant.signX << ' ' << octant.signY << ' ' << octant.swapped;
}

TEST(SurfaceLine, DiagonalsAreOnePixelThick) {
    for (const Octant& octant : kOctants)
        EXPECT_EQ(rowsOfLine(octant.turn({0, 0}), octant.turn({3, 3})),
                  rowsWith(octant, {{0, 0}, {1, 1}, {2, 2}}));
}

TEST(SurfaceLine, HalfwayBetweenTwoPixelsTakesTheUpperOrTheLeftOne) {
    const Octant plain{1, 1, false};
    EXPECT_EQ(rowsOfLine({7, 7}, {11, 9}), rowsWith(plain, {{0, 0}, {1, 0}, {2, 1}, {3, 1}}));
    EXPECT_EQ(rowsOfLine({7, 7}, {11, 5}), rowsWith(plain, {{0, 0}, {1, -1}, {2, -1}, {3, -2}}));
    EXPECT_EQ(rowsOfLine({7, 7}, {9, 11}), rowsWith(plain, {{0, 0}, {0, 1}, {1, 2}, {1, 3}}));
    EXPECT_EQ(rowsOfLine({7, 7}, {5, 11}), rowsWith(plain, {{0, 0}, {-1, 1}, {-1, 2}, {-2, 3}}));
    EXPECT_EQ(rowsOfLine({11, 9}, {7, 7}), rowsWith(plain, {{4, 2}, {3, 1}, {2, 1}, {1, 0}}));
}

TEST(SurfaceLine, APenOfTwoAddsThePixelsAboveAndToTheLeft) {
    Canvas canvas(9, 8);
    canvas.surface.SelectPen({test::kPenColor, 2});
    draw(canvas, {1, 1}, {4, 1});
    draw(canvas, {7, 1}, {7, 4});
    draw(canvas, {1, 5}, {4, 8});
    EXPECT_EQ(canvas.rows(), (Rows{"####..##.",  //
                                   "####..##.",  //
                                   "......##.",  //
                                   "......##.",  //
                                   "##.......",  //
                                   "###......",  //
                                   ".###.....",  //
                                   "..##....."}));
}

TEST(SurfaceLine, APenOfTwoLeavesOutTheEndBackwardsToo) {
    Canvas canvas(9, 6);
    canvas.surface.SelectPen({test::kPenColor, 2});
    draw(canvas, {4, 1}, {1, 1});
    draw(canvas, {7, 4}, {7, 1});
    EXPECT_EQ(canvas.rows(), (Rows{".####....",  //
                                   ".####.##.",  //
                                   "......##.",  //
                                   "......##.",  //
                                   "......##.",  //
                                   "........."}));
}

TEST(SurfaceLine, PensOfZeroAndOneAreAlike) {
    Canvas zero(9, 5);
    Canvas one(9, 5);
    one.surface.SelectPen({test::kPenColor, 1});
    for (Canvas* canvas : {&zero, &one}) draw(*canvas, {1, 1}, {8, 3});
    EXPECT_EQ(zero.rows(), one.rows());
    EXPECT_EQ(zero.rows()[1], ".##......");
}

TEST(SurfaceLine, DottedAlternatesBetweenPenAndGroundBeginningWithThePen) {
    Canvas canvas(7, 6);
    canvas.surface.SelectPen({test::kPenColor, 0, true});
    draw(canvas, {1, 0}, {6, 0});
    draw(canvas, {0, 5}, {0, 1});
    EXPECT_EQ(canvas.rows(), (Rows{".#-#-#.",  //
                                   ".......",  //
                                   "-......",  //
                                   "#......",  //
                                   "-......",  //
                                   "#......"}));
}

TEST(SurfaceLine, KeepsItsPixelsAndItsDotsWhereItIsClipped) {
    Canvas whole(15, 15);
    Canvas part(15, 15);
    part.surface.SelectClipRgn(Rect{4, 2, 9, 9});
    for (Canvas* canvas : {&whole, &part}) {
        canvas->surface.SelectPen({test::kPenColor, 0, true});
        draw(*canvas, {-3, -1}, {14, 9});
        draw(*canvas, {12, -4}, {3, 17});
    }
    Rows expected(15, std::string(15, '.'));
    for (std::size_t y = 2; y < 9; ++y) expected[y].replace(4, 5, whole.rows()[y], 4, 5);
    EXPECT_EQ(part.rows(), expected);
    EXPECT_NE(part.rows(), Rows(15, std::string(15, '.')));
}

TEST(SurfaceLine, AcrossAllThatAnIntHoldsIsExact) {
    constexpr int kLeast = std::numeric_limits<int>::min();
    constexpr int kMost = std::numeric_limits<int>::max();
    Canvas canvas(5, 5);
    draw(canvas, {kLeast, kLeast}, {kMost, kMost});
    EXPECT_EQ(canvas.rows(), (Rows{"#....", ".#...", "..#..", "...#.", "....#"}));
    Canvas down(5, 5);
    draw(down, {kLeast, kMost}, {kMost, kLeast});
    // x + y is -1 all along.
    EXPECT_EQ(down.rows(), Rows(5, "....."));
    // From x = -2^31 to 2^31 - 1 the line climbs from 0 to 4: it passes -1/2 + 5/2 at x = 0.
    Canvas flat(5, 5);
    draw(flat, {kLeast, 0}, {kMost, 4});
    EXPECT_EQ(flat.rows(), (Rows{".....", ".....", "#####", ".....", "....."}));
}

TEST(SurfaceHostility, NoCoordinatesWriteOutsideTheClipArea) {
    constexpr int kLeast = std::numeric_limits<int>::min();
    constexpr int kMost = std::numeric_limits<int>::max();
    const std::vector<int> numbers{kLeast, kLeast + 1, -40, 4, 40, kMost - 1, kMost};
    const Rect clip{3, 3, 6, 6};
    Canvas canvas(9, 9);
    canvas.surface.SelectClipRgn(clip);
    const Bitmap picture(3, 3, test::kFillColor);
    for (const Pen& pen : {Pen{test::kPenColor}, Pen{test::kPenColor, kMost}, Pen{test::kPenColor, -7, true}})
        for (const int a : numbers)
            for (const int b : numbers)
                for (const int c : numbers)
                    for (const int d : numbers) {
                        RasterSurface& surface = canvas.filled();
                        surface.SelectPen(pen);
                        surface.Rectangle({a, b, c, d});
                        surface.RoundRect({a, b, c, d}, b, c);
                        surface.Ellipse({a, b, c, d});
                        surface.MoveTo({a, b});
                        surface.LineTo({c, d});
                        const std::vector<Point> points{{a, b}, {c, d}, {d, a}};
                        surface.Polygon(points);
                        surface.BitBlt({a, b, c, d}, picture, {d, a});
                    }
    for (int y = 0; y < 9; ++y)
        for (int x = 0; x < 9; ++x)
            EXPECT_EQ(canvas.rows()[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)] != '.',
                      clip.contains({x, y}))
                << x << ' ' << y;
}

TEST(SurfaceHostility, ABitmapWithoutPixelsTakesEverything) {
    Bitmap nothing(0, -3);
    EXPECT_EQ(nothing.bounds(), (Rect{0, 0, 0, 0}));
    RasterSurface surface(nothing);
    surface.SelectBrush(test::kFillColor);
    surface.Rectangle({-1, -1, 5, 5});
    surface.Ellipse({-1, -1, 5, 5});
    surface.MoveTo({-4, -4});
    surface.LineTo({4, 4});
    surface.BitBlt({0, 0, 4, 4}, test::numbered(4, 4), {0, 0});
    surface.BitBlt({0, 0, 4, 4}, nothing, {0, 0});
    EXPECT_EQ(nothing, Bitmap(0, 0));
}

}  // namespace
}  // namespace marnoth::test::surface_lines_test
