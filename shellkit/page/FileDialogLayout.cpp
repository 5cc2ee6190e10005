#include "shellkit/page/FileDialogLayout.h"

#include <algorithm>

#include "platform/drawing/Font.h"

namespace marnoth {

namespace {

constexpr int kWidth = 500;
constexpr int kPadding = 12;
constexpr int kGap = 8;
constexpr int kPlacesWidth = 112;
constexpr int kScrollerWidth = 12;
constexpr int kNameLabelWidth = 48;
constexpr int kUpWidth = 24;
constexpr int kButtonWidth = 80;
constexpr int kButtonHeight = 20;
constexpr int kFieldMargin = 4;  ///< above and below a field's text together
constexpr int kRowLeading = 2;
constexpr int kMostRows = 16;

}  // namespace

FileDialogLayout layOutFileDialog(Font& font, const Rect& room) {
    FileDialogLayout layout;
    const int line = font.lineHeight();
    const int field = line + kFieldMargin;
    layout.rowHeight = line + kRowLeading;
    const int around = 2 * kPadding + 2 * line + 2 * field + kButtonHeight + 5 * kGap;
    const int rows = std::clamp((room.height() - around) / layout.rowHeight, 1, kMostRows);
    const int width = std::min(kWidth, room.width());
    const int height = around + rows * layout.rowHeight;
    layout.box = Rect::at(room.left + (room.width() - width) / 2, room.top + (room.height() - height) / 2,
                          width, height);
    const int left = layout.box.left + kPadding;
    const int right = layout.box.right - kPadding;
    int y = layout.box.top + kPadding;
    layout.title = {left, y, right, y + line};
    y += line + kGap;
    layout.up = Rect::at(left, y, kUpWidth, field);
    layout.path = {left + kUpWidth + kGap, y, right, y + field};
    y += field + kGap;
    const int bottom = y + rows * layout.rowHeight;
    layout.places = {left, y, left + kPlacesWidth, bottom};
    layout.list = {left + kPlacesWidth + kGap, y, right - kScrollerWidth, bottom};
    layout.scroller = {right - kScrollerWidth, y, right, bottom};
    y = bottom + kGap;
    layout.nameLabel = {left, y, left + kNameLabelWidth, y + field};
    layout.name = {left + kNameLabelWidth, y, right, y + field};
    y += field + kGap;
    layout.note = {left, y, right, y + line};
    y += line + kGap;
    layout.listen = Rect::at(left, y, kButtonWidth, kButtonHeight);
    layout.accept = Rect::at(right - kButtonWidth, y, kButtonWidth, kButtonHeight);
    layout.cancel = layout.accept.movedBy(-kButtonWidth - kGap, 0);
    return layout;
}

}  // namespace marnoth
