#include "editor/strip/StripPane.h"

#include "editor/BoundEngine.h"
#include "editor/PageLayout.h"
#include "editor/PageView.h"
#include "editor/skin/Skin.h"
#include "editor/strip/WaveformPlot.h"
#include "platform/drawing/Surface.h"

namespace marnoth {

namespace {

constexpr int kKeyMapGround = 227;
constexpr int kWaveformGround = 228;
constexpr int kHint = 226;
constexpr Rect kHintPlace = Rect::at(98, 236, 400, 10);  ///< beside the strip's heading
constexpr int kOctavesShown = 6;

}  // namespace

StripPane::StripPane(PaneParent& page, Font& font) : page_(page), font_(font) {
    keyMap_.setUp(kKeyMapRect, kOctavesShown);
}

KeyMapRecord StripPane::keyMapEntry() const {
    return page_.engine().keyMapEntry(page_.view().currentPad);
}

void StripPane::paint(Surface& surface) {
    surface.BitBlt(kStripPanel, skinBitmap(showsKeyMap_ ? kKeyMapGround : kWaveformGround), {0, 0});
    if (isEmpty()) surface.BitBlt(kHintPlace, skinBitmap(kHint), {0, 0});
    surface.SelectClipRgn(kStripPlot);
    if (showsKeyMap_)
        keyMap_.DrawKeyMap(surface, kStripPlot, keyMapEntry(), font_);
    else
        paintWaveforms(surface);
    surface.SelectClipRgn({});
}

bool StripPane::isEmpty() const {
    // What lies on pads comes from files that are in the Loop Bin.
    return page_.engine() && page_.engine().binFileCount() == 0;
}

void StripPane::paintWaveforms(Surface& surface) {
    const PageView& view = page_.view();
    plot_.clear();
    plotted_ = view.currentBinFile;
    if (plotted_ < 0) return;
    drawPath(surface, kStripPlot, page_.engine().binFileName(plotted_, true), font_);
    const FetchedGrains grains = page_.engine().binGrains(plotted_);
    plot_ = drawWaveforms(surface, kStripPlot, grains.entries(), plotted_, view.binSelection);
}

bool StripPane::HitTestViewTab(Point at) {
    const bool keyMap = kKeyMapTab.contains(at);
    if (!keyMap && !kWaveformTab.contains(at)) return false;
    showsKeyMap_ = keyMap;
    return true;
}

std::optional<int> StripPane::grainAt(Point at) {
    const int file = page_.view().currentBinFile;
    if (showsKeyMap_ || file < 0 || !kStripPlot.contains(at)) return {};
    // A file that became current since the last paint lies there already.
    if (file != plotted_) plot_ = plotWaveforms(kStripPlot, page_.engine().binGrains(file).entries());
    plotted_ = file;
    for (const EventPlotInfo& info : plot_)
        if (info.rect.contains(at)) return info.grain;
    return {};
}

bool StripPane::showsKeyMapAt(Point at) const {
    return showsKeyMap_ && kStripPlot.contains(at);
}

bool StripPane::pressKeyMap(Point at) {
    int note = 0;
    bool drag = false;
    return keyMap_.OnKeyMapPress(at, keyMapEntry(), &note, &drag);
}

KeyMapRecord StripPane::dragKeyMap(Point at, bool shiftHeld) {
    KeyMapRecord entry = keyMapEntry();
    keyMap_.OnKeyMapDrag(at, shiftHeld, &entry);
    page_.engine().call(&IGrooveSampler::SetKeyMapEntry, &entry);
    page_.invalidate(kStripPanel);
    return entry;
}

}  // namespace marnoth
