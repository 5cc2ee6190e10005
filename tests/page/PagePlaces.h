#pragma once

#include "editor/PageLayout.h"
#include "platform/drawing/Geometry.h"

namespace marnoth::test {

/// Places on the page, at the zoom that it begins with. Pads and files count from 0.

inline constexpr Point kOnKeyTab{16, 260};
inline constexpr Point kOnTail{504, 180};
inline constexpr Point kOnZoomIn{571, 540};
inline constexpr Point kOnRowsHigher{588, 523};
inline constexpr Point kOnOutput{590, 28};

inline Point onImage(int pad) {
    return {padImage(pad).left + 20, padImage(pad).top + 20};
}
inline Point onSolo(int pad) {
    return {padCell(pad).x + 43, padCell(pad).y + 8};
}
inline Point onBinRow(int file) {
    return {40, kBinList.top + kBinRowHeight * file + 7};
}
/// A little right of a beat and in the middle of a pad's row.
inline Point onRow(int pad, double beat) {
    return {kPadPlot.left + static_cast<int>(54 * beat) + 4, kPadPlot.top + 10 * pad + 5};
}

}  // namespace marnoth::test
