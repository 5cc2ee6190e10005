#pragma once

#include <span>
#include <string>
#include <vector>

#include "platform/linux/X11Display.h"

namespace marnoth {

/// Bytes that a window carries under a name.
struct X11Property {
    Atom type = kXNone;  ///< none when there is no such property
    std::string bytes;
};

/// Reads a property of 8 bits a unit whole, but no more than `limit` bytes, and takes it away if `takes`.
X11Property readProperty(X11Display& display, ::Window window, Atom name, bool takes,
                         std::size_t limit = 1 << 24);
/// The atoms in a property of that type, no more than `limit`.
std::vector<Atom> readAtoms(X11Display& display, ::Window window, Atom name, std::size_t limit = 256);

void writeText(X11Display& display, ::Window window, Atom name, Atom type, const std::string& text);
void writeAtoms(X11Display& display, ::Window window, Atom name, std::span<const Atom> atoms);

}  // namespace marnoth
