#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
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

/// What a call of the work waits in: nobody goes on before `most` threads are there.
class Meeting {
public:
    explicit Meeting(std::size_t most) : most_(most) {}

    /// The second thread and later ones may have to be started first: that takes a busy machine a moment.
    /// Once somebody has waited in vain, nobody waits any more.
    void come() {
        std::unique_lock held(lock_);
        threads_.insert(std::this_thread::get_id());
        change_.notify_all();
        if (!change_.wait_for(held, patience_, [this] { return threads_.size() >= most_; })) patience_ = {};
    }
    const std::set<std::thread::id>& threads() const { return threads_; }

private:
    const std::size_t most_;
    std::chrono::seconds patience_{20};
    std::mutex lock_;
    std::condition_variable change_;
    std::set<std::thread::id> threads_;
};

TEST(Parallel, HasAThreadForEachProcessorAtATimeFourAtMostAndThisIsOneOfThem) {
    const std::size_t expected = std::clamp(std::thread::hardware_concurrency(), 1u, 4u);
    Meeting meeting(expected);
    forEachInParallel(64, [&](std::size_t) {
        meeting.come();
        // Time for a thread too many to come as well.
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    });
    EXPECT_EQ(meeting.threads().size(), expected);
    EXPECT_TRUE(meeting.threads().contains(std::this_thread::get_id()));
}

TEST(Parallel, TakesNoMoreThreadsThanThereIsWork) {
    Meeting meeting(1);
    forEachInParallel(1, [&](std::size_t) { meeting.come(); });
    EXPECT_EQ(meeting.threads(), std::set{std::this_thread::get_id()});
}

TEST(Parallel, EverythingIsDoneAndSeenAfterwards) {
    std::vector<std::vector<int>> made(100);
    forEachInParallel(made.size(), [&](std::size_t i) { made[i].assign(i, 7); });
    for (std::size_t i = 0; i < made.size(); ++i) EXPECT_EQ(made[i], std::vector<int>(i, 7));
}

}  // namespace
}  // namespace marnoth::test::parallel_test
