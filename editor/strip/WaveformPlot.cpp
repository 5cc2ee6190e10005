#include "editor/strip/WaveformPlot.h"

#include <algorithm>
#include <cstddef>

#include "editor/Truncate.h"
#include "editor/padeditor/EventSelection.h"
#include "editor/skin/Palette.h"
#include "platform/drawing/Surface.h"
#include "seam/IGrooveSampler.h"

namespace marnoth {
namespace {

constexpr std::size_t kLongestPath = 99;  ///< characters
constexpr std::size_t kShownOfLongPath = 97;
constexpr int kPathHeight = 12;
constexpr int kFirstGrain = 8;  ///< pixels from the plot's left edge

/// Where a channel of a wave is drawn.
struct Lane {
    int centre;  ///< client pixels
    double amplitude;
    int channel;
};

bool beginsCharacter(char c) {
    return (static_cast<unsigned char>(c) & 0xC0u) != 0x80u;
}

/// The columns of a lane that lie in the plot: from the first to the second value of each.
void drawColumn(Surface& surface, int x, const float* values, const Lane& lane) {
    const float* pair = values + std::ptrdiff_t{2} * lane.channel;
    drawLine(surface, {x, lane.centre + truncateToPixel(-pair[0] * lane.amplitude)},
             {x, lane.centre + truncateToPixel(-pair[1] * lane.amplitude)});
}

void drawWave(Surface& surface, const Rect& plot, const Rect& area, const GrainListEntry& grain,
              std::span<const Lane> lanes) {
    for (const Lane& lane : lanes) drawLine(surface, {area.left, lane.centre}, {area.right, lane.centre});
    if (!grain.plotData) return;
    // A grain begins right of the plot's left edge; columns behind the right one can't be seen.
    for (int x = area.left; x < std::min(area.right, plot.right); ++x) {
        const std::ptrdiff_t column = x - area.left;
        const float* values = grain.plotData + column * 2 * static_cast<std::ptrdiff_t>(lanes.size());
        for (const Lane& lane : lanes) drawColumn(surface, x, values, lane);
    }
}

void drawBoundary(Surface& surface, const Rect& area) {
    surface.SetGroundColor(kPalette[0]);
    surface.SelectPen({kPalette[2], 0, true});
    drawLine(surface, {area.left, area.top}, {area.left, area.bottom});
}

void drawStripGrain(Surface& surface, const Rect& plot, const Rect& area, const GrainListEntry& grain,
                    bool selected) {
    if (selected) {
        surface.SelectPen({kPalette[4]});
        surface.SelectBrush(kPalette[4]);
        surface.Rectangle(area);
    }
    surface.SelectPen({selected ? kPalette[7] : kPalette[6]});
    const int height = area.height();
    const Lane mono{area.top + height / 2, 0.45 * height, 0};
    const Lane stereo[]{{area.top + height / 4, 0.225 * height, 0},
                        {area.top + 3 * height / 4, 0.225 * height, 1}};
    drawWave(surface, plot, area, grain,
             grain.channels == 2 ? std::span<const Lane>{stereo} : std::span{&mono, 1});
    drawBoundary(surface, area);
}

}  // namespace

std::string shownPath(std::string_view path) {
    if (static_cast<std::size_t>(std::count_if(path.begin(), path.end(), beginsCharacter)) <= kLongestPath)
        return std::string{path};
    std::size_t begin = path.size();
    for (std::size_t shown = 0; shown < kShownOfLongPath; ++shown) do
            --begin;
        while (!beginsCharacter(path[begin]));
    return "..." + std::string{path.substr(begin)};
}

void drawPath(Surface& surface, const Rect& plot, std::string_view path, Font& small) {
    surface.SelectFont(&small);
    surface.SetTextColor(kPalette[6]);
    surface.SetGroundColor(kPalette[1]);
    surface.TextOut({plot.left + 2, plot.top}, shownPath(path));
}

EventPlot plotWaveforms(const Rect& plot, std::span<const GrainListEntry> grains) {
    EventPlot laid;
    int offset = kFirstGrain;
    for (const GrainListEntry& grain : grains) {
        // The edge is a client pixel and the offset isn't: a few grains are laid out that can't be seen.
        if (offset > plot.right) break;
        const int width = std::clamp(grain.plotLength, 0, kFarPixel);
        const int left = plot.left + offset;
        const Rect area{left, plot.top + kPathHeight, left + width, plot.bottom};
        laid.push_back({static_cast<std::int32_t>(laid.size()), 0, area});
        offset += width;
    }
    return laid;
}

EventPlot drawWaveforms(Surface& surface, const Rect& plot, std::span<const GrainListEntry> grains,
                        std::int32_t bin, const CEventSelection& selection) {
    EventPlot laid = plotWaveforms(plot, grains);
    for (const EventPlotInfo& info : laid)
        drawStripGrain(surface, plot, info.rect, grains[static_cast<std::size_t>(info.grain)],
                       selection.contains(bin, info.grain));
    return laid;
}

}  // namespace marnoth
