#include "platform/windows/Win32Window.h"

#include <exception>
#include <string>
#include <utility>
#include <vector>

#include "platform/text/Text.h"
#include "platform/windows/Clipboard.h"
#include "platform/windows/FileDialog.h"
#include "platform/windows/SystemGeometry.h"
#include "platform/windows/SystemQuestions.h"

namespace marnoth {

namespace {

constexpr UINT_PTR kPageTimer = 1;
static_assert(kPageTimer != KeyboardHold::kTimer);

/// What a window is painted through, clipped to what is out of date; counts as up to date when it goes.
class PaintDevice {
public:
    explicit PaintDevice(HWND window) : window_(window) { BeginPaint(window, &paint_); }
    ~PaintDevice() { EndPaint(window_, &paint_); }
    PaintDevice(const PaintDevice&) = delete;
    PaintDevice& operator=(const PaintDevice&) = delete;

    HDC device() const { return paint_.hdc; }
    const RECT& area() const { return paint_.rcPaint; }

private:
    HWND const window_;
    PAINTSTRUCT paint_{};
};

}  // namespace

Win32Window::Win32Window(HWND parent, const RECT& place, FontSource& fonts, CursorPictures cursors,
                         std::filesystem::path helpFile)
    : fonts_(fonts),
      help_(std::move(helpFile)),
      pointer_(std::move(cursors)),
      mouse_(pointer_, keyboard_, [this] { return listener(); }),
      keys_(keyboard_, [this] { return listener(); }) {
    window_ = WindowHandle(makeChildWindow(parent, place, *this));
    takeDrops();
}

Win32Window::~Win32Window() {
    close();
}

void Win32Window::takeDrops() {
    auto target = RefPtr<PageDropTarget>::adopt(new PageDropTarget(*this));
    if (SUCCEEDED(RegisterDragDrop(handle(), target.get()))) dropTarget_ = std::move(target);
}

void Win32Window::close() {
    leave();
    window_.reset();
}

void Win32Window::leave() {
    page_ = nullptr;
    cancelQuestion();
    pointer_.letGo(handle());
    if (const auto target = std::exchange(dropTarget_, {})) {
        target->forget();
        RevokeDragDrop(handle());
    }
}

void Win32Window::move(const RECT& place) {
    SetWindowPos(handle(), nullptr, place.left, place.top, place.right - place.left, place.bottom - place.top,
                 SWP_NOZORDER | SWP_NOACTIVATE);
}

void Win32Window::show(int command) {
    ShowWindow(handle(), command);
}

bool Win32Window::translate(MSG& message) {
    const bool isKey = message.message >= WM_KEYFIRST && message.message <= WM_KEYLAST;
    if (!handle() || message.hwnd != handle() || !isKey) return false;
    TranslateMessage(&message);
    DispatchMessageW(&message);
    return true;
}

void Win32Window::requestPaint() {
    paintWanted_ = true;
    repaintIfWanted();
}

void Win32Window::repaintIfWanted() {
    // A message that comes when no other waits, although nothing is out of date yet.
    if (paintWanted_ && handle()) RedrawWindow(handle(), nullptr, nullptr, RDW_INTERNALPAINT);
}

void Win32Window::present(const Bitmap& screen, const Rect& changed) {
    if (!screen_.take(screen, changed) || !handle()) return;
    const RECT area = systemRect(changed);
    InvalidateRect(handle(), &area, FALSE);
}

void Win32Window::setTimer(int milliseconds) {
    if (!handle()) return;
    if (milliseconds > 0)
        SetTimer(handle(), kPageTimer, static_cast<UINT>(milliseconds), nullptr);
    else
        KillTimer(handle(), kPageTimer);
}

void Win32Window::cancelQuestion() {
    if (question_) question_->takeBack();
}

/// Asks the system by `ask`, which gets the outermost window, and hands its answer on.
template <class Result, class Ask>
void Win32Window::ask(OpenQuestion::Kind kind, Result cancelled, const std::function<void(Result)>& then,
                      Ask ask) {
    if (!handle()) return then(std::move(cancelled));
    const bool hadKeyboard = GetFocus() == handle();
    HWND const owner = GetAncestor(handle(), GA_ROOT);
    std::optional<Result> answer;
    {
        const OpenQuestion question(question_, kind, owner);
        Result given = ask(owner);
        if (!question.isTakenBack()) answer = std::move(given);
    }
    keyboard_.take(handle(), hadKeyboard);
    if (answer) then(std::move(*answer));
}

void Win32Window::askMessage(std::string_view text, MessageKind kind, std::function<void(PageAnswer)> then) {
    ask(OpenQuestion::Kind::dialog, PageAnswer::cancel, then,
        [&](HWND owner) { return showMessage(owner, text, kind); });
}

void Win32Window::askFile(std::string_view filter, FileKind kind,
                          std::function<void(std::optional<std::string>)> then) {
    ask(OpenQuestion::Kind::dialog, std::optional<std::string>(), then, [&](HWND owner) {
        const std::optional<std::wstring> path = showFileDialog(owner, filter, kind);
        return path ? std::optional(utf8FromWide(*path)) : std::nullopt;
    });
}

void Win32Window::askMenu(Point at, std::span<const MenuItem> items, std::function<void(int)> then) {
    ask(OpenQuestion::Kind::menu, 0, then, [&](HWND) { return showMenu(handle(), at, items); });
}

void Win32Window::readClipboard(std::function<void(std::string)> then) {
    then(handle() ? readClipboardText(handle()) : std::string());
}

void Win32Window::setClipboardText(std::string_view text) {
    if (handle()) writeClipboardText(handle(), text);
}

LRESULT Win32Window::take(HWND window, UINT message, WPARAM first, LPARAM second) {
    const std::shared_ptr<void> life = life_.lock();
    try {
        if (const MessageAnswer answer = answerTo(window, {message, first, second})) return *answer;
    } catch (const std::exception&) {
        // What went wrong in the page ends there: above is the system.
        return 0;
    }
    return DefWindowProcW(window, message, first, second);
}

MessageAnswer Win32Window::answerTo(HWND window, const WindowMessage& message) {
    MessageAnswer answer = mouse_.answer(window, message);
    if (!answer) answer = keys_.answer(window, message);
    return answer ? answer : answerWindow(message);
}

MessageAnswer Win32Window::answerWindow(const WindowMessage& message) {
    switch (message.id) {
        case WM_PAINT:
            paint();
            return 0;
        case WM_PRINTCLIENT:
            print(reinterpret_cast<HDC>(message.first));
            return 0;
        case WM_ERASEBKGND:
            return TRUE;
        case WM_TIMER:
            if (PageEvents* const page = listener()) page->timer();
            return 0;
        case WM_DESTROY:
            leave();
            return 0;
        case WM_NCDESTROY:
            window_.release();
            return {};
        default:
            return {};
    }
}

void Win32Window::paint() {
    // A page is painted behind its question too.
    if (std::exchange(paintWanted_, false) && page_) {
        try {
            page_->paint();
        } catch (const std::exception&) {
            // As much of it as there is.
        }
    }
    if (!handle()) return;
    {
        const PaintDevice paint(handle());
        screen_.show(paint.device(), paint.area());
    }
    // Beginning to paint has taken back what was wanted meanwhile.
    repaintIfWanted();
}

/// For whoever takes a picture of the frame.
void Win32Window::print(HDC device) const {
    RECT room{};
    GetClientRect(handle(), &room);
    screen_.show(device, room);
}

/// What `event` answers; no effect while nothing reaches the page, or when something goes wrong in it.
template <class Event>
DropEffect Win32Window::ofDrag(Event event) {
    const std::shared_ptr<void> life = life_.lock();
    try {
        PageEvents* const page = listener();
        return page ? event(*page) : DropEffect::none;
    } catch (const std::exception&) {
        return DropEffect::none;
    }
}

DropEffect Win32Window::filesEnter(bool hasFiles) {
    return ofDrag([&](PageEvents& page) { return page.dragEnter(hasFiles); });
}

DropEffect Win32Window::filesOver(POINT at) {
    return ofDrag([&](PageEvents& page) { return page.dragOver(onWindow(handle(), at)); });
}

void Win32Window::filesLeave() {
    ofDrag([](PageEvents& page) {
        page.dragLeave();
        return DropEffect::none;
    });
}

DropEffect Win32Window::filesDropped(POINT at, const std::optional<std::vector<std::wstring>>& paths) {
    return ofDrag([&](PageEvents& page) {
        const Point place = onWindow(handle(), at);
        if (!paths) return page.drop(place, {});
        std::vector<std::string> names;
        for (const std::wstring& path : *paths) names.push_back(utf8FromWide(path));
        return page.drop(place, names);
    });
}

}  // namespace marnoth
