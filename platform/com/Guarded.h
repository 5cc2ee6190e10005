#pragma once

#include <exception>
#include <new>

#include "platform/com/Com.h"

namespace marnoth {

/// The result of `operation`; what it throws becomes one: `E_OUTOFMEMORY` for memory, else `E_FAIL`. For
/// operations that foreign code calls, which must not throw.
template <class Operation>
HRESULT guarded(Operation operation) try {
    return operation();
} catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
} catch (const std::exception&) {
    return E_FAIL;
}

}  // namespace marnoth
