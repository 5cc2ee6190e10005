#include "platform/drawing/RecordingSurface.h"

#include <initializer_list>
#include <utility>

namespace marnoth {

namespace {

std::string textOf(std::initializer_list<int> numbers) {
    std::string text;
    for (const int number : numbers) text += (text.empty() ? "" : ",") + std::to_string(number);
    return text;
}
std::string textOf(Color color) {
    return textOf({color.red, color.green, color.blue});
}
std::string textOf(Point point) {
    return textOf({point.x, point.y});
}
std::string textOf(const Rect& rect) {
    return textOf({rect.left, rect.top, rect.right, rect.bottom});
}

}  // namespace

void RecordingSurface::SelectPen(const Pen& pen) {
    std::string call = "SelectPen " + textOf(pen.color);
    if (pen.width != 0) call += " width " + std::to_string(pen.width);
    if (pen.dotted) call += " dotted";
    calls_.push_back(std::move(call));
    if (beneath_) beneath_->SelectPen(pen);
}

void RecordingSurface::SelectBrush(std::optional<Color> brush) {
    calls_.push_back("SelectBrush " + (brush ? textOf(*brush) : "none"));
    if (beneath_) beneath_->SelectBrush(brush);
}

void RecordingSurface::SelectFont(Font* font) {
    calls_.push_back("SelectFont " + (font ? std::to_string(font->lineHeight()) : "none"));
    if (beneath_) beneath_->SelectFont(font);
}

void RecordingSurface::SetTextColor(Color color) {
    calls_.push_back("SetTextColor " + textOf(color));
    if (beneath_) beneath_->SetTextColor(color);
}

void RecordingSurface::SetGroundColor(Color color) {
    calls_.push_back("SetGroundColor " + textOf(color));
    if (beneath_) beneath_->SetGroundColor(color);
}

void RecordingSurface::SelectClipRgn(std::optional<Rect> clip) {
    calls_.push_back("SelectClipRgn " + (clip ? textOf(*clip) : "none"));
    if (beneath_) beneath_->SelectClipRgn(clip);
}

void RecordingSurface::Rectangle(const Rect& rect) {
    calls_.push_back("Rectangle " + textOf(rect));
    if (beneath_) beneath_->Rectangle(rect);
}

void RecordingSurface::RoundRect(const Rect& rect, int cornerWidth, int cornerHeight) {
    calls_.push_back("RoundRect " + textOf(rect) + " corners " + textOf({cornerWidth, cornerHeight}));
    if (beneath_) beneath_->RoundRect(rect, cornerWidth, cornerHeight);
}

void RecordingSurface::Polygon(std::span<const Point> points) {
    std::string call = "Polygon";
    for (const Point point : points) call += " " + textOf(point);
    calls_.push_back(std::move(call));
    if (beneath_) beneath_->Polygon(points);
}

void RecordingSurface::Ellipse(const Rect& rect) {
    calls_.push_back("Ellipse " + textOf(rect));
    if (beneath_) beneath_->Ellipse(rect);
}

void RecordingSurface::MoveTo(Point point) {
    calls_.push_back("MoveTo " + textOf(point));
    if (beneath_) beneath_->MoveTo(point);
}

void RecordingSurface::LineTo(Point point) {
    calls_.push_back("LineTo " + textOf(point));
    if (beneath_) beneath_->LineTo(point);
}

void RecordingSurface::TextOut(Point at, std::string_view text) {
    calls_.push_back("TextOut " + textOf(at) + " \"" + std::string(text) + '"');
    if (beneath_) beneath_->TextOut(at, text);
}

void RecordingSurface::BitBlt(const Rect& dest, const Bitmap& source, Point from) {
    calls_.push_back("BitBlt " + textOf(dest) + " from " + textOf(from) + " of " +
                     std::to_string(source.width()) + 'x' + std::to_string(source.height()));
    if (beneath_) beneath_->BitBlt(dest, source, from);
}

}  // namespace marnoth
