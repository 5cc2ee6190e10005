#include "editor/padeditor/GrainShape.h"

#include <array>
#include <span>

#include "editor/padeditor/EventPlot.h"
#include "editor/skin/Palette.h"
#include "platform/drawing/Surface.h"

namespace marnoth {
namespace {

/// By entries of the palette. The dark edge runs along bottom and right, the light one along left and top.
struct GrainColors {
    std::size_t outline;
    std::size_t fill;
    std::size_t dark;
    std::size_t light;
};

/// In the order of `GrainState`.
constexpr std::array<GrainColors, 3> kBlockColors{{{6, 6, 7, 8}, {7, 7, 0, 6}, {8, 8, 7, 2}}};
constexpr std::array<GrainColors, 3> kTailColors{{{3, 3, 5, 4}, {5, 5, 0, 3}, {4, 4, 5, 2}}};

void drawLines(Surface& surface, std::size_t color, std::span<const Point, 3> points) {
    surface.SelectPen({kPalette[color]});
    surface.MoveTo(points[0]);
    surface.LineTo(points[1]);
    surface.LineTo(points[2]);
}

void drawBlock(Surface& surface, const Rect& r, const GrainColors& colors) {
    surface.Rectangle(r);
    drawLines(surface, colors.dark,
              std::array{Point{r.left, r.bottom}, Point{r.right - 1, r.bottom}, Point{r.right - 1, r.top}});
    drawLines(surface, colors.light,
              std::array{Point{r.left + 1, r.bottom}, Point{r.left + 1, r.top}, Point{r.right, r.top}});
}

void drawPentagon(Surface& surface, const Rect& r, const GrainColors& colors) {
    const int tip = r.left + kTailGrainWidth;
    const int shoulder = tip - 4 * r.height() / 10;
    const int middle = (r.bottom + r.top) / 2;
    surface.Polygon(std::array{Point{r.left, r.top}, Point{shoulder, r.top}, Point{tip, middle},
                               Point{shoulder, r.bottom}, Point{r.left, r.bottom}});
    drawLines(surface, colors.dark,
              std::array{Point{r.left, r.bottom}, Point{shoulder - 1, r.bottom}, Point{tip - 1, middle}});
    drawLines(surface, colors.light,
              std::array{Point{r.left + 1, r.bottom}, Point{r.left + 1, r.top}, Point{shoulder, r.top}});
}

}  // namespace

void drawGrain(Surface& surface, const Rect& rect, bool tail, GrainState state) {
    const auto index = static_cast<std::size_t>(state);
    const GrainColors& colors = tail ? kTailColors.at(index) : kBlockColors.at(index);
    surface.SelectPen({kPalette[colors.outline]});
    surface.SelectBrush(kPalette[colors.fill]);
    if (tail)
        drawPentagon(surface, rect, colors);
    else
        drawBlock(surface, rect, colors);
}

void drawLengthMarker(Surface& surface, int x, int top, int bottom) {
    const int middle = top + (bottom - top) / 2;
    surface.SelectPen({kPalette[2]});
    drawLine(surface, {x, middle - 3}, {x, middle + 4});
    drawLine(surface, {x + 1, middle - 2}, {x + 1, middle + 3});
    surface.SelectBrush(kPalette[2]);
    surface.Ellipse({x + 2, middle - 3, x + 8, middle + 4});
}

}  // namespace marnoth
