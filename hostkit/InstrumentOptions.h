#pragma once

#include "platform/com/Com.h"

namespace marnoth {

/// Whether an instrument's sound is steady (`IMarnothOptions::SetSteady`); it isn't at first. The result is
/// the instrument's, or that it doesn't know of such an option.
HRESULT setSteady(IUnknown& instrument, bool on);

/// The same for sparse outputs (`IMarnothOptions::SetSparse`).
HRESULT setSparse(IUnknown& instrument, bool on);

}  // namespace marnoth
