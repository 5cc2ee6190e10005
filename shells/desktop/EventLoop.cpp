#include "shells/desktop/EventLoop.h"

#include <poll.h>

#include <algorithm>
#include <vector>

namespace marnoth {

namespace {

/// Rounded up, so that a deadline has come when the wait is over.
int millisecondsTo(std::optional<EventLoop::Time> deadline) {
    if (!deadline) return -1;
    const auto rest = *deadline - std::chrono::steady_clock::now();
    const auto whole = std::chrono::ceil<std::chrono::milliseconds>(rest).count();
    return static_cast<int>(std::clamp<std::chrono::milliseconds::rep>(whole, 0, 60'000));
}

}  // namespace

void EventLoop::wait(std::optional<Time> deadline) {
    std::vector<pollfd> asked;
    for (const auto& [descriptor, ready] : watched_) asked.push_back({descriptor, POLLIN, 0});
    if (poll(asked.data(), asked.size(), millisecondsTo(deadline)) <= 0) return;
    for (const pollfd& one : asked) {
        if (one.revents == 0) continue;
        // Who was called before may have ended what this one was for.
        const auto found = watched_.find(one.fd);
        if (found == watched_.end()) continue;
        const std::function<void()> ready = found->second;
        ready();
    }
}

}  // namespace marnoth
