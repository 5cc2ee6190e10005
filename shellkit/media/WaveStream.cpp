#include "shellkit/media/WaveStream.h"

#include <utility>

namespace marnoth {

WaveStream::WaveStream(std::unique_ptr<ByteStream> bytes, const WaveOptions& options)
    : bytes_(std::move(bytes)),
      format_(options.format()),
      form_(waveFormFor(format_, options.expectedFrames)),
      encoder_(options.encoding, options.channels) {}

bool WaveStream::fits(std::int64_t more) const {
    return form_ == WaveForm::rf64 || waveFormFor(format_, frames_ + more) == WaveForm::riff;
}

bool WaveStream::write(std::span<const float> interleaved) {
    const auto encoded = encoder_.encode(interleaved);
    if (!bytes_->write(encoded.data(), static_cast<std::int64_t>(encoded.size()))) return false;
    frames_ += static_cast<std::int64_t>(interleaved.size() / format_.channels);
    return true;
}

bool WaveStream::finish() {
    const std::byte zero{};
    return bytes_->write(&zero, wavePadding(format_, frames_)) && bytes_->seek(0) && putHeader() &&
           bytes_->close();
}

bool WaveStream::putHeader() {
    const auto header = waveHeader(format_, form_, frames_);
    return bytes_->write(header.data(), static_cast<std::int64_t>(header.size()));
}

}  // namespace marnoth
