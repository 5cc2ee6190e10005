#pragma once

#include <algorithm>
#include <atomic>
#include <chrono>
#include <thread>

#include "support/EngineHost.h"

#ifdef __linux__
#include <pthread.h>
#endif

namespace marnoth::bench {

enum class Pace {
    realTime,     ///< a block each time that one would be due
    tenfold,      ///< ten times as often, so that few holds of the lock slip by
    freeRunning,  ///< one behind the other, as in an export
};

/// A thread that renders blocks of 64 frames for as long as this lives, and notes how long it waited for the
/// engine's lock at most. Unless it runs freely it has
/// the priority of an audio thread, where the system allows that.
class RenderingThread {
public:
    static constexpr std::int32_t kFrames = 64;

    RenderingThread(test::EngineHost& host, Pace pace)
        : host_(host),
          pace_(pace),
          period_(std::chrono::nanoseconds(std::int64_t{kFrames} * 1000000000 / host.context.rate /
                                           (pace == Pace::tenfold ? 10 : 1))),
          values_(kFrames * 2 * host.context.pinIds.size()),
          pins_(host.context.pinIds.size()),
          thread_([this] { run(); }) {
        if (pace != Pace::freeRunning) raisePriority();
    }
    ~RenderingThread() { finish(); }
    RenderingThread(const RenderingThread&) = delete;
    RenderingThread& operator=(const RenderingThread&) = delete;

    /// Ends the thread. The longest wait in seconds.
    double finish() {
        stopping_ = true;
        if (thread_.joinable()) thread_.join();
        return longest_.count();
    }
    std::int64_t blocks() const { return blocks_; }

private:
    using Clock = std::chrono::steady_clock;

    void raisePriority() {
#ifdef __linux__
        sched_param priority{};
        priority.sched_priority = 10;
        pthread_setschedparam(thread_.native_handle(), SCHED_FIFO, &priority);
#endif
    }

    void run() {
        auto due = Clock::now();
        while (!stopping_) {
            renderBlock();
            due += period_;
            if (pace_ != Pace::freeRunning) std::this_thread::sleep_until(due);
        }
    }

    void renderBlock() {
        for (std::size_t i = 0; i < pins_.size(); ++i)
            pins_[i] = {kFrames, host_.context.pinIds[i], nullptr, values_.data() + i * kFrames * 2, 1};
        PinBuffer input{kFrames, 0, nullptr, nullptr, 1};
        const auto asked = Clock::now();
        const CAutoLock lock(host_.engine);
        longest_ = std::max<std::chrono::duration<double>>(longest_, Clock::now() - asked);
        host_.engine.ProcessBlock(host_.position, &input, pins_.data(),
                                  static_cast<std::int32_t>(pins_.size()), 0, &host_.notes);
        host_.position += kFrames;
        ++blocks_;
    }

    test::EngineHost& host_;
    Pace pace_;
    Clock::duration period_;
    std::vector<float> values_;
    std::vector<PinBuffer> pins_;
    std::chrono::duration<double> longest_{};
    std::atomic<std::int64_t> blocks_ = 0;
    std::atomic<bool> stopping_ = false;
    std::thread thread_;
};

}  // namespace marnoth::bench
