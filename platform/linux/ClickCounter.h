#pragma once

#include <cstdlib>
#include <optional>

#include "platform/drawing/Geometry.h"

namespace marnoth {

/// Tells a second press that makes a double click. Times are the display's, in milliseconds; they wrap
/// around.
class ClickCounter {
public:
    /// A press at `at`, pixels of the screen. The press behind a double click begins anew.
    bool isDouble(Point at, unsigned long time) {
        const bool isSecond = last_ && static_cast<unsigned>(time - last_->time) <= kLongest &&
                              std::abs(at.x - last_->at.x) <= kFarthest &&
                              std::abs(at.y - last_->at.y) <= kFarthest;
        last_ = isSecond ? std::nullopt : std::optional(Press{at, time});
        return isSecond;
    }

private:
    static constexpr unsigned kLongest = 400;
    static constexpr int kFarthest = 4;

    struct Press {
        Point at;
        unsigned long time = 0;
    };
    std::optional<Press> last_;
};

}  // namespace marnoth
