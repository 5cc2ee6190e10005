#pragma once

#include "shells/desktop/audio/AudioSystem.h"

namespace marnoth {

/// Sound that nobody hears: it can always be had.
class NullSystem final : public AudioSystem {
public:
    static constexpr const char* kName = "No sound";

    std::string name() const override { return kName; }
    std::vector<AudioDevice> devices() override { return {}; }
    std::vector<std::string> midiPorts() override { return {}; }
    std::unique_ptr<AudioDriver> open(const AudioWish& wish, AudioClient& client) override;
};

}  // namespace marnoth
