#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "editor/controls/PlugInFilterControl.h"
#include "platform/drawing/Font.h"
#include "platform/drawing/HeadlessWindow.h"

namespace marnoth::test {

/// A face with every character six pixels wide and twelve high.
class FixedFont final : public Font {
public:
    static constexpr int kWidth = 6;

    int lineHeight() const override { return 12; }
    const Glyph& glyph(char32_t) override { return glyph_; }

private:
    Glyph glyph_{0, 0, 0, 0, kWidth, {}};
};

/// The page that controls stand on, without anything else: routes events as a window does, carries out what
/// controls post after the event that posted it, and writes down what it hears. Controls are not owned.
class TestPage final : public ControlParent, public PageEvents, public CPlugInFilterCallback {
public:
    TestPage() { screen.setPage(this); }

    HeadlessWindow screen;
    std::vector<Control*> controls;
    std::vector<std::string> heard;  ///< in the order of time: "command 1024", "scroll 1093 5 50", ...
    std::vector<std::string> seenByCallback;  ///< "toggle-id leftUp x,y", "id key 46", ...
    std::function<void(int)> onCommand = [](int) {};
    std::function<void(int)> onEditDone = [](int) {};
    bool consumeKeys = true;
    std::vector<Rect> overlaysChanged;
    int repaints = 0;

    std::vector<std::string> take() { return std::exchange(heard, {}); }
    bool captured() const { return captured_ != nullptr; }
    Control* focused() const { return focused_; }

    PageWindow& window() override { return screen; }
    void invalidateControl(const Control&) override { ++repaints; }
    void invalidateOverlay(const Rect& area) override { overlaysChanged.push_back(area); }
    void captureMouse(Control& control) override { captured_ = &control; }
    void beginRelativeDrag(Control& control, PageCursor shown) override {
        captured_ = &control;
        screen.beginRelativeDrag(shown);
    }
    void releaseMouse() override {
        captured_ = nullptr;
        screen.endRelativeDrag();
    }
    void pasteInto(Control& control) override {
        screen.readClipboard([&](const std::string& text) { control.paste(text); });
    }
    void focus(Control* control) override {
        if (control == focused_) return;
        Control* old = std::exchange(focused_, control);
        if (old) old->handle({ControlEventKind::focusOut, {}});
        if (control) control->handle({ControlEventKind::focusIn, {}});
    }
    bool hasFocus(const Control& control) const override { return focused_ == &control; }
    void postCommand(int id) override {
        post([this, id] {
            heard.push_back("command " + std::to_string(id));
            onCommand(id);
        });
    }
    void postScroll(Control& knob, int code, int value) override {
        post([this, line = "scroll " + std::to_string(knob.id()) + " " + std::to_string(code) + " " +
                           std::to_string(value)] { heard.push_back(line); });
    }
    void postEditReturn(int id) override {
        post([this, id] {
            heard.push_back("edit return " + std::to_string(id));
            onEditDone(id);
        });
    }
    void postComboReturn(int id) override {
        post([this, id] { heard.push_back("combo return " + std::to_string(id)); });
    }
    void editLeft(int id) override {
        heard.push_back("edit left " + std::to_string(id));
        onEditDone(id);
    }
    void comboLeft(int id) override { heard.push_back("combo left " + std::to_string(id)); }
    void comboClosed(int id) override { heard.push_back("combo closed " + std::to_string(id)); }

    void paint() override {}
    void timer() override {}
    void leftDown(Point at, Modifiers) override { mouse(ControlEventKind::leftDown, at, "down"); }
    void leftUp(Point at, Modifiers) override { mouse(ControlEventKind::leftUp, at, "up"); }
    void doubleClick(Point at, Modifiers) override { mouse(ControlEventKind::doubleClick, at, "double"); }
    void mouseMove(Point at, Modifiers) override { mouse(ControlEventKind::mouseMove, at, "move"); }
    void relativeMove(Point distance, Modifiers) override {
        captured_->handle({ControlEventKind::relativeMove, distance});
        drain();
    }
    void wheel(Point at, WheelAxis, int steps, Modifiers) override {
        if (Control* target = under(at)) target->handle({ControlEventKind::wheel, {}, 0, 0, {}, steps});
        drain();
    }
    void rightDown(Point, Modifiers) override {}
    void contextMenu(Point, Modifiers) override {}
    bool keyDown(int key, Modifiers held) override {
        return send({ControlEventKind::keyDown, {}, key, 0, held});
    }
    void keyUp(int key, Modifiers held) override { send({ControlEventKind::keyUp, {}, key, 0, held}); }
    void character(char32_t character, Modifiers held) override {
        send({ControlEventKind::character, {}, 0, character, held});
    }
    void focusLost() override { focus(nullptr); }
    void captureLost() override { captured_ = nullptr; }
    DropEffect dragEnter(bool) override { return DropEffect::none; }
    DropEffect dragOver(Point) override { return DropEffect::none; }
    void dragLeave() override {}
    DropEffect drop(Point, std::optional<std::span<const std::string>>) override { return DropEffect::none; }

    bool OnControlMessage(Control& control, const ControlEvent& event, int* result) override {
        const std::string who = std::to_string(control.id());
        switch (event.kind) {
            case ControlEventKind::leftUp:
                seenByCallback.push_back(who + " leftUp " +
                                         std::to_string(control.place().left + event.at.x) + "," +
                                         std::to_string(control.place().top + event.at.y));
                return false;
            case ControlEventKind::leftDown:
                seenByCallback.push_back(who + " leftDown");
                return false;
            case ControlEventKind::keyDown:
                seenByCallback.push_back(who + " key " + std::to_string(event.key));
                return consumeKeys;
            case ControlEventKind::queryKeys:
                *result = kAllKeys;
                return true;
            default:
                return false;
        }
    }

private:
    void post(std::function<void()> what) { posted_.push_back(std::move(what)); }
    void drain() {
        while (!posted_.empty())
            for (const auto& what : std::exchange(posted_, {})) what();
    }
    Control* under(Point at) const {
        for (Control* control : controls)
            if (control->takesMouse() && control->place().contains(at)) return control;
        return nullptr;
    }
    void mouse(ControlEventKind kind, Point at, const std::string& name) {
        Control* target = captured_ ? captured_ : under(at);
        if (target)
            target->handle({kind, {at.x - target->place().left, at.y - target->place().top}});
        else
            heard.push_back("page " + name);
        drain();
    }
    bool send(const ControlEvent& event) {
        const bool done = focused_ && focused_->handle(event);
        drain();
        return done;
    }

    Control* captured_ = nullptr;
    Control* focused_ = nullptr;
    std::vector<std::function<void()>> posted_;
};

using Heard = std::vector<std::string>;

}  // namespace marnoth::test
