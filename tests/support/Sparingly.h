#pragma once

namespace marnoth::test {

/// What is tried at every place or hundreds of times is tried so in the plain build; under the sanitizers,
/// which look at memory and not at values and take ten times as long, at every so many-th. Five, for fields
/// of files have an even number of bytes.
#ifdef MARNOTH_SANITIZED
inline constexpr int kSparingly = 5;
#else
inline constexpr int kSparingly = 1;
#endif

}  // namespace marnoth::test
