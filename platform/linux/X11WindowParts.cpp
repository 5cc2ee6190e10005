#include "platform/linux/X11WindowParts.h"

#include <algorithm>
#include <utility>

#include "platform/drawing/RasterSurface.h"

namespace marnoth {

namespace {

using Clock = std::chrono::steady_clock;

constexpr long kEvents = ExposureMask | StructureNotifyMask | FocusChangeMask | PropertyChangeMask |
                         KeyPressMask | KeyReleaseMask | ButtonPressMask | ButtonReleaseMask |
                         PointerMotionMask;

/// A host under load takes its time to answer a press.
constexpr std::chrono::seconds kPressIsAnswered{1};
constexpr int kMostRetakes = 3;

enum Button : unsigned { kLeft = 1, kRight = 3, kUp, kDown, kWheelLeft, kWheelRight };

/// Downward also left of and above the window.
int floorDivided(int value, int by) {
    return value >= 0 ? value / by : -((by - 1 - value) / by);
}

Modifiers heldOf(unsigned state) {
    return {(state & ShiftMask) != 0, (state & ControlMask) != 0};
}

::Window newWindow(X11Display& display, const X11Window::Setup& setup, int scale) {
    XSetWindowAttributes wanted{};
    wanted.event_mask = kEvents;
    // What is uncovered keeps its pixels until it is shown: nothing flickers.
    wanted.background_pixmap = kXNone;
    wanted.bit_gravity = NorthWestGravity;
    // A host's window may have another depth, which can't give its border and colours.
    wanted.border_pixel = 0;
    wanted.colormap = DefaultColormap(display.get(), DefaultScreen(display.get()));
    return XCreateWindow(display.get(), setup.parent ? setup.parent : display.root(), 0, 0,
                         static_cast<unsigned>(setup.width * scale),
                         static_cast<unsigned>(setup.height * scale), 0, display.depth(), InputOutput,
                         display.visual(),
                         CWEventMask | CWBackPixmap | CWBitGravity | CWBorderPixel | CWColormap, &wanted);
}

}  // namespace

X11Window::Parts::Parts(const Setup& setup, PageWindow& whole, FontSource& fontSource, QuestionView& view,
                        FileChooser& chooser)
    : fonts(fontSource),
      questions(view),
      files(chooser),
      isEmbedded(setup.parent != 0),
      scale(setup.scale > 0 ? setup.scale : display.wantedScale()),
      window(newWindow(display, setup, scale)),
      screen(display, window, scale),
      pointer(display, window, setup.cursors, scale),
      keyboard(display, window),
      clipboard(display, window),
      drop(
          display, window, [this] { return listener(); }, [this](Point at) { return toPage(at); }),
      shown(setup.width, setup.height),
      whole_(whole),
      parent_(setup.parent) {
    if (!isEmbedded) manners.emplace(display, window, setup.title).setIcon(setup.icon);
    X11Manners::setSize(display, window, setup.width * scale, setup.height * scale);
}

X11Window::Parts::~Parts() {
    closeQuestion();
    if (!isGone()) XDestroyWindow(display.get(), window);
}

Point X11Window::Parts::toPage(Point at) const {
    return {floorDivided(at.x, scale), floorDivided(at.y, scale)};
}

void X11Window::Parts::dispatch() {
    while (!isGone() && XPending(display.get()) > 0) {
        XEvent event;
        XNextEvent(display.get(), &event);
        if (!keyboard.keeps(event)) handle(event);
    }
    if (isGone()) return;
    tick(Clock::now());
    paint();
    if (!isGone()) XFlush(display.get());
}

std::optional<X11Window::Time> X11Window::Parts::deadline() const {
    if (isGone()) return {};
    std::optional<Time> first = clipboard.deadline();
    const auto also = [&](std::optional<Time> other) {
        if (other && (!first || *other < *first)) first = other;
    };
    also(patience_.deadline());
    if (period.count() > 0) also(nextTick);
    // What a request read along with its answer makes no descriptor readable any more.
    if (paintWanted || XEventsQueued(display.get(), QueuedAlready) > 0) also(Clock::now());
    return first;
}

void X11Window::Parts::tick(Time now) {
    clipboard.expire(now);
    if (patience_.isLost(now))
        if (PageEvents* const told = listener()) told->focusLost();
    if (period.count() <= 0 || now < nextTick) return;
    // A tick that was missed isn't made up for.
    nextTick = std::max(nextTick + period, now);
    tellDialog([](PageOverlay& dialog) { dialog.timer(); });
    // Behind a question everything goes on.
    if (page) page->timer();
}

void X11Window::Parts::paint() {
    // The page behind a question is painted too.
    if (page && std::exchange(paintWanted, false)) page->paint();
}

void X11Window::Parts::showArea(const Rect& area) {
    if (isGone()) return;
    const bool underDialog = dialog_ && meet(area, dialog_->place());
    const bool underQuestion = questions.isOpen() && meet(area, questions.place());
    if (!underDialog && !underQuestion) return screen.show(shown, area);
    Bitmap above = shown;
    RasterSurface surface(above);
    if (underDialog) dialog_->paint(surface);
    if (underQuestion) questions.paint(surface);
    screen.show(above, area);
}

void X11Window::Parts::setScale(int wanted) {
    const int next = wanted > 0 ? wanted : display.wantedScale();
    if (next == scale || isGone()) return;
    scale = next;
    remainder_ = {};
    screen.setScale(scale);
    pointer.setScale(scale);
    const Rect size = toScreen(shown.bounds());
    X11Manners::setSize(display, window, size.width(), size.height());
    XResizeWindow(display.get(), window, static_cast<unsigned>(size.width()),
                  static_cast<unsigned>(size.height()));
    // What the window grows by is asked for when it has grown.
    showArea(shown.bounds());
}

void X11Window::Parts::capture(bool on) {
    captured_ = on;
    pointer.capture(on);
}

void X11Window::Parts::handle(XEvent& event) {
    if (clipboard.handle(event) || drop.handle(event)) return;
    switch (event.type) {
        case Expose: {
            const XExposeEvent& e = event.xexpose;
            const Point from = toPage({e.x, e.y});
            const Point to = toPage({e.x + e.width + scale - 1, e.y + e.height + scale - 1});
            return showArea({from.x, from.y, to.x, to.y});
        }
        case ButtonPress:
            return pressed(event.xbutton);
        case ButtonRelease:
            return released(event.xbutton);
        case MotionNotify:
            return moved(event.xmotion);
        case KeyPress:
            return keyPressed(event.xkey);
        case KeyRelease:
            return keyReleased(event.xkey);
        case FocusIn:
        case FocusOut:
            return focusChanged(event.xfocus);
        case UnmapNotify:
            return unmapped();
        case DestroyNotify:
            destroyed_ = destroyed_ || event.xdestroywindow.window == window;
            return;
        case MappingNotify:
            XRefreshKeyboardMapping(&event.xmapping);
            return;
        case ClientMessage:
            if (manners && manners->wantsToClose(event.xclient) && closes) closes();
            return;
        default:
            return;
    }
}

void X11Window::Parts::tellQuestion(const std::function<std::optional<int>()>& event) {
    const std::optional<int> answer = event();
    showArea(questions.place());
    if (!answer) return;
    const auto then = asked;
    endMessage();
    then(*answer);
}

void X11Window::Parts::tellDialog(const std::function<void(PageOverlay&)>& event) {
    if (!dialog_) return;
    event(*dialog_);
    // It may be gone now.
    if (dialog_) showArea(dialog_->place());
}

void X11Window::Parts::pressedOnDialog(PageOverlay& dialog, const XButtonEvent& event) {
    const Point at = toPage({event.x, event.y});
    if (event.button == kUp || event.button == kDown) return dialog.wheel(at, event.button == kUp ? 1 : -1);
    if (event.button != kLeft) return;
    if (clicks_.isDouble({event.x, event.y}, event.time)) return dialog.doubleClick(at);
    dialog.leftDown(at);
}

void X11Window::Parts::pressed(const XButtonEvent& event) {
    const Point at = toPage({event.x, event.y});
    const Modifiers held = heldOf(event.state);
    lastPress_ = Clock::now();
    retakes_ = kMostRetakes;
    if (asked) {
        if (event.button == kLeft) tellQuestion([&] { return questions.leftDown(at); });
        return;
    }
    if (chosen_) return tellDialog([&](PageOverlay& dialog) { pressedOnDialog(dialog, event); });
    if (!page) return;
    switch (event.button) {
        case kLeft:
            clicks_.isDouble({event.x, event.y}, event.time) ? page->doubleClick(at, held)
                                                             : page->leftDown(at, held);
            return keepKeyboard();
        case kRight:
            return page->rightDown(at, held);
        case kUp:
            return page->wheel(at, WheelAxis::vertical, 1, held);
        case kDown:
            return page->wheel(at, WheelAxis::vertical, -1, held);
        case kWheelLeft:
            return page->wheel(at, WheelAxis::horizontal, -1, held);
        case kWheelRight:
            return page->wheel(at, WheelAxis::horizontal, 1, held);
        default:
            return;
    }
}

void X11Window::Parts::released(const XButtonEvent& event) {
    const Point at = toPage({event.x, event.y});
    if (isAsking()) {
        if (event.button != kLeft) return;
        return asked ? tellQuestion([&] { return questions.leftUp(at); })
                     : tellDialog([&](PageOverlay& dialog) { dialog.leftUp(at); });
    }
    if (!page) return;
    if (event.button == kLeft) page->leftUp(at, heldOf(event.state));
    if (event.button == kRight) page->contextMenu(at, heldOf(event.state));
}

void X11Window::Parts::moved(const XMotionEvent& event) {
    const Point at = toPage({event.x, event.y});
    if (asked)
        return tellQuestion([&] {
            questions.mouseMove(at);
            return std::nullopt;
        });
    if (chosen_) return tellDialog([&](PageOverlay& dialog) { dialog.mouseMove(at); });
    if (!pointer.isRelative()) {
        if (page) page->mouseMove(at, heldOf(event.state));
        return;
    }
    const Point distance = pointer.distanceOf(event);
    remainder_ = {remainder_.x + distance.x, remainder_.y + distance.y};
    const Point whole{remainder_.x / scale, remainder_.y / scale};
    remainder_ = {remainder_.x - whole.x * scale, remainder_.y - whole.y * scale};
    if (page && whole != Point{}) page->relativeMove(whole, heldOf(event.state));
}

void X11Window::Parts::keyPressed(XKeyEvent& event) {
    const int key = keyboard.keyOf(event);
    const std::u32string characters = keyboard.charactersOf(event);
    Modifiers held = heldOf(event.state);
    held.shift = held.shift || key == kKeyShift;
    held.control = held.control || key == kKeyControl;
    if (isAsking()) return keyPressedAsking(key, characters, held);
    const bool isUsed = page && page->keyDown(key, held);
    if (!isUsed && useKey) return useKey(key, held, true);
    if (!isUsed && isEmbedded) return handOn(event);
    for (const char32_t character : characters)
        if (PageEvents* const told = listener()) told->character(character, held);
}

void X11Window::Parts::keyPressedAsking(int key, const std::u32string& characters, Modifiers held) {
    if (asked) return tellQuestion([&] { return questions.keyDown(key, held); });
    if (!dialog_ && key == kKeyEscape) {
        // A dialog of another program that doesn't show itself holds nobody back.
        files.cancel();
        return answerFile({});
    }
    tellDialog([&](PageOverlay& dialog) { dialog.keyDown(key, held); });
    for (const char32_t character : characters)
        tellDialog([&](PageOverlay& dialog) { dialog.character(character); });
}

void X11Window::Parts::keyReleased(XKeyEvent& event) {
    const int key = keyboard.keyOf(event);
    Modifiers held = heldOf(event.state);
    held.shift = held.shift && key != kKeyShift;
    held.control = held.control && key != kKeyControl;
    if (PageEvents* const told = listener()) told->keyUp(key, held);
    if (useKey) return useKey(key, held, false);
    if (handedOn_.contains(event.keycode)) handOn(event);
}

void X11Window::Parts::handOn(XKeyEvent event) {
    const bool down = event.type == KeyPress;
    if (down) {
        handedOn_.insert(event.keycode);
    } else {
        handedOn_.erase(event.keycode);
    }
    event.window = parent_;
    event.subwindow = kXNone;
    XEvent sent{};
    sent.xkey = event;
    XSendEvent(display.get(), parent_, kXTrue, down ? KeyPressMask : KeyReleaseMask, &sent);
}

void X11Window::Parts::focusChanged(const XFocusChangeEvent& event) {
    // A grab of the keyboard, as by a window manager's keys, moves no focus.
    if (event.mode == NotifyGrab || event.mode == NotifyUngrab) return;
    const Time now = Clock::now();
    hasFocus_ = event.type == FocusIn;
    keyboard.focus(hasFocus_);
    if (event.type == FocusIn) return patience_.returned();
    patience_.left(now);
    if (!isTakenForPress(now)) return;
    --retakes_;
    keepKeyboard();
}

void X11Window::Parts::keepKeyboard() {
    if (!isEmbedded || !wantsFocus_ || hasFocus_) return;
    XSetInputFocus(display.get(), window, RevertToParent, CurrentTime);
    // That it is back is known here, however busy everybody is, before patience ends.
    XSync(display.get(), kXFalse);
}

bool X11Window::Parts::isTakenForPress(Time now) {
    if (!isEmbedded || !wantsFocus_ || retakes_ == 0 || now - lastPress_ > kPressIsAnswered) return false;
    const Point at = pointer.place();
    const Rect whole = toScreen(shown.bounds());
    // Elsewhere its user may have pressed on something of the host's.
    return whole.contains(at);
}

void X11Window::Parts::unmapped() {
    const bool had = std::exchange(captured_, false) || pointer.isRelative();
    pointer.endRelative();
    if (had && page) page->captureLost();
}

void X11Window::Parts::wantFocus(bool wanted) {
    if (std::exchange(wantsFocus_, wanted) == wanted || !isEmbedded) return;
    if (!wanted) {
        if (formerFocus_) XSetInputFocus(display.get(), formerFocus_, RevertToParent, CurrentTime);
        return;
    }
    int reverts = 0;
    XGetInputFocus(display.get(), &formerFocus_, &reverts);
    XSetInputFocus(display.get(), window, RevertToParent, CurrentTime);
}

void X11Window::Parts::ask(const ShownQuestion& question, std::function<void(int)> then) {
    asked = std::move(then);
    questions.open(question, shown.bounds());
    // A press outside the window ends a menu too.
    capture(!question.items.empty());
    showArea(questions.place());
}

void X11Window::Parts::chooseFile(const FileQuestion& question,
                                  std::function<void(std::optional<std::string>)> then) {
    chosen_ = std::move(then);
    files.ask(question, *this, [this](FileAnswer answer) { answerFile(std::move(answer.file)); });
}

void X11Window::Parts::answerFile(std::optional<std::string> file) {
    if (const auto then = std::exchange(chosen_, {})) then(std::move(file));
}

void X11Window::Parts::showOver(PageOverlay* dialog) {
    const Rect before = dialog_ ? dialog_->place() : Rect{};
    dialog_ = dialog;
    pointer.show(PageCursor::arrow);
    showArea(dialog ? dialog->place() : before);
}

void X11Window::Parts::endMessage() {
    asked = {};
    capture(false);
    const Rect place = questions.place();
    questions.close();
    showArea(place);
}

void X11Window::Parts::closeQuestion() {
    if (asked) endMessage();
    if (std::exchange(chosen_, {})) files.cancel();
}

}  // namespace marnoth
