#pragma once

#include <ostream>

#include "shells/desktop/Desktop.h"
#include "shells/desktop/audio/AudioSystems.h"

/// What the desktop's module gives out. It is loaded by the program that it was built with, so that this runs
/// without it where windows and what they need are missing.

/// Throws as `runDesktop` does.
extern "C" __attribute__((visibility("default"))) int marnothDesktop(const marnoth::DesktopOptions& options,
                                                                     std::ostream& errors);
/// Fills in those of this machine.
extern "C" __attribute__((visibility("default"))) void marnothAudioSystems(marnoth::AudioSystems& systems);
