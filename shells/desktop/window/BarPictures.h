#pragma once

#include <memory>

#include "platform/drawing/Bitmap.h"
#include "platform/drawing/Geometry.h"
#include "platform/drawing/PageWindow.h"

namespace marnoth {

/// Of the bar and of the line below the page: what the page's panels have.
inline constexpr Color kBarGround{75, 82, 95};
inline constexpr Color kBarText{205, 212, 222};
inline constexpr int kBarTextHeight = 12;  ///< pixels from ascent to descent

/// The page's face. Throws `std::runtime_error`, with a sentence for the user, when the window hasn't got it.
std::unique_ptr<Font> barFont(PageWindow& window, int height);

/// What a button of the transport bar shows.
enum class BarSymbol { files, toStart, play, stop, record, loop, metronome, tap, key, panic, settings };

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
