#include "shells/desktop/window/BarPictures.h"

#include <initializer_list>
#include <stdexcept>
#include <string>
#include <vector>

#include "editor/skin/Palette.h"
#include "editor/texts/PageTexts.h"
#include "platform/drawing/Font.h"
#include "platform/drawing/RasterSurface.h"

namespace marnoth {

namespace {

constexpr Color kPlateUp{52, 59, 70};
constexpr Color kEdge = kPalette[1];
constexpr Color kSymbolUp = kBarText;
constexpr Color kSymbolDown = kPalette[8];
constexpr Color kRecording{230, 92, 80};
constexpr Color kShine{104, 112, 126};

/// The middle of a button.
constexpr int kX = kBarButtonWidth / 2;
constexpr int kY = kBarButtonHeight / 2;

void fill(Surface& surface, std::initializer_list<Point> points) {
    const std::vector<Point> all(points);
    surface.Polygon(all);
}

void line(Surface& surface, Point from, Point to) {
    surface.MoveTo(from);
    surface.LineTo(to);
}

/// A sheet with a corner folded down.
void drawFiles(Surface& surface) {
    surface.SelectBrush({});
    fill(surface, {{kX - 5, kY - 7}, {kX + 1, kY - 7}, {kX + 5, kY - 3}, {kX + 5, kY + 6}, {kX - 5, kY + 6}});
    line(surface, {kX + 1, kY - 7}, {kX + 1, kY - 3});
    line(surface, {kX + 1, kY - 3}, {kX + 5, kY - 3});
    for (const int row : {0, 3}) line(surface, {kX - 2, kY + row}, {kX + 3, kY + row});
}

void drawToStart(Surface& surface) {
    surface.Rectangle({kX - 6, kY - 5, kX - 3, kY + 5});
    fill(surface, {{kX + 5, kY - 5}, {kX + 5, kY + 4}, {kX - 2, kY - 1}, {kX - 2, kY}});
}

void drawPlay(Surface& surface) {
    fill(surface, {{kX - 4, kY - 6}, {kX - 4, kY + 5}, {kX + 5, kY}, {kX + 5, kY - 1}});
}

void drawStop(Surface& surface) {
    surface.Rectangle({kX - 5, kY - 5, kX + 5, kY + 5});
}

void drawRecord(Surface& surface) {
    surface.Ellipse({kX - 5, kY - 5, kX + 6, kY + 6});
}

/// A track with an arrow's head.
void drawLoop(Surface& surface, Color color) {
    surface.SelectBrush({});
    surface.RoundRect({kX - 7, kY - 4, kX + 7, kY + 5}, 8, 8);
    surface.SelectBrush(color);
    fill(surface, {{kX - 1, kY - 7}, {kX - 1, kY - 1}, {kX + 3, kY - 4}});
}

/// A case that narrows upward, with its swinging rod.
void drawMetronome(Surface& surface) {
    surface.SelectBrush({});
    fill(surface, {{kX - 2, kY - 6}, {kX + 1, kY - 6}, {kX + 5, kY + 5}, {kX - 6, kY + 5}});
    line(surface, {kX, kY + 4}, {kX + 6, kY - 7});
}

/// A finger that falls: two waves over a point.
void drawTap(Surface& surface) {
    surface.Ellipse({kX - 2, kY + 1, kX + 3, kY + 6});
    line(surface, {kX - 4, kY - 1}, {kX, kY - 3});
    line(surface, {kX, kY - 3}, {kX + 5, kY - 1});
    line(surface, {kX - 6, kY - 4}, {kX, kY - 7});
    line(surface, {kX, kY - 7}, {kX + 7, kY - 4});
}

/// A note.
void drawKey(Surface& surface) {
    surface.Ellipse({kX - 5, kY + 1, kX + 1, kY + 6});
    line(surface, {kX, kY + 3}, {kX, kY - 7});
    line(surface, {kX, kY - 7}, {kX + 5, kY - 4});
    line(surface, {kX, kY - 6}, {kX + 5, kY - 3});
}

/// An exclamation mark.
void drawPanic(Surface& surface) {
    surface.Rectangle({kX - 1, kY - 7, kX + 2, kY + 2});
    surface.Rectangle({kX - 1, kY + 4, kX + 2, kY + 7});
}

/// Three sliders.
void drawSettings(Surface& surface) {
    for (const int row : {-5, 0, 5}) {
        line(surface, {kX - 7, kY + row}, {kX + 8, kY + row});
        const int knob = row == 0 ? kX + 2 : kX - 4;
        surface.Rectangle({knob, kY + row - 1, knob + 3, kY + row + 2});
    }
}

void drawSymbol(Surface& surface, BarSymbol symbol, Color color) {
    surface.SelectPen({color});
    surface.SelectBrush(color);
    switch (symbol) {
        case BarSymbol::files:
            return drawFiles(surface);
        case BarSymbol::toStart:
            return drawToStart(surface);
        case BarSymbol::play:
            return drawPlay(surface);
        case BarSymbol::stop:
            return drawStop(surface);
        case BarSymbol::record:
            return drawRecord(surface);
        case BarSymbol::loop:
            return drawLoop(surface, color);
        case BarSymbol::metronome:
            return drawMetronome(surface);
        case BarSymbol::tap:
            return drawTap(surface);
        case BarSymbol::key:
            return drawKey(surface);
        case BarSymbol::panic:
            return drawPanic(surface);
        case BarSymbol::settings:
            return drawSettings(surface);
    }
}

Bitmap drawButton(BarSymbol symbol, Color plate, Color color) {
    Bitmap picture(kBarButtonWidth, kBarButtonHeight, kBarGround);
    RasterSurface surface(picture);
    surface.SelectPen({kEdge});
    surface.SelectBrush(plate);
    surface.RoundRect(picture.bounds(), 4, 4);
    drawSymbol(surface, symbol, color);
    return picture;
}

}  // namespace

std::unique_ptr<Font> barFont(PageWindow& window, int height) {
    std::string error;
    std::unique_ptr<Font> font = window.openFont(kFontFace, height, error);
    if (!font) throw std::runtime_error(error);
    return font;
}

BarButtonPictures drawBarButton(BarSymbol symbol) {
    const bool records = symbol == BarSymbol::record;
    return {drawButton(symbol, kPlateUp, kSymbolUp),
            drawButton(symbol, records ? kPlateUp : kPalette[7], records ? kRecording : kSymbolDown)};
}

Bitmap drawBarGround(int width, int height) {
    Bitmap ground(width, height, kBarGround);
    RasterSurface surface(ground);
    surface.SelectPen({kShine});
    line(surface, {0, 0}, {width, 0});
    surface.SelectPen({kEdge});
    line(surface, {0, height - 1}, {width, height - 1});
    return ground;
}

}  // namespace marnoth
