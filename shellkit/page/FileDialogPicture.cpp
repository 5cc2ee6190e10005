#include "shellkit/page/FileDialogPicture.h"

#include <algorithm>
#include <array>

#include "editor/skin/Palette.h"
#include "platform/drawing/Font.h"
#include "platform/drawing/Surface.h"
#include "platform/text/Text.h"
#include "shellkit/page/QuestionPicture.h"

namespace marnoth {

namespace {

using Looks = FileDialogLooks;

constexpr Color kDialogInk = kPalette[4];
constexpr Color kDialogGround = kPalette[1];
constexpr Color kDialogShade = kPalette[0];
constexpr Color kWell{25, 29, 36};  ///< behind lists
constexpr Color kFileInk = kPalette[6];
constexpr Color kLitRow = kPalette[5];
constexpr Color kLitInk = kPalette[2];
constexpr Color kTroubleInk{230, 150, 120};
constexpr int kMargin = 4;  ///< left of a text in its room
constexpr int kIconRoom = 18;
constexpr int kLeastThumb = 12;
constexpr const char* kPoints = "...";

void fillRect(Surface& surface, const Rect& place, Color ground, Color edge) {
    surface.SelectBrush(ground);
    surface.SelectPen({edge});
    surface.Rectangle(place);
}

void write(Surface& surface, Point at, std::string_view text, Color ink, Color ground) {
    surface.SetTextColor(ink);
    surface.SetGroundColor(ground);
    surface.TextOut(at, text);
}

void drawBox(Surface& surface, const Rect& box) {
    fillRect(surface,
             {box.left - kShadowBefore, box.top - kShadowBefore, box.right + kShadowBehind,
              box.bottom + kShadowBehind},
             kDialogShade, kDialogShade);
    fillRect(surface, box, kDialogGround, kDialogInk);
}

/// A sheet's or a folder's outline in a row's first pixels.
void drawIcon(Surface& surface, const Rect& row, bool isFolder, Color ink, Color ground) {
    const int x = row.left + kMargin;
    const int y = row.top + (row.height() - 10) / 2;
    surface.SelectPen({ink});
    if (isFolder) {
        surface.SelectBrush(ink);
        surface.Rectangle({x, y, x + 5, y + 3});
        surface.Rectangle({x, y + 2, x + 11, y + 9});
        return;
    }
    // Three bars of a wave.
    surface.SelectBrush(ground);
    int bar = x + 1;
    for (const int reach : {2, 5, 3, 4, 1}) {
        drawLine(surface, {bar, y + 5 - reach}, {bar, y + 5 + reach});
        bar += 2;
    }
}

void drawEntry(Surface& surface, Font& font, const Rect& row, const FolderList::Entry& entry, bool lit) {
    const Color ground = lit ? kLitRow : kWell;
    const Color ink = lit ? kLitInk : entry.isFolder ? kDialogInk : kFileInk;
    if (lit) fillRect(surface, row, ground, ground);
    drawIcon(surface, row, entry.isFolder, ink, ground);
    write(surface, {row.left + kIconRoom, row.top + 1},
          beginningThatFits(font, entry.name, row.width() - kIconRoom - kMargin), ink, ground);
}

void drawList(Surface& surface, Font& font, const FileDialogLayout& layout, const FileBrowser& browser,
              const Looks& looks) {
    const Rect& list = layout.list;
    fillRect(surface, {list.left - 1, list.top - 1, layout.scroller.right, list.bottom + 1}, kWell,
             looks.keyboard == Looks::Keyboard::list ? kDialogInk : kLitRow);
    const auto& entries = browser.entries();
    for (int number = 0; number < layout.rows(); ++number) {
        const std::size_t entry = looks.firstRow + static_cast<std::size_t>(number);
        if (entry >= entries.size()) break;
        drawEntry(surface, font, layout.row(list, number), entries[entry], browser.lit() == entry);
    }
    const Rect thumb = scrollerThumb(layout.scroller, looks.firstRow, layout.rows(), entries.size());
    if (!thumb.isEmpty())
        fillRect(surface, {thumb.left + 3, thumb.top, thumb.right - 3, thumb.bottom}, kLitRow, kLitRow);
}

void drawPlaces(Surface& surface, Font& font, const FileDialogLayout& layout, const FileBrowser& browser,
                const Looks& looks) {
    const Rect& room = layout.places;
    fillRect(surface, {room.left, room.top - 1, room.right, room.bottom + 1}, kWell, kLitRow);
    int number = 0;
    for (const FilePlace& place : looks.places) {
        if (number >= layout.rows()) break;
        const Rect row = layout.row(room, number++);
        const Color ink = place.folder == browser.folder() ? kPalette[8] : kDialogInk;
        write(surface, {row.left + kMargin, row.top + 1},
              beginningThatFits(font, place.name, row.width() - 2 * kMargin), ink, kWell);
    }
}

void drawPlate(Surface& surface, Font& font, const Rect& place, const std::string& text, bool down) {
    const Color ground = down ? kLitRow : kDialogGround;
    surface.SelectBrush(ground);
    surface.SelectPen({kDialogInk});
    surface.RoundRect(place, 4, 4);
    write(surface,
          {place.left + (place.width() - font.widthOf(text)) / 2,
           place.top + (place.height() - font.lineHeight()) / 2},
          text, kDialogInk, ground);
}

void drawUp(Surface& surface, const Rect& place, bool down) {
    const Color ground = down ? kLitRow : kDialogGround;
    surface.SelectBrush(ground);
    surface.SelectPen({kDialogInk});
    surface.RoundRect(place, 4, 4);
    const int x = place.left + place.width() / 2;
    const int y = place.top + place.height() / 2;
    surface.SelectBrush(kDialogInk);
    surface.Polygon(std::array{Point{x - 5, y}, Point{x, y - 5}, Point{x + 5, y}});
    surface.Rectangle({x - 1, y, x + 2, y + 5});
}

void drawButtons(Surface& surface, Font& font, const FileDialogLayout& layout, const FileBrowser& browser,
                 const Looks& looks) {
    using Button = Looks::Button;
    drawUp(surface, layout.up, looks.pressed == Button::up);
    if (looks.canListen)
        drawPlate(surface, font, layout.listen, looks.listens ? "Stop" : "Listen",
                  looks.listens || looks.pressed == Button::listen);
    drawPlate(surface, font, layout.cancel, "Cancel", looks.pressed == Button::cancel);
    drawPlate(surface, font, layout.accept, browser.saves() ? "Save" : "Open",
              looks.pressed == Button::accept);
}

void drawName(Surface& surface, const FileDialogLayout& layout, EditLine& name, bool focused) {
    const Rect& room = layout.name;
    fillRect(surface, room, kFieldGround, focused ? kDialogInk : kLitRow);
    name.paint(surface, {room.left + 1, room.top + 2, room.right - 1, room.bottom - 2}, focused);
}

}  // namespace

Rect scrollerThumb(const Rect& scroller, std::size_t first, int rows, std::size_t count) {
    const auto seen = static_cast<std::size_t>(rows);
    if (count <= seen) return {};
    const auto height = static_cast<std::size_t>(scroller.height());
    const std::size_t thumb = std::max<std::size_t>(height * seen / count, kLeastThumb);
    const std::size_t top = (height - thumb) * std::min(first, count - seen) / (count - seen);
    return Rect::at(scroller.left, scroller.top + static_cast<int>(top), scroller.width(),
                    static_cast<int>(thumb));
}

std::string endThatFits(Font& font, const std::string& text, int width) {
    if (font.widthOf(text) <= width) return text;
    std::string_view rest = text;
    while (!rest.empty() && font.widthOf(kPoints + std::string(rest)) > width) takeUtf8(rest);
    return kPoints + std::string(rest);
}

std::string beginningThatFits(Font& font, const std::string& text, int width) {
    if (font.widthOf(text) <= width) return text;
    std::string_view rest = text;
    std::size_t fits = 0;
    while (!rest.empty() && font.widthOf(text.substr(0, fits) + kPoints) <= width) {
        takeUtf8(rest);
        const std::size_t next = text.size() - rest.size();
        if (font.widthOf(text.substr(0, next) + kPoints) > width) break;
        fits = next;
    }
    return text.substr(0, fits) + kPoints;
}

void drawFileDialog(Surface& surface, Font& font, const FileDialogLayout& layout, const FileBrowser& browser,
                    EditLine& name, const Looks& looks) {
    surface.SelectFont(&font);
    drawBox(surface, layout.box);
    write(surface, {layout.title.left, layout.title.top}, browser.filter().title(browser.saves()),
          kPalette[8], kDialogGround);
    write(surface, {layout.path.left, layout.path.top + 2},
          endThatFits(font, browser.folder(), layout.path.width()), kDialogInk, kDialogGround);
    drawPlaces(surface, font, layout, browser, looks);
    drawList(surface, font, layout, browser, looks);
    write(surface, {layout.nameLabel.left, layout.nameLabel.top + 2}, "Name", kDialogInk, kDialogGround);
    drawName(surface, layout, name, looks.keyboard == Looks::Keyboard::name);
    surface.SelectFont(&font);
    write(surface, {layout.note.left, layout.note.top},
          beginningThatFits(font, looks.note, layout.note.width()), kTroubleInk, kDialogGround);
    drawButtons(surface, font, layout, browser, looks);
}

}  // namespace marnoth
