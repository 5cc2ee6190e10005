#pragma once

#include "platform/drawing/Geometry.h"
#include "platform/drawing/PageWindow.h"

namespace marnoth {

/// Something that the left button takes hold of: open from its press to its release. An exception of the
/// engine may end any of these half-way. The page's thread.
class Gesture {
public:
    virtual ~Gesture() = default;

    /// Whether there was something to take hold of. It may be that a press is all, and nothing stays open.
    virtual bool press(Point at, Modifiers held) = 0;
    /// While it is open.
    virtual void move(Point, Modifiers) {}
    /// While it is open: it has its effect, and is open no more.
    virtual void release(Point at, Modifiers held) = 0;
    /// It ends without effect, if it is open: its release won't come.
    virtual void drop() { open_ = false; }

    bool isOpen() const { return open_; }

protected:
    void setOpen(bool open) { open_ = open; }

private:
    bool open_ = false;
};

}  // namespace marnoth
