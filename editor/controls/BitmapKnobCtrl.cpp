#include "editor/controls/BitmapKnobCtrl.h"

#include "platform/drawing/Surface.h"

namespace marnoth {

namespace {

/// What a knob's report of a drag is called in a scroll event.
constexpr int kThumbTrack = 5;
/// Frames that the picture goes on for a step: 63 for the whole way.
constexpr double kFramesPerStep = 0.63;

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
    setStep(value * kSteps + 0.5);
}

void CBitmapKnobCtrl::setStep(double step) {
    // What isn't a number counts as 0.
    value_ = !(step > 0.0) ? 0 : step >= kSteps ? kSteps : static_cast<int>(step);
    invalidate();
}

void CBitmapKnobCtrl::NotifyParent(int code) {
    parent().postScroll(*this, code, value_);
}

void CBitmapKnobCtrl::paint(Surface& surface) {
    if (!frames_) return;
    const int offset = static_cast<int>(value_ * kFramesPerStep) * frameWidth_;
    if (offset >= frames_->width()) return;
    surface.BitBlt(Rect::at(place().left, place().top, frameWidth_, frameHeight_), *frames_, {offset, 0});
}

void CBitmapKnobCtrl::press() {
    parent().focus(this);
    parent().beginRelativeDrag(*this, showCursor_ ? ownCursor() : PageCursor::none);
    dragging_ = true;
    NotifyParent(kThumbTrack);
    invalidate();
}

void CBitmapKnobCtrl::move(Point at) {
    const bool over = Rect{0, 0, place().width(), place().height()}.contains(at);
    parent().window().setCursor(over ? ownCursor() : PageCursor::arrow);
}

void CBitmapKnobCtrl::drag(int up) {
    if (up != 0) setStep(static_cast<double>(value_) + up);
    NotifyParent(kThumbTrack);
}

bool CBitmapKnobCtrl::turn(int steps) {
    if (!turnsBy(steps)) return false;
    drag(steps);
    return true;
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
            press();
            return true;
        case ControlEventKind::mouseMove:
            move(event.at);
            return true;
        case ControlEventKind::relativeMove:
            drag(-event.at.y);
            return true;
        case ControlEventKind::wheel:
            return turn(event.steps);
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
