#pragma once

#include <cstdint>
#include <vector>

#include "platform/drawing/RoundedShape.h"
#include "platform/drawing/Surface.h"

namespace marnoth {

/// Draws into a bitmap, exact to the pixel and alike on every platform. Shapes have hard edges; glyphs are
/// blended by their coverage.
///
/// Begins with a black pen of one pixel, no brush, no font, black text on white ground, no clip area, and its
/// position at (0, 0). Any coordinates are allowed: nothing is written outside the bitmap, and the work is
/// bounded by the bitmap's size. One thread at a time.
class RasterSurface final : public Surface {
public:
    /// `target` isn't owned; it outlives the surface and keeps its size.
    explicit RasterSurface(Bitmap& target);

    void SelectPen(const Pen& pen) override;
    void SelectBrush(std::optional<Color> brush) override { brush_ = brush; }
    void SelectFont(Font* font) override { font_ = font; }
    void SetTextColor(Color color) override { textColor_ = color; }
    void SetGroundColor(Color color) override { groundColor_ = color; }
    void SelectClipRgn(std::optional<Rect> clip) override;

    void Rectangle(const Rect& rect) override;
    void RoundRect(const Rect& rect, int cornerWidth, int cornerHeight) override;
    void Polygon(std::span<const Point> points) override;
    void Ellipse(const Rect& rect) override;
    void MoveTo(Point point) override { position_ = point; }
    void LineTo(Point point) override;
    void TextOut(Point at, std::string_view text) override;
    void BitBlt(const Rect& dest, const Bitmap& source, Point from) override;

private:
    /// Where a polygon's edge crosses a row: on a pixel's centre, or between that pixel and the next.
    struct Crossing {
        std::int64_t pixel = 0;
        bool between = false;

        friend auto operator<=>(const Crossing&, const Crossing&) = default;  // NOLINT(modernize-use-nullptr)
    };

    void fill(std::int64_t left, std::int64_t top, std::int64_t right, std::int64_t bottom, Color color);
    void fillSpan(std::int64_t y, std::int64_t begin, std::int64_t end, Color color) {
        fill(begin, y, end, y + 1, color);
    }
    void line(Point from, Point to);
    void drawShape(const Rect& rect, const RoundedShape& shape);
    void drawBorder(std::int64_t y, std::int64_t begin, std::int64_t end, const Rect& rect);
    void fillPolygonRow(int y, std::span<const Point> points, Color color);
    static Crossing crossingOf(Point upper, Point lower, int y);
    void drawGlyph(const Glyph& glyph, std::int64_t left, std::int64_t top);

    Bitmap& target_;
    Rect clip_;
    Pen pen_;
    int penWidth_ = 1;
    std::optional<Color> brush_;
    Font* font_ = nullptr;
    Color textColor_{};
    Color groundColor_{255, 255, 255};
    Point position_;
    std::vector<Crossing> crossings_;
};

}  // namespace marnoth
