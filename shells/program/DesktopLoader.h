#pragma once

#include <ostream>

#include "shells/desktop/Desktop.h"
#include "shells/desktop/audio/AudioSystems.h"

namespace marnoth {

/// What the desktop's module gives, which lies beside the program or where it is installed. Each throws
/// `std::runtime_error`, with a sentence for the user, when the module or something that it needs is missing.

/// Runs the desktop.
int playOnDesktop(const DesktopOptions& options, std::ostream& errors);
/// The ways of this machine to be heard.
AudioSystems desktopAudio();

}  // namespace marnoth
