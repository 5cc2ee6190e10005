#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>

#include "platform/bytes/RiffStream.h"

namespace marnoth {

/// Writes a WAV file of interleaved 32-bit float. It grows under a temporary name beside its final one, and
/// takes the final name when it is finished; a writer that is destroyed unfinished leaves nothing behind.
///
/// Every operation throws `FileFailure` when the medium does, or when the file would pass the 4 GiB that its
/// format can hold.
class WaveWriter {
public:
    WaveWriter(const std::filesystem::path& path, std::uint32_t rate, std::uint32_t channels);
    ~WaveWriter();
    WaveWriter(const WaveWriter&) = delete;
    WaveWriter& operator=(const WaveWriter&) = delete;

    /// Appends whole frames.
    void write(std::span<const float> interleaved);
    /// Puts the sizes right and gives the file its name. Nothing may be written afterwards.
    void finish();

    std::uint32_t rate() const { return rate_; }
    std::uint32_t channels() const { return channels_; }
    std::int64_t frames() const { return dataBytes_ / (4 * static_cast<std::int64_t>(channels_)); }

private:
    void begin();
    [[noreturn]] void fail(const char* reason) const;
    void need(bool ok) const;

    std::filesystem::path path_;
    std::filesystem::path temporary_;
    std::uint32_t rate_;
    std::uint32_t channels_;
    std::int64_t dataBytes_ = 0;
    std::int64_t factOffset_ = 0;  ///< where the frame count stands
    ChunkInfo riff_;
    ChunkInfo data_;
    bool finished_ = false;
    RiffStream stream_;
};

}  // namespace marnoth
