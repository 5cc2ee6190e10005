#include "editor/controls/StaticText.h"

#include "editor/skin/Palette.h"
#include "platform/drawing/Surface.h"

namespace marnoth {

void StaticText::setText(std::string_view text) {
    text_ = text;
    invalidate();
}

void StaticText::paint(Surface& surface) {
    constexpr Color ground = kPalette[3];
    surface.SelectClipRgn(place());
    surface.SelectPen({ground});
    surface.SelectBrush(ground);
    surface.Rectangle(place());
    if (font_ && !text_.empty()) {
        surface.SelectFont(font_);
        surface.SetTextColor(kPalette[1]);
        surface.SetGroundColor(ground);
        surface.TextOut({place().left + 2, place().top}, text_);
    }
    surface.SelectClipRgn({});
}

}  // namespace marnoth
