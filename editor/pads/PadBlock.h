#pragma once

#include <optional>

#include "editor/PaneParent.h"

namespace marnoth {

class Surface;

/// What lies under a point of the pad block. `pad` is a guess unless the point is on an image.
struct PadHit {
    int pad;
    bool onImage;
};

/// The pads as one sees and plays them: their images, which light up while they sound, and the ring around
/// the current one. The page's thread.
class PadBlock {
public:
    explicit PadBlock(PaneParent& page) : page_(page) {}

    void paint(Surface& surface);
    /// Nothing outside the block.
    std::optional<PadHit> HitTestPad(Point at) const;
    /// Nothing off the images.
    std::optional<int> imageAt(Point at) const;
    void invalidateImages();
    /// The ring that lies around a pad while it is the current one.
    void invalidateRing(int pad);

private:
    PaneParent& page_;
};

}  // namespace marnoth
