#pragma once

#include <cstdint>
#include <string>

#include "seam/LoadFault.h"

namespace marnoth {

/// In words what is wrong with a file that isn't loaded: a clause in the present tense about "it", without a
/// capital and without a full stop.
std::string inWords(const LoadFault& fault);

/// The same of a file whose name may be what is wrong: `file` as its user wrote it, in UTF-8.
std::string whyNotLoaded(const std::string& file, const LoadFault& fault);

/// Why the last load of an instrument failed on this thread; no fault from one that can't tell.
LoadFault lastLoadFault(IUnknown& instrument);

/// What the last load of an instrument on this thread passed over in a damaged file; none from one that can't
/// tell. And in words, as above.
LoadFault lastLoadDamage(IUnknown& instrument);
std::string damageInWords(const LoadFault& damage);

/// In words that so many samples of it are no numbers.
std::string notFiniteText(std::int64_t count);

/// Whether the instrument, which takes names in the system code page, gets this one whole; and in words, when
/// it doesn't.
bool isSayable(const std::string& name);
inline constexpr const char* kNotSayable =
    "its name holds characters that the system code page lacks: rename it";

}  // namespace marnoth
