#pragma once

#include <atomic>
#include <cstdint>

#include "hostkit/LiveHost.h"
#include "shells/desktop/AudioDriver.h"

namespace marnoth {

/// The instrument as an audio system plays it. Another rate keeps the project: its files are read anew from
/// the project's own state.
class LiveInstrument final : public AudioClient {
public:
    /// `std::runtime_error` when there can be no instrument.
    LiveInstrument();

    LiveHost& host() { return host_; }
    /// How often something wasn't heard. Any thread.
    std::uint32_t dropouts() const { return dropouts_; }

    bool prepare(std::uint32_t rate, std::int32_t mostFrames) override;
    void midi(std::int32_t frame, std::uint8_t status, std::uint8_t data1, std::uint8_t data2) override;
    void render(std::int32_t frames, OutputPointers outputs) override;
    void dropout() override { ++dropouts_; }

private:
    LiveHost host_;
    std::uint32_t rate_ = 0;  ///< frames per second; 0 before it was prepared
    std::atomic<std::uint32_t> dropouts_ = 0;
};

}  // namespace marnoth
