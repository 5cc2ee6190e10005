#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "platform/bytes/ByteStream.h"
#include "shellkit/media/SampleEncoder.h"
#include "shellkit/media/WaveHeader.h"

namespace marnoth {

/// What a WAV file is made as.
struct WaveOptions {
    std::uint32_t rate = 0;  ///< frames per second
    std::uint32_t channels = 0;
    Encoding encoding{};
    /// Decides whether the file gets sizes of 64 bits; 0 when it isn't known. No more than 4 GiB can be
    /// written where that wasn't expected.
    std::int64_t expectedFrames = 0;

    WaveFormat format() const { return {rate, channels, encoding.format}; }
};

/// A WAV file on its way into any bytes: a header, audio, and in the end the header that the audio's length
/// needs. Operations give false when the medium fails. One thread.
class WaveStream {
public:
    WaveStream(std::unique_ptr<ByteStream> bytes, const WaveOptions& options);

    bool begin() { return putHeader(); }
    /// Of all that follows.
    void setGain(double gain) { encoder_.setGain(gain); }
    /// Whether so many more frames can be told in the sizes of this file.
    bool fits(std::int64_t more) const;
    /// Appends whole frames.
    bool write(std::span<const float> interleaved);
    /// Nothing may follow.
    bool finish();

    std::int64_t frames() const { return frames_; }
    const Clipping& clipping() const { return encoder_.clipping(); }

private:
    bool putHeader();

    std::unique_ptr<ByteStream> bytes_;
    WaveFormat format_;
    WaveForm form_;
    SampleEncoder encoder_;
    std::int64_t frames_ = 0;
};

}  // namespace marnoth
