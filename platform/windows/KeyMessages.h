#pragma once

#include "platform/com/Com.h"
#include "platform/drawing/PageWindow.h"

namespace marnoth {

/// The modifiers at the time of the message that is being answered. The third-level key of many keyboards
/// comes as control and alt, and is neither.
Modifiers heldModifiers();

/// Whether the key message that is being answered tells of the control key that comes with a third-level key.
bool isOfThirdLevelKey(WPARAM key, LPARAM details);

/// How often a message that stands for several was meant.
int repeatsOf(LPARAM details);

}  // namespace marnoth
