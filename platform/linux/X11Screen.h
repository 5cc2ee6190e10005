#pragma once

#include <cstdint>
#include <vector>

#include "platform/drawing/Bitmap.h"
#include "platform/linux/X11Display.h"

namespace marnoth {

/// Shows a picture in a window, each pixel as a square of `scale` by `scale` pixels of the screen. One
/// thread.
class X11Screen {
public:
    /// `display` outlives it.
    X11Screen(X11Display& display, ::Window window, int scale);
    ~X11Screen();
    X11Screen(const X11Screen&) = delete;
    X11Screen& operator=(const X11Screen&) = delete;

    void setScale(int scale) { scale_ = scale; }
    /// The part `area` of `picture`, in its place. Pixels of the picture; what lies outside it isn't shown.
    void show(const Bitmap& picture, const Rect& area);

private:
    /// How the display packs one of the three colours into a pixel.
    struct Channel {
        int shift = 0;
        int bits = 8;
        std::uint32_t of(std::uint8_t value) const {
            return (static_cast<std::uint32_t>(value) << (bits - 8)) << shift;
        }
    };
    static Channel channelOf(unsigned long mask);
    std::uint32_t packed(Color color) const {
        return red_.of(color.red) | green_.of(color.green) | blue_.of(color.blue);
    }
    void enlarge(const Bitmap& picture, const Rect& area);

    X11Display& display_;
    const ::Window window_;
    int scale_;
    const GC context_;
    const Channel red_;
    const Channel green_;
    const Channel blue_;
    std::vector<std::uint32_t> pixels_;  ///< of the part that is shown, enlarged
};

}  // namespace marnoth
