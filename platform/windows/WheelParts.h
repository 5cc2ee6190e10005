#pragma once

namespace marnoth {

/// Adds up the parts of clicks in which finer wheels turn. Turning back begins anew.
class WheelParts {
public:
    static constexpr int kClick = 120;  ///< parts

    /// The whole clicks that are full with `parts`.
    int take(int parts) {
        if ((parts < 0) != (sum_ < 0)) sum_ = 0;
        sum_ += parts;
        const int clicks = sum_ / kClick;
        sum_ %= kClick;
        return clicks;
    }

private:
    int sum_ = 0;
};

}  // namespace marnoth
