#pragma once

#include <optional>
#include <utility>

#include "platform/drawing/PageWindow.h"
#include "platform/windows/PageCursors.h"

namespace marnoth {

/// What a window does with the mouse: capture, drags without a limit, where the pointer may be and what it
/// looks like. Null for a window does nothing. One thread.
class PointerHold {
public:
    explicit PointerHold(CursorPictures pictures) : cursors_(std::move(pictures)) {}

    /// The mouse's messages go to `window`.
    void capture(HWND window);
    /// No longer; a relative drag ends.
    void release(HWND window);
    /// True when the capture that was taken has gone to another window.
    bool lost();
    bool isCaptured() const { return captured_; }

    /// Captures. The pointer stays where it is, but for the room that it needs at an edge of the screen.
    void beginRelative(HWND window, PageCursor shown);
    void endRelative(HWND window) {
        if (drag_) release(window);
    }
    bool isRelative() const { return drag_.has_value(); }
    /// How far the pointer went since the question before, in a relative drag.
    Point distance();

    /// In pixels of `window`; nothing lets the pointer go.
    void confine(HWND window, std::optional<Rect> area);
    /// In pixels of `window`. In a relative drag that is where it began.
    Point place(HWND window) const;

    void setCursor(PageCursor cursor);
    void showCursor() { SetCursor(cursors_.of(drag_ ? drag_->shown : cursor_)); }
    /// The window goes.
    void letGo(HWND window);

private:
    struct RelativeDrag {
        POINT start;  ///< on the screen, and so the others
        POINT home;   ///< where each move begins
        POINT last;
        PageCursor shown;
    };

    void endDrag();

    PageCursors cursors_;
    PageCursor cursor_ = PageCursor::arrow;
    std::optional<RelativeDrag> drag_;
    bool captured_ = false;
    bool confined_ = false;
};

}  // namespace marnoth
