#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>
#include <string>
#include <utility>

namespace marnoth {

/// What the pages of an instance have in common, and what stays of them while none is open: how the last one
/// that was used was left, as a text which only pages can read. Any thread but the one that renders.
class PageMemory {
public:
    /// Empty for a page as it is at first.
    std::string view() const {
        const std::lock_guard lock(mutex_);
        return view_;
    }
    /// A page's, after what its user did. Nothing where a state has come that the page hasn't shown yet:
    /// `shown` is what `restored` was for what it shows.
    void keep(std::string view, std::uint64_t shown) {
        const std::lock_guard lock(mutex_);
        if (shown == restored_) view_ = std::move(view);
    }
    /// A state's, with which the whole project has changed.
    void restore(std::string view) {
        const std::lock_guard lock(mutex_);
        view_ = std::move(view);
        ++restored_;
    }
    /// How often that was.
    std::uint64_t restored() const { return restored_; }

    /// Changes that the host has automated, as `PadParameters` counts them; the thread that renders tells
    /// them.
    std::atomic<std::uint64_t> automated = 0;
    /// How often pages have changed something.
    std::atomic<std::uint64_t> edited = 0;

private:
    mutable std::mutex mutex_;
    std::string view_;
    std::atomic<std::uint64_t> restored_ = 0;
};

}  // namespace marnoth
