#pragma once

#include <cstdint>

#include "platform/drawing/Bitmap.h"
#include "platform/windows/SystemHandle.h"

namespace marnoth {

/// What a window shows, kept as the system copies it fastest: a bitmap of 32 bits a pixel, top row first,
/// whatever the display. One thread.
class DibScreen {
public:
    /// Takes `changed` of `screen` over; all of it when the size is another. False, with nothing kept, when
    /// the system has no memory for it.
    bool take(const Bitmap& screen, const Rect& changed);
    /// Copies `area` to the same place of `device`. Outside of the picture is the ground of dialogs.
    void show(HDC device, const RECT& area) const;

private:
    bool resize(int width, int height);

    // The device goes first: what is selected into it can't be deleted.
    BitmapHandle bitmap_;
    DeviceHandle device_;
    std::uint32_t* pixels_ = nullptr;
    int width_ = 0;
    int height_ = 0;
};

}  // namespace marnoth
