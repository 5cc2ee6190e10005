#pragma once

#include "shells/desktop/Desktop.h"
#include "shells/desktop/settings/DesktopSettings.h"

namespace marnoth {

/// The settings that are kept, and what is told at the start in their place for this time.
DesktopSettings withTold(DesktopSettings kept, const DesktopOptions& told);

/// Keeps what the user has changed of the sound and the scale since the start, and not what was told for this
/// time.
void keepChanges(DesktopSettings& kept, const DesktopSettings& atStart, const DesktopSettings& now);

}  // namespace marnoth
