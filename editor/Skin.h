#pragma once

#include <string_view>

#include "platform/Bitmap.h"

namespace marnoth {

/// The pictures that the page is made of, by their numbers; they are part of the program. Decoded once, kept
/// for the life of the process. An unknown number throws `std::out_of_range`.
const Bitmap& skinBitmap(int number);

}  // namespace marnoth
