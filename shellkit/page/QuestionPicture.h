#pragma once

#include "platform/drawing/ShownQuestion.h"
#include "shellkit/page/QuestionLayout.h"

namespace marnoth {

class Font;
class Surface;

/// How far a question's shadow reaches beyond its box, pixels: to the left and up, to the right and down.
inline constexpr int kShadowBefore = 1;
inline constexpr int kShadowBehind = 3;

/// Draws a message, the choice of a file or a menu over the page, in its colours: what a window with a screen
/// may leave to its system. The choice `lit` is drawn as the one that Return takes; -1 for none.
void drawQuestion(Surface& surface, const ShownQuestion& question, const QuestionLayout& layout, Font& font,
                  int lit = -1);

}  // namespace marnoth
