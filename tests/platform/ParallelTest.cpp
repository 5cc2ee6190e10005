#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <mutex>
#include <set>
#include <thread>
#include <vector>

#include "platform/system/Parallel.h"

namespace marnoth::test::parallel_test {
namespace {

TEST(Parallel, CallsEachIndexOnce) {
    for (const std::size_t count : {0u, 1u, 2u, 1000u}) {
        std::vector<int> calls(count);
        forEachInParallel(count, [&](std::size_t i) { ++calls.at(i); });
        EXPECT_EQ(calls, std::vector<int>(count, 1));
    }
}

TEST(Parallel, TakesFourThreadsAtMostAndThisIsOneOfThem) {
    std::mutex lock;
    std::set<std::thread::id> threads;
    forEachInParallel(64, [&](std::size_t) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
        const std::lock_guard guard(lock);
        threads.insert(std::this_thread::get_id());
    });
    EXPECT_TRUE(threads.contains(std::this_thread::get_id()));
    EXPECT_LE(threads.size(), 4u);
    EXPECT_LE(threads.size(), std::max(std::thread::hardware_concurrency(), 1u));
}

TEST(Parallel, EverythingIsDoneAndSeenAfterwards) {
    std::vector<std::vector<int>> made(100);
    forEachInParallel(made.size(), [&](std::size_t i) { made[i].assign(i, 7); });
    for (std::size_t i = 0; i < made.size(); ++i) EXPECT_EQ(made[i], std::vector<int>(i, 7));
}

}  // namespace
}  // namespace marnoth::test::parallel_test
