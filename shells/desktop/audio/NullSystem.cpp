#include "shells/desktop/audio/NullSystem.h"

#include "shells/desktop/audio/NullDriver.h"

namespace marnoth {

std::unique_ptr<AudioDriver> NullSystem::open(const AudioWish& wish, AudioClient& client) {
    return std::make_unique<NullDriver>(wish, client);
}

}  // namespace marnoth
