#include "platform/linux/X11Property.h"

#include <algorithm>
#include <cstring>
#include <memory>

namespace marnoth {

namespace {

struct XFreed {
    void operator()(unsigned char* data) const { XFree(data); }
};

/// What Xlib gives of a property. It pads 32-bit units to longs.
struct RawProperty {
    Atom type = kXNone;
    int bits = 0;
    unsigned long units = 0;
    std::unique_ptr<unsigned char, XFreed> data;
};

RawProperty rawProperty(X11Display& display, ::Window window, Atom name, bool takes, std::size_t limit) {
    RawProperty raw;
    unsigned char* data = nullptr;
    unsigned long rest = 0;
    // Lengths are asked for in units of four bytes.
    const long length = static_cast<long>((limit + 3) / 4);
    const int answer = XGetWindowProperty(display.get(), window, name, 0, length, takes ? kXTrue : kXFalse,
                                          AnyPropertyType, &raw.type, &raw.bits, &raw.units, &rest, &data);
    raw.data.reset(data);
    if (answer != 0) raw = {};
    return raw;
}

}  // namespace

X11Property readProperty(X11Display& display, ::Window window, Atom name, bool takes, std::size_t limit) {
    const RawProperty raw = rawProperty(display, window, name, takes, limit);
    X11Property property{raw.type, {}};
    if (raw.bits == 8 && raw.data)
        property.bytes.assign(reinterpret_cast<const char*>(raw.data.get()), raw.units);
    return property;
}

std::vector<Atom> readAtoms(X11Display& display, ::Window window, Atom name, std::size_t limit) {
    const RawProperty raw = rawProperty(display, window, name, false, limit * 4);
    if (raw.type != XA_ATOM || raw.bits != 32 || !raw.data) return {};
    std::vector<Atom> atoms(std::min<std::size_t>(raw.units, limit));
    std::memcpy(atoms.data(), raw.data.get(), atoms.size() * sizeof(Atom));
    return atoms;
}

void writeText(X11Display& display, ::Window window, Atom name, Atom type, const std::string& text) {
    XChangeProperty(display.get(), window, name, type, 8, PropModeReplace,
                    reinterpret_cast<const unsigned char*>(text.data()), static_cast<int>(text.size()));
}

void writeAtoms(X11Display& display, ::Window window, Atom name, std::span<const Atom> atoms) {
    XChangeProperty(display.get(), window, name, XA_ATOM, 32, PropModeReplace,
                    reinterpret_cast<const unsigned char*>(atoms.data()), static_cast<int>(atoms.size()));
}

}  // namespace marnoth
