#pragma once

#include <cstdint>
#include <memory>
#include <new>

#include "dsp/CrossfadeGains.h"
#include "engine/render/SelectGrains.h"

namespace marnoth {

/// Values of the one working buffer, which takes what is about to be faded.
inline constexpr std::int32_t kScratchValues = 96000;

/// Where the render of a pad keeps what it works with; taken in advance. `std::bad_alloc` without memory:
/// nothing would sound.
struct RenderSpace {
    RenderSpace() {
        if (events.GetCapacity() < kStreamEvents) throw std::bad_alloc();
    }

    StreamEvents events{kStreamEvents};  ///< the grains of one pad in one block
    std::unique_ptr<float[]> scratch = std::make_unique<float[]>(kScratchValues);  ///< for fades
    CrossfadeGains gains;
};

}  // namespace marnoth
