#pragma once

#include "editor/controls/Control.h"
#include "platform/drawing/Bitmap.h"

namespace marnoth {

/// A push button of two pictures: posts its command when it is let go over the place where it was pressed.
/// The second click of a fast pair isn't a press.
class CBitmapButton : public Control {
public:
    using Control::Control;

    /// Sizes the control to `up`. The bitmaps are not owned and outlive the control.
    void LoadBitmaps(const Bitmap& up, const Bitmap& down);

    /// Starts enabled. Disabled: its mouse events go to the page, keys do nothing.
    void setEnabled(bool enabled);
    bool isEnabled() const { return enabled_; }

    void paint(Surface& surface) override;
    bool handle(const ControlEvent& event) override;
    bool takesMouse() const override { return enabled_; }

protected:
    virtual void DrawItem(Surface& surface) const;
    void draw(Surface& surface, const Bitmap& bitmap) const;
    /// Sends the event in hand again as a press, at the place where the pointer is by now.
    bool pressAtPointer();
    bool covers(Point at) const;
    const Bitmap* up() const { return up_; }
    const Bitmap* down() const { return down_; }

private:
    void setHeld(bool pressed, bool inside);

    const Bitmap* up_ = nullptr;
    const Bitmap* down_ = nullptr;
    bool enabled_ = true;
    bool pressed_ = false;
    bool inside_ = false;  ///< the pointer is over the button that is pressed
};

}  // namespace marnoth
