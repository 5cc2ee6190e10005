#pragma once

#include <string>
#include <vector>

#include "shells/cli/Streams.h"

namespace marnoth {

/// What `marnoth page` was asked for. File names are in UTF-8.
struct PageOptions {
    std::string project;   ///< empty: the page of an instrument that nothing was loaded into
    bool recover = false;  ///< its backup is taken where it can't be loaded
    std::string out;
    int pad = 1;          ///< the one that is selected, 1 to 16
    bool keyMap = false;  ///< the strip shows the key map, else the first file of the Loop Bin
    std::string open;     ///< the list, menu or question that is open over the page, a name of `openables`
    int scale = 1;        ///< picture pixels of a page pixel, in each direction
};

/// What `PageOptions::open` may name.
std::vector<std::string> openables();

/// Draws the editor page into a PNG file and prints a line about it. Throws `FileFailure`, and
/// `std::runtime_error` when the page's font can't be had.
void runPage(const PageOptions& options, const Streams& streams);

}  // namespace marnoth
