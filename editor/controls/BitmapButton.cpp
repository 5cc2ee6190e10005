#include "editor/controls/BitmapButton.h"

#include "platform/drawing/PageWindow.h"
#include "platform/drawing/Surface.h"

namespace marnoth {

void CBitmapButton::LoadBitmaps(const Bitmap& up, const Bitmap& down) {
    up_ = &up;
    down_ = &down;
    setPlace(Rect::at(place().left, place().top, up.width(), up.height()));
}

void CBitmapButton::setEnabled(bool enabled) {
    enabled_ = enabled;
    invalidate();
}

void CBitmapButton::paint(Surface& surface) {
    DrawItem(surface);
}

void CBitmapButton::DrawItem(Surface& surface) const {
    if (up_) draw(surface, pressed_ && inside_ ? *down_ : *up_);
}

void CBitmapButton::draw(Surface& surface, const Bitmap& bitmap) const {
    surface.BitBlt(place(), bitmap, {0, 0});
}

bool CBitmapButton::covers(Point at) const {
    return Rect{0, 0, place().width(), place().height()}.contains(at);
}

bool CBitmapButton::pressAtPointer() {
    const Point pointer = parent().window().pointer();
    return handle({ControlEventKind::leftDown, {pointer.x - place().left, pointer.y - place().top}});
}

void CBitmapButton::setHeld(bool pressed, bool inside) {
    pressed_ = pressed;
    inside_ = inside;
    invalidate();
}

bool CBitmapButton::handle(const ControlEvent& event) {
    if (!enabled_) return false;
    switch (event.kind) {
        case ControlEventKind::leftDown:
            parent().focus(this);
            parent().captureMouse(*this);
            setHeld(true, covers(event.at));
            return true;
        case ControlEventKind::mouseMove:
            if (pressed_) setHeld(true, covers(event.at));
            return pressed_;
        case ControlEventKind::leftUp:
            if (!pressed_) return false;
            setHeld(false, false);
            parent().releaseMouse();
            if (covers(event.at)) parent().postCommand(id());
            return true;
        case ControlEventKind::captureLost:
            setHeld(false, false);
            return true;
        default:
            return false;
    }
}

}  // namespace marnoth
