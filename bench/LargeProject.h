#pragma once

#include <cstdint>

#include "seam/Limits.h"
#include "support/ProjectBytes.h"

namespace marnoth::bench {

/// How long a grain is: in 16.16 ticks, and in frames of its file.
struct GrainLength {
    std::int64_t ticks;
    std::int64_t frames;
};

/// A project whose first `pads` pads all play a file of `cuts` grains, over and over until there are
/// `grainsPerPad` of them. A pad can't be longer than 12,288,000 frames.
inline test::ProjectBytes largeProject(std::int32_t cuts, std::int32_t grainsPerPad, GrainLength grain,
                                       int pads = kPads) {
    test::ProjectBytes project;
    test::ProjectBytes::File file = test::projectFile(cuts * grain.frames, cuts);
    file.settings.lengthTicks = cuts * grain.ticks;
    for (std::int32_t i = 0; i < cuts; ++i) {
        file.grains[static_cast<std::size_t>(i)].startTicks = i * grain.ticks;
        file.grains[static_cast<std::size_t>(i)].lengthTicks = grain.ticks;
    }
    test::ProjectBytes::Pad pad = test::padOf(file);
    pad.settings.lengthTicks = grainsPerPad * grain.ticks;
    pad.settings.lengthSamples = grainsPerPad * grain.frames;
    pad.grains.clear();
    for (std::int32_t i = 0; i < grainsPerPad; ++i) {
        pad.grains.push_back(file.grains[static_cast<std::size_t>(i % cuts)]);
        pad.grains.back().startTicks = i * grain.ticks;
        pad.grains.back().startSamples = i * grain.frames;
    }
    project.files.push_back(std::move(file));
    for (int i = 0; i < pads; ++i) project.pads[static_cast<std::size_t>(i)] = pad;
    return project;
}

}  // namespace marnoth::bench
