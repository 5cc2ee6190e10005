#pragma once

#include <chrono>
#include <optional>

namespace marnoth {

/// Tells a keyboard that is lost from one that is away for a moment: a toolkit that has our window inside its
/// own takes the keyboard away at each press and gives it back some milliseconds later, and a page that heard
/// of it would close the edit in which its user types.
///
/// A real window tells it of every move, looks again at `deadline`, and tells its page `focusLost` when
/// `isLost` says so. The clock is the caller's. One thread.
class FocusPatience {
public:
    using Time = std::chrono::steady_clock::time_point;
    static constexpr std::chrono::milliseconds kPatience{100};

    /// The keyboard went elsewhere. Said again while it is away it changes nothing.
    void left(Time now) {
        if (!deadline_ && !lost_) deadline_ = now + kPatience;
    }
    /// It is here, again or for the first time.
    void returned() {
        deadline_.reset();
        lost_ = false;
    }
    /// When to ask `isLost`; nothing while there is nothing to wait for.
    std::optional<Time> deadline() const { return deadline_; }
    /// True once for each loss: when the keyboard has been away for the whole time.
    bool isLost(Time now) {
        if (!deadline_ || now < *deadline_) return false;
        deadline_.reset();
        lost_ = true;
        return true;
    }

private:
    std::optional<Time> deadline_;
    bool lost_ = false;  ///< and told
};

}  // namespace marnoth
