#include "engine/render/BlockTime.h"

#include "platform/system/Overflow.h"

namespace marnoth {

void BlockTime::begin(std::int64_t start, std::int32_t frames) {
    samples_.forget();
    ticks_.forget();
    startSamples_ = start;
    startTicks_ = toTicks(start);
    lengthTicks_ = minus(toTicks(plus(start, frames)), startTicks_);
}

std::int64_t BlockTime::firstFrameFrom(std::int64_t ticks16) {
    const std::int64_t frame = toSamples(ticks16);
    if (toTicks(minus(frame, 1)) >= ticks16) return minus(frame, 1);
    return toTicks(frame) < ticks16 ? plus(frame, 1) : frame;
}

std::int64_t BlockTime::askSamples(std::int64_t ticks16) {
    return context_.TicksToSamples(ticks16);
}

std::int64_t BlockTime::askTicks(std::int64_t samples) {
    return context_.SamplesToTicks(samples);
}

}  // namespace marnoth
