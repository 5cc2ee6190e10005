#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

namespace marnoth {

/// The audio of a whole WAV file of interleaved 32-bit float.
struct WaveFrames {
    std::uint32_t rate = 0;
    std::uint32_t channels = 0;
    std::vector<float> samples;  ///< interleaved, whole frames
};

/// Reads a WAV file of 32-bit float. Throws `FileFailure` with the reason when the file isn't one.
WaveFrames readWaveFrames(const std::filesystem::path& path);

}  // namespace marnoth
