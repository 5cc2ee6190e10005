#include "platform/system/Parallel.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <new>
#include <system_error>
#include <thread>

namespace marnoth {
namespace {

constexpr std::size_t kMostHelpers = 3;

std::size_t helpersFor(std::size_t count) {
    const std::size_t processors = std::max(std::thread::hardware_concurrency(), 1u);
    return std::min({kMostHelpers, processors - 1, count > 0 ? count - 1 : 0});
}

/// Starts `thread`; without another thread, others do its work.
void tryToStart(std::thread& thread, const std::function<void()>& body) {
    try {
        thread = std::thread(body);
    } catch (const std::system_error&) {
    } catch (const std::bad_alloc&) {
    }
}

}  // namespace

void forEachInParallel(std::size_t count, const std::function<void(std::size_t)>& work) {
    std::atomic<std::size_t> next{0};
    // Made before the first thread runs: nothing may throw while one does.
    const std::function<void()> share = [&] {
        for (std::size_t i = next++; i < count; i = next++) work(i);
    };
    std::array<std::thread, kMostHelpers> helpers;
    const std::size_t wanted = helpersFor(count);
    for (std::size_t i = 0; i < wanted; ++i) tryToStart(helpers[i], share);
    share();
    for (std::thread& helper : helpers) {
        if (helper.joinable()) helper.join();
    }
}

}  // namespace marnoth
