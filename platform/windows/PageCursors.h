#pragma once

#include <map>
#include <utility>

#include "platform/drawing/CursorPicture.h"
#include "platform/windows/SystemHandle.h"

namespace marnoth {

/// The pictures of the pointer: those that the page brings along, each made when it is first wanted and gone
/// with this, when it must not be shown any more; the others are the system's.
class PageCursors {
public:
    /// Without pictures all are the system's.
    explicit PageCursors(CursorPictures pictures = {}) : pictures_(std::move(pictures)) {}

    /// Null for `none`.
    HCURSOR of(PageCursor cursor);

private:
    CursorPictures pictures_;
    std::map<PageCursor, CursorHandle> made_;
};

}  // namespace marnoth
