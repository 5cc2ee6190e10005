#pragma once

#include <RtAudio.h>

#include <memory>
#include <string>

#include "shells/desktop/audio/AudioSystem.h"
#include "shells/desktop/audio/StreamHealth.h"

namespace marnoth {

/// The mix on a device of PulseAudio's or ALSA's. Dropouts are those that RtAudio tells: PulseAudio's it
/// never does.
class RtAudioDriver final : public AudioDriver {
public:
    /// `audio` knows the device by `number`; `client` outlives this. Throws `std::runtime_error`, with a
    /// sentence for the user, when the device can't be had so.
    RtAudioDriver(std::unique_ptr<RtAudio> audio, unsigned number, std::shared_ptr<const AudioDevice> device,
                  const AudioWish& wish, AudioClient& client);
    ~RtAudioDriver() override;

    std::string name() const override { return device_->name; }
    std::uint32_t rate() const override { return rate_; }
    std::int32_t frames() const override { return static_cast<std::int32_t>(frames_); }
    std::string trouble() const override;

private:
    void openStream(unsigned number);
    void close();
    int play(float* output, unsigned frames, bool isUnderrun);

    const std::unique_ptr<RtAudio> audio_;
    AudioClient& client_;
    const std::shared_ptr<const AudioDevice> device_;
    const std::uint32_t rate_;
    unsigned frames_;
    StreamHealth health_;
};

}  // namespace marnoth
