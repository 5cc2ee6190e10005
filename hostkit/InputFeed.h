#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace marnoth {

/// What the input of the instrument is sent: silence, or some audio and zeros behind it.
class InputFeed {
public:
    void setSilence();
    /// Sends `interleaved` from its start, then zeros.
    void setFrames(std::vector<float> interleaved);

    /// Whether blocks are to be marked as silence.
    bool isSilence() const { return silence_; }
    /// The next samples, at most `count`; what is missing is zeros. Good until the feed is set anew.
    std::span<const float> take(std::size_t count);

private:
    std::vector<float> samples_;
    std::size_t taken_ = 0;
    bool silence_ = true;
};

}  // namespace marnoth
