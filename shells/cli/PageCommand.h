#pragma once

#include <iosfwd>
#include <string>

namespace marnoth {

/// What `marnoth page` was asked for. File names are in UTF-8.
struct PageOptions {
    std::string project;  ///< empty: the page of an instrument that nothing was loaded into
    std::string out;
    int pad = 1;          ///< the one that is selected, 1 to 16
    bool keyMap = false;  ///< the strip shows the key map, else the first file of the Loop Bin
    int scale = 1;        ///< picture pixels of a page pixel, in each direction
};

/// Draws the editor page into a PNG file and prints a line about it. Throws `FileFailure`, and
/// `std::runtime_error` when the page's font can't be had.
void runPage(const PageOptions& options, std::ostream& report);

}  // namespace marnoth
