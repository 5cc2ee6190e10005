#pragma once

#include <array>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "seam/Limits.h"
#include "shellkit/media/WaveWriter.h"

namespace marnoth {

/// The name of a pin's file, without a folder; its second and later ones have the number behind it.
std::string audioFileName(int pin, int number);

/// The audio of the output pins on its way into WAV files: `mix.wav`, `chan01.wav` to `chan16.wav`.
///
/// A file has one format. When a pin is connected anew in another one, the audio goes on in `mix-2.wav`, and
/// so on. One thread; audio may be taken from inside a block, so taking never throws.
class AudioFiles {
public:
    /// `folder` must exist.
    explicit AudioFiles(std::filesystem::path folder) : folder_(std::move(folder)) {}

    /// The format of what comes from now on, and the pins that are sure to get a file, be it an empty one.
    void connected(std::uint32_t rate, std::uint32_t channels, std::vector<int> pins);
    /// Opens the files of the connected pins.
    void begin();
    /// Appends to a pin's file. A failure is kept for `check`.
    void take(int pin, std::span<const float> samples) noexcept;
    /// Throws what taking met first: a `FileFailure`, or that there is no memory.
    void check() const;
    /// Gives all files their names. Throws `FileFailure`, after having tried them all.
    void finish();

private:
    struct Pin {
        std::unique_ptr<WaveWriter> writer;
        int files = 0;  ///< how many this pin has had
    };

    WaveWriter& writerOf(int pin);
    bool isOfFormat(const WaveWriter& writer) const;
    void close(Pin& pin) noexcept;

    std::filesystem::path folder_;
    std::uint32_t rate_ = 0;
    std::uint32_t channels_ = 0;
    std::vector<int> connected_;
    std::array<Pin, kOutputPins> pins_;
    std::exception_ptr failure_;
};

}  // namespace marnoth
