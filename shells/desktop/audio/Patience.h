#pragma once

#include <chrono>
#include <exception>
#include <future>
#include <optional>
#include <thread>
#include <utility>

namespace marnoth {

/// What `task` gives, on a thread of its own, which is left behind when it takes longer. Nothing then, or
/// when it fails. What it uses has to live as long as it does.
template <class Task>
auto within(std::chrono::milliseconds patience, Task task) -> std::optional<decltype(task())> try {
    std::packaged_task<decltype(task())()> work(std::move(task));
    auto result = work.get_future();
    std::thread(std::move(work)).detach();
    if (result.wait_for(patience) == std::future_status::ready) return result.get();
    return {};
} catch (const std::exception&) {
    return {};
}

}  // namespace marnoth
