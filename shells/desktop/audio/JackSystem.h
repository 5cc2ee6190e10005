#pragma once

#include "shells/desktop/audio/AudioSystem.h"
#include "shells/desktop/audio/JackClient.h"

namespace marnoth {

/// JACK, which PipeWire speaks too. Its devices are the clients that have speakers.
class JackSystem final : public AudioSystem {
public:
    /// `jack` outlives it; null where JACK isn't installed.
    explicit JackSystem(const JackLibrary* jack = JackLibrary::find());

    std::string name() const override { return "JACK"; }
    std::vector<AudioDevice> devices() override;
    std::string missing() override;
    std::vector<std::string> midiPorts() override;
    std::unique_ptr<AudioDriver> open(const AudioWish& wish, AudioClient& client) override;

private:
    /// The client that plays, else one to ask with; null without a server.
    std::shared_ptr<const JackClient> client();

    const JackLibrary* const jack_;
    std::weak_ptr<const JackClient> playing_;
};

}  // namespace marnoth
