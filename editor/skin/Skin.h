#pragma once

#include "platform/drawing/Bitmap.h"
#include "platform/drawing/CursorPicture.h"
#include "platform/drawing/PageWindow.h"

namespace marnoth {

/// The pictures that the page is made of, by their numbers; they are part of the program. Each is decoded
/// once and kept for the life of the process. An unknown number throws `std::out_of_range`. Any thread.
const Bitmap& skinBitmap(int number);

/// The picture of `dragCopy`, `sizeHorizontal` or `sizeVertical`, each 32 by 32. The others are the system's
/// or nothing, and throw `std::out_of_range`. Any thread.
const CursorPicture& skinCursor(PageCursor cursor);

}  // namespace marnoth
