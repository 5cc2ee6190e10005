#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <string>

#include "shellkit/media/OutputFile.h"
#include "shellkit/media/WaveStream.h"

namespace marnoth {

/// Writes a WAV file from interleaved 32-bit float. A writer that is destroyed unfinished leaves nothing
/// behind.
///
/// Every operation throws `FileFailure` when the medium does, or when the file would pass the 4 GiB that its
/// form can hold where no more was expected.
class WaveWriter {
public:
    WaveWriter(std::unique_ptr<OutputFile> output, const WaveOptions& options);
    WaveWriter(const std::filesystem::path& path, const WaveOptions& options);
    WaveWriter(const WaveWriter&) = delete;
    WaveWriter& operator=(const WaveWriter&) = delete;

    /// A factor for all that follows.
    void setGain(double gain) { stream_.setGain(gain); }
    /// Appends whole frames.
    void write(std::span<const float> interleaved);
    /// Puts the sizes right and finishes the output. Nothing may be written afterwards.
    void finish();

    OutputFile& output() { return *output_; }
    const OutputFile& output() const { return *output_; }
    const WaveOptions& options() const { return options_; }
    const Clipping& clipping() const { return stream_.clipping(); }

private:
    void need(bool ok) const;

    std::unique_ptr<OutputFile> output_;
    WaveOptions options_;
    WaveStream stream_;  // destroyed before the output that it writes to
};

}  // namespace marnoth
