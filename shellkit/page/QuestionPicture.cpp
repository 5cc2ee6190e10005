#include "shellkit/page/QuestionPicture.h"

#include <string_view>

#include "editor/skin/Palette.h"
#include "platform/drawing/Font.h"
#include "platform/drawing/Surface.h"

namespace marnoth {

namespace {

constexpr Color kInk = kPalette[4];
constexpr Color kShade = kPalette[0];

/// Of the choice that Return takes, and of the others.
constexpr Color kLitGround = kPalette[5];
constexpr Color kGround = kPalette[1];

constexpr int kCheckWidth = 18;  ///< of a menu's column of checks

Color groundOf(int choice, int lit) {
    return choice == lit ? kLitGround : kGround;
}

void drawPlate(Surface& surface, const Rect& place) {
    surface.SelectBrush(kShade);
    surface.SelectPen({kShade});
    surface.Rectangle({place.left - kShadowBefore, place.top - kShadowBefore, place.right + kShadowBehind,
                       place.bottom + kShadowBehind});
    surface.SelectBrush(kGround);
    surface.SelectPen({kInk});
    surface.Rectangle(place);
}

void writeLine(Surface& surface, Point at, std::string_view text, Color ground) {
    surface.SetTextColor(kInk);
    surface.SetGroundColor(ground);
    surface.TextOut(at, text);
}

void drawButton(Surface& surface, Font& font, const Rect& place, const std::string& text, Color ground) {
    surface.SelectBrush(ground);
    surface.SelectPen({kInk});
    surface.RoundRect(place, 4, 4);
    const int x = place.left + (place.width() - font.widthOf(text)) / 2;
    writeLine(surface, {x, place.top + (place.height() - font.lineHeight()) / 2}, text, ground);
}

void drawBox(Surface& surface, const ShownQuestion& question, const QuestionLayout& layout, Font& font,
             int lit) {
    drawPlate(surface, layout.box);
    Point at = layout.text;
    for (const std::string& line : layout.lines) {
        writeLine(surface, at, line, kGround);
        at.y += font.lineHeight();
    }
    for (std::size_t button = 0; button < layout.choices.size(); ++button)
        drawButton(surface, font, layout.choices[button], question.buttons[button],
                   groundOf(static_cast<int>(button), lit));
}

/// A tick of two pixels' width in a row's first column.
void drawCheck(Surface& surface, const Rect& row) {
    const int x = row.left + kCheckWidth / 2;
    const int y = row.top + row.height() / 2;
    surface.SelectPen({kInk});
    for (const int right : {0, 1}) {
        surface.MoveTo({x - 4 + right, y});
        surface.LineTo({x - 1 + right, y + 3});
        surface.LineTo({x + 5 + right, y - 3});
    }
}

void drawMenu(Surface& surface, const ShownQuestion& menu, const QuestionLayout& layout, int lit) {
    drawPlate(surface, layout.box);
    for (std::size_t item = 0; item < layout.choices.size(); ++item) {
        const Rect& row = layout.choices[item];
        const Color ground = groundOf(static_cast<int>(item), lit);
        if (static_cast<int>(item) == lit) {
            surface.SelectBrush(ground);
            surface.SelectPen({ground});
            surface.Rectangle(row);
        }
        if (menu.items[item].checked) drawCheck(surface, row);
        writeLine(surface, {row.left + kCheckWidth, row.top + 2}, menu.items[item].text, ground);
    }
}

}  // namespace

void drawQuestion(Surface& surface, const ShownQuestion& question, const QuestionLayout& layout, Font& font,
                  int lit) {
    surface.SelectFont(&font);
    if (question.items.empty()) {
        drawBox(surface, question, layout, font, lit);
    } else {
        drawMenu(surface, question, layout, lit);
    }
}

}  // namespace marnoth
