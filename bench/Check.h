#pragma once

#include <stdexcept>

#include "platform/com/Com.h"

namespace marnoth::bench {

/// Ends the benchmark with a word on what went wrong.
inline void check(HRESULT result, const char* what) {
    if (result != S_OK) throw std::runtime_error(what);
}

}  // namespace marnoth::bench
