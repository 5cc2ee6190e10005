#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "shellkit/media/RenderOutput.h"

namespace marnoth {

/// How the files of a render are written.
struct FileForm {
    SampleFormat format = SampleFormat::float32;
    bool dither = true;  ///< of integers
    double gainDecibels = 0;
    bool normalize = false;  ///< the mix to full scale, all other files by as much; the gain comes on top
};

/// The files of a render: one for each stem, and the mix, which comes last. All get one gain, so that the
/// stems add up to the mix. What fails throws a `FileFailure`.
class RenderOutputs {
public:
    /// Of so many frames each.
    RenderOutputs(const FileForm& form, std::uint32_t rate, std::uint32_t channels, std::int64_t frames);

    /// Of a pin: 0 is the mix.
    RenderOutput& add(int pin, std::unique_ptr<OutputFile> file);
    /// Before anything is rendered: whether the disks can take all files.
    void checkRoom() const;
    /// Throws what taking audio met.
    void check() const;
    /// Writes what is left. `warn` gets a sentence for each file that clips, and where the mix can't be
    /// normalized.
    void finish(const std::function<void(const std::string&)>& warn);

    const RenderOutput& mix() const { return *files_.back(); }
    /// Format and level of the mix: "16 bits, peak -1.0 dBFS".
    std::string tellMix() const;

private:
    void normalize(const std::function<void(const std::string&)>& warn);
    std::string tellClipping(const RenderOutput& output) const;

    FileForm form_;
    WaveOptions options_;
    double gain_ = 1;  ///< of all files
    std::vector<std::unique_ptr<RenderOutput>> files_;
};

}  // namespace marnoth
