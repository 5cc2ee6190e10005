#include "platform/windows/Win32Window.h"

#include <exception>
#include <string>
#include <utility>
#include <vector>

#include "platform/text/Text.h"
#include "platform/windows/Clipboard.h"
#include "platform/windows/FileDialog.h"
#include "platform/windows/KeyMessages.h"
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

bool isControl(char32_t character) {
    return character < 0x20 || (character >= 0x7F && character < 0xA0);
}

}  // namespace

Win32Window::Win32Window(HWND parent, const RECT& place, FontSource& fonts, std::filesystem::path helpFile)
    : fonts_(fonts), help_(std::move(helpFile)) {
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
    const std::shared_ptr<void> life = life_.lock();
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

/// Whatever happens in the page ends there: above it is the system.
template <class Event>
void Win32Window::tell(Event event) try {
    if (page_ && !question_) event(*page_);
} catch (const std::exception&) {
}

LRESULT Win32Window::take(HWND window, UINT message, WPARAM first, LPARAM second) {
    const std::shared_ptr<void> life = life_.lock();
    const Message told{message, first, second};
    Answer answer = answerMouse(told);
    if (!answer) answer = answerWheel(told);
    if (!answer) answer = answerKeyboard(told);
    if (!answer) answer = answerWindow(told);
    return answer ? *answer : DefWindowProcW(window, message, first, second);
}

Win32Window::Answer Win32Window::answerMouse(const Message& message) {
    switch (message.id) {
        case WM_LBUTTONDOWN:
            press(&PageEvents::leftDown, message.second);
            return 0;
        case WM_LBUTTONDBLCLK:
            press(&PageEvents::doubleClick, message.second);
            return 0;
        case WM_LBUTTONUP:
            mouse(&PageEvents::leftUp, message.second);
            return 0;
        case WM_RBUTTONDOWN:
        case WM_RBUTTONDBLCLK:
            press(&PageEvents::rightDown, message.second);
            return 0;
        case WM_MOUSEMOVE:
            moved(message.second);
            return 0;
        case WM_CONTEXTMENU:
            contextMenu(message.second);
            return 0;
        case WM_CAPTURECHANGED:
            if (reinterpret_cast<HWND>(message.second) != handle() && pointer_.lost())
                tell([](PageEvents& page) { page.captureLost(); });
            return 0;
        default:
            return {};
    }
}

void Win32Window::press(MouseEvent event, LPARAM at) {
    if (!question_) keyboard_.take(handle());
    mouse(event, at);
}

void Win32Window::mouse(MouseEvent event, LPARAM at) {
    const Point place = pointer_.isRelative() ? pointer() : pointOf(at);
    tell([&](PageEvents& page) { (page.*event)(place, heldModifiers()); });
}

void Win32Window::moved(LPARAM at) {
    if (!pointer_.isRelative()) return mouse(&PageEvents::mouseMove, at);
    const Point way = pointer_.distance();
    if (way != Point{}) tell([&](PageEvents& page) { page.relativeMove(way, heldModifiers()); });
}

void Win32Window::contextMenu(LPARAM at) {
    // Asked for by the keyboard, where there is no place.
    if (at == -1) return;
    const Point place = onWindow(handle(), systemPoint(pointOf(at)));
    tell([&](PageEvents& page) { page.contextMenu(place, heldModifiers()); });
}

Win32Window::Answer Win32Window::answerWheel(const Message& message) {
    if (message.id == WM_MOUSEWHEEL && wheel(WheelAxis::vertical, vertical_, message)) return 0;
    if (message.id == WM_MOUSEHWHEEL && wheel(WheelAxis::horizontal, horizontal_, message)) return 0;
    return {};
}

/// False over another window, which the system then finds.
bool Win32Window::wheel(WheelAxis axis, WheelParts& parts, const Message& message) {
    const Point place = onWindow(handle(), systemPoint(pointOf(message.second)));
    RECT room{};
    GetClientRect(handle(), &room);
    if (!pointer_.isCaptured() && !rectOf(room).contains(place)) return false;
    const int steps = parts.take(GET_WHEEL_DELTA_WPARAM(message.first));
    if (steps != 0) tell([&](PageEvents& page) { page.wheel(place, axis, steps, heldModifiers()); });
    return true;
}

Win32Window::Answer Win32Window::answerKeyboard(const Message& message) {
    switch (message.id) {
        case WM_KEYDOWN:
        case WM_KEYUP:
            key(message);
            return 0;
        case WM_CHAR:
            characters(message);
            return 0;
        case WM_GETDLGCODE:
            return DLGC_WANTALLKEYS | DLGC_WANTCHARS | DLGC_WANTARROWS | DLGC_WANTTAB;
        case WM_HELP:
            // The key has come as a key.
            return TRUE;
        case WM_SETFOCUS:
            keyboard_.came(reinterpret_cast<HWND>(message.first));
            return 0;
        case WM_KILLFOCUS:
            if (handle()) keyboard_.left(handle());
            return 0;
        default:
            return {};
    }
}

void Win32Window::key(const Message& message) {
    if (isOfThirdLevelKey(message.first, message.second)) return;
    const int code = static_cast<int>(message.first);
    if (message.id == WM_KEYUP) return tell([&](PageEvents& page) { page.keyUp(code, heldModifiers()); });
    for (int times = repeatsOf(message.second); times > 0; --times)
        tell([&](PageEvents& page) { page.keyDown(code, heldModifiers()); });
}

void Win32Window::characters(const Message& message) {
    const std::optional<char32_t> character = joiner_.take(static_cast<char16_t>(message.first));
    // What the editing keys make beside their codes is none.
    if (!character || isControl(*character)) return;
    for (int times = repeatsOf(message.second); times > 0; --times)
        tell([&](PageEvents& page) { page.character(*character, heldModifiers()); });
}

Win32Window::Answer Win32Window::answerWindow(const Message& message) {
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
            timer(message.first);
            return 0;
        case WM_SETCURSOR:
            if (LOWORD(message.second) != HTCLIENT) return {};
            pointer_.showCursor();
            return TRUE;
        case WM_SHOWWINDOW:
            // Hidden, no window keeps the mouse.
            if (!message.first && pointer_.isCaptured()) ReleaseCapture();
            return {};
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

void Win32Window::timer(UINT_PTR id) {
    if (id == kPageTimer) return tell([](PageEvents& page) { page.timer(); });
    // A question takes the keyboard, and it comes back.
    if (id == KeyboardHold::kTimer && !question_ && keyboard_.isLost(handle()))
        tell([](PageEvents& page) { page.focusLost(); });
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

DropEffect Win32Window::filesEnter(bool hasFiles) {
    DropEffect effect = DropEffect::none;
    const std::shared_ptr<void> life = life_.lock();
    tell([&](PageEvents& page) { effect = page.dragEnter(hasFiles); });
    return effect;
}

DropEffect Win32Window::filesOver(POINT at) {
    DropEffect effect = DropEffect::none;
    const std::shared_ptr<void> life = life_.lock();
    tell([&](PageEvents& page) { effect = page.dragOver(onWindow(handle(), at)); });
    return effect;
}

void Win32Window::filesLeave() {
    const std::shared_ptr<void> life = life_.lock();
    tell([](PageEvents& page) { page.dragLeave(); });
}

DropEffect Win32Window::filesDropped(POINT at, const std::optional<std::vector<std::wstring>>& paths) {
    DropEffect effect = DropEffect::none;
    const std::shared_ptr<void> life = life_.lock();
    std::vector<std::string> names;
    if (paths)
        for (const std::wstring& path : *paths) names.push_back(utf8FromWide(path));
    const Point place = onWindow(handle(), at);
    tell([&](PageEvents& page) {
        effect = paths ? page.drop(place, std::span<const std::string>(names)) : page.drop(place, {});
    });
    return effect;
}

}  // namespace marnoth
