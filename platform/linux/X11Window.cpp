#include "platform/linux/X11Window.h"

#include <algorithm>
#include <utility>

#include "platform/drawing/FileChooser.h"
#include "platform/drawing/FocusPatience.h"
#include "platform/drawing/Font.h"
#include "platform/drawing/QuestionView.h"
#include "platform/drawing/RasterSurface.h"
#include "platform/linux/ClickCounter.h"
#include "platform/linux/X11Clipboard.h"
#include "platform/linux/X11Display.h"
#include "platform/linux/X11Drop.h"
#include "platform/linux/X11Keyboard.h"
#include "platform/linux/X11Manners.h"
#include "platform/linux/X11Pointer.h"
#include "platform/linux/X11Screen.h"

namespace marnoth {

namespace {

using Clock = std::chrono::steady_clock;

constexpr long kEvents = ExposureMask | StructureNotifyMask | FocusChangeMask | PropertyChangeMask |
                         KeyPressMask | KeyReleaseMask | ButtonPressMask | ButtonReleaseMask |
                         PointerMotionMask;

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
    return XCreateWindow(display.get(), setup.parent ? setup.parent : display.root(), 0, 0,
                         static_cast<unsigned>(setup.width * scale),
                         static_cast<unsigned>(setup.height * scale), 0, display.depth(), InputOutput,
                         display.visual(), CWEventMask | CWBackPixmap | CWBitGravity, &wanted);
}

}  // namespace

class X11Window::Parts {
public:
    Parts(const Setup& setup, FontSource& fontSource, QuestionView& view, FileChooser& chooser)
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
          shown(setup.width, setup.height) {
        if (!isEmbedded) manners.emplace(display, window, setup.title);
    }
    ~Parts() {
        if (!isGone()) XDestroyWindow(display.get(), window);
    }

    bool isGone() const { return destroyed || display.isLost(); }
    /// Null while a question is open: nothing reaches the page then.
    PageEvents* listener() const { return asked ? nullptr : page; }
    Point toPage(Point at) const { return {floorDivided(at.x, scale), floorDivided(at.y, scale)}; }
    Rect toScreen(const Rect& area) const {
        return {area.left * scale, area.top * scale, area.right * scale, area.bottom * scale};
    }

    void dispatch();
    std::optional<Time> deadline() const;
    void showArea(const Rect& area);
    void capture(bool on);
    void ask(const ShownQuestion& question, std::function<void(int)> then);
    void closeQuestion();
    void wantFocus(bool wanted);

    X11Display display;
    FontSource& fonts;
    QuestionView& questions;
    FileChooser& files;
    const bool isEmbedded;
    const int scale;
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
    bool choosesFile = false;

private:
    void handle(XEvent& event);
    void pressed(const XButtonEvent& event);
    void released(const XButtonEvent& event);
    void moved(const XMotionEvent& event);
    void keyPressed(XKeyEvent& event);
    void keyReleased(XKeyEvent& event);
    void focusChanged(const XFocusChangeEvent& event);
    void unmapped();
    void tick(Time now);
    void paint();
    /// Hands something that the user does to the open question, and takes the answer.
    void tellQuestion(const std::function<std::optional<int>()>& event);

    ClickCounter clicks_;
    FocusPatience patience_;
    Time lastPress_;
    Point remainder_;  ///< of a relative drag: pixels of the screen that don't make one of the page yet
    ::Window formerFocus_ = kXNone;
    bool captured_ = false;
    bool wantsFocus_ = false;
    bool destroyed = false;
};

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
    if (PageEvents* const told = listener()) told->timer();
}

void X11Window::Parts::paint() {
    // The page behind a question is painted too.
    if (page && std::exchange(paintWanted, false)) page->paint();
}

void X11Window::Parts::showArea(const Rect& area) {
    if (isGone()) return;
    const Rect covered = intersection(area, questions.isOpen() ? questions.place() : Rect{});
    if (covered.isEmpty()) return screen.show(shown, area);
    Bitmap above = shown;
    RasterSurface surface(above);
    questions.paint(surface);
    screen.show(above, area);
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
            destroyed = destroyed || event.xdestroywindow.window == window;
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
    // A dialog of files has the user's input itself.
    if (!questions.isOpen()) return;
    const std::optional<int> answer = event();
    showArea(questions.place());
    if (!answer) return;
    const auto then = asked;
    closeQuestion();
    then(*answer);
}

void X11Window::Parts::pressed(const XButtonEvent& event) {
    const Point at = toPage({event.x, event.y});
    const Modifiers held = heldOf(event.state);
    lastPress_ = Clock::now();
    if (asked) {
        if (event.button == kLeft) tellQuestion([&] { return questions.leftDown(at); });
        return;
    }
    if (!page) return;
    switch (event.button) {
        case kLeft:
            return clicks_.isDouble({event.x, event.y}, event.time) ? page->doubleClick(at, held)
                                                                    : page->leftDown(at, held);
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
    if (asked) {
        if (event.button == kLeft) tellQuestion([&] { return questions.leftUp(at); });
        return;
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
    if (asked) return tellQuestion([&] { return questions.keyDown(key, held); });
    const bool isUsed = page && page->keyDown(key, held);
    if (!isUsed && useKey) return useKey(key, held, true);
    for (const char32_t character : characters)
        if (PageEvents* const told = listener()) told->character(character, held);
}

void X11Window::Parts::keyReleased(XKeyEvent& event) {
    const int key = keyboard.keyOf(event);
    Modifiers held = heldOf(event.state);
    held.shift = held.shift && key != kKeyShift;
    held.control = held.control && key != kKeyControl;
    if (PageEvents* const told = listener()) told->keyUp(key, held);
    if (useKey) useKey(key, held, false);
}

void X11Window::Parts::focusChanged(const XFocusChangeEvent& event) {
    // A grab of the keyboard, as by a window manager's keys, moves no focus.
    if (event.mode == NotifyGrab || event.mode == NotifyUngrab) return;
    const Time now = Clock::now();
    keyboard.focus(event.type == FocusIn);
    if (event.type == FocusIn) return patience_.returned();
    patience_.left(now);
    // A toolkit host answers a press in our window by taking the keyboard for a widget of its own.
    if (isEmbedded && wantsFocus_ && now - lastPress_ < FocusPatience::kPatience)
        XSetInputFocus(display.get(), window, RevertToParent, CurrentTime);
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

void X11Window::Parts::closeQuestion() {
    if (std::exchange(choosesFile, false)) files.cancel();
    asked = {};
    capture(false);
    const Rect place = questions.place();
    questions.close();
    showArea(place);
}

X11Window::X11Window(const Setup& setup, FontSource& fonts, QuestionView& questions, FileChooser& files)
    : parts_(std::make_unique<Parts>(setup, fonts, questions, files)) {}

X11Window::~X11Window() = default;

void X11Window::setPage(PageEvents* page) {
    parts_->page = page;
}

void X11Window::show() {
    XMapWindow(parts_->display.get(), parts_->window);
    XFlush(parts_->display.get());
}

void X11Window::setTitle(const std::string& title) {
    if (parts_->manners) parts_->manners->setTitle(title);
}

void X11Window::onClose(std::function<void()> closes) {
    parts_->closes = std::move(closes);
}

void X11Window::onUnusedKey(std::function<void(int, Modifiers, bool)> use) {
    parts_->useKey = std::move(use);
}

void X11Window::onHelp(std::function<void()> help) {
    parts_->help = std::move(help);
}

unsigned long X11Window::id() const {
    return parts_->window;
}

int X11Window::scale() const {
    return parts_->scale;
}

bool X11Window::isGone() const {
    return parts_->isGone();
}

bool X11Window::isAsking() const {
    return static_cast<bool>(parts_->asked);
}

int X11Window::descriptor() const {
    return ConnectionNumber(parts_->display.get());
}

std::optional<X11Window::Time> X11Window::deadline() const {
    return parts_->deadline();
}

void X11Window::dispatch() {
    parts_->dispatch();
}

void X11Window::requestPaint() {
    parts_->paintWanted = true;
}

void X11Window::present(const Bitmap& screen, const Rect& changed) {
    Bitmap& shown = parts_->shown;
    const Rect area = intersection(changed, intersection(screen.bounds(), shown.bounds()));
    const auto left = static_cast<std::size_t>(area.left);
    const auto across = static_cast<std::size_t>(area.width());
    for (int y = area.top; y < area.bottom; ++y)
        std::ranges::copy(screen.row(y).subspan(left, across), shown.row(y).subspan(left).begin());
    parts_->showArea(area);
}

std::unique_ptr<Font> X11Window::openFont(std::string_view face, int height, std::string& error) {
    return parts_->fonts.open(face, height, error);
}

void X11Window::setCapture() {
    parts_->capture(true);
}

void X11Window::releaseCapture() {
    parts_->capture(false);
}

void X11Window::beginRelativeDrag(PageCursor shown) {
    parts_->pointer.beginRelative(shown);
}

void X11Window::endRelativeDrag() {
    parts_->pointer.endRelative();
}

void X11Window::confinePointer(std::optional<Rect> area) {
    parts_->pointer.confine(area ? std::optional(parts_->toScreen(*area)) : std::nullopt);
}

Point X11Window::pointer() {
    return parts_->toPage(parts_->pointer.place());
}

void X11Window::setCursor(PageCursor cursor) {
    parts_->pointer.show(cursor);
}

void X11Window::setTimer(int milliseconds) {
    parts_->period = std::chrono::milliseconds(milliseconds);
    parts_->nextTick = Clock::now() + parts_->period;
}

void X11Window::takeFocus(bool wanted) {
    parts_->wantFocus(wanted);
}

void X11Window::askMessage(std::string_view text, MessageKind kind, std::function<void(PageAnswer)> then) {
    parts_->ask(shownMessage(text, kind), [kind, then = std::move(then)](int button) {
        if (button == QuestionView::kCancelled) return then(PageAnswer::cancel);
        if (kind == MessageKind::note) return then(PageAnswer::ok);
        then(button == 0 ? PageAnswer::yes : PageAnswer::no);
    });
}

void X11Window::askMenu(Point at, std::span<const MenuItem> items, std::function<void(int)> then) {
    ShownQuestion menu;
    menu.items.assign(items.begin(), items.end());
    menu.at = at;
    parts_->ask(menu, [then = std::move(then)](int id) { then(id == QuestionView::kCancelled ? 0 : id); });
}

void X11Window::askFile(std::string_view filter, FileKind kind,
                        std::function<void(std::optional<std::string>)> then) {
    parts_->choosesFile = true;
    // Nothing else of the page answers meanwhile.
    parts_->asked = [](int) {};
    parts_->files.ask(filter, kind, parts_->window,
                      [this, then = std::move(then)](std::optional<std::string> file) {
                          parts_->choosesFile = false;
                          parts_->closeQuestion();
                          then(std::move(file));
                      });
}

void X11Window::cancelQuestion() {
    if (parts_->asked) parts_->closeQuestion();
}

void X11Window::readClipboard(std::function<void(std::string)> then) {
    parts_->clipboard.read(std::move(then));
}

void X11Window::setClipboardText(std::string_view text) {
    parts_->clipboard.offer(std::string(text));
}

void X11Window::showHelp() {
    if (parts_->help) parts_->help();
}

}  // namespace marnoth
