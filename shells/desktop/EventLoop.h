#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <optional>

namespace marnoth {

/// Waits for what a window, dialogs and devices have to say, on one thread.
class EventLoop {
public:
    using Time = std::chrono::steady_clock::time_point;

    /// `ready` is called when `descriptor` can be read or has been closed, until `forget`.
    void watch(int descriptor, std::function<void()> ready) {
        watched_[descriptor] = {std::move(ready), false};
    }
    /// Of one that is watched: whether `ready` is also called when it can be written.
    void watchWriting(int descriptor, bool on);
    void forget(int descriptor) { watched_.erase(descriptor); }
    /// `then` is called once when `delay` is over, unless the number that this gives is handed to `stop`
    /// before.
    int after(std::chrono::milliseconds delay, std::function<void()> then);
    void stop(int timer) { timers_.erase(timer); }
    /// One round: waits until one of them is ready, or up to `deadline`, and calls who is.
    void wait(std::optional<Time> deadline);

private:
    struct Watched {
        std::function<void()> ready;
        bool writing = false;
    };
    struct Timer {
        Time when;
        std::function<void()> then;
    };

    void callTimers();
    std::optional<Time> firstOf(std::optional<Time> deadline) const;

    std::map<int, Watched> watched_;
    std::map<int, Timer> timers_;
    int lastTimer_ = 0;
};

}  // namespace marnoth
