#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace marnoth::fuzz {

/// What must hold whatever the input is; a finding when it doesn't.
inline void require(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "doesn't hold: %s\n", what);
    std::abort();
}

/// A few choices that come with the input: bits of its last byte, which the formats read here ignore.
inline std::uint8_t choices(const std::uint8_t* data, std::size_t size) {
    return size > 0 ? data[size - 1] : 0;
}

}  // namespace marnoth::fuzz
