#pragma once

#include "platform/drawing/Bitmap.h"
#include "platform/drawing/PageWindow.h"

namespace marnoth {

/// The pictures that the page is made of, by their numbers; they are part of the program. Each is decoded
/// once and kept for the life of the process. An unknown number throws `std::out_of_range`. Any thread.
const Bitmap& skinBitmap(int number);

/// A pointer of the page's own.
struct SkinCursor {
    Bitmap picture;
    Bitmap mask;    ///< white where the picture shows, black where it doesn't
    Point hotSpot;  ///< the pixel that points
};

/// The picture of `dragCopy`, `sizeHorizontal` or `sizeVertical`, each 32 by 32. The others are the system's
/// or nothing, and throw `std::out_of_range`. Any thread.
const SkinCursor& skinCursor(PageCursor cursor);

}  // namespace marnoth
