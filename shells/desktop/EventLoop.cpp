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

void EventLoop::watchWriting(int descriptor, bool on) {
    if (const auto found = watched_.find(descriptor); found != watched_.end()) found->second.writing = on;
}

int EventLoop::after(std::chrono::milliseconds delay, std::function<void()> then) {
    timers_[++lastTimer_] = {Time::clock::now() + delay, std::move(then)};
    return lastTimer_;
}

std::optional<EventLoop::Time> EventLoop::firstOf(std::optional<Time> deadline) const {
    for (const auto& [number, timer] : timers_)
        if (!deadline || timer.when < *deadline) deadline = timer.when;
    return deadline;
}

void EventLoop::callTimers() {
    const Time now = Time::clock::now();
    std::vector<int> due;
    for (const auto& [number, timer] : timers_)
        if (timer.when <= now) due.push_back(number);
    for (const int number : due) {
        // Who was called before may have stopped it.
        auto timer = timers_.extract(number);
        if (timer) timer.mapped().then();
    }
}

void EventLoop::wait(std::optional<Time> deadline) {
    std::vector<pollfd> asked;
    for (const auto& [descriptor, watched] : watched_)
        asked.push_back({descriptor, static_cast<short>(watched.writing ? POLLIN | POLLOUT : POLLIN), 0});
    const int ready = poll(asked.data(), asked.size(), millisecondsTo(firstOf(deadline)));
    callTimers();
    if (ready <= 0) return;
    for (const pollfd& one : asked) {
        if (one.revents == 0) continue;
        // Who was called before may have ended what this one was for.
        const auto found = watched_.find(one.fd);
        if (found == watched_.end()) continue;
        const std::function<void()> call = found->second.ready;
        call();
    }
}

}  // namespace marnoth
