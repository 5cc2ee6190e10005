#include "shells/desktop/playing/Preview.h"

namespace marnoth {

bool Preview::prepare(std::uint32_t rate, std::int32_t mostFrames) {
    player_.prepare(rate);
    return instrument_.prepare(rate, mostFrames);
}

void Preview::render(std::int32_t frames, OutputPointers outputs) {
    instrument_.render(frames, outputs);
    player_.add(frames, outputs, level_.get());
}

}  // namespace marnoth
