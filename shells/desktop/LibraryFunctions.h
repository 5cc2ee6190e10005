#pragma once

#include <dlfcn.h>

namespace marnoth {

/// Looks a function of a library that was loaded at run time up. False when the library hasn't got it; then
/// `function` is null.
template <class Function>
bool findFunction(void* library, const char* name, Function& function) {
    function = reinterpret_cast<Function>(dlsym(library, name));
    return function != nullptr;
}

}  // namespace marnoth
