#pragma once

#include "platform/drawing/HeadlessWindow.h"

namespace marnoth {

class Font;
class Surface;

/// Draws a message, the choice of a file or a menu over the page, in its colours: what a window with a screen
/// leaves to its system. `page` is the area that it stays within as far as it can.
void drawQuestion(Surface& surface, const ShownQuestion& question, Font& font, const Rect& page);

}  // namespace marnoth
