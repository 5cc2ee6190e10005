#pragma once

#include "editor/PageLayout.h"
#include "editor/padeditor/TimeScale.h"

namespace marnoth::test {

inline constexpr std::int64_t kBeat = 62914560;

/// The view as the page begins with it: 54 pixels to the beat, rows of 10, twelve divisions of a beat.
inline TimeScale padView() {
    TimeScale scale;
    scale.view = kPadView;
    scale.plot = kPadPlot;
    return scale;
}

}  // namespace marnoth::test
