#pragma once

#include <cstdint>
#include <string>

#include "support/WaveFile.h"

namespace marnoth::test {

/// The "fmt " chunk of whole bytes a sample, by hand. Only what is no plain integers has an extension, an
/// empty one, and behind it the "fact" chunk with the number of frames.
inline void appendFormat(Bytes& bytes, std::uint16_t tag, std::uint16_t channels, std::uint32_t rate,
                         std::uint16_t bits, std::uint32_t factFrames = 0) {
    const bool isPlain = tag == 1;
    const auto frameBytes = static_cast<std::uint16_t>(channels * bits / 8);
    append(bytes, std::string("fmt "));
    append(bytes, std::uint32_t{isPlain ? 16u : 18u});
    append(bytes, tag);
    append(bytes, channels);
    append(bytes, rate);
    append(bytes, rate * frameBytes);
    append(bytes, frameBytes);
    append(bytes, bits);
    if (isPlain) return;
    append(bytes, std::uint16_t{0});
    append(bytes, std::string("fact"));
    append(bytes, std::uint32_t{4});
    append(bytes, factFrames);
}

}  // namespace marnoth::test
