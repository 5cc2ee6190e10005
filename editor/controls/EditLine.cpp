#include "editor/controls/EditLine.h"

#include <algorithm>

#include "editor/skin/Palette.h"
#include "platform/drawing/Surface.h"

namespace marnoth {

namespace {

constexpr int kLeftMargin = 2;
constexpr int kRightMargin = 1;  ///< room for the caret behind the last character

bool continuesCharacter(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0u) == 0x80u;
}

bool isControl(char32_t character) {
    return character < 0x20 || character == 0x7F;
}

std::string utf8Of(char32_t c) {
    const auto tail = [c](int shift) { return static_cast<char>(0x80u | ((c >> shift) & 0x3Fu)); };
    if (c < 0x80) return {static_cast<char>(c)};
    if (c < 0x800) return {static_cast<char>(0xC0u | (c >> 6)), tail(0)};
    if (c < 0x10000) return {static_cast<char>(0xE0u | (c >> 12)), tail(6), tail(0)};
    return {static_cast<char>(0xF0u | (c >> 18)), tail(12), tail(6), tail(0)};
}

/// As many whole characters as fit in `bytes`.
std::string_view beginning(std::string_view text, std::size_t bytes) {
    if (text.size() <= bytes) return text;
    while (bytes > 0 && continuesCharacter(text[bytes])) --bytes;
    return text.substr(0, bytes);
}

}  // namespace

void EditLine::setText(std::string_view text) {
    text = beginning(text, kLongest);
    if (text == text_) return;
    text_ = text;
    caret_ = anchor_ = pressed_ = text_.size();
}

void EditLine::selectAll() {
    anchor_ = 0;
    caret_ = text_.size();
}

void EditLine::rest() {
    caret_ = anchor_ = pressed_ = 0;
    scroll_ = 0;
}

std::string_view EditLine::selected() const {
    return std::string_view(text_).substr(selectionBegin(), selectionEnd() - selectionBegin());
}

std::size_t EditLine::before(std::size_t position) const {
    if (position == 0) return 0;
    do --position;
    while (position > 0 && continuesCharacter(text_[position]));
    return position;
}

std::size_t EditLine::behind(std::size_t position) const {
    if (position >= text_.size()) return text_.size();
    do ++position;
    while (position < text_.size() && continuesCharacter(text_[position]));
    return position;
}

int EditLine::widthTo(std::size_t position) const {
    return font_ ? font_->widthOf(std::string_view(text_).substr(0, position)) : 0;
}

std::size_t EditLine::gapAt(int x) const {
    const int wanted = x - kLeftMargin + scroll_;
    std::size_t gap = 0;
    while (gap < text_.size()) {
        const std::size_t next = behind(gap);
        if (2 * wanted < widthTo(gap) + widthTo(next)) break;
        gap = next;
    }
    return gap;
}

void EditLine::moveTo(std::size_t caret, bool extend) {
    caret_ = caret;
    if (!extend) anchor_ = caret;
}

void EditLine::step(bool forward, bool extend) {
    if (hasSelection() && !extend) return moveTo(forward ? selectionEnd() : selectionBegin(), false);
    moveTo(forward ? behind(caret_) : before(caret_), extend);
}

void EditLine::replaceSelection(std::string_view with) {
    const std::size_t begin = selectionBegin();
    const std::size_t length = selectionEnd() - begin;
    with = beginning(with, kLongest - (text_.size() - length));
    text_.replace(begin, length, with);
    moveTo(begin + with.size(), false);
    pressed_ = caret_;
}

void EditLine::erase(bool forward) {
    if (!hasSelection()) step(forward, true);
    replaceSelection({});
}

bool EditLine::insert(char32_t character) {
    const bool surrogate = character >= 0xD800 && character < 0xE000;
    if (isControl(character) || surrogate || character > 0x10FFFF) return false;
    replaceSelection(utf8Of(character));
    return true;
}

void EditLine::copy(PageWindow& window) const {
    if (hasSelection()) window.setClipboardText(selected());
}

void EditLine::paste(std::string_view text) {
    std::string line(text.substr(0, text.find_first_of("\r\n")));
    std::erase_if(line, [](char byte) { return isControl(static_cast<unsigned char>(byte)); });
    replaceSelection(line);
}

bool EditLine::shortcut(int key, PageWindow& window) {
    switch (key) {
        case kKeyA:
            selectAll();
            return true;
        case kKeyC:
            copy(window);
            return true;
        case kKeyX:
            copy(window);
            replaceSelection({});
            return true;
        default:
            return false;
    }
}

bool EditLine::key(int key, Modifiers held, PageWindow& window) {
    const bool shift = held.shift;
    switch (key) {
        case kKeyLeft:
            step(false, shift);
            return true;
        case kKeyRight:
            step(true, shift);
            return true;
        case kKeyHome:
            moveTo(0, shift);
            return true;
        case kKeyEnd:
            moveTo(text_.size(), shift);
            return true;
        case kKeyBackspace:
            erase(false);
            return true;
        case kKeyDelete:
            erase(true);
            return true;
        default:
            return held.control && shortcut(key, window);
    }
}

void EditLine::press(int x) {
    pressKeeping(x);
    keeping_ = false;
    moveTo(pressed_, false);
}

void EditLine::pressKeeping(int x) {
    pressed_ = gapAt(x);
    keeping_ = true;
}

void EditLine::drag(int x) {
    const std::size_t gap = gapAt(x);
    if (keeping_ && gap == pressed_) return;
    keeping_ = false;
    anchor_ = pressed_;
    caret_ = gap;
}

int EditLine::scrollFor(int width) const {
    // What is selected as a whole is read, not edited: from its beginning.
    if (hasSelection() && selected().size() == text_.size()) return 0;
    const int inner = width - kLeftMargin - kRightMargin;
    const int caret = widthTo(caret_);
    const int inSight = std::clamp(scroll_, caret - inner, std::max(caret, caret - inner));
    return std::clamp(inSight, 0, std::max(0, widthTo(text_.size()) - inner));
}

void EditLine::paint(Surface& surface, const Rect& room, bool focused) {
    scroll_ = focused ? scrollFor(room.width()) : 0;
    surface.SelectClipRgn(room);
    surface.SelectPen({kFieldGround});
    surface.SelectBrush(kFieldGround);
    surface.Rectangle(room);
    if (font_) paintText(surface, {room.left + kLeftMargin - scroll_, room.top}, focused);
    if (focused && !hasSelection()) paintCaret(surface, room);
    surface.SelectClipRgn({});
}

void EditLine::paintText(Surface& surface, Point at, bool focused) const {
    const std::string_view text = text_;
    const std::size_t begin = focused ? selectionBegin() : 0;
    const std::size_t end = focused ? selectionEnd() : 0;
    const auto write = [&](std::string_view part, Color color, Color ground) {
        if (part.empty()) return;
        surface.SetTextColor(color);
        surface.SetGroundColor(ground);
        surface.TextOut(at, part);
        at.x += font_->widthOf(part);
    };
    surface.SelectFont(font_);
    write(text.substr(0, begin), kFieldText, kFieldGround);
    write(text.substr(begin, end - begin), kFieldGround, kFieldText);
    write(text.substr(end), kFieldText, kFieldGround);
}

void EditLine::paintCaret(Surface& surface, const Rect& room) const {
    const int x = room.left + kLeftMargin - scroll_ + widthTo(caret_);
    surface.SelectPen({kFieldText});
    drawLine(surface, {x, room.top + 1}, {x, room.bottom - 1});
}

}  // namespace marnoth
