#pragma once

#include <exception>
#include <memory>
#include <span>
#include <string>

#include "shellkit/media/FloatSpool.h"
#include "shellkit/media/WaveWriter.h"

namespace marnoth {

/// Where the audio of one pin of an offline render goes as a WAV file, and what is worth telling about it.
class RenderOutput {
public:
    /// The audio waits for its gain in a temporary file where `gainComesLater`.
    RenderOutput(std::unique_ptr<OutputFile> file, const WaveOptions& options, bool gainComesLater);

    /// Appends audio. Called inside a block: a failure is kept for `check`.
    void take(std::span<const float> samples) noexcept;
    /// Throws what taking met: a `FileFailure`, or that there is no memory.
    void check() const;
    /// A factor in place of that of the options; before `finish`, and only where it comes later.
    void setGain(double gain) { writer_.setGain(gain); }
    /// Throws `FileFailure`.
    void finish();

    const OutputFile& file() const { return writer_.output(); }
    /// Of the audio before its gain.
    float peak() const { return peak_; }
    const Clipping& clipping() const { return writer_.clipping(); }

private:
    WaveWriter writer_;
    std::unique_ptr<FloatSpool> spool_;  ///< null where the gain is known
    float peak_ = 0;
    std::exception_ptr failure_;
};

}  // namespace marnoth
