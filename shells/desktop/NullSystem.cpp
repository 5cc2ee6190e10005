#include "shells/desktop/NullSystem.h"

#include "shells/desktop/NullDriver.h"

namespace marnoth {

std::unique_ptr<AudioDriver> NullSystem::open(const AudioWish& wish, AudioClient& client) {
    return std::make_unique<NullDriver>(wish, client);
}

}  // namespace marnoth
