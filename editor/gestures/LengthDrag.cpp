#include "editor/gestures/LengthDrag.h"

#include "editor/BoundEngine.h"
#include "editor/PageLayout.h"
#include "editor/padeditor/PadEditorPane.h"

namespace marnoth {

bool LengthDrag::press(Point at, Modifiers) {
    const auto hit = editor_.hitTestMark(at);
    if (!hit) return false;
    setOpen(true);
    pad_ = hit->pad;
    pressX_ = currentX_ = at.x;
    grabX_ = at.x - hit->x;
    return true;
}

void LengthDrag::move(Point at, Modifiers) {
    window_.confinePointer(kPadPlot);
    currentX_ = editor_.snappedX(at.x, grabX_);
    editor_.invalidateAll();
}

void LengthDrag::release(Point at, Modifiers) {
    setOpen(false);
    page_.engine().call(&IGrooveSampler::PushUndoState);
    page_.engine().call(&IGrooveSampler::SetLoopLength, kPadLoop, pad_, editor_.snappedTick(at.x, grabX_));
    editor_.invalidateAll();
}

}  // namespace marnoth
