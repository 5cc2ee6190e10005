#pragma once

#include <string>
#include <vector>

#include "platform/drawing/Geometry.h"

namespace marnoth::robot {

/// Drops files onto a window as a file manager does (XDND 5), over a connection to the display of its own.
/// `at` counts from the screen's corner; paths are full ones in plain ASCII. False when the window doesn't
/// take them; throws `std::runtime_error` when it doesn't answer.
bool dropFiles(unsigned long window, Point at, const std::vector<std::string>& paths);

}  // namespace marnoth::robot
