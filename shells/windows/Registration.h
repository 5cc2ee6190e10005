#pragma once

#include <span>

#include "shells/windows/ClassTable.h"

namespace marnoth {

/// Enters the classes of a module into the registry: as COM classes that live in the file `module`, the
/// filters with the filter mapper, and as soft synths for the host. The first failure among the classes and
/// filters ends it and is the result; what was written stays. A soft synth's key that can't be written is
/// none.
HRESULT registerClasses(const wchar_t* module, std::span<const ServedClass> classes);

/// Takes out what `registerClasses` enters, and what others have put beneath it. What isn't there is no
/// failure; the first one among filters and classes ends it. Keys of soft synths that can't be taken out
/// stay.
HRESULT unregisterClasses(std::span<const ServedClass> classes);

}  // namespace marnoth
