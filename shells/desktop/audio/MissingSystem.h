#pragma once

#include <stdexcept>
#include <string>
#include <utility>

#include "shells/desktop/audio/AudioSystem.h"

namespace marnoth {

/// An audio system that this machine lacks what it needs for: it says so.
class MissingSystem final : public AudioSystem {
public:
    /// `why` is a sentence for the user.
    MissingSystem(std::string name, std::string why) : name_(std::move(name)), why_(std::move(why)) {}

    std::string name() const override { return name_; }
    std::vector<AudioDevice> devices() override { return {}; }
    std::string missing() override { return why_; }
    std::vector<std::string> midiPorts() override { return {}; }
    std::unique_ptr<AudioDriver> open(const AudioWish& /*wish*/, AudioClient& /*client*/) override {
        throw std::runtime_error(why_);
    }

private:
    const std::string name_;
    const std::string why_;
};

}  // namespace marnoth
