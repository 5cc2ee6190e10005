#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "project/GrainSettings.h"
#include "project/TrackSettings.h"
#include "seam/IGrooveSampler.h"

namespace marnoth {

/// The fixed-size records of a project file. Everything is little-endian; bytes that carry nothing are
/// written as zeros and not read. What is decoded holds values as they stand in the file, which may be
/// anything: the reader refuses what no project has, and `sanitized` mends the rest.

inline constexpr std::size_t kTrackRecordBytes = 64;
inline constexpr std::size_t kGrainRecordBytes = 112;
inline constexpr std::size_t kKeyRecordBytes = 40;

std::array<std::byte, kTrackRecordBytes> encode(const TrackSettings& record);
std::array<std::byte, kGrainRecordBytes> encode(const GrainSettings& record);
std::array<std::byte, kKeyRecordBytes> encode(const KeyMapRecord& record);

TrackSettings decodeTrack(const std::array<std::byte, kTrackRecordBytes>& bytes);
GrainSettings decodeGrain(const std::array<std::byte, kGrainRecordBytes>& bytes);
KeyMapRecord decodeKeys(const std::array<std::byte, kKeyRecordBytes>& bytes);

}  // namespace marnoth
