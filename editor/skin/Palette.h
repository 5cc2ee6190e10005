#pragma once

#include <array>

#include "platform/drawing/Bitmap.h"

namespace marnoth {

/// The page's colours, by entry.
inline constexpr std::array<Color, 9> kPalette{{
    {0, 0, 0},        // black
    {37, 43, 52},     // dark panel ground
    {255, 255, 255},  // white
    {124, 144, 173},  // blue grain, scroller track, ruler text
    {160, 172, 191},  // light blue, scroller thumb, lit row
    {91, 99, 120},    // grid lines, selected blue grain
    {152, 214, 147},  // green grain, file path text
    {90, 128, 88},    // selected green grain
    {206, 255, 202},  // bright green: current list row, hover, pad ring
}};

/// Of fields to type or choose in.
inline constexpr Color kFieldText = kPalette[4];
inline constexpr Color kFieldGround = kPalette[1];

}  // namespace marnoth
