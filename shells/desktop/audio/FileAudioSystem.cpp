#include "shells/desktop/audio/FileAudioSystem.h"

#include <stdexcept>

#include "shells/desktop/audio/FileDriver.h"

namespace marnoth {

std::unique_ptr<AudioDriver> FileAudioSystem::open(const AudioWish& wish, AudioClient& client) {
    if (wish.device.empty())
        throw std::runtime_error("A file to play into needs a name, as in file:take.wav.");
    if (written_.contains(wish.device)) throw std::runtime_error(wish.device + " holds a take already.");
    auto driver = std::make_unique<FileDriver>(wish, client);
    written_.insert(wish.device);
    return driver;
}

}  // namespace marnoth
