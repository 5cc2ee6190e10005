#pragma once

#include <algorithm>
#include <cmath>

namespace marnoth {

/// How many pixels of the screen a pixel of the page has where everything else is enlarged by `factor`: 1 to
/// 8, three quarters of a step round up. What can't be a factor counts as 1.
inline int wholeScale(double factor) {
    constexpr double kRoundsUp = 0.25;
    if (!(factor > 0)) return 1;
    return static_cast<int>(std::clamp(std::floor(factor + kRoundsUp), 1.0, 8.0));
}

}  // namespace marnoth
