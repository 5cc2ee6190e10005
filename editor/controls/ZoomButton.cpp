#include "editor/controls/ZoomButton.h"

namespace marnoth {

bool CZoomButton::handle(const ControlEvent& event) {
    if (isEnabled() && event.kind == ControlEventKind::doubleClick) return pressAtPointer();
    return CBitmapButton::handle(event);
}

}  // namespace marnoth
