#pragma once

#include <X11/Xlib.h>

namespace marnoth::test {

/// Tells who asked for a selection that it lies in the property that they named. The display is sent all.
inline void answerSelection(::Display* display, const XSelectionRequestEvent& request) {
    XEvent told{};
    told.xselection.type = SelectionNotify;
    told.xselection.requestor = request.requestor;
    told.xselection.selection = request.selection;
    told.xselection.target = request.target;
    told.xselection.property = request.property;
    told.xselection.time = request.time;
    constexpr int kNotFurther = 0;
    XSendEvent(display, request.requestor, kNotFurther, NoEventMask, &told);
    XFlush(display);
}

}  // namespace marnoth::test
