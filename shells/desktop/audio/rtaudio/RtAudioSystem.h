#pragma once

#include <RtAudio.h>

#include "shells/desktop/audio/AudioSystem.h"

namespace marnoth {

/// PulseAudio or ALSA through RtAudio. Its devices are those with two channels or more.
class RtAudioSystem final : public AudioSystem {
public:
    RtAudioSystem(RtAudio::Api api, std::string name) : api_(api), name_(std::move(name)) {}

    std::string name() const override { return name_; }
    std::vector<AudioDevice> devices() override;
    std::string missing() override;
    std::vector<std::string> midiPorts() override { return {}; }
    std::unique_ptr<AudioDriver> open(const AudioWish& wish, AudioClient& client) override;

private:
    const RtAudio::Api api_;
    const std::string name_;
    std::weak_ptr<const AudioDevice> playing_;  ///< nobody else sees it while we hold it
};

}  // namespace marnoth
