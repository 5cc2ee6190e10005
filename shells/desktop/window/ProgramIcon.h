#pragma once

#include <vector>

#include "platform/drawing/IconPicture.h"

namespace marnoth {

/// The program's own icon, which is part of it, in the sizes that windows show, the smallest first. Any
/// thread.
std::vector<IconPicture> programIcon();

}  // namespace marnoth
