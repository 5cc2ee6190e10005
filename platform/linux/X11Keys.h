#pragma once

#include "platform/linux/X11Headers.h"

namespace marnoth {

/// The virtual key, in the codes of `PageKey`, that a symbol of the keyboard stands for; 0 for none. Letters
/// of both cases are their capitals, a sign that shares its key with a digit is the digit's key of an
/// American keyboard.
int pageKeyOf(KeySym symbol);

}  // namespace marnoth
