#pragma once

#include <cstdlib>

#include "platform/drawing/Geometry.h"

namespace marnoth {

/// Makes distances of the places at which the mouse is seen while the window puts it back again and again to
/// where it was pressed, so that no edge of the screen sets a limit. Where it can't be put back, the
/// distances go from one place to the next. Pixels of the screen.
class RelativeMotion {
public:
    struct Step {
        Point distance;
        bool putBack = false;  ///< the window should put the mouse back to `home` now
    };

    void begin(Point home) {
        home_ = last_ = home;
        canPutBack_ = true;
        isBack_ = true;
    }
    Point home() const { return home_; }
    /// The mouse is at `at`. `behindReturn`: the server saw it there after it was put back the last time.
    Step moved(Point at, bool behindReturn) {
        if (!isBack_ && behindReturn) arrive(at);
        const Step step{{at.x - last_.x, at.y - last_.y},
                        canPutBack_ && isBack_ && distance(at, home_) >= kReach};
        last_ = at;
        if (step.putBack) isBack_ = false;
        return step;
    }

private:
    /// How far the mouse goes before it is put back: less often is less work.
    static constexpr int kReach = 32;

    static int distance(Point a, Point b) { return std::abs(a.x - b.x) + std::abs(a.y - b.y); }
    /// The first place behind a return is near home, or the return hasn't worked.
    void arrive(Point at) {
        isBack_ = true;
        canPutBack_ = distance(at, home_) <= distance(at, last_);
        if (canPutBack_) last_ = home_;
    }

    Point home_;
    Point last_;
    bool canPutBack_ = true;
    bool isBack_ = true;  ///< since it was put back the last time
};

}  // namespace marnoth
