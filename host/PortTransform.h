#pragma once

#include <algorithm>
#include <cstdint>

#include "seam/KvxInterfaces.h"

namespace marnoth {

/// What the instrument does with the events of one input port, as the host set it by notification. It is
/// applied when an event is drained, not when it is queued.
struct PortTransform {
    static constexpr std::uint8_t kNoForcedChannel = 255;

    std::uint8_t forcedChannel = kNoForcedChannel;  ///< the low four bits count
    std::uint8_t muteBits = 0;                      ///< any bit set: the port's events are dropped
    std::int8_t velocityOffsetA = 0;
    std::int8_t velocityOffsetB = 0;
    std::int8_t noteOffsetA = 0;
    std::int8_t noteOffsetB = 0;

    /// Kinds of `SynthNotification`; greater ones mean nothing.
    enum Kind : std::uint32_t { kChannel, kMute, kVelocityA, kVelocityB, kNoteA, kNoteB, kKinds };

    void set(const SynthNotification& record) {
        const auto offset = static_cast<std::int8_t>(record.value);
        switch (record.kind) {
            case kChannel:
                forcedChannel = record.value;
                break;
            case kMute:
                mute(record.mask, record.value);
                break;
            case kVelocityA:
                velocityOffsetA = offset;
                break;
            case kVelocityB:
                velocityOffsetB = offset;
                break;
            case kNoteA:
                noteOffsetA = offset;
                break;
            case kNoteB:
                noteOffsetB = offset;
                break;
            default:
                break;
        }
    }

    /// Takes up a mute event, then moves `event` as the port wants it. False when the port is mute and the
    /// event is to be dropped.
    bool apply(SynthEvent& event) {
        if (event.type == SynthEventType::mute) mute(event.channel, event.port);
        if (muteBits != 0) return false;
        if (event.type == SynthEventType::note) {
            event.note = moved(event.note, noteOffsetA, noteOffsetB);
            event.velocity = moved(event.velocity, velocityOffsetA, velocityOffsetB);
        }
        if (forcedChannel != kNoForcedChannel) event.channel = forcedChannel & 15;
        return true;
    }

private:
    void mute(std::uint8_t mask, std::uint8_t value) {
        muteBits = static_cast<std::uint8_t>((muteBits & ~mask) | value);
    }
    static std::uint8_t moved(std::uint8_t value, int a, int b) {
        return static_cast<std::uint8_t>(std::clamp(value + a + b, 0, 127));
    }
};
static_assert(sizeof(PortTransform) == 6);

}  // namespace marnoth
