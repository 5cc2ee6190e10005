#pragma once

#include <cstdint>

namespace marnoth {

/// The noise that makes the error of rounding independent of what is rounded: triangular, as the sum of two
/// uniform values is. A sequence is the same each time, so that the same audio gives the same file; those of
/// different numbers have nothing in common, so that the noise of files that are mixed doesn't add up.
class Dither {
public:
    explicit Dither(std::uint32_t sequence) : state_(sequence) {}

    /// In steps of the format that is rounded to, above -1 and below 1.
    double next() {
        const double first = uniform();
        return first - uniform();
    }

private:
    /// 0 to below 1.
    double uniform() {
        // A linear congruential generator with the multiplier and increment of Knuth's MMIX; of its state the
        // upper half is the random one.
        state_ = state_ * 6364136223846793005u + 1442695040888963407u;
        return static_cast<double>(state_ >> 32) / 4294967296.0;
    }

    std::uint64_t state_;
};

}  // namespace marnoth
