#pragma once

#include "platform/drawing/PageWindow.h"
#include "platform/windows/SystemHandle.h"

namespace marnoth {

/// The pictures of the pointer. Those of the system, and one of our own for what is carried about, made when
/// it is first wanted and gone with this: it must not be shown then.
class PageCursors {
public:
    /// Null for `none`, and when the system can't make ours.
    HCURSOR of(PageCursor cursor);

private:
    CursorHandle dragCopy_;
};

}  // namespace marnoth
