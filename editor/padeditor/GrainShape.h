#pragma once

#include "platform/drawing/Geometry.h"

namespace marnoth {

class Surface;

enum class GrainState { normal, selected, hovered };

/// Draws a grain over its rectangle: a bevelled block, or for a tail grain a pentagon that points right and
/// is `kTailGrainWidth` wide, whatever the rectangle's width.
void drawGrain(Surface& surface, const Rect& rect, bool tail, GrainState state);

/// Draws the mark of a pad's loop length at `x`, in the middle of the rows from `top` to `bottom`.
void drawLengthMarker(Surface& surface, int x, int top, int bottom);

}  // namespace marnoth
