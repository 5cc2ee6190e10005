#include "shells/desktop/window/StackedPages.h"

#include <algorithm>
#include <utility>

#include "platform/drawing/Font.h"

namespace marnoth {

namespace {

using Clock = std::chrono::steady_clock;

}  // namespace

/// The window of one of the two.
class StackedPages::Storey final : public PageWindow {
public:
    Storey(StackedPages& house, const Rect& place) : house_(house), place_(place) {}

    bool contains(Point at) const { return place_.contains(at); }
    /// From the window's corner to the page's own.
    Point inside(Point at) const { return {at.x - place_.left, at.y - place_.top}; }
    bool wantsKeys() const { return wantsKeys_; }
    int period() const { return period_; }
    void paint() {
        if (page && std::exchange(paintWanted_, false)) page->paint();
    }
    void tick(Clock::time_point now) {
        if (!page || period_ <= 0 || now < next_) return;
        next_ = std::max(next_ + std::chrono::milliseconds(period_), now);
        page->timer();
    }

    void requestPaint() override {
        paintWanted_ = true;
        outer().requestPaint();
    }
    void present(const Bitmap& screen, const Rect& changed) override;
    std::unique_ptr<Font> openFont(std::string_view face, int height, std::string& error) override {
        return outer().openFont(face, height, error);
    }
    void setCapture() override {
        house_.captor_ = this;
        outer().setCapture();
    }
    void releaseCapture() override {
        letGo();
        outer().releaseCapture();
    }
    void beginRelativeDrag(PageCursor shown) override {
        house_.captor_ = this;
        outer().beginRelativeDrag(shown);
    }
    void endRelativeDrag() override {
        letGo();
        outer().endRelativeDrag();
    }
    void confinePointer(std::optional<Rect> area) override {
        outer().confinePointer(area ? std::optional(area->movedBy(place_.left, place_.top)) : std::nullopt);
    }
    Point pointer() override { return inside(outer().pointer()); }
    void setCursor(PageCursor cursor) override { outer().setCursor(cursor); }
    void setTimer(int milliseconds) override {
        period_ = milliseconds;
        next_ = Clock::now() + std::chrono::milliseconds(milliseconds);
        house_.setTimer();
    }
    void takeFocus(bool wanted) override {
        wantsKeys_ = wanted;
        outer().takeFocus(house_.upper_->wantsKeys_ || house_.lower_->wantsKeys_);
    }
    void askMessage(std::string_view text, MessageKind kind, std::function<void(PageAnswer)> then) override {
        outer().askMessage(text, kind, std::move(then));
    }
    void askFile(std::string_view filter, FileKind kind,
                 std::function<void(std::optional<std::string>)> then) override {
        outer().askFile(filter, kind, std::move(then));
    }
    void askMenu(Point at, std::span<const MenuItem> items, std::function<void(int)> then) override {
        outer().askMenu({at.x + place_.left, at.y + place_.top}, items, std::move(then));
    }
    void cancelQuestion() override { outer().cancelQuestion(); }
    void readClipboard(std::function<void(std::string)> then) override {
        outer().readClipboard(std::move(then));
    }
    void setClipboardText(std::string_view text) override { outer().setClipboardText(text); }
    void showHelp() override { outer().showHelp(); }

    PageEvents* page = nullptr;

private:
    PageWindow& outer() { return house_.window_; }
    void letGo() {
        if (house_.captor_ == this) house_.captor_ = nullptr;
    }

    StackedPages& house_;
    const Rect place_;  ///< in the window
    bool paintWanted_ = false;
    bool wantsKeys_ = false;
    int period_ = 0;  ///< milliseconds
    Clock::time_point next_;
};

void StackedPages::Storey::present(const Bitmap& screen, const Rect& changed) {
    const Rect own = intersection(changed, screen.bounds());
    const Rect area = intersection(own.movedBy(place_.left, place_.top), place_);
    const auto left = static_cast<std::size_t>(area.left);
    const auto across = static_cast<std::size_t>(area.width());
    for (int y = area.top; y < area.bottom; ++y)
        std::ranges::copy(
            screen.row(y - place_.top).subspan(static_cast<std::size_t>(area.left - place_.left), across),
            house_.picture_.row(y).subspan(left).begin());
    if (!area.isEmpty()) outer().present(house_.picture_, area);
}

StackedPages::StackedPages(PageWindow& window, int width, int upperHeight, int lowerHeight, int footHeight)
    : window_(window),
      picture_(width, upperHeight + lowerHeight + footHeight),
      upper_(std::make_unique<Storey>(*this, Rect::at(0, 0, width, upperHeight))),
      lower_(std::make_unique<Storey>(*this, Rect::at(0, upperHeight, width, lowerHeight))),
      foot_(std::make_unique<Storey>(*this, Rect::at(0, upperHeight + lowerHeight, width, footHeight))) {}

StackedPages::~StackedPages() = default;

PageWindow& StackedPages::upperWindow() {
    return *upper_;
}

PageWindow& StackedPages::lowerWindow() {
    return *lower_;
}

PageWindow& StackedPages::footWindow() {
    return *foot_;
}

void StackedPages::setUpper(PageEvents* page) {
    upper_->page = page;
}

void StackedPages::setLower(PageEvents* page) {
    lower_->page = page;
}

void StackedPages::setFoot(PageEvents* page) {
    foot_->page = page;
}

StackedPages::Storey& StackedPages::under(Point at) {
    if (captor_) return *captor_;
    return upper_->contains(at) ? *upper_ : foot_->contains(at) ? *foot_ : *lower_;
}

StackedPages::Storey& StackedPages::keyboard() {
    return upper_->wantsKeys() ? *upper_ : *lower_;
}

/// The timer of the window is as fast as the faster page's.
void StackedPages::setTimer() {
    const int slower = std::max(upper_->period(), lower_->period());
    const int faster = std::min(upper_->period(), lower_->period());
    window_.setTimer(faster > 0 ? faster : slower);
}

void StackedPages::paint() {
    upper_->paint();
    lower_->paint();
    foot_->paint();
}

void StackedPages::timer() {
    const Clock::time_point now = Clock::now();
    upper_->tick(now);
    lower_->tick(now);
}

void StackedPages::mouse(MouseEvent event, Point at, Modifiers held) {
    Storey& storey = under(at);
    // What lit up under the mouse on the other goes out again.
    Storey* const left = std::exchange(over_, &storey);
    if (left && left != &storey && left->page) left->page->mouseMove(left->inside(at), held);
    if (storey.page) (storey.page->*event)(storey.inside(at), held);
}

void StackedPages::leftDown(Point at, Modifiers held) {
    // A press on one closes what is being typed on the others.
    for (Storey* const other : {upper_.get(), lower_.get()})
        if (other != &under(at) && other->wantsKeys() && other->page) other->page->focusLost();
    mouse(&PageEvents::leftDown, at, held);
}

void StackedPages::leftUp(Point at, Modifiers held) {
    mouse(&PageEvents::leftUp, at, held);
}

void StackedPages::doubleClick(Point at, Modifiers held) {
    mouse(&PageEvents::doubleClick, at, held);
}

void StackedPages::mouseMove(Point at, Modifiers held) {
    mouse(&PageEvents::mouseMove, at, held);
}

void StackedPages::relativeMove(Point distance, Modifiers held) {
    if (captor_ && captor_->page) captor_->page->relativeMove(distance, held);
}

void StackedPages::wheel(Point at, WheelAxis axis, int steps, Modifiers held) {
    Storey& storey = under(at);
    if (storey.page) storey.page->wheel(storey.inside(at), axis, steps, held);
}

void StackedPages::rightDown(Point at, Modifiers held) {
    mouse(&PageEvents::rightDown, at, held);
}

void StackedPages::contextMenu(Point at, Modifiers held) {
    mouse(&PageEvents::contextMenu, at, held);
}

bool StackedPages::keyDown(int key, Modifiers held) {
    PageEvents* const page = keyboard().page;
    return page && page->keyDown(key, held);
}

void StackedPages::keyUp(int key, Modifiers held) {
    if (PageEvents* const page = keyboard().page) page->keyUp(key, held);
}

void StackedPages::character(char32_t character, Modifiers held) {
    if (PageEvents* const page = keyboard().page) page->character(character, held);
}

void StackedPages::focusLost() {
    if (upper_->page) upper_->page->focusLost();
    if (lower_->page) lower_->page->focusLost();
}

void StackedPages::captureLost() {
    const Storey* const captor = std::exchange(captor_, nullptr);
    if (captor && captor->page) captor->page->captureLost();
}

DropEffect StackedPages::dragEnter(bool hasFiles) {
    return lower_->page ? lower_->page->dragEnter(hasFiles) : DropEffect::none;
}

DropEffect StackedPages::dragOver(Point at) {
    return lower_->page ? lower_->page->dragOver(lower_->inside(at)) : DropEffect::none;
}

void StackedPages::dragLeave() {
    if (lower_->page) lower_->page->dragLeave();
}

DropEffect StackedPages::drop(Point at, std::optional<std::span<const std::string>> paths) {
    if (paths && taker_ && taker_(*paths)) {
        dragLeave();
        return DropEffect::copy;
    }
    return lower_->page ? lower_->page->drop(lower_->inside(at), paths) : DropEffect::none;
}

}  // namespace marnoth
