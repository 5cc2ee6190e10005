#include "platform/drawing/FaceScale.h"

#include <algorithm>

namespace marnoth {

namespace {

constexpr int kTallestLine = 1000;

int scaled(int units, int pixelsPerEm, int unitsPerEm) {
    return (2 * units * pixelsPerEm + unitsPerEm) / (2 * unitsPerEm);
}

FaceScale scaleAt(const FaceExtent& face, int pixelsPerEm) {
    return {pixelsPerEm, scaled(face.ascent, pixelsPerEm, face.unitsPerEm),
            scaled(face.descent, pixelsPerEm, face.unitsPerEm)};
}

}  // namespace

FaceScale scaleToHeight(const FaceExtent& face, int height) {
    const int room = std::min(height, kTallestLine);
    FaceScale best = scaleAt(face, 1);
    for (int size = 2; size <= room; ++size) {
        const FaceScale next = scaleAt(face, size);
        if (next.lineHeight() > room) break;
        best = next;
    }
    return best;
}

}  // namespace marnoth
