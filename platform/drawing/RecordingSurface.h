#pragma once

#include <string>
#include <vector>

#include "platform/drawing/Surface.h"

namespace marnoth {

/// Writes down every call as one line of text, for tests and for counting what a paint draws.
///
/// A line is the call's name and its arguments: points as "x,y", rectangles as "left,top,right,bottom",
/// colours as "red,green,blue", texts in double quotes.
///
///     SelectPen 255,255,255 width 2      SelectPen 91,99,120 dotted      SelectBrush none
///     SelectFont 12 (its line height)    SelectClipRgn none              RoundRect 1,2,9,8 corners 5,5
///     Polygon 0,0 4,2 0,4                TextOut 3,4 "Pad 1"             BitBlt 0,0,8,8 from 2,0 of 16x8
class RecordingSurface final : public Surface {
public:
    /// What is recorded is also drawn on `beneath`, unless that is null; not owned.
    explicit RecordingSurface(Surface* beneath = nullptr) : beneath_(beneath) {}

    const std::vector<std::string>& calls() const { return calls_; }
    void clear() { calls_.clear(); }

    void SelectPen(const Pen& pen) override;
    void SelectBrush(std::optional<Color> brush) override;
    void SelectFont(Font* font) override;
    void SetTextColor(Color color) override;
    void SetGroundColor(Color color) override;
    void SelectClipRgn(std::optional<Rect> clip) override;
    void Rectangle(const Rect& rect) override;
    void RoundRect(const Rect& rect, int cornerWidth, int cornerHeight) override;
    void Polygon(std::span<const Point> points) override;
    void Ellipse(const Rect& rect) override;
    void MoveTo(Point point) override;
    void LineTo(Point point) override;
    void TextOut(Point at, std::string_view text) override;
    void BitBlt(const Rect& dest, const Bitmap& source, Point from) override;

private:
    Surface* beneath_;
    std::vector<std::string> calls_;
};

}  // namespace marnoth
