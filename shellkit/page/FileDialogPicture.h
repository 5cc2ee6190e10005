#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>

#include "editor/controls/EditLine.h"
#include "shellkit/page/FileBrowser.h"
#include "shellkit/page/FileDialogLayout.h"
#include "shellkit/page/UserPlaces.h"

namespace marnoth {

class Font;
class Surface;

/// What of a dialog of files is drawn, beside where it lies.
struct FileDialogLooks {
    enum class Keyboard { list, name };
    enum class Button { none, up, listen, cancel, accept };

    std::span<const FilePlace> places;
    std::size_t firstRow = 0;  ///< the entry that stands on top of the list
    Keyboard keyboard = Keyboard::list;
    Button pressed = Button::none;
    bool canListen = false;
    bool listens = false;
    std::string note;  ///< what went wrong; empty when all is well
};

/// The thumb of a scroller that shows `rows` of `count` entries from `first` on; empty while all are seen.
Rect scrollerThumb(const Rect& scroller, std::size_t first, int rows, std::size_t count);

/// Draws the dialog over the page, in its colours.
void drawFileDialog(Surface& surface, Font& font, const FileDialogLayout& layout, const FileBrowser& browser,
                    EditLine& name, const FileDialogLooks& looks);

/// `text`, or its end behind three points, no wider than `width` pixels.
std::string endThatFits(Font& font, const std::string& text, int width);
/// `text`, or its beginning before three points.
std::string beginningThatFits(Font& font, const std::string& text, int width);

}  // namespace marnoth
