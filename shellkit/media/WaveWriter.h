#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>

#include "platform/bytes/RiffStream.h"
#include "shellkit/media/OutputFile.h"

namespace marnoth {

/// Writes a WAV file of interleaved 32-bit float. A writer that is destroyed unfinished leaves nothing
/// behind.
///
/// Every operation throws `FileFailure` when the medium does, or when the file would pass the 4 GiB that its
/// format can hold.
class WaveWriter {
public:
    WaveWriter(std::unique_ptr<OutputFile> output, std::uint32_t rate, std::uint32_t channels);
    WaveWriter(const std::filesystem::path& path, std::uint32_t rate, std::uint32_t channels);
    WaveWriter(const WaveWriter&) = delete;
    WaveWriter& operator=(const WaveWriter&) = delete;

    /// Appends whole frames.
    void write(std::span<const float> interleaved);
    /// Puts the sizes right and finishes the output. Nothing may be written afterwards.
    void finish();

    /// Of the output, as messages tell it.
    const std::string& name() const { return output_->name(); }
    std::uint32_t rate() const { return rate_; }
    std::uint32_t channels() const { return channels_; }
    std::int64_t frames() const { return dataBytes_ / (4 * static_cast<std::int64_t>(channels_)); }

private:
    void begin();
    void need(bool ok) const;

    std::unique_ptr<OutputFile> output_;
    std::uint32_t rate_;
    std::uint32_t channels_;
    std::int64_t dataBytes_ = 0;
    std::int64_t factOffset_ = 0;  ///< where the frame count stands
    ChunkInfo riff_;
    ChunkInfo data_;
    RiffStream stream_;  // destroyed before the output that it writes to
};

}  // namespace marnoth
