#include "editor/gestures/BinFileDrag.h"

#include "editor/BoundEngine.h"
#include "editor/PageView.h"
#include "editor/loopbin/LoopBinPane.h"
#include "editor/padeditor/PadEditorPane.h"
#include "editor/pads/PadBlock.h"

namespace marnoth {

bool BinFileDrag::press(Point at, Modifiers) {
    if (!bin_.pressRow(at)) return false;
    setOpen(true);
    return true;
}

void BinFileDrag::release(Point at, Modifiers) {
    setOpen(false);
    editor_.invalidateView();
    auto pad = pads_.imageAt(at);
    if (!pad)
        if (const auto row = editor_.HitTestRow(at)) pad = row->pad;
    if (!pad) return;
    const BoundEngine& engine = page_.engine();
    engine.call(&IGrooveSampler::PushUndoState);
    if (FAILED(engine.call(&IGrooveSampler::LoadPadFromBin, *pad, page_.view().currentBinFile))) {
        engine.call(&IGrooveSampler::Undo);
        return;
    }
    page_.SelectPad(*pad);
    engine.requestRefresh();
}

}  // namespace marnoth
