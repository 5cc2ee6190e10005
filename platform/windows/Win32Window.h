#pragma once

#include <filesystem>
#include <memory>

#include "platform/com/RefPtr.h"
#include "platform/drawing/CursorPicture.h"
#include "platform/drawing/Font.h"
#include "platform/drawing/PageWindow.h"
#include "platform/windows/DibScreen.h"
#include "platform/windows/HelpViewer.h"
#include "platform/windows/KeyMessages.h"
#include "platform/windows/KeyboardHold.h"
#include "platform/windows/MouseMessages.h"
#include "platform/windows/OleApartment.h"
#include "platform/windows/OpenQuestion.h"
#include "platform/windows/PageCursors.h"
#include "platform/windows/PageDropTarget.h"
#include "platform/windows/PointerHold.h"
#include "platform/windows/WindowClass.h"

namespace marnoth {

/// The page's window on Windows: one child of a window of whoever shows the page. A pixel of the page is a
/// pixel of the window. All of it on the thread that made it, which dispatches messages.
///
/// Painting: `requestPaint` leads to one WM_PAINT when nothing else waits. What the page presents there is
/// kept in a picture of the window's own, and exactly what changed is shown; what was covered comes from the
/// picture without the page.
///
/// Questions are the system's own boxes and menus, owned by the outermost window, and are answered inside the
/// call: the call dispatches messages meanwhile. While one is open the page is painted and hears nothing
/// else: no timer, mouse or key; files dragged over it get no effect. Behind it the window takes the keyboard
/// back when the page wanted it or the window had it. `close`, `cancelQuestion`, or a parent that goes end an
/// open question, whose `then` isn't called; the call that asked returns when the messages that are under way
/// have.
///
/// The keyboard: a press takes it when the page wants it. Inside a dialog every key is the page's. F1 is a
/// key like others, and the system's help request that follows it ends here. A right click ends in
/// `contextMenu`; the context key of the keyboard in nothing.
///
/// Nothing that a page throws leaves through the system: the event ends there.
class Win32Window final : public PageWindow, private MessageTaker, private DropTaker {
public:
    /// Child window of `parent` at `place` (pixels of the parent), hidden at first. `helpFile`: full path of
    /// the .chm, may be empty. Fonts from `fonts`, not owned. Throws `std::system_error` when the window
    /// can't be made. Without OLE on this thread (one that lets calls come on any thread) no drops come.
    Win32Window(HWND parent, const RECT& place, FontSource& fonts, CursorPictures cursors,
                std::filesystem::path helpFile);
    /// As `close`.
    ~Win32Window() override;
    Win32Window(const Win32Window&) = delete;
    Win32Window& operator=(const Win32Window&) = delete;

    /// Not owned; null: nothing reaches it.
    void setPage(PageEvents* page) { page_ = page; }
    /// What must live while an event is under way: locked for the time of each event, so that page and window
    /// outlive a question under which their owner lets them go. Who asks from outside of an event holds it
    /// itself.
    void setLife(std::weak_ptr<void> whole) { life_ = std::move(whole); }
    /// Cancels the open question, refuses further drops, destroys the window; the page hears no more. What it
    /// asks of the window from then on does nothing, and its questions are cancelled. So it is when the
    /// parent is destroyed.
    void close();
    /// Null after `close`.
    HWND handle() const { return window_.get(); }
    /// In pixels of the parent.
    void move(const RECT& place);
    /// `command` is one of SW_...
    void show(int command);
    /// True when it was a key of the page's window and has been dispatched. The window may be gone then.
    bool translate(MSG& message);
    /// When the module goes; no window may be open.
    static void unregisterClass() noexcept { unregisterChildWindows(); }

    void requestPaint() override;
    void present(const Bitmap& screen, const Rect& changed) override;
    std::unique_ptr<Font> openFont(std::string_view face, int height, std::string& error) override {
        return fonts_.open(face, height, error);
    }
    void setCapture() override { pointer_.capture(handle()); }
    void releaseCapture() override { pointer_.release(handle()); }
    void beginRelativeDrag(PageCursor shown) override { pointer_.beginRelative(handle(), shown); }
    void endRelativeDrag() override { pointer_.endRelative(handle()); }
    void confinePointer(std::optional<Rect> area) override { pointer_.confine(handle(), area); }
    Point pointer() override { return pointer_.place(handle()); }
    void setCursor(PageCursor cursor) override { pointer_.setCursor(cursor); }
    void setTimer(int milliseconds) override;
    void takeFocus(bool wanted) override { keyboard_.want(handle(), wanted); }
    void askMessage(std::string_view text, MessageKind kind, std::function<void(PageAnswer)> then) override;
    void askFile(std::string_view filter, FileKind kind,
                 std::function<void(std::optional<std::string>)> then) override;
    void askMenu(Point at, std::span<const MenuItem> items, std::function<void(int)> then) override;
    void cancelQuestion() override;
    void readClipboard(std::function<void(std::string)> then) override;
    void setClipboardText(std::string_view text) override;
    void showHelp() override { help_.show(handle()); }

private:
    LRESULT take(HWND window, UINT message, WPARAM first, LPARAM second) override;
    MessageAnswer answerTo(HWND window, const WindowMessage& message);
    MessageAnswer answerWindow(const WindowMessage& message);
    DropEffect filesEnter(bool hasFiles) override;
    DropEffect filesOver(POINT at) override;
    void filesLeave() override;
    DropEffect filesDropped(POINT at, const std::optional<std::vector<std::wstring>>& paths) override;

    /// Null while nothing but painting may reach the page.
    PageEvents* listener() const { return question_ ? nullptr : page_; }
    void takeDrops();
    /// The window goes, by us or by its parent.
    void leave();
    void paint();
    void print(HDC device) const;
    void repaintIfWanted();
    template <class Event>
    DropEffect ofDrag(Event event);
    template <class Result, class Ask>
    void ask(OpenQuestion::Kind kind, Result cancelled, const std::function<void(Result)>& then, Ask ask);

    FontSource& fonts_;
    PageEvents* page_ = nullptr;
    std::weak_ptr<void> life_;
    OleApartment ole_;
    HelpViewer help_;
    DibScreen screen_;
    PointerHold pointer_;
    KeyboardHold keyboard_;
    MouseMessages mouse_;
    KeyMessages keys_;
    OpenQuestion::Innermost question_ = nullptr;
    RefPtr<PageDropTarget> dropTarget_;
    bool paintWanted_ = false;
    WindowHandle window_;  ///< goes first: until then messages come
};

}  // namespace marnoth
