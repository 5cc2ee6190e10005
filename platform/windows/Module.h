#pragma once

#include "platform/com/Com.h"

namespace marnoth {

/// The program or library that this code is a part of, which needn't be the process's program. No reference.
HINSTANCE thisModule();

}  // namespace marnoth
