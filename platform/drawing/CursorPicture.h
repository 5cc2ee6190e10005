#pragma once

#include <functional>

#include "platform/drawing/Bitmap.h"
#include "platform/drawing/PageWindow.h"

namespace marnoth {

/// A pointer of the page's own, as a picture.
struct CursorPicture {
    Bitmap picture;
    Bitmap mask;    ///< white where the picture shows, black where it doesn't
    Point hotSpot;  ///< the pixel that points
};

/// Where a window has the pictures of `dragCopy`, `sizeHorizontal` and `sizeVertical` from; the others are
/// the system's, or nothing. They last for the life of the process.
using CursorPictures = std::function<const CursorPicture&(PageCursor)>;

}  // namespace marnoth
