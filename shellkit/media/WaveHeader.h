#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "shellkit/media/SampleFormat.h"

namespace marnoth {

/// The format of a WAV file's audio.
struct WaveFormat {
    std::uint32_t rate = 0;  ///< frames per second
    std::uint32_t channels = 0;
    SampleFormat samples = SampleFormat::float32;

    std::uint32_t frameBytes() const { return channels * bytesOf(samples); }
};

enum class WaveForm {
    riff,  ///< sizes of 32 bits: up to 4 GiB
    rf64,  ///< sizes of 64 bits in a "ds64" chunk, as EBU Tech 3306 has it
};

/// The older form as long as it can hold so many frames.
WaveForm waveFormFor(const WaveFormat& format, std::int64_t frames);

/// All that stands before the audio of a file with so many frames; as many bytes whatever their number.
std::vector<std::byte> waveHeader(const WaveFormat& format, WaveForm form, std::int64_t frames);

/// What follows the audio to make its length even: 0 or 1 bytes.
std::int64_t wavePadding(const WaveFormat& format, std::int64_t frames);

/// Bytes of the whole file.
std::int64_t waveFileBytes(const WaveFormat& format, std::int64_t frames);

}  // namespace marnoth
