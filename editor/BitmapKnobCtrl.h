#pragma once

#include <optional>

#include "editor/Control.h"
#include "platform/drawing/Bitmap.h"
#include "platform/drawing/PageWindow.h"

namespace marnoth {

/// A knob drawn from a strip of frames and dragged up and down, one step for a pixel. During a drag the
/// pointer is put back where it was pressed, so that no edge of the screen sets a limit.
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

    void paint(Surface& surface) override;
    bool handle(const ControlEvent& event) override;
    std::optional<int> shownState() const override { return value_; }

protected:
    virtual void NotifyParent(int code);

private:
    void press(Point at);
    void move(Point at);
    void drag();
    void letGo();
    void setStep(double step);
    void showDragCursor();
    Point onPage(Point at) const { return {place().left + at.x, place().top + at.y}; }

    const Bitmap* frames_ = nullptr;
    std::optional<PageCursor> cursor_;
    int value_ = 0;  ///< 0 to 100
    bool dragging_ = false;
    Point pressPoint_{-1, -1};  ///< page pixels
    int frameWidth_ = 0;
    int frameHeight_ = 0;
    bool showCursor_ = false;
    float defaultValue_ = 1.0f;
};

}  // namespace marnoth
