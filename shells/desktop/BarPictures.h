#pragma once

#include <array>

#include "platform/drawing/Bitmap.h"

namespace marnoth {

/// What a button of the transport bar shows.
enum class BarSymbol { toStart, play, stop, record, loop, metronome, tap, key, panic, settings };

/// The two pictures of a button, drawn in the page's colours.
struct BarButtonPictures {
    Bitmap up;
    Bitmap down;
};

/// The size of a bar's button, pixels.
inline constexpr int kBarButtonWidth = 24;
inline constexpr int kBarButtonHeight = 20;

BarButtonPictures drawBarButton(BarSymbol symbol);
/// The bar's ground.
Bitmap drawBarGround(int width, int height);

}  // namespace marnoth
