#include "platform/linux/X11Window.h"

#include <algorithm>
#include <utility>

#include "platform/drawing/Font.h"
#include "platform/linux/X11WindowParts.h"

namespace marnoth {

X11Window::X11Window(const Setup& setup, FontSource& fonts, QuestionView& questions, FileChooser& files)
    : parts_(std::make_unique<Parts>(setup, *this, fonts, questions, files)) {}

X11Window::~X11Window() = default;

void X11Window::setPage(PageEvents* page) {
    parts_->page = page;
}

void X11Window::show() {
    XMapWindow(parts_->display.get(), parts_->window);
    // On other connections, a host's first of all, it is there only when the server has come to it.
    XSync(parts_->display.get(), kXFalse);
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

void X11Window::setScale(int scale) {
    parts_->setScale(scale);
}

bool X11Window::isGone() const {
    return parts_->isGone();
}

bool X11Window::isAsking() const {
    return parts_->isAsking();
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
    parts_->nextTick = Time::clock::now() + parts_->period;
}

void X11Window::takeFocus(bool wanted) {
    parts_->wantFocus(wanted);
}

void X11Window::askMessage(std::string_view text, MessageKind kind, std::function<void(PageAnswer)> then) {
    parts_->ask(shownMessage(text, kind), [kind, then = std::move(then)](int button) {
        if (button == QuestionView::kCancelled) return then(PageAnswer::cancel);
        if (kind == MessageKind::note) return then(PageAnswer::ok);
        then(button == 0 ? PageAnswer::yes : button == 1 ? PageAnswer::no : PageAnswer::cancel);
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
    parts_->chooseFile({std::string(filter), kind, {}}, std::move(then));
}

void X11Window::cancelQuestion() {
    parts_->closeQuestion();
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
