#pragma once

namespace marnoth {

/// How far a face reaches from its base line, in its own units; the descent counts downward.
struct FaceExtent {
    int ascent = 0;
    int descent = 0;
    int unitsPerEm = 0;
};

/// A face at a size in whole pixels.
struct FaceScale {
    int pixelsPerEm = 1;
    int ascent = 0;  ///< from the top of the line to the base line
    int descent = 0;

    int lineHeight() const { return ascent + descent; }
};

/// The largest size at which the ascent and the descent, each rounded to whole pixels, fit in `height`; at
/// least one pixel to the em. Heights are limited to 1000 pixels.
FaceScale scaleToHeight(const FaceExtent& face, int height);

}  // namespace marnoth
