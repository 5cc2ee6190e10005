#pragma once

#include "editor/controls/BitmapButton.h"

namespace marnoth {

/// A button that stays where the last press put it: up or down. Never asks what it stands for: the page reads
/// its state after the command.
class CBitmapToggleCtrl : public CBitmapButton {
public:
    using CBitmapButton::CBitmapButton;

    /// Sizes the control to `up`. `focus` (shown while it has the keyboard and is up) and `disabled` may be
    /// null. None is owned, all outlive the control. With `drawFocus` a dotted frame shows who has the
    /// keyboard. With `notifyOnPress` the command goes out and the keyboard is taken at the press, else the
    /// command goes out at the release.
    void LoadToggleBitmaps(const Bitmap& up, const Bitmap& down, const Bitmap* focus, const Bitmap* disabled,
                           bool drawFocus, bool notifyOnPress);

    bool isDown() const { return isDown_; }
    /// Shows a state; nobody is told.
    void setDown(bool down);

    bool handle(const ControlEvent& event) override;
    std::optional<int> shownState() const override { return isDown_ ? 1 : 0; }

protected:
    void DrawItem(Surface& surface) const override;

private:
    const Bitmap* picture() const;
    void press();
    /// While it is pressed: off the button it shows the state from before, though the command may have gone
    /// out already.
    void slide(Point at);
    void letGo();

    const Bitmap* focus_ = nullptr;
    const Bitmap* disabled_ = nullptr;
    bool drawFocus_ = false;
    bool notifyOnPress_ = false;
    bool isDown_ = false;
    bool saved_ = false;  ///< the state when it was pressed
    bool pressed_ = false;
};

}  // namespace marnoth
