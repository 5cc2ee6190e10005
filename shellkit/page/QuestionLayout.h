#pragma once

#include <string>
#include <vector>

#include "platform/drawing/Geometry.h"
#include "platform/drawing/ShownQuestion.h"

namespace marnoth {

class Font;

/// Where the parts of a question lie on the page. Pixels.
struct QuestionLayout {
    Rect box;
    std::vector<std::string> lines;  ///< of a message, from `text` on downward
    Point text;
    std::vector<Rect> choices;  ///< buttons from left to right, or a menu's rows from the top
};

/// `page` is the area that it stays within as far as it can.
QuestionLayout layOut(const ShownQuestion& question, Font& font, const Rect& page);

}  // namespace marnoth
