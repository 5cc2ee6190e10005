#include "platform/drawing/RasterSurface.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "platform/drawing/LinePixels.h"
#include "platform/text/Text.h"

namespace marnoth {

namespace {

/// Wider pens count as this wide, which bounds the work of a line.
constexpr int kWidestPen = 32;

std::uint8_t blended(std::uint8_t under, std::uint8_t over, unsigned char coverage) {
    return static_cast<std::uint8_t>((under * (255 - coverage) + over * coverage + 127) / 255);
}

Color blended(Color under, Color over, unsigned char coverage) {
    return {blended(under.red, over.red, coverage), blended(under.green, over.green, coverage),
            blended(under.blue, over.blue, coverage)};
}

}  // namespace

RasterSurface::RasterSurface(Bitmap& target) : target_(target), clip_(target.bounds()) {}

void RasterSurface::SelectPen(const Pen& pen) {
    pen_ = pen;
    penWidth_ = pen.dotted ? 1 : std::clamp(pen.width, 1, kWidestPen);
}

void RasterSurface::SelectClipRgn(std::optional<Rect> clip) {
    clip_ = clip ? intersection(*clip, target_.bounds()) : target_.bounds();
}

void RasterSurface::Rectangle(const Rect& rect) {
    if (pen_.dotted) return drawShape(rect, RoundedShape(rect, 1, 1));
    if (rect.isEmpty()) return;
    const std::int64_t left = std::int64_t{rect.left} + penWidth_;
    const std::int64_t top = std::int64_t{rect.top} + penWidth_;
    const std::int64_t right = std::int64_t{rect.right} - penWidth_;
    const std::int64_t bottom = std::int64_t{rect.bottom} - penWidth_;
    if (left >= right || top >= bottom) return fill(rect.left, rect.top, rect.right, rect.bottom, pen_.color);
    fill(rect.left, rect.top, rect.right, top, pen_.color);
    fill(rect.left, top, left, bottom, pen_.color);
    if (brush_) fill(left, top, right, bottom, *brush_);
    fill(right, top, rect.right, bottom, pen_.color);
    fill(rect.left, bottom, rect.right, rect.bottom, pen_.color);
}

void RasterSurface::RoundRect(const Rect& rect, int cornerWidth, int cornerHeight) {
    drawShape(rect, RoundedShape(rect, cornerWidth, cornerHeight));
}

void RasterSurface::Ellipse(const Rect& rect) {
    constexpr int kWhole = std::numeric_limits<int>::max();
    drawShape(rect, RoundedShape(rect, kWhole, kWhole));
}

void RasterSurface::Polygon(std::span<const Point> points) {
    if (points.empty()) return;
    if (brush_) {
        const auto higher = [](Point a, Point b) { return a.y < b.y; };
        const auto [top, bottom] = std::minmax_element(points.begin(), points.end(), higher);
        const int first = std::max(clip_.top, top->y);
        const int end = std::min(clip_.bottom, bottom->y);
        for (int y = first; y < end; ++y) fillPolygonRow(y, points, *brush_);
    }
    for (std::size_t i = 1; i < points.size(); ++i) line(points[i - 1], points[i]);
    line(points.back(), points.front());
}

void RasterSurface::LineTo(Point point) {
    line(position_, point);
    position_ = point;
}

void RasterSurface::TextOut(Point at, std::string_view text) {
    if (!font_) return;
    fill(at.x, at.y, std::int64_t{at.x} + font_->widthOf(text), std::int64_t{at.y} + font_->lineHeight(),
         groundColor_);
    std::int64_t pen = at.x;
    while (!text.empty()) {
        const Glyph& glyph = font_->glyph(takeUtf8(text));
        drawGlyph(glyph, pen + glyph.left, std::int64_t{at.y} + glyph.top);
        pen += glyph.advance;
    }
}

void RasterSurface::BitBlt(const Rect& dest, const Bitmap& source, Point from) {
    const std::int64_t right = std::int64_t{from.x} - dest.left;
    const std::int64_t down = std::int64_t{from.y} - dest.top;
    const Rect area = intersection(dest, clip_);
    const std::int64_t left = std::max<std::int64_t>(area.left, -right);
    const std::int64_t end = std::min<std::int64_t>(area.right, source.width() - right);
    const std::int64_t top = std::max<std::int64_t>(area.top, -down);
    const std::int64_t bottom = std::min<std::int64_t>(area.bottom, source.height() - down);
    if (left >= end) return;
    const auto bytes = static_cast<std::size_t>(end - left) * sizeof(Color);
    const auto copyRow = [&](std::int64_t y) {
        std::memmove(&target_.at(static_cast<int>(left), static_cast<int>(y)),
                     &source.at(static_cast<int>(left + right), static_cast<int>(y + down)), bytes);
    };
    // A bitmap may be copied onto itself: no row is overwritten before it was read.
    if (down >= 0)
        for (std::int64_t y = top; y < bottom; ++y) copyRow(y);
    else
        for (std::int64_t y = bottom; y-- > top;) copyRow(y);
}

void RasterSurface::fill(std::int64_t left, std::int64_t top, std::int64_t right, std::int64_t bottom,
                         Color color) {
    left = std::max<std::int64_t>(left, clip_.left);
    right = std::min<std::int64_t>(right, clip_.right);
    bottom = std::min<std::int64_t>(bottom, clip_.bottom);
    if (left >= right) return;
    for (std::int64_t y = std::max<std::int64_t>(top, clip_.top); y < bottom; ++y) {
        const auto row = target_.row(static_cast<int>(y)).begin();
        std::fill(row + left, row + right, color);
    }
}

void RasterSurface::line(Point from, Point to) {
    // A wide pen is a square that goes along the pixels of the line, more of it before them than behind.
    const int before = penWidth_ / 2;
    if (!pen_.dotted && (from.x == to.x) != (from.y == to.y)) {
        // Along an axis all the squares are one rectangle. A line that goes back begins behind its end.
        const std::int64_t left = to.x < from.x ? std::int64_t{to.x} + 1 : from.x;
        const std::int64_t top = to.y < from.y ? std::int64_t{to.y} + 1 : from.y;
        const std::int64_t right = std::max(std::int64_t{from.x} + 1, std::int64_t{to.x}) + penWidth_ - 1;
        const std::int64_t bottom = std::max(std::int64_t{from.y} + 1, std::int64_t{to.y}) + penWidth_ - 1;
        return fill(left - before, top - before, right - before, bottom - before, pen_.color);
    }
    for (LinePixels at(from, to, clip_, penWidth_); !at.atEnd(); at.next()) {
        const Color color = pen_.dotted && at.step() % 2 != 0 ? groundColor_ : pen_.color;
        const std::int64_t left = at.x() - before;
        const std::int64_t top = at.y() - before;
        fill(left, top, left + penWidth_, top + penWidth_, color);
    }
}

void RasterSurface::drawShape(const Rect& rect, const RoundedShape& shape) {
    const Rect rows = intersection(rect, clip_);
    for (int y = rows.top; y < rows.bottom; ++y) {
        const PixelSpan whole = shape.row(y);
        const PixelSpan inner = shape.inside(y, penWidth_);
        if (inner.isEmpty()) {
            drawBorder(y, whole.begin, whole.end, rect);
            continue;
        }
        drawBorder(y, whole.begin, inner.begin, rect);
        if (brush_) fillSpan(y, inner.begin, inner.end, *brush_);
        drawBorder(y, inner.end, whole.end, rect);
    }
}

void RasterSurface::drawBorder(std::int64_t y, std::int64_t begin, std::int64_t end, const Rect& rect) {
    fillSpan(y, begin, end, pen_.color);
    if (!pen_.dotted) return;
    // Every other pixel, as on a chess board: so the dots alternate along each side.
    const std::int64_t first = std::max<std::int64_t>(begin, clip_.left);
    const std::int64_t last = std::min<std::int64_t>(end, clip_.right);
    for (std::int64_t x = first; x < last; ++x)
        if ((x - rect.left + y - rect.top) % 2 != 0) fillSpan(y, x, x + 1, groundColor_);
}

void RasterSurface::fillPolygonRow(int y, std::span<const Point> points, Color color) {
    crossings_.clear();
    Point from = points.back();
    for (const Point to : points) {
        const bool down = from.y < to.y;
        const Point upper = down ? from : to;
        const Point lower = down ? to : from;
        // The lower end belongs to the next edge: a corner in passing counts once.
        if (upper.y <= y && y < lower.y) crossings_.push_back(crossingOf(upper, lower, y));
        from = to;
    }
    std::sort(crossings_.begin(), crossings_.end());
    for (std::size_t i = 1; i < crossings_.size(); i += 2)
        fillSpan(y, crossings_[i - 1].pixel + (crossings_[i - 1].between ? 1 : 0), crossings_[i].pixel + 1,
                 color);
}

RasterSurface::Crossing RasterSurface::crossingOf(Point upper, Point lower, int y) {
    const std::int64_t across = std::int64_t{lower.x} - upper.x;
    const auto rows = static_cast<std::uint64_t>(std::int64_t{lower.y} - upper.y);
    // Both factors are below 2^32, so the product fits without a sign.
    const auto product = static_cast<std::uint64_t>(std::int64_t{y} - upper.y) *
                         static_cast<std::uint64_t>(across < 0 ? -across : across);
    const auto away = static_cast<std::int64_t>(product / rows);
    const bool between = product % rows != 0;
    if (across >= 0) return {upper.x + away, between};
    return {upper.x - away - (between ? 1 : 0), between};
}

void RasterSurface::drawGlyph(const Glyph& glyph, std::int64_t left, std::int64_t top) {
    const std::int64_t firstColumn = std::max<std::int64_t>(0, clip_.left - left);
    const std::int64_t endColumn = std::min<std::int64_t>(glyph.width, clip_.right - left);
    const std::int64_t endRow = std::min<std::int64_t>(glyph.height, clip_.bottom - top);
    for (std::int64_t y = std::max<std::int64_t>(0, clip_.top - top); y < endRow; ++y)
        for (std::int64_t x = firstColumn; x < endColumn; ++x) {
            Color& pixel = target_.at(static_cast<int>(left + x), static_cast<int>(top + y));
            const auto index = static_cast<std::size_t>(y * glyph.width + x);
            pixel = blended(pixel, textColor_, glyph.coverage[index]);
        }
}

}  // namespace marnoth
