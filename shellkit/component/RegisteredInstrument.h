#pragma once

#include "platform/com/Com.h"
#include "seam/ClassIds.h"

namespace marnoth {

/// Makes the instrument that is registered on this system, as any host would. The thread must be in an
/// apartment, of either kind. An `InstrumentMaker`.
HRESULT createRegistered(IUnknown* outer, REFIID iid, void** out);

/// Whether there is a component behind a class id that can make objects. Throws `FileFailure` when there is
/// none, with what to do about it.
void needRegistered(REFCLSID id = CLSID_Marnoth);

}  // namespace marnoth
