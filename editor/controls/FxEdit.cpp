#include "editor/controls/FxEdit.h"

#include "platform/drawing/PageWindow.h"

namespace marnoth {

void CFxEdit::setText(std::string_view text) {
    line_.setText(text);
    invalidate();
}

void CFxEdit::paint(Surface& surface) {
    line_.paint(surface, place(), parent().hasFocus(*this));
}

bool CFxEdit::changed(bool done) const {
    if (done) invalidate();
    return done;
}

void CFxEdit::press(int x) {
    selecting_ = true;
    parent().captureMouse(*this);
    if (parent().hasFocus(*this)) return line_.press(x);
    parent().focus(this);
    line_.pressKeeping(x);
}

bool CFxEdit::mouse(const ControlEvent& event) {
    switch (event.kind) {
        case ControlEventKind::leftDown:
            press(event.at.x);
            return true;
        case ControlEventKind::mouseMove:
            if (selecting_) line_.drag(event.at.x);
            return selecting_;
        case ControlEventKind::doubleClick:
            line_.selectAll();
            return true;
        case ControlEventKind::leftUp:
            if (selecting_) parent().releaseMouse();
            selecting_ = false;
            return true;
        case ControlEventKind::captureLost:
            selecting_ = false;
            return true;
        default:
            return false;
    }
}

void CFxEdit::paste(std::string_view text) {
    line_.paste(text);
    invalidate();
}

bool CFxEdit::key(const ControlEvent& event) {
    if (!EditLine::asksToPaste(event.key, event.held))
        return line_.key(event.key, event.held, parent().window());
    parent().pasteInto(*this);
    return true;
}

bool CFxEdit::keyboard(const ControlEvent& event) {
    switch (event.kind) {
        case ControlEventKind::keyDown:
            return key(event);
        case ControlEventKind::keyUp:
            if (event.key == kKeyReturn) parent().postEditReturn(id());
            return event.key == kKeyReturn;
        case ControlEventKind::character:
            return line_.insert(event.character);
        default:
            return false;
    }
}

bool CFxEdit::focusChange(bool entered) {
    if (entered) {
        line_.selectAll();
    } else {
        line_.rest();
        parent().editLeft(id());
    }
    return true;
}

bool CFxEdit::handle(const ControlEvent& event) {
    switch (event.kind) {
        case ControlEventKind::focusIn:
        case ControlEventKind::focusOut:
            return changed(focusChange(event.kind == ControlEventKind::focusIn));
        case ControlEventKind::keyDown:
        case ControlEventKind::keyUp:
        case ControlEventKind::character:
            return changed(keyboard(event));
        default:
            return changed(mouse(event));
    }
}

}  // namespace marnoth
