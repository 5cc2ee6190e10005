#include "editor/PageFrame.h"

#include <algorithm>
#include <utility>

#include "platform/drawing/Surface.h"

namespace marnoth {

namespace {

bool meetsAny(const std::vector<Rect>& areas, const Rect& area) {
    return std::ranges::any_of(areas, [&](const Rect& other) { return meet(other, area); });
}

/// The smallest rectangle that holds both; an empty one counts for nothing.
Rect around(const Rect& a, const Rect& b) {
    if (a.isEmpty()) return b;
    if (b.isEmpty()) return a;
    return {std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right),
            std::max(a.bottom, b.bottom)};
}

/// `at` counted from the control's corner.
Point onControl(const Control& control, Point at) {
    return {at.x - control.place().left, at.y - control.place().top};
}

void copyPixels(const Bitmap& from, Bitmap& to, const Rect& area) {
    for (int y = area.top; y < area.bottom; ++y)
        std::ranges::copy(
            from.row(y).subspan(static_cast<std::size_t>(area.left), static_cast<std::size_t>(area.width())),
            to.row(y).begin() + area.left);
}

/// More at once than any hand turns.
constexpr int kMostWheelSteps = 1000;

/// Whether a key of an American keyboard makes a character; so may one without a code.
bool makesCharacter(int key) {
    const auto isFrom = [key](int first, int last) { return first <= key && key <= last; };
    return key == 0 || key == kKeySpace || isFrom('0', '9') || isFrom('A', 'Z') || isFrom(96, 111) ||
           isFrom(186, 226);
}

}  // namespace

PageFrame::PageFrame(PageWindow& window, const Bitmap& ground, SurfaceMaker makeSurface)
    : m_window(window),
      m_makeSurface(std::move(makeSurface)),
      m_backBuffer(ground),
      m_page(ground),
      m_screen(ground),
      m_questions(
          window, [this] { takeMouseAway(); },
          [this](const std::function<void()>& answer) { carryOutAnswer(answer); }) {}

Control* PageFrame::controlOf(int id) const {
    const auto found =
        std::ranges::find_if(m_controls, [&](Control* control) { return control->id() == id; });
    return found == m_controls.end() ? nullptr : *found;
}

void PageFrame::focusControl(Control& control) {
    carryOut([&] { focus(&control); });
}

void PageFrame::drain() {
    // What is posted meanwhile comes behind what was posted before.
    while (!m_posted.empty()) {
        const std::function<void()> next = std::move(m_posted.front());
        m_posted.erase(m_posted.begin());
        guarded(next);
    }
}

Control* PageFrame::under(Point at) const {
    const auto found = std::find_if(m_controls.rbegin(), m_controls.rend(), [&](const Control* control) {
        return control->takesMouse() && control->place().contains(at);
    });
    return found == m_controls.rend() ? nullptr : *found;
}

Control* PageFrame::targetOf(Point at) const {
    if (m_captured) return m_captured;
    return m_pageCaptured ? nullptr : under(at);
}

bool PageFrame::admits(Modifiers held) {
    m_held = held;
    return !m_questions.isOpen();
}

void PageFrame::route(ControlEventKind kind, Point at, Modifiers held, void (PageFrame::*toPage)(Point)) {
    if (!admits(held)) return;
    if (kind != ControlEventKind::mouseMove) ++m_acts;
    carryOut([&] {
        if (Control* target = targetOf(at))
            target->handle({kind, onControl(*target, at), 0, 0, held});
        else
            (this->*toPage)(at);
    });
}

void PageFrame::leftDown(Point at, Modifiers held) {
    route(ControlEventKind::leftDown, at, held, &PageFrame::pressed);
}

void PageFrame::leftUp(Point at, Modifiers held) {
    route(ControlEventKind::leftUp, at, held, &PageFrame::released);
}

void PageFrame::doubleClick(Point at, Modifiers held) {
    route(ControlEventKind::doubleClick, at, held, &PageFrame::doubleClicked);
}

void PageFrame::mouseMove(Point at, Modifiers held) {
    route(ControlEventKind::mouseMove, at, held, &PageFrame::moved);
}

void PageFrame::relativeMove(Point distance, Modifiers held) {
    if (!admits(held) || !m_relativeDrag || !m_captured) return;
    carryOut([&] { m_captured->handle({ControlEventKind::relativeMove, distance, 0, 0, held}); });
}

void PageFrame::wheel(Point at, WheelAxis axis, int steps, Modifiers held) {
    if (!admits(held) || m_pageCaptured || steps == 0) return;
    steps = std::clamp(steps, -kMostWheelSteps, kMostWheelSteps);
    carryOut([&] {
        Control* const target = targetOf(at);
        if (!target) return wheelTurned(at, axis, steps);
        if (axis == WheelAxis::vertical)
            target->handle({ControlEventKind::wheel, onControl(*target, at), 0, 0, held, steps});
    });
}

void PageFrame::rightDown(Point, Modifiers held) {
    m_held = held;
}

void PageFrame::contextMenu(Point at, Modifiers held) {
    if (!admits(held) || m_captured) return;
    const Control* control = under(at);
    if (control && control->takesText()) return;
    ++m_acts;
    carryOut([&] { menuWanted(at); });
}

void PageFrame::sendKey(const ControlEvent& event) {
    if (!admits(event.held)) return;
    ++m_acts;
    Control* const control = m_focus;
    const auto text = [control] { return control ? control->shownText() : std::nullopt; };
    const std::optional<std::string> before = text();
    carryOut([&] {
        if (m_focus && m_focus->handle(event) && m_focus->takesText()) actOnKey();
    });
    if (control != m_focus) return;
    if (event.key == kKeyReturn)
        m_typed = false;
    else if (text() != before)
        m_typed = true;
}

bool PageFrame::keyDown(int key, Modifiers held) {
    m_actedOnKey =
        m_focus && m_focus->takesText() && !m_questions.isOpen() && !held.control && makesCharacter(key);
    sendKey({ControlEventKind::keyDown, {}, key, 0, held});
    return m_actedOnKey;
}

void PageFrame::keyUp(int key, Modifiers held) {
    sendKey({ControlEventKind::keyUp, {}, key, 0, held});
}

void PageFrame::character(char32_t character, Modifiers held) {
    sendKey({ControlEventKind::character, {}, 0, character, held});
}

void PageFrame::focusLost() {
    // A question takes the keyboard, and gives it back.
    if (m_questions.isOpen()) return;
    carryOut([&] { focus(nullptr); });
}

void PageFrame::captureLost() {
    carryOut([&] { loseMouse(); });
}

void PageFrame::loseMouse() {
    Control* const control = std::exchange(m_captured, nullptr);
    const bool ofPage = std::exchange(m_pageCaptured, false);
    if (control) control->handle({ControlEventKind::captureLost, {}});
    if (ofPage) gestureLost();
}

void PageFrame::giveMouseBack() {
    if (std::exchange(m_relativeDrag, false))
        m_window.endRelativeDrag();
    else
        m_window.releaseCapture();
}

void PageFrame::takeMouseAway() {
    if (!m_captured && !m_pageCaptured) return;
    loseMouse();
    giveMouseBack();
}

void PageFrame::carryOutAnswer(const std::function<void()>& answer) {
    // Within the event that asked, what is posted waits for that one's end.
    if (m_underWay > 0)
        guarded(answer);
    else
        carryOut(answer);
}

void PageFrame::captureMouse(Control& control) {
    m_captured = &control;
    m_pageCaptured = false;
    m_window.setCapture();
}

void PageFrame::captureForPage() {
    m_captured = nullptr;
    m_pageCaptured = true;
    m_window.setCapture();
}

void PageFrame::beginRelativeDrag(Control& control, PageCursor shown) {
    m_captured = &control;
    m_pageCaptured = false;
    m_relativeDrag = true;
    m_window.beginRelativeDrag(shown);
}

void PageFrame::releaseMouse() {
    m_captured = nullptr;
    m_pageCaptured = false;
    giveMouseBack();
}

void PageFrame::pasteInto(Control& control) {
    m_window.readClipboard([this, life = std::weak_ptr(m_life), &control](const std::string& text) {
        if (life.expired() || m_focus != &control) return;
        control.paste(text);
        m_typed = true;
    });
}

void PageFrame::focus(Control* control) {
    if (control == m_focus) return;
    Control* const before = std::exchange(m_focus, control);
    m_typed = false;
    if (before) before->handle({ControlEventKind::focusOut, {}});
    m_window.takeFocus(m_focus != nullptr);
    if (m_focus) m_focus->handle({ControlEventKind::focusIn, {}});
}

void PageFrame::postCommand(int id) {
    post([this, id] { command(id); });
}

void PageFrame::postScroll(Control& knob, int, int) {
    post([this, &knob] { scrolled(knob); });
}

void PageFrame::postEditReturn(int id) {
    post([this, id] { editReturned(id); });
}

void PageFrame::invalidate(const Rect& area) {
    const Rect inside = intersection(area, m_screen.bounds());
    if (inside.isEmpty()) return;
    const auto within = [](const Rect& inner, const Rect& outer) {
        return intersection(inner, outer) == inner;
    };
    if (std::ranges::any_of(m_invalid, [&](const Rect& other) { return within(inside, other); })) return;
    std::erase_if(m_invalid, [&](const Rect& other) { return within(other, inside); });
    m_invalid.push_back(inside);
    wakeUp();
}

bool PageFrame::RectVisible(const Rect& area) const {
    return meetsAny(m_painting, area);
}

void PageFrame::paint() {
    if (!canPaint() || (m_invalid.empty() && m_stale.empty())) return;
    std::vector<Rect> stale = std::exchange(m_stale, {});
    if (!m_invalid.empty()) {
        paintInvalid();
        stale.insert(stale.end(), m_painting.begin(), m_painting.end());
    }
    compose(stale);
}

void PageFrame::paintInvalid() {
    m_painting = std::exchange(m_invalid, {});
    guarded([&] { paintPage(*m_makeSurface(m_backBuffer)); });
    // The back buffer may be unfinished outside of what was out of date.
    for (const Rect& area : m_painting) copyPixels(m_backBuffer, m_page, area);
}

void PageFrame::compose(const std::vector<Rect>& stale) {
    Rect changed;
    const auto cover = [&](const Rect& area) { changed = around(changed, area); };
    for (const Rect& area : stale) {
        const Rect inside = intersection(area, m_screen.bounds());
        copyPixels(m_page, m_screen, inside);
        cover(inside);
    }
    const std::unique_ptr<Surface> surface = m_makeSurface(m_screen);
    for (Control* control : m_controls) {
        if (!meetsAny(stale, control->place())) continue;
        control->paint(*surface);
        cover(control->place());
    }
    for (Control* control : m_controls) {
        if (!meet(control->overlay(), changed)) continue;
        control->paintOverlay(*surface);
        cover(control->overlay());
    }
    m_window.present(m_screen, intersection(changed, m_screen.bounds()));
}

}  // namespace marnoth
