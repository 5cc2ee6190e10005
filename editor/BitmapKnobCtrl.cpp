#include "editor/BitmapKnobCtrl.h"

#include "platform/drawing/Surface.h"

namespace marnoth {

namespace {

/// What a knob's report of a drag is called in a scroll event.
constexpr int kThumbTrack = 5;

}  // namespace

void CBitmapKnobCtrl::LoadKnobBitmap(const Bitmap& frames, int frameWidth, int frameHeight,
                                     float defaultValue, bool showCursor, std::optional<PageCursor> cursor) {
    frames_ = &frames;
    frameWidth_ = frameWidth;
    frameHeight_ = frameHeight;
    defaultValue_ = defaultValue;
    showCursor_ = showCursor;
    cursor_ = cursor;
    setPlace(Rect::at(place().left, place().top, frameWidth, frameHeight));
}

void CBitmapKnobCtrl::SetValue(double value) {
    setStep(value * 100.0 + 0.5);
}

void CBitmapKnobCtrl::setStep(double step) {
    // What isn't a number counts as 0.
    value_ = !(step > 0.0) ? 0 : step >= 100.0 ? 100 : static_cast<int>(step);
    invalidate();
}

void CBitmapKnobCtrl::NotifyParent(int code) {
    parent().postScroll(*this, code, value_);
}

void CBitmapKnobCtrl::paint(Surface& surface) {
    if (!frames_) return;
    const int offset = static_cast<int>(value_ * 0.63) * frameWidth_;
    if (offset >= frames_->width()) return;
    surface.BitBlt(Rect::at(place().left, place().top, frameWidth_, frameHeight_), *frames_, {offset, 0});
}

void CBitmapKnobCtrl::showDragCursor() {
    parent().window().setCursor(showCursor_ ? cursor_.value_or(PageCursor::arrow) : PageCursor::none);
}

void CBitmapKnobCtrl::press(Point at) {
    parent().focus(this);
    parent().captureMouse(*this);
    dragging_ = true;
    pressPoint_ = onPage(at);
    showDragCursor();
    NotifyParent(kThumbTrack);
    invalidate();
}

void CBitmapKnobCtrl::move(Point at) {
    if (dragging_) return drag();
    const bool over = Rect{0, 0, place().width(), place().height()}.contains(at);
    parent().window().setCursor(over ? cursor_.value_or(PageCursor::arrow) : PageCursor::arrow);
}

void CBitmapKnobCtrl::drag() {
    PageWindow& window = parent().window();
    showDragCursor();
    // Where the pointer is now, not where this event saw it: events that were under way when the pointer was
    // put back would count twice.
    const double up = static_cast<double>(pressPoint_.y) - window.pointer().y;
    if (up != 0.0) {
        setStep((value_ + up) * 0.01 * 100.0 + 0.5);
        window.warpPointer(pressPoint_);
    }
    NotifyParent(kThumbTrack);
}

void CBitmapKnobCtrl::letGo() {
    if (dragging_) parent().releaseMouse();
    dragging_ = false;
    invalidate();
    parent().window().setCursor(PageCursor::arrow);
}

bool CBitmapKnobCtrl::handle(const ControlEvent& event) {
    switch (event.kind) {
        case ControlEventKind::leftDown:
            press(event.at);
            return true;
        case ControlEventKind::mouseMove:
            move(event.at);
            return true;
        case ControlEventKind::leftUp:
        case ControlEventKind::captureLost:
            letGo();
            return true;
        case ControlEventKind::doubleClick:
            SetValue(defaultValue_);
            NotifyParent(kThumbTrack);
            return true;
        default:
            return false;
    }
}

}  // namespace marnoth
