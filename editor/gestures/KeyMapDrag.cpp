#include "editor/gestures/KeyMapDrag.h"

#include "editor/PageLayout.h"
#include "editor/pads/PadPanel.h"
#include "editor/strip/StripPane.h"

namespace marnoth {

bool KeyMapDrag::press(Point at, Modifiers) {
    if (!strip_.showsKeyMapAt(at)) return false;
    setOpen(strip_.pressKeyMap(at));
    if (isOpen()) page_.invalidate(kStripPanel);
    return isOpen();
}

void KeyMapDrag::move(Point at, Modifiers held) {
    panel_.showKeyMapEntry(strip_.dragKeyMap(at, held.shift));
}

void KeyMapDrag::release(Point, Modifiers) {
    drop();
}

void KeyMapDrag::drop() {
    setOpen(false);
    strip_.endKeyMapDrag();
}

}  // namespace marnoth
