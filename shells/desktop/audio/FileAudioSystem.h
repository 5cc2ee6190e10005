#pragma once

#include <set>
#include <string>

#include "shells/desktop/audio/AudioSystem.h"

namespace marnoth {

/// Sound that goes into a WAV file, whose name is the device. A file is written once: whatever ended it, its
/// take stays.
class FileAudioSystem final : public AudioSystem {
public:
    std::string name() const override { return "File"; }
    bool needsDevice() const override { return true; }
    std::vector<AudioDevice> devices() override { return {}; }
    std::vector<std::string> midiPorts() override { return {}; }
    std::unique_ptr<AudioDriver> open(const AudioWish& wish, AudioClient& client) override;

private:
    std::set<std::string> written_;
};

}  // namespace marnoth
