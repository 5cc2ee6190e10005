#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <thread>
#include <utility>

namespace marnoth::test {

/// A thread that does something over and over, with a number from 0 on, until its time is over.
class Busy {
public:
    explicit Busy(std::function<void(int)> work)
        : thread_([this, work = std::move(work)] {
              while (!done_) {
                  work(rounds_++);
                  std::this_thread::sleep_for(kRest);
              }
          }) {}
    /// How often it did it.
    int finish() {
        done_ = true;
        thread_.join();
        return rounds_;
    }
    /// So far.
    int rounds() const { return rounds_; }

private:
    /// Whoever never rests would keep the lock from the blocks.
    static constexpr std::chrono::microseconds kRest{50};

    std::atomic<bool> done_ = false;
    std::atomic<int> rounds_ = 0;
    std::thread thread_;
};

}  // namespace marnoth::test
