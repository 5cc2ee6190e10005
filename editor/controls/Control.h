#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/drawing/Geometry.h"
#include "platform/drawing/PageWindow.h"

namespace marnoth {

class Surface;
class Control;

enum class ControlEventKind {
    leftDown,
    leftUp,
    doubleClick,
    mouseMove,
    relativeMove,  ///< of a relative drag: the point is the distance since the event before
    wheel,         ///< the vertical one
    keyDown,
    keyUp,
    character,
    queryKeys,  ///< which keys does the control want? `kAllKeys` for all
    focusIn,
    focusOut,
    captureLost,  ///< the mouse was taken away: a press, a drag or a list that is open ends
};

/// One event of a control. The point counts from the control's own corner.
struct ControlEvent {
    ControlEventKind kind;
    Point at;
    int key = 0;
    char32_t character = 0;
    Modifiers held{};
    int steps = 0;  ///< of the wheel, above 0 away from the user
};

inline constexpr int kAllKeys = 4;

/// What a control asks of the page that it stands on. Posted things are carried out after the event that
/// posted them, in their order.
class ControlParent {
public:
    virtual ~ControlParent() = default;

    virtual PageWindow& window() = 0;
    virtual void invalidateControl(const Control& control) = 0;
    /// What `Control::overlay` covers, or covered until now, is out of date. Page pixels.
    virtual void invalidateOverlay(const Rect& area) = 0;
    /// All mouse events go to `control` until it lets go.
    virtual void captureMouse(Control& control) = 0;
    /// The same, and moves come as distances while the pointer shows as `shown`.
    virtual void beginRelativeDrag(Control& control, PageCursor shown) = 0;
    /// Ends either.
    virtual void releaseMouse() = 0;
    /// `control` gets the text on the clipboard by `Control::paste`, at once or later, if it still has the
    /// keyboard then.
    virtual void pasteInto(Control& control) = 0;
    /// Gives the keyboard to `control`; whoever had it hears `focusOut` first. Null: nobody has it.
    virtual void focus(Control* control) = 0;
    virtual bool hasFocus(const Control& control) const = 0;
    virtual void postCommand(int id) = 0;
    /// The vertical-scroll event of knobs.
    virtual void postScroll(Control& knob, int code, int value) = 0;
    /// The return key in an edit or in a combo.
    virtual void postEditReturn(int id) = 0;
    virtual void postComboReturn(int id) = 0;
    /// An edit or a combo lost the focus, or a combo's list closed: at once, not posted.
    virtual void editLeft(int id) = 0;
    virtual void comboLeft(int id) = 0;
    virtual void comboClosed(int id) = 0;
};

/// A rectangle of the page that draws itself and takes events. Knows its id and nothing of parameters.
class Control {
public:
    Control(ControlParent& parent, int id) : parent_(parent), id_(id) {}
    virtual ~Control() = default;
    Control(const Control&) = delete;
    Control& operator=(const Control&) = delete;

    int id() const { return id_; }
    const Rect& place() const { return place_; }
    void setPlace(const Rect& place) { place_ = place; }

    /// Draws the whole control at its place on the page.
    virtual void paint(Surface& surface) = 0;
    /// What the control shows over its neighbours, an open list for one, in page pixels; empty as a rule.
    /// While there is one the control has captured the mouse.
    virtual Rect overlay() const { return {}; }
    /// Draws what `overlay` covers, after all controls were painted.
    virtual void paintOverlay(Surface&) {}
    /// The one entry of events. True when the control did something with it.
    virtual bool handle(const ControlEvent& event) = 0;
    virtual void paste(std::string_view) {}
    /// False for static texts: their mouse events go to the page.
    virtual bool takesMouse() const { return true; }
    /// Edits and combos can be typed into.
    virtual bool takesText() const { return false; }

    /// What a user reads on the control: the text of edits, combos and static texts; nothing on others.
    virtual std::optional<std::string> shownText() const { return {}; }
    /// 0 (up) or 1 of a toggle, 0 to 100 of a knob, a combo's selection; nothing on others.
    virtual std::optional<int> shownState() const { return {}; }

protected:
    ControlParent& parent() const { return parent_; }
    void invalidate() const { parent_.invalidateControl(*this); }

private:
    ControlParent& parent_;
    int id_;
    Rect place_;
};

}  // namespace marnoth
