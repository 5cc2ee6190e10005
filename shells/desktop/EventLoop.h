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
    void watch(int descriptor, std::function<void()> ready) { watched_[descriptor] = std::move(ready); }
    void forget(int descriptor) { watched_.erase(descriptor); }
    /// One round: waits until one of them is ready, or up to `deadline`, and calls who is.
    void wait(std::optional<Time> deadline);

private:
    std::map<int, std::function<void()>> watched_;
};

}  // namespace marnoth
