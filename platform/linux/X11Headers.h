#pragma once

/// Xlib without those of its macros that stand in the way of other names. Included last, and by sources
/// alone: headers that others read don't show it.

#include <X11/XKBlib.h>
#include <X11/Xatom.h>
#include <X11/Xcursor/Xcursor.h>
#include <X11/Xlib.h>
#include <X11/Xresource.h>
#include <X11/Xutil.h>
#include <X11/cursorfont.h>
#include <X11/keysym.h>

#undef Always
#undef Bool
#undef Complex
#undef False
#undef None
#undef Status
#undef Success
#undef True

namespace marnoth {

inline constexpr int kXFalse = 0;
inline constexpr int kXTrue = 1;
/// No window, atom, cursor or property.
inline constexpr unsigned long kXNone = 0;

}  // namespace marnoth
