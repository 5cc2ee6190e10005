#pragma once

#include <memory>

#include "platform/drawing/Font.h"

namespace marnoth {

/// The fonts of the system that this is built for; comes with the library `marnoth_fonts`. Never null.
///
/// "Arial" stands for the measures of that face: where another face of the same advance widths is the usual
/// one, it is that. Faces may outlive the source.
std::unique_ptr<FontSource> platformFonts();

}  // namespace marnoth
