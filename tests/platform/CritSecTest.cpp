#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <thread>
#include <type_traits>

#include "platform/system/CritSec.h"

#ifdef __linux__
#include <sched.h>
#include <sys/syscall.h>
#include <unistd.h>
#endif

namespace marnoth::test::crit_sec_test {
namespace {

TEST(CritSec, ThreadsThatCountUnderItLoseNothing) {
    constexpr int kCounts = 50000;
    CCritSec lock;
    int counter = 0;
    const auto count = [&] {
        for (int i = 0; i < kCounts; ++i) {
            const CAutoLock hold(lock);
            ++counter;
        }
    };
    std::thread first(count), second(count);
    first.join();
    second.join();
    EXPECT_EQ(counter, 2 * kCounts);
}

TEST(CritSec, IsHeldUntilTheLastOfNestedScopesEnds) {
    CCritSec lock;
    std::atomic<bool> entered{false};
    lock.Lock();
    lock.Lock();
    std::thread other([&] {
        const CAutoLock hold(lock);
        entered = true;
    });
    lock.Unlock();
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_FALSE(entered);
    lock.Unlock();
    other.join();
    EXPECT_TRUE(entered);
}

#ifdef __linux__

pid_t ownThread() {
    return static_cast<pid_t>(syscall(SYS_gettid));
}

#if defined(__GLIBC__) && !defined(MARNOTH_SANITIZED)
/// The kernel can only lend priority to an owner that it knows: the word of such a lock holds the owner's
/// thread id (futex(2), "Priority-inheritance futexes"), that of another a mere 1. In this library the word
/// comes first.
TEST(CritSec, TellsTheKernelWhoHoldsIt) {
    static_assert(std::is_standard_layout_v<CCritSec>);
    CCritSec lock;
    const CAutoLock hold(lock);
    std::uint32_t word = 0;
    std::memcpy(&word, &lock, sizeof word);
    EXPECT_EQ(word, static_cast<std::uint32_t>(ownThread()));
}
#endif

/// As the kernel has it: below -1 for a thread that runs in real time, 20 for an ordinary one.
int priorityNow(pid_t thread) {
    std::ifstream file("/proc/self/task/" + std::to_string(thread) + "/stat");
    std::string line;
    std::getline(file, line);
    // The name of the program, in brackets, may hold blanks; the priority is the 16th value behind it.
    std::istringstream values(line.substr(line.rfind(')') + 1));
    std::string value;
    for (int i = 0; i < 16; ++i) values >> value;
    return std::stoi(value);
}

bool runInRealTime(int priority) {
    sched_param parameters{};
    parameters.sched_priority = priority;
    return sched_setscheduler(0, SCHED_FIFO, &parameters) == 0;
}

TEST(CritSec, LendsItsOwnerThePriorityOfWhoeverWaits) {
    constexpr int kUrgent = 5;
    CCritSec lock;
    lock.Lock();
    std::atomic<int> started{0};
    std::thread waiting([&] {
        const bool allowed = runInRealTime(kUrgent);
        started = allowed ? 1 : -1;
        if (!allowed) return;
        const CAutoLock hold(lock);
    });
    while (started == 0) std::this_thread::yield();
    const pid_t self = ownThread();
    // Until the other has come to the lock.
    for (int i = 0; started > 0 && i < 1000 && priorityNow(self) > -1 - kUrgent; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    const int lent = priorityNow(self);
    lock.Unlock();
    waiting.join();
    if (started < 0) GTEST_SKIP() << "threads in real time aren't allowed here";
    EXPECT_EQ(lent, -1 - kUrgent);
    EXPECT_GE(priorityNow(self), 0);
}

#endif

}  // namespace
}  // namespace marnoth::test::crit_sec_test
