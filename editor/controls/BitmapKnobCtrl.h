#pragma once

#include <optional>

#include "editor/controls/Control.h"
#include "platform/drawing/Bitmap.h"
#include "platform/drawing/PageWindow.h"

namespace marnoth {

/// A knob drawn from a strip of frames and dragged up and down, one step for a pixel, or turned by the wheel,
/// one for a click of it. A drag is relative, so that no edge of the screen sets a limit.
class CBitmapKnobCtrl : public Control {
public:
    using Control::Control;

    /// `frames` holds the pictures side by side; it is not owned and outlives the control. Sizes the control
    /// to a frame. A double click sets `defaultValue`, 0 to 1. `showCursor`: during a drag `cursor`, or the
    /// arrow without one, instead of none at all.
    void LoadKnobBitmap(const Bitmap& frames, int frameWidth, int frameHeight, float defaultValue,
                        bool showCursor, std::optional<PageCursor> cursor);

    /// 0 to 1, held to that. Nobody is told.
    void SetValue(double value);
    /// 0 to 100.
    int position() const { return value_; }
    /// 0 to 1.
    double portion() const { return value_ * kStep; }
    /// Whether so many clicks of the wheel would turn it.
    bool turnsBy(int steps) const {
        return !dragging_ && (steps > 0 ? value_ < kSteps : steps < 0 && value_ > 0);
    }

    void paint(Surface& surface) override;
    bool handle(const ControlEvent& event) override;
    std::optional<int> shownState() const override { return value_; }

protected:
    virtual void NotifyParent(int code);

private:
    void press();
    void move(Point at);
    void drag(int up);
    bool turn(int steps);
    void letGo();
    void setStep(double step);
    PageCursor ownCursor() const { return cursor_.value_or(PageCursor::arrow); }

    static constexpr int kSteps = 100;
    static constexpr double kStep = 0.01;  ///< of its way

    const Bitmap* frames_ = nullptr;
    std::optional<PageCursor> cursor_;
    int value_ = 0;  ///< 0 to 100
    bool dragging_ = false;
    int frameWidth_ = 0;
    int frameHeight_ = 0;
    bool showCursor_ = false;
    float defaultValue_ = 1.0f;
};

}  // namespace marnoth
