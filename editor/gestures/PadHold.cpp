#include "editor/gestures/PadHold.h"

#include <utility>

#include "editor/BoundEngine.h"
#include "editor/PageView.h"
#include "editor/pads/PadBlock.h"

namespace marnoth {

bool PadHold::press(Point at, Modifiers) {
    const auto hit = pads_.HitTestPad(at);
    if (!hit) return false;
    if (hit->onImage) {
        setOpen(true);
        held_ = hit->pad;
        page_.engine().call(&IGrooveSampler::AuditionPad, hit->pad, -1);
    }
    if (hit->pad != page_.view().currentPad) page_.SelectPad(hit->pad);
    return true;
}

void PadHold::release(Point at, Modifiers) {
    const auto pad = pads_.imageAt(at);
    if (!pad) return;
    page_.engine().call(&IGrooveSampler::StopPad, *pad);
    if (*pad != page_.view().currentPad) page_.SelectPad(*pad);
}

void PadHold::drop() {
    // Nothing else stops it: a loop would play on.
    if (isOpen()) page_.engine().call(&IGrooveSampler::StopPad, held_);
    setOpen(false);
}

}  // namespace marnoth
