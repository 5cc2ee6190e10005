#pragma once

#include <new>
#include <string>

#include "platform/com/Com.h"
#include "shellkit/files/Failure.h"
#include "shellkit/script/ScriptNumbers.h"

namespace marnoth {

/// Throws for a result that is a failure: `std::bad_alloc` for memory, else a `FileFailure` that says `what`
/// failed.
inline void need(HRESULT result, const char* what) {
    if (result == E_OUTOFMEMORY) throw std::bad_alloc();
    if (FAILED(result)) throw FileFailure(std::string(what) + " failed with code " + printResult(result));
}

}  // namespace marnoth
