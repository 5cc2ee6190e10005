#pragma once

#include <functional>
#include <memory>
#include <span>

#include "platform/files/TemporaryFile.h"

namespace marnoth {

/// Samples that wait in a temporary file until it is known what becomes of them. Operations give false when
/// the medium fails. One thread.
class FloatSpool {
public:
    explicit FloatSpool(std::unique_ptr<TemporaryFile> file)
        : file_(std::move(file)), bytes_(file_->takeBytes()) {}

    bool write(std::span<const float> samples);
    /// Gives everything that was written to `taker`, some thousands of samples at a time; of frames of one or
    /// two samples whole ones.
    bool passOn(const std::function<void(std::span<const float>)>& taker);

private:
    std::unique_ptr<TemporaryFile> file_;
    std::unique_ptr<ByteStream> bytes_;  // destroyed before its file
};

}  // namespace marnoth
