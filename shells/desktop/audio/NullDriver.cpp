#include "shells/desktop/audio/NullDriver.h"

#include <chrono>
#include <stdexcept>

#include "shells/desktop/audio/RealTime.h"

namespace marnoth {

namespace {

constexpr std::uint32_t kUsualRate = 48000;
constexpr std::int32_t kUsualFrames = 512;

}  // namespace

NullDriver::NullDriver(const AudioWish& wish, AudioClient& client)
    : client_(client),
      rate_(wish.rate ? wish.rate : kUsualRate),
      frames_(wish.frames > 0 ? wish.frames : kUsualFrames) {
    if (!client_.prepare(rate_, frames_)) throw std::runtime_error("The instrument can't be started.");
    thread_ = std::thread([this] { run(); });
}

NullDriver::~NullDriver() {
    ends_ = true;
    thread_.join();
}

void NullDriver::run() {
    givePriority();
    using Clock = std::chrono::steady_clock;
    // What is behind by more isn't made up for, as after the machine slept.
    constexpr std::chrono::milliseconds kFarthestBehind{500};
    const auto period = std::chrono::nanoseconds(std::chrono::seconds(1)) * frames_ / rate_;
    auto next = Clock::now();
    while (!ends_) {
        client_.render(frames_, {});
        next += period;
        if (Clock::now() - next > kFarthestBehind) next = Clock::now();
        std::this_thread::sleep_until(next);
    }
}

}  // namespace marnoth
