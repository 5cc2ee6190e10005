#pragma once

#include "platform/com/Com.h"

namespace marnoth {

/// Makes an instrument and gives out `iid` of it with the one reference to it.
///
/// `outer` is the object that the instrument becomes a part of, or null; with one, `iid` must be
/// `IID_IUnknown` (else `E_NOINTERFACE`) and what is given out is the instrument's own identity. `E_POINTER`,
/// `E_OUTOFMEMORY`, `E_NOINTERFACE`, or the failure of the instrument's construction; `*out` is null then.
HRESULT createInstrument(IUnknown* outer, REFIID iid, void** out);

}  // namespace marnoth
