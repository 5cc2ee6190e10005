#pragma once

#include <span>

#include "platform/com/Com.h"
#include "platform/graph/Graph.h"

namespace marnoth {

/// What a filter mapper is told about a filter: its merit and its pins.
struct FilterSetup {
    DWORD merit = 0;
    std::span<const REGFILTERPINS> pins;
};

/// A class that the module serves.
struct ServedClass {
    const wchar_t* name;
    const CLSID* id;
    /// Makes an object for `CreateInstance`, with the same arguments and results.
    HRESULT (*create)(IUnknown* outer, REFIID iid, void** out);
    const FilterSetup* filter;  ///< null for what is no filter
};

std::span<const ServedClass> servedClasses();

}  // namespace marnoth
