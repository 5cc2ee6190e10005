#include "editor/controls/FxComboBox.h"

#include <algorithm>
#include <array>

#include "editor/PageLayout.h"
#include "editor/skin/Palette.h"
#include "platform/drawing/PageWindow.h"
#include "platform/drawing/Surface.h"

namespace marnoth {

namespace {

constexpr int kArrowWidth = 7;  ///< the longest text of the page just fits beside it
constexpr int kBorder = 1;

}  // namespace

void CFxComboBox::setFont(Font* font) {
    font_ = font;
    line_.setFont(font);
}

int CFxComboBox::indexOf(std::string_view item) const {
    const auto found = std::find(items_.begin(), items_.end(), item);
    return found == items_.end() ? -1 : static_cast<int>(found - items_.begin());
}

int CFxComboBox::selection() const {
    return indexOf(line_.text());
}

void CFxComboBox::select(int item) {
    const bool known = item >= 0 && item < static_cast<int>(items_.size());
    line_.setText(known ? std::string_view(items_[static_cast<std::size_t>(item)]) : std::string_view());
    invalidate();
}

bool CFxComboBox::choose(std::string_view item) {
    const int row = indexOf(item);
    if (row < 0) return false;
    open();
    pick(row);
    letGoOfMouse();
    return true;
}

void CFxComboBox::open() {
    if (open_) return;
    if (!parent().hasFocus(*this)) parent().focus(this);
    captured_ = true;
    parent().captureMouse(*this);
    open_ = true;
    hover_ = selection();
    parent().invalidateOverlay(overlay());
}

void CFxComboBox::close() {
    if (!open_) return;
    const Rect covered = overlay();
    open_ = false;
    hover_ = -1;
    parent().invalidateOverlay(covered);
    parent().comboClosed(id());
}

void CFxComboBox::letGoOfMouse() {
    if (captured_) parent().releaseMouse();
    captured_ = false;
}

void CFxComboBox::show(int item) {
    select(item);
    line_.selectAll();
}

void CFxComboBox::pick(int row) {
    show(row);
    close();
}

void CFxComboBox::hover(int row) {
    if (row == hover_) return;
    hover_ = row;
    parent().invalidateOverlay(overlay());
}

void CFxComboBox::walk(int step) {
    if (items_.empty()) return;
    const int last = static_cast<int>(items_.size()) - 1;
    const int next = std::clamp((open_ ? hover_ : selection()) + step, 0, last);
    if (open_) return hover(next);
    show(next);
}

Rect CFxComboBox::overlay() const {
    if (!open_) return {};
    const int height = static_cast<int>(items_.size()) * place().height() + 2 * kBorder;
    const bool fitsBelow = place().bottom + height <= kPageHeight;
    const int top = fitsBelow ? place().bottom : place().top - height;
    return Rect::at(place().left, top, place().width(), height);
}

Rect CFxComboBox::rowRect(int row) const {
    const Rect list = overlay();
    return Rect::at(list.left + kBorder, list.top + kBorder + row * place().height(),
                    list.width() - 2 * kBorder, place().height());
}

int CFxComboBox::rowAt(Point at) const {
    const Point onPage{place().left + at.x, place().top + at.y};
    for (int row = 0; open_ && row < static_cast<int>(items_.size()); ++row)
        if (rowRect(row).contains(onPage)) return row;
    return -1;
}

bool CFxComboBox::turn(int items) {
    const int before = selection();
    walk(items);
    if (open_ || selection() == before) return open_;
    parent().comboClosed(id());
    return true;
}

void CFxComboBox::press(Point at) {
    if (!open_) return open();
    // The mouse stays captured until the release: it belongs to this press and to nobody under the list.
    if (const int row = rowAt(at); row >= 0) return pick(row);
    close();
}

void CFxComboBox::release(Point at) {
    if (const int row = rowAt(at); row >= 0) pick(row);
    if (!open_) letGoOfMouse();
}

bool CFxComboBox::mouse(const ControlEvent& event) {
    switch (event.kind) {
        case ControlEventKind::leftDown:
        case ControlEventKind::doubleClick:
            press(event.at);
            return true;
        case ControlEventKind::mouseMove:
            if (const int row = rowAt(event.at); row >= 0) hover(row);
            return open_;
        case ControlEventKind::leftUp:
            release(event.at);
            return true;
        case ControlEventKind::wheel:
            return turn(-event.steps);
        case ControlEventKind::captureLost:
            captured_ = false;
            close();
            return true;
        default:
            return false;
    }
}

bool CFxComboBox::key(int key, Modifiers held) {
    switch (key) {
        case kKeyUp:
            walk(-1);
            return true;
        case kKeyDown:
            walk(1);
            return true;
        case kKeyReturn:
            if (!open_) return false;
            if (hover_ >= 0) show(hover_);
            close();
            letGoOfMouse();
            return true;
        case kKeyEscape:
            if (!open_) return false;
            close();
            letGoOfMouse();
            return true;
        default:
            if (!EditLine::asksToPaste(key, held)) return line_.key(key, held, parent().window());
            parent().pasteInto(*this);
            return true;
    }
}

void CFxComboBox::paste(std::string_view text) {
    line_.paste(text);
    invalidate();
}

bool CFxComboBox::keyboard(const ControlEvent& event) {
    switch (event.kind) {
        case ControlEventKind::keyDown:
            return key(event.key, event.held);
        case ControlEventKind::keyUp:
            if (event.key == kKeyReturn) parent().postComboReturn(id());
            return event.key == kKeyReturn;
        case ControlEventKind::character:
            return line_.insert(event.character);
        default:
            return false;
    }
}

void CFxComboBox::leave() {
    close();
    letGoOfMouse();
    line_.rest();
    parent().comboLeft(id());
}

bool CFxComboBox::handle(const ControlEvent& event) {
    bool done = true;
    switch (event.kind) {
        case ControlEventKind::focusIn:
            line_.selectAll();
            break;
        case ControlEventKind::focusOut:
            leave();
            break;
        case ControlEventKind::keyDown:
        case ControlEventKind::keyUp:
        case ControlEventKind::character:
            done = keyboard(event);
            break;
        default:
            done = mouse(event);
    }
    if (done) invalidate();
    return done;
}

void CFxComboBox::paint(Surface& surface) {
    const Rect& all = place();
    line_.paint(surface, {all.left, all.top, all.right - kArrowWidth, all.bottom}, parent().hasFocus(*this));
    surface.SelectPen({kFieldGround});
    surface.SelectBrush(kFieldGround);
    surface.Rectangle({all.right - kArrowWidth, all.top, all.right, all.bottom});
    paintArrow(surface);
}

void CFxComboBox::paintArrow(Surface& surface) const {
    const int middle = place().right - kArrowWidth / 2 - 1;
    const int top = place().top + place().height() / 2 - 1;
    surface.SelectPen({kFieldText});
    for (int row = 0; row < 3; ++row)
        drawLine(surface, {middle - 2 + row, top + row}, {middle + 3 - row, top + row});
}

void CFxComboBox::paintOverlay(Surface& surface) {
    if (!open_) return;
    surface.SelectPen({kFieldText});
    surface.SelectBrush(kFieldGround);
    surface.Rectangle(overlay());
    surface.SelectFont(font_);
    for (int row = 0; row < static_cast<int>(items_.size()); ++row) paintRow(surface, row);
    surface.SelectClipRgn({});
}

void CFxComboBox::paintRow(Surface& surface, int row) const {
    const Rect rect = rowRect(row);
    const Color ground = row == hover_ ? kFieldText : kFieldGround;
    surface.SelectClipRgn(rect);
    surface.SelectPen({ground});
    surface.SelectBrush(ground);
    surface.Rectangle(rect);
    if (!font_) return;
    surface.SetTextColor(row == hover_ ? kFieldGround : kFieldText);
    surface.SetGroundColor(ground);
    surface.TextOut({rect.left + 1, rect.top}, items_[static_cast<std::size_t>(row)]);
}

}  // namespace marnoth
