#include "shellkit/page/QuestionPicture.h"

#include <algorithm>

#include "editor/skin/Palette.h"
#include "platform/drawing/Font.h"
#include "platform/drawing/Surface.h"

namespace marnoth {

namespace {

constexpr Color kGround = kPalette[1];
constexpr Color kInk = kPalette[4];
constexpr Color kShade = kPalette[0];

constexpr int kPadding = 16;
constexpr int kTextWidth = 330;
constexpr int kButtonWidth = 72;
constexpr int kButtonHeight = 20;
constexpr int kButtonGap = 8;
constexpr int kCheckWidth = 18;  ///< of a menu's column of checks
constexpr int kMenuBorder = 3;

using Lines = std::vector<std::string>;

/// Words go into the next line where they don't fit.
Lines wrapped(std::string_view text, Font& font) {
    Lines lines{""};
    while (!text.empty()) {
        const std::string word(text.substr(0, text.find(' ')));
        text.remove_prefix(std::min(word.size() + 1, text.size()));
        const std::string longer = lines.back().empty() ? word : lines.back() + " " + word;
        if (lines.back().empty() || font.widthOf(longer) <= kTextWidth)
            lines.back() = longer;
        else
            lines.push_back(word);
    }
    return lines;
}

void drawPlate(Surface& surface, const Rect& place) {
    surface.SelectBrush(kShade);
    surface.SelectPen({kShade});
    surface.Rectangle({place.left - 1, place.top - 1, place.right + 3, place.bottom + 3});
    surface.SelectBrush(kGround);
    surface.SelectPen({kInk});
    surface.Rectangle(place);
}

void writeLine(Surface& surface, Point at, std::string_view text) {
    surface.SetTextColor(kInk);
    surface.SetGroundColor(kGround);
    surface.TextOut(at, text);
}

void drawButton(Surface& surface, Font& font, const Rect& place, const std::string& text) {
    surface.SelectBrush(kGround);
    surface.SelectPen({kInk});
    surface.RoundRect(place, 4, 4);
    const int x = place.left + (place.width() - font.widthOf(text)) / 2;
    writeLine(surface, {x, place.top + (place.height() - font.lineHeight()) / 2}, text);
}

void drawBox(Surface& surface, const ShownQuestion& question, Font& font, const Rect& page) {
    const Lines lines = wrapped(question.text, font);
    const int textHeight = static_cast<int>(lines.size()) * font.lineHeight();
    const int width = kTextWidth + 2 * kPadding;
    const int height = textHeight + kButtonHeight + 3 * kPadding;
    const Rect box = Rect::at(page.left + (page.width() - width) / 2, page.top + (page.height() - height) / 2,
                              width, height);
    drawPlate(surface, box);
    for (int line = 0; line < static_cast<int>(lines.size()); ++line)
        writeLine(surface, {box.left + kPadding, box.top + kPadding + line * font.lineHeight()},
                  lines[static_cast<std::size_t>(line)]);
    const int step = kButtonWidth + kButtonGap;
    int left = box.right - kPadding + kButtonGap - step * static_cast<int>(question.buttons.size());
    for (const std::string& button : question.buttons) {
        drawButton(surface, font,
                   Rect::at(left, box.bottom - kPadding - kButtonHeight, kButtonWidth, kButtonHeight),
                   button);
        left += step;
    }
}

/// A tick of two pixels' width in a row's first column.
void drawCheck(Surface& surface, Point row, int height) {
    const int x = row.x + kCheckWidth / 2;
    const int y = row.y + height / 2;
    surface.SelectPen({kInk});
    for (const int right : {0, 1}) {
        surface.MoveTo({x - 4 + right, y});
        surface.LineTo({x - 1 + right, y + 3});
        surface.LineTo({x + 5 + right, y - 3});
    }
}

void drawMenu(Surface& surface, const ShownQuestion& menu, Font& font, const Rect& page) {
    int width = 0;
    for (const MenuItem& item : menu.items) width = std::max(width, font.widthOf(item.text));
    width += 2 * (kCheckWidth + kMenuBorder);
    const int rowHeight = font.lineHeight() + 4;
    const int height = static_cast<int>(menu.items.size()) * rowHeight + 2 * kMenuBorder;
    const Rect box =
        Rect::at(std::clamp(menu.at.x, page.left, std::max(page.left, page.right - width)),
                 std::clamp(menu.at.y, page.top, std::max(page.top, page.bottom - height)), width, height);
    drawPlate(surface, box);
    Point row{box.left + kMenuBorder, box.top + kMenuBorder};
    for (const MenuItem& item : menu.items) {
        if (item.checked) drawCheck(surface, row, rowHeight);
        writeLine(surface, {row.x + kCheckWidth, row.y + 2}, item.text);
        row.y += rowHeight;
    }
}

}  // namespace

void drawQuestion(Surface& surface, const ShownQuestion& question, Font& font, const Rect& page) {
    surface.SelectFont(&font);
    (question.items.empty() ? drawBox : drawMenu)(surface, question, font, page);
}

}  // namespace marnoth
