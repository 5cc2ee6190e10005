#pragma once

#include <atomic>
#include <thread>

#include "shells/desktop/audio/AudioDriver.h"

namespace marnoth {

/// Sound that nobody hears, at the pace of the clock: for machines without an audio system, so that all else
/// can be used.
class NullDriver final : public AudioDriver {
public:
    /// 48000 and 512 where nothing is wished. `client` outlives it. Throws `std::runtime_error`, with a
    /// sentence for the user, when the client can't be prepared.
    NullDriver(const AudioWish& wish, AudioClient& client);
    ~NullDriver() override;

    std::string name() const override { return "No sound"; }
    std::uint32_t rate() const override { return rate_; }
    std::int32_t frames() const override { return frames_; }
    std::string trouble() const override { return {}; }

private:
    void run();

    AudioClient& client_;
    const std::uint32_t rate_;
    const std::int32_t frames_;
    std::atomic<bool> ends_ = false;
    std::thread thread_;
};

}  // namespace marnoth
