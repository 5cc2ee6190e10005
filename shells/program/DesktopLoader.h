#pragma once

#include <ostream>

#include "shells/desktop/Desktop.h"

namespace marnoth {

/// Runs the desktop, whose module lies beside the program or where it is installed. Throws
/// `std::runtime_error`, with a sentence for the user, when the module or something that it needs is missing.
int playOnDesktop(const DesktopOptions& options, std::ostream& errors);

}  // namespace marnoth
