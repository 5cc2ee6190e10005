#include "editor/controls/BitmapToggleCtrl.h"

#include "editor/skin/Palette.h"
#include "platform/drawing/PageWindow.h"
#include "platform/drawing/Surface.h"

namespace marnoth {

void CBitmapToggleCtrl::LoadToggleBitmaps(const Bitmap& up, const Bitmap& down, const Bitmap* focus,
                                          const Bitmap* disabled, bool drawFocus, bool notifyOnPress) {
    LoadBitmaps(up, down);
    focus_ = focus;
    disabled_ = disabled;
    drawFocus_ = drawFocus;
    notifyOnPress_ = notifyOnPress;
}

void CBitmapToggleCtrl::setDown(bool down) {
    isDown_ = down;
    invalidate();
}

const Bitmap* CBitmapToggleCtrl::picture() const {
    if (!isEnabled() && disabled_) return disabled_;
    if (isDown_) return down();
    if (focus_ && parent().hasFocus(*this)) return focus_;
    return up();
}

void CBitmapToggleCtrl::DrawItem(Surface& surface) const {
    if (const Bitmap* bitmap = picture()) draw(surface, *bitmap);
    if (!drawFocus_ || !parent().hasFocus(*this)) return;
    surface.SelectPen({kPalette[2], 0, true});
    surface.SelectBrush({});
    surface.Rectangle({place().left + 1, place().top + 1, place().right - 1, place().bottom - 1});
}

void CBitmapToggleCtrl::press() {
    saved_ = isDown_;
    pressed_ = true;
    parent().captureMouse(*this);
    setDown(!isDown_);
    if (!notifyOnPress_) return;
    // The command is carried out later: an edit that loses the keyboard here is applied before it.
    parent().postCommand(id());
    parent().focus(this);
}

void CBitmapToggleCtrl::slide(Point at) {
    setDown(covers(at) ? !saved_ : saved_);
}

void CBitmapToggleCtrl::letGo() {
    if (pressed_) parent().releaseMouse();
    saved_ = isDown_;
    pressed_ = false;
    if (!notifyOnPress_) parent().postCommand(id());
}

bool CBitmapToggleCtrl::handle(const ControlEvent& event) {
    if (!isEnabled()) return false;
    switch (event.kind) {
        case ControlEventKind::leftDown:
            press();
            return true;
        case ControlEventKind::doubleClick:
            return pressAtPointer();
        case ControlEventKind::mouseMove:
            if (pressed_) slide(event.at);
            return pressed_;
        case ControlEventKind::leftUp:
            letGo();
            return true;
        case ControlEventKind::captureLost:
            pressed_ = false;
            return true;
        case ControlEventKind::keyDown:
            if (event.key != kKeySpace) return false;
            setDown(!isDown_);
            return true;
        case ControlEventKind::focusIn:
        case ControlEventKind::focusOut:
            invalidate();
            return true;
        default:
            return false;
    }
}

}  // namespace marnoth
