#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "editor/PageQuestions.h"
#include "editor/controls/Control.h"
#include "platform/drawing/Bitmap.h"
#include "platform/drawing/PageWindow.h"
#include "platform/drawing/Surface.h"

namespace marnoth {

/// What a page stands on: passes the window's events on to the controls or to the page, knows who has the
/// keyboard and the mouse, carries out what controls post, and keeps the picture up to date.
///
/// Three pictures: in the back buffer the page draws what is out of date; the page picture takes over of that
/// exactly the areas that were; the screen is the page picture with the controls on it and an open list over
/// them. The window's thread alone.
///
/// While a question of the page is open it hears the timer and is painted; what its user does it ignores.
///
/// An event that raises `std::invalid_argument`, because it counted on a grain that is gone, ends there and
/// does nothing more.
class PageFrame : public PageEvents, public ControlParent {
public:
    /// Makes what draws into a bitmap, which outlives it. A test may record in between.
    using SurfaceMaker = std::function<std::unique_ptr<Surface>(Bitmap&)>;

    /// `window` outlives the frame. `ground` is what the page shows before anything was drawn, and gives its
    /// size.
    PageFrame(PageWindow& window, const Bitmap& ground, SurfaceMaker makeSurface);
    PageFrame(const PageFrame&) = delete;
    PageFrame& operator=(const PageFrame&) = delete;

    void paint() final;
    void leftDown(Point at, Modifiers held) final;
    void leftUp(Point at, Modifiers held) final;
    void doubleClick(Point at, Modifiers held) final;
    void mouseMove(Point at, Modifiers held) final;
    void relativeMove(Point distance, Modifiers held) final;
    void wheel(Point at, WheelAxis axis, int steps, Modifiers held) final;
    void rightDown(Point at, Modifiers held) final;
    void contextMenu(Point at, Modifiers held) final;
    bool keyDown(int key, Modifiers held) final;
    void keyUp(int key, Modifiers held) final;
    void character(char32_t character, Modifiers held) final;
    void focusLost() final;
    void captureLost() final;

    PageWindow& window() final { return m_window; }
    void invalidateControl(const Control& control) final {
        m_stale.push_back(control.place());
        wakeUp();
    }
    void invalidateOverlay(const Rect& area) final {
        m_stale.push_back(area);
        wakeUp();
    }
    void captureMouse(Control& control) final;
    void beginRelativeDrag(Control& control, PageCursor shown) final;
    void releaseMouse() final;
    void pasteInto(Control& control) final;
    void focus(Control* control) final;
    bool hasFocus(const Control& control) const final { return m_focus == &control; }
    void postCommand(int id) final;
    void postScroll(Control& knob, int code, int value) final;
    void postEditReturn(int id) final;
    /// Nothing listens: combos act when they are left and when their list closes.
    void postComboReturn(int) final {}

    /// Null when there is none of that id.
    Control* controlOf(int id) const;
    /// Gives a control the keyboard as a click into it does.
    void focusControl(Control& control);
    /// Whether the user has typed what no value is yet, or has a list open: what is read again would take its
    /// place.
    bool isTyping() const { return m_focus && (m_typed || !m_focus->overlay().isEmpty()); }
    /// What a user sees.
    const Bitmap& screen() const { return m_screen; }

protected:
    /// Not owned; outlives the frame's last event. Those added later lie over those before.
    void add(Control& control) { m_controls.push_back(&control); }

    /// The page has to draw this area again.
    void invalidate(const Rect& area);
    /// While the page draws: whether any of `area` is out of date.
    bool RectVisible(const Rect& area) const;
    /// All mouse events go to the page, also from over controls.
    void captureForPage();
    /// A drag, whoever's it is, ends without effect; the rest of it reaches nobody.
    void takeMouseAway();

    /// Questions to the user, whose answers come as an event does. Whoever has the mouse loses it, since the
    /// button may be let go over the question, and then nobody here hears of it.
    PageQuestions& questions() { return m_questions; }

    /// The modifiers of the event that was last.
    Modifiers held() const { return m_held; }
    /// How often the user has pressed, released or typed something: whether anything came between two events.
    int acts() const { return m_acts; }
    /// For an event that came as a key: the page did something with it.
    void actOnKey() { m_actedOnKey = true; }

    template <class Event>
    void guarded(Event event) {
        try {
            event();
        } catch (const std::invalid_argument&) {
            // What the user pointed at isn't there any more: the gesture ends.
        }
    }
    /// Carries out an event, and then what controls have posted in it.
    template <class Event>
    void carryOut(Event event) {
        const UnderWay within(m_underWay);
        guarded(event);
        drain();
    }

    // What a page does. Mouse events are those that no control gets.
    /// False puts painting off; what is out of date stays so.
    virtual bool canPaint() const { return true; }
    /// Draws what is visible (`RectVisible`) into the back buffer.
    virtual void paintPage(Surface& backBuffer) = 0;
    virtual void pressed(Point at) = 0;
    virtual void released(Point at) = 0;
    virtual void doubleClicked(Point at) = 0;
    virtual void moved(Point at) = 0;
    virtual void wheelTurned(Point at, WheelAxis axis, int steps) = 0;
    virtual void menuWanted(Point at) = 0;
    /// The page's own capture was taken away.
    virtual void gestureLost() = 0;
    virtual void command(int id) = 0;
    virtual void scrolled(Control& knob) = 0;
    virtual void editReturned(int id) = 0;

private:
    /// Counts an event as long as it lives.
    class UnderWay {
    public:
        explicit UnderWay(int& events) : events_(events) { ++events_; }
        ~UnderWay() { --events_; }
        UnderWay(const UnderWay&) = delete;
        UnderWay& operator=(const UnderWay&) = delete;

    private:
        int& events_;
    };

    void post(std::function<void()> what) { m_posted.push_back(std::move(what)); }
    void drain();
    void wakeUp() { m_window.requestPaint(); }
    Control* under(Point at) const;
    /// Null for the page.
    Control* targetOf(Point at) const;
    void loseMouse();
    void giveMouseBack();
    /// Notes what is held. False when the event isn't for anybody, since a question is open.
    bool admits(Modifiers held);
    void route(ControlEventKind kind, Point at, Modifiers held, void (PageFrame::*toPage)(Point));
    void sendKey(const ControlEvent& event);
    void carryOutAnswer(const std::function<void()>& answer);

    void paintInvalid();
    void compose(const std::vector<Rect>& stale);

    PageWindow& m_window;
    SurfaceMaker m_makeSurface;
    Bitmap m_backBuffer;
    Bitmap m_page;
    Bitmap m_screen;
    std::vector<Rect> m_invalid;   ///< the page must draw these
    std::vector<Rect> m_stale;     ///< only controls or a list have changed here
    std::vector<Rect> m_painting;  ///< `m_invalid` of the paint in hand
    std::vector<Control*> m_controls;
    std::vector<std::function<void()>> m_posted;
    Control* m_focus = nullptr;
    Control* m_captured = nullptr;
    bool m_pageCaptured = false;
    bool m_relativeDrag = false;
    Modifiers m_held;
    bool m_actedOnKey = false;
    bool m_typed = false;  ///< into `m_focus`, and not taken over yet
    int m_acts = 0;
    int m_underWay = 0;                                       ///< events within each other
    std::shared_ptr<char> m_life = std::make_shared<char>();  ///< as long as the frame
    PageQuestions m_questions;
};

}  // namespace marnoth
