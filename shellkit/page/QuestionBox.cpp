#include "shellkit/page/QuestionBox.h"

#include <string>

#include "platform/drawing/Font.h"
#include "platform/drawing/Surface.h"
#include "shellkit/page/QuestionPicture.h"

namespace marnoth {

namespace {

constexpr int kTab = 9;

}  // namespace

void QuestionBox::open(const ShownQuestion& question, const Rect& page) {
    question_ = question;
    layout_ = layOut(question_, font_, page);
    lit_ = isMenu() ? -1 : 0;
    pressed_ = -1;
    moved_ = false;
    open_ = true;
}

void QuestionBox::close() {
    open_ = false;
    question_ = {};
    layout_ = {};
}

Rect QuestionBox::place() const {
    if (!open_) return {};
    const Rect& box = layout_.box;
    return {box.left - kShadowBefore, box.top - kShadowBefore, box.right + kShadowBehind,
            box.bottom + kShadowBehind};
}

void QuestionBox::paint(Surface& surface) {
    if (open_) drawQuestion(surface, question_, layout_, font_, lit_);
}

int QuestionBox::choiceAt(Point at) const {
    for (int choice = 0; choice < choices(); ++choice)
        if (layout_.choices[static_cast<std::size_t>(choice)].contains(at)) return choice;
    return -1;
}

std::optional<int> QuestionBox::answerOf(int choice) const {
    if (choice < 0) return {};
    return isMenu() ? question_.items[static_cast<std::size_t>(choice)].id : choice;
}

void QuestionBox::mouseMove(Point at) {
    if (!isMenu()) return;
    lit_ = choiceAt(at);
    moved_ = moved_ || lit_ >= 0;
}

std::optional<int> QuestionBox::leftDown(Point at) {
    if (isMenu() && !layout_.box.contains(at)) return kCancelled;
    pressed_ = choiceAt(at);
    if (pressed_ >= 0) lit_ = pressed_;
    return {};
}

std::optional<int> QuestionBox::leftUp(Point at) {
    const int here = choiceAt(at);
    const bool isChosen = isMenu() ? here == pressed_ || moved_ : here == pressed_;
    pressed_ = -1;
    return isChosen ? answerOf(here) : std::nullopt;
}

void QuestionBox::step(int by) {
    const int from = lit_ < 0 && by < 0 ? 0 : lit_;
    if (choices() > 0) lit_ = (from + by + choices()) % choices();
}

std::optional<int> QuestionBox::letter(int key) const {
    for (int button = 0; button < static_cast<int>(question_.buttons.size()); ++button)
        if (question_.buttons[static_cast<std::size_t>(button)].front() == key) return button;
    return {};
}

std::optional<int> QuestionBox::keyDown(int key, Modifiers held) {
    switch (key) {
        case kKeyEscape:
            return kCancelled;
        case kKeyReturn:
        case kKeySpace:
            return answerOf(lit_);
        case kTab:
            step(held.shift ? -1 : 1);
            return {};
        case kKeyRight:
        case kKeyDown:
            step(1);
            return {};
        case kKeyLeft:
        case kKeyUp:
            step(-1);
            return {};
        default:
            return letter(key);
    }
}

}  // namespace marnoth
