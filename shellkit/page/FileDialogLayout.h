#pragma once

#include "platform/drawing/Geometry.h"

namespace marnoth {

class Font;

/// Where the parts of a dialog of files lie. Pixels of the page.
struct FileDialogLayout {
    Rect box;
    Rect title;
    Rect up;    ///< the button to the folder above
    Rect path;  ///< of the folder that is shown
    Rect places;
    Rect list;
    Rect scroller;
    Rect nameLabel;
    Rect name;  ///< the field
    Rect note;  ///< the line that tells what went wrong
    Rect listen;
    Rect cancel;
    Rect accept;
    int rowHeight = 0;  ///< of places and list

    int rows() const { return list.height() / rowHeight; }
    /// The row of `area`, places or list, at a height within it.
    Rect row(const Rect& area, int number) const {
        return Rect::at(area.left, area.top + number * rowHeight, area.width(), rowHeight);
    }
};

/// In the middle of `room`, and no larger.
FileDialogLayout layOutFileDialog(Font& font, const Rect& room);

}  // namespace marnoth
