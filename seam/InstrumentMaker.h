#pragma once

#include "platform/com/Com.h"

namespace marnoth {

/// Makes an instrument and gives out `iid` of it with the one reference to it; by this a host kit makes the
/// instrument that it plays without knowing what it is made of. What may be asked of it, and its failures,
/// stand at `createInstrument`.
using InstrumentMaker = HRESULT (*)(IUnknown* outer, REFIID iid, void** out);

}  // namespace marnoth
