#pragma once

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>

#include "shellkit/media/WaveWriter.h"

namespace marnoth {

/// Where the audio of one pin of an offline render goes as a WAV file, and what is worth telling about it.
class RenderOutput {
public:
    RenderOutput(std::unique_ptr<OutputFile> file, std::uint32_t rate, std::uint32_t channels)
        : writer_(std::move(file), rate, channels) {}

    /// Appends audio. Called inside a block: a failure is kept for `check`.
    void take(std::span<const float> samples) noexcept;
    /// Throws the `FileFailure` that taking met.
    void check() const;
    /// Throws `FileFailure`.
    void finish() { writer_.finish(); }

    /// Of the file, as messages tell it.
    const std::string& name() const { return writer_.name(); }
    float peak() const { return peak_; }

private:
    WaveWriter writer_;
    float peak_ = 0;
    std::optional<std::string> failure_;
};

}  // namespace marnoth
