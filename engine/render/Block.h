#pragma once

#include <cstdint>

#include "engine/model/PadBank.h"
#include "engine/render/BlockPins.h"
#include "engine/render/BlockTime.h"
#include "engine/render/KeyHistory.h"
#include "engine/render/PadLevels.h"
#include "engine/render/Semitones.h"
#include "engine/render/Voice.h"

namespace marnoth {

/// Lengths of the fades at the ends of a voice, in frames; 0 until there is a format.
struct FadeLengths {
    std::int64_t in = 0;   ///< 1 ms
    std::int64_t out = 0;  ///< 20 ms
};

/// One block, as every stage of its render is told it.
struct Block {
    const Model& model;  ///< that the block found at its start
    BlockTime& time;
    BlockPins& pins;
    const WAVEFORMATEX& format;  ///< of the audio, interleaved 32-bit float
    FadeLengths fades;
    bool transportRuns = false;
    const PadLevels* levels = nullptr;  ///< of the steady mode, else null
    const KeyHistory* keys = nullptr;   ///< of the steady mode, else null
    bool steady = false;                ///< the block is a piece of time in which nothing but its end happens
    std::int32_t activePads = 0;        ///< pads that sounded in the last block
    std::int32_t projectKey = 0;        ///< the host's key at the middle of the block; `kNoKey` none
    std::int64_t positionSkew = 0;      ///< 16.16 ticks by which the block is ahead of the host's position

    /// Takes a voice behind the block. In the steady mode it is where the block ends, whatever its start was
    /// rounded from, so that it ends at one frame wherever blocks do.
    void advance(VoiceState& voice) const;
    /// Where a fade-out that begins with this block ends, 16.16 ticks.
    std::int64_t fadeOutEnd() const { return fadeOutEndFrom(time.startSamples()); }
    /// Where one ends that begins at a frame.
    std::int64_t fadeOutEndFrom(std::int64_t frame) const { return time.toTicks(plus(fades.out, frame)); }
};

}  // namespace marnoth
