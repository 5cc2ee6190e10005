#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <set>
#include <string>

#include "platform/drawing/Bitmap.h"
#include "platform/drawing/FileChooser.h"
#include "platform/drawing/FocusPatience.h"
#include "platform/drawing/QuestionView.h"
#include "platform/linux/ClickCounter.h"
#include "platform/linux/X11Clipboard.h"
#include "platform/linux/X11Display.h"
#include "platform/linux/X11Drop.h"
#include "platform/linux/X11Keyboard.h"
#include "platform/linux/X11Manners.h"
#include "platform/linux/X11Pointer.h"
#include "platform/linux/X11Screen.h"
#include "platform/linux/X11Window.h"

namespace marnoth {

/// The window as the display knows it: takes what comes from there, and hands it to the page or, while one is
/// open, to the question over it. What the page asks of the window works on its members. The window's thread.
class X11Window::Parts final : public AskingWindow {
public:
    Parts(const Setup& setup, PageWindow& whole, FontSource& fontSource, QuestionView& view,
          FileChooser& chooser);
    ~Parts() override;
    Parts(const Parts&) = delete;
    Parts& operator=(const Parts&) = delete;

    bool isGone() const { return destroyed_ || display.isLost(); }
    bool isAsking() const { return asked || chosen_; }
    /// Null while a question is open: nothing reaches the page then.
    PageEvents* listener() const { return isAsking() ? nullptr : page; }
    /// From pixels of the window to those of the page.
    Point toPage(Point at) const;
    Rect toScreen(const Rect& area) const {
        return {area.left * scale, area.top * scale, area.right * scale, area.bottom * scale};
    }

    void dispatch();
    std::optional<Time> deadline() const;
    /// A part of what was presented, in pixels of the page, with the question over it.
    void showArea(const Rect& area);
    void setScale(int wanted);
    void capture(bool on);
    /// `then` gets what `QuestionView` answers.
    void ask(const ShownQuestion& question, std::function<void(int)> then);
    void chooseFile(const FileQuestion& question, std::function<void(std::optional<std::string>)> then);
    /// Without an answer.
    void closeQuestion();
    void wantFocus(bool wanted);

    // AskingWindow.
    unsigned long id() const override { return window; }
    Rect room() const override { return shown.bounds(); }
    void showOver(PageOverlay* dialog) override;
    PageWindow& clipboardWindow() override { return whole_; }

    X11Display display;
    FontSource& fonts;
    QuestionView& questions;
    FileChooser& files;
    const bool isEmbedded;
    int scale;
    const ::Window window;
    X11Screen screen;
    X11Pointer pointer;
    X11Keyboard keyboard;
    X11Clipboard clipboard;
    X11Drop drop;
    std::optional<X11Manners> manners;  ///< of a window of its own

    PageEvents* page = nullptr;
    Bitmap shown;                    ///< what the page presented
    std::function<void(int)> asked;  ///< while a question is open
    std::function<void()> closes;
    std::function<void(int, Modifiers, bool)> useKey;
    std::function<void()> help;
    std::chrono::milliseconds period{0};
    Time nextTick;
    bool paintWanted = false;

private:
    void handle(XEvent& event);
    void pressed(const XButtonEvent& event);
    void released(const XButtonEvent& event);
    void moved(const XMotionEvent& event);
    void keyPressed(XKeyEvent& event);
    void keyReleased(XKeyEvent& event);
    /// A key that nobody here has a use for goes to the host.
    void handOn(XKeyEvent event);
    void focusChanged(const XFocusChangeEvent& event);
    /// Whether the keyboard went since a toolkit host answers a press in our window by taking it for a widget
    /// of its own.
    bool isTakenForPress(Time now);
    /// A host's window gets the keyboard back, if the page wants it and it is away.
    void keepKeyboard();
    void unmapped();
    void tick(Time now);
    void paint();
    /// Hands something that the user does to the open question, and takes the answer.
    void tellQuestion(const std::function<std::optional<int>()>& event);
    /// Hands something that the user does to the dialog over the page, if one lies there.
    void tellDialog(const std::function<void(PageOverlay&)>& event);
    /// A press of a button of the mouse, the wheel's too, on the dialog.
    void pressedOnDialog(PageOverlay& dialog, const XButtonEvent& event);
    void keyPressedAsking(int key, const std::u32string& characters, Modifiers held);
    void answerFile(std::optional<std::string> file);
    void endMessage();

    PageWindow& whole_;
    std::function<void(std::optional<std::string>)> chosen_;  ///< while a file is asked for
    PageOverlay* dialog_ = nullptr;                           ///< over the page

    const ::Window parent_;        ///< a host's; 0 without one
    std::set<unsigned> handedOn_;  ///< the codes of keys that went to the host, and are down
    ClickCounter clicks_;
    FocusPatience patience_;
    Time lastPress_;
    int retakes_ = 0;  ///< how often the keyboard may be taken back yet
    Point remainder_;  ///< of a relative drag: pixels of the screen that don't make one of the page yet
    ::Window formerFocus_ = kXNone;
    bool captured_ = false;
    bool wantsFocus_ = false;
    bool hasFocus_ = false;
    bool destroyed_ = false;
};

}  // namespace marnoth
