/// What the page draws by itself but for the Pad Editor view.

#include <string_view>

#include "editor/GrooveSamplerPropPage.h"
#include "editor/PageLayout.h"
#include "editor/Palette.h"
#include "editor/Skin.h"
#include "editor/WaveformPlot.h"
#include "platform/drawing/Surface.h"

namespace marnoth {

namespace {

constexpr int kKeyMapGround = 227;
constexpr int kWaveformGround = 228;
constexpr int kPadBlockGround = 290;
constexpr Rect kPadBlockGroundPlace = Rect::at(135, 2, 360, 232);
constexpr int kFirstPadPlaying = 240;  ///< pad by pad: playing, idle
constexpr int kEndingLength = 4;       ///< ".wav"

/// Without its last four characters, whatever they are. UTF-8.
std::string_view withoutEnding(std::string_view name) {
    for (int left = kEndingLength; left > 0 && !name.empty(); --left) {
        while (name.size() > 1 && (static_cast<unsigned char>(name.back()) & 0xC0u) == 0x80u)
            name.remove_suffix(1);
        name.remove_suffix(1);
    }
    return name;
}

}  // namespace

void CGrooveSamplerPropPage::paintPage(Surface& backBuffer) {
    if (RectVisible(kStripPanel)) paintStrip(backBuffer);
    if (RectVisible(kPadBlock)) paintPadBlock(backBuffer);
    if (RectVisible(kBinList)) paintBinList(backBuffer);
    if (RectVisible(kPadView)) paintPadEditor(backBuffer);
}

void CGrooveSamplerPropPage::paintStrip(Surface& surface) {
    surface.BitBlt(kStripPanel, skinBitmap(m_showKeyMap ? kKeyMapGround : kWaveformGround), {0, 0});
    surface.SelectClipRgn(kStripPlot);
    if (m_showKeyMap) {
        m_keyMapEditor.DrawKeyMap(surface, kStripPlot, keyMapEntry(), *m_smallFont);
    } else {
        m_binPlot.clear();
        if (m_currentBinFile >= 0) {
            drawPath(surface, kStripPlot, binFileName(m_currentBinFile, true), *m_smallFont);
            m_binPlot = drawWaveforms(surface, kStripPlot, binGrains(m_currentBinFile).entries(),
                                      m_currentBinFile, m_binSelection);
        }
    }
    surface.SelectClipRgn({});
}

void CGrooveSamplerPropPage::paintPadBlock(Surface& surface) {
    surface.BitBlt(kPadBlockGroundPlace, skinBitmap(kPadBlockGround), {0, 0});
    for (int pad = 0; pad < 16; ++pad) {
        const bool playing = isOn(&IGrooveSampler::GetPadPlaying, pad);
        surface.BitBlt(padImage(pad), skinBitmap(kFirstPadPlaying + 2 * pad + (playing ? 0 : 1)), {0, 0});
    }
    constexpr int kCellWidth = kPadBlock.width() / 4;
    constexpr int kCellHeight = (kPadBlock.height() - 2) / 4;
    const int x = m_currentPad % 4 * kCellWidth + kPadBlock.left - 2;
    const int y = m_currentPad / 4 * kCellHeight + kPadBlock.top - 2;
    surface.SelectPen({kPalette[8], 2});
    surface.SelectBrush({});
    surface.RoundRect({x, y, x + kCellWidth + 1, y + kCellHeight + 1}, 1, 1);
}

void CGrooveSamplerPropPage::paintBinList(Surface& surface) {
    surface.SelectClipRgn(kBinList);
    surface.SelectPen({kPalette[1]});
    surface.SelectBrush(kPalette[1]);
    surface.SelectFont(m_largeFont.get());
    surface.Rectangle(kBinList);
    const int count = get(&IGrooveSampler::GetBinFileCount, std::int32_t{0});
    m_binVertical.SetTrackPosition(kBinRowHeight * count, m_binVertical.position(), m_binVertical.page());
    for (int file = 0; file < count; ++file) {
        const bool current = file == m_currentBinFile;
        surface.SetTextColor(kPalette[current ? 0 : 8]);
        surface.SetGroundColor(kPalette[current ? 8 : 1]);
        const Point at{kBinList.left - m_binHorizontal.position() + 4,
                       kBinRowHeight * file - m_binVertical.position() + kBinList.top};
        surface.TextOut(at, withoutEnding(binFileName(file, false)));
    }
    surface.SelectClipRgn({});
    m_binVertical.paint(surface);
    m_binHorizontal.paint(surface);
}

}  // namespace marnoth
