#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "seam/IGrooveSampler.h"

namespace marnoth {

/// The fixed-size records of a project file. Everything is little-endian; bytes that carry nothing are
/// written as zeros and not read. The records hold values as they stand in the file, which may be anything:
/// whoever takes them over checks them.

inline constexpr std::size_t kTrackRecordBytes = 64;
inline constexpr std::size_t kGrainRecordBytes = 112;
inline constexpr std::size_t kKeyRecordBytes = 40;

/// The settings of a pad or a Loop Bin file.
struct TrackRecord {
    std::int64_t lengthSamples = 0;  ///< loop length, frames
    std::int64_t lengthTicks = 0;    ///< loop length, 16.16 ticks
    std::uint32_t looping = 0;
    std::uint32_t synced = 0;
    std::uint32_t mute = 0;
    std::uint32_t solo = 0;
    std::uint32_t oneShot = 0;
    std::uint32_t tailOn = 0;
    std::uint32_t followKey = 0;
    std::int32_t rootNote = 0;
    std::uint32_t output = 0;
    std::int32_t midiChannel = 0;
    float volume = 0;
    float pan = 0;
};

/// One grain of a pad or a Loop Bin file. Frames are at the rate of the file that it was cut from.
struct GrainRecord {
    std::int32_t binFile = 0;
    std::int32_t binGrain = 0;
    std::int64_t startTicks = 0;  ///< 16.16 ticks
    std::int64_t startSamples = 0;
    std::int64_t lengthTicks = 0;  ///< 16.16 ticks
    std::int64_t lengthSamples = 0;
    std::int64_t tailLengthSamples = 0;
    std::uint32_t tempoLocked = 0;
    double pitchRatio = 0;
    std::int32_t transpose = 0;  ///< semitones
    double volume = 0;
    double pan = 0;
    std::uint32_t tailOn = 0;
    std::int64_t sampleOffset = 0;  ///< frames
    std::uint32_t peakOffset = 0;
    std::uint32_t peakCount = 0;
};

std::array<std::byte, kTrackRecordBytes> encode(const TrackRecord& record);
std::array<std::byte, kGrainRecordBytes> encode(const GrainRecord& record);
std::array<std::byte, kKeyRecordBytes> encode(const KeyMapRecord& record);

TrackRecord decodeTrack(const std::array<std::byte, kTrackRecordBytes>& bytes);
GrainRecord decodeGrain(const std::array<std::byte, kGrainRecordBytes>& bytes);
KeyMapRecord decodeKeys(const std::array<std::byte, kKeyRecordBytes>& bytes);

}  // namespace marnoth
