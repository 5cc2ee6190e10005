#pragma once

#include <optional>
#include <span>
#include <string_view>

#include "platform/drawing/Bitmap.h"
#include "platform/drawing/Font.h"
#include "platform/drawing/Geometry.h"

#ifdef _WIN32
// The system's headers have a macro of this name. Read here, they can't bring it back behind us.
#include "platform/com/Com.h"
#undef TextOut
#endif

namespace marnoth {

/// A line's colour and kind. Width 0 and 1 are one pixel; a dotted pen draws every other pixel (beginning
/// with the first) in its colour and leaves the ones between in the ground colour.
struct Pen {
    Color color{};
    int width = 0;
    bool dotted = false;

    friend bool operator==(const Pen&, const Pen&) = default;
};

/// What the page draws on. Every call uses the pen, brush, font, text colour and ground colour that are
/// selected at that moment, and draws nothing outside the clip area.
///
/// Right and bottom edges of shapes are exclusive; a line leaves out its end point. One surface serves every
/// platform, so that the same page has the same pixels everywhere; another records its calls, for tests.
class Surface {
public:
    virtual ~Surface() = default;

    virtual void SelectPen(const Pen& pen) = 0;
    /// No brush leaves shapes unfilled.
    virtual void SelectBrush(std::optional<Color> brush) = 0;
    virtual void SelectFont(Font* font) = 0;  ///< not owned; outlives its use here
    virtual void SetTextColor(Color color) = 0;
    virtual void SetGroundColor(Color color) = 0;
    /// Nothing: the whole surface.
    virtual void SelectClipRgn(std::optional<Rect> clip) = 0;

    /// Border with the pen inside the edges, filled with the brush.
    virtual void Rectangle(const Rect& rect) = 0;
    /// The same with corners that are quarters of an ellipse of `cornerWidth` by `cornerHeight`.
    virtual void RoundRect(const Rect& rect, int cornerWidth, int cornerHeight) = 0;
    /// Closed by itself. The border goes through the pixels of all points, those at the right and at the
    /// bottom too; where it crosses itself, what is inside an even number of times stays unfilled.
    virtual void Polygon(std::span<const Point> points) = 0;
    /// Inscribed in the rectangle.
    virtual void Ellipse(const Rect& rect) = 0;
    virtual void MoveTo(Point point) = 0;
    virtual void LineTo(Point point) = 0;
    /// The text's ground is a rectangle of the ground colour over the whole line height and width. UTF-8.
    virtual void TextOut(Point at, std::string_view text) = 0;
    /// Copies the part of `source` at `from` that is as large as `dest`; what `source` lacks isn't drawn.
    virtual void BitBlt(const Rect& dest, const Bitmap& source, Point from) = 0;
};

/// A line with the selected pen.
inline void drawLine(Surface& surface, Point from, Point to) {
    surface.MoveTo(from);
    surface.LineTo(to);
}

}  // namespace marnoth
