#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "editor/padeditor/EventPlot.h"

namespace marnoth {

class CEventSelection;
class Font;
class Surface;
struct GrainListEntry;

/// A path as the strip shows it: of 100 characters and more, the last 97 behind three dots. UTF-8.
std::string shownPath(std::string_view path);

/// Draws the path of the current file over its waveforms. `plot` is the strip's plot, the clip as it is
/// found.
void drawPath(Surface& surface, const Rect& plot, std::string_view path, Font& small);

/// Where the grains of a file lie, side by side, as far as they begin in the plot.
EventPlot plotWaveforms(const Rect& plot, std::span<const GrainListEntry> grains);

/// Draws the grains of the file `bin` side by side, those of `selection` on a light ground, and gives where
/// each one lies. Grains that begin right of the plot are neither drawn nor given.
EventPlot drawWaveforms(Surface& surface, const Rect& plot, std::span<const GrainListEntry> grains,
                        std::int32_t bin, const CEventSelection& selection);

}  // namespace marnoth
