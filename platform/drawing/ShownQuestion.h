#pragma once

#include <string>
#include <vector>

#include "platform/drawing/Geometry.h"
#include "platform/drawing/PageWindow.h"

namespace marnoth {

/// A question that waits for its answer, as a user sees it.
struct ShownQuestion {
    std::string text;                  ///< UTF-8; empty for a menu
    std::vector<std::string> buttons;  ///< none for a menu
    std::vector<MenuItem> items;       ///< of a menu
    Point at;                          ///< where a menu is wanted
};

/// A message with the buttons of its kind.
ShownQuestion shownMessage(std::string_view text, MessageKind kind);

}  // namespace marnoth
