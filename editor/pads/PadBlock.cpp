#include "editor/pads/PadBlock.h"

#include "editor/BoundEngine.h"
#include "editor/PageLayout.h"
#include "editor/PageView.h"
#include "editor/skin/Palette.h"
#include "editor/skin/Skin.h"
#include "platform/drawing/Surface.h"
#include "seam/Limits.h"

namespace marnoth {

namespace {

constexpr int kGroundImage = 290;
constexpr Rect kGroundPlace = Rect::at(135, 2, 360, 232);
constexpr int kFirstPlaying = 240;  ///< pad by pad: playing, idle

}  // namespace

void PadBlock::paint(Surface& surface) {
    surface.BitBlt(kGroundPlace, skinBitmap(kGroundImage), {0, 0});
    for (int pad = 0; pad < kPads; ++pad) {
        const bool playing = page_.engine().isOn(&IGrooveSampler::GetPadPlaying, pad);
        surface.BitBlt(padImage(pad), skinBitmap(kFirstPlaying + 2 * pad + (playing ? 0 : 1)), {0, 0});
    }
    constexpr int kCellWidth = kPadBlock.width() / kPadColumns;
    constexpr int kCellHeight = (kPadBlock.height() - 2) / kPadColumns;
    const int current = page_.view().currentPad;
    const int x = current % kPadColumns * kCellWidth + kPadBlock.left - 2;
    const int y = current / kPadColumns * kCellHeight + kPadBlock.top - 2;
    surface.SelectPen({kPalette[8], 2});
    surface.SelectBrush({});
    surface.RoundRect({x, y, x + kCellWidth + 1, y + kCellHeight + 1}, 1, 1);
}

std::optional<PadHit> PadBlock::HitTestPad(Point at) const {
    if (!kPadBlock.contains(at)) return {};
    for (int pad = 0; pad < kPads; ++pad)
        if (padImage(pad).contains(at)) return PadHit{pad, true};
    const int column = (at.x - kPadBlock.left) * kPadColumns / kPadBlock.width();
    const int row = (at.y - kPadBlock.top) * kPadColumns / kPadBlock.height();
    return PadHit{column + kPadColumns * row, false};
}

std::optional<int> PadBlock::imageAt(Point at) const {
    const auto hit = HitTestPad(at);
    if (!hit || !hit->onImage) return {};
    return hit->pad;
}

void PadBlock::invalidateImages() {
    for (int pad = 0; pad < kPads; ++pad) page_.invalidate(padImage(pad));
}

void PadBlock::invalidateRing(int pad) {
    const Point cell = padCell(pad);
    // With the width of its pen.
    page_.invalidate({cell.x - 3, cell.y - 41, cell.x + 91, cell.y + 21});
}

}  // namespace marnoth
