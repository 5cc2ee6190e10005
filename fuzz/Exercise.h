#pragma once

#include <algorithm>
#include <cstdint>

#include "fuzz/Check.h"
#include "seam/IGrooveSampler.h"
#include "support/EngineHost.h"

namespace marnoth::fuzz {

inline constexpr std::int32_t kMostGrainsPlayed = 4;

/// Reads every byte that a list of grains promises, and lets the list go.
inline void readList(GrainListEntry* list, std::int32_t count) {
    float sum = 0;
    for (std::int32_t i = 0; i < count; ++i) {
        const GrainListEntry& entry = list[i];
        if (!entry.plotData) continue;
        const std::int64_t values = std::int64_t{entry.plotLength} * entry.channels * 2;
        for (std::int64_t k = 0; k < values; ++k) sum += entry.plotData[k];
    }
    [[maybe_unused]] volatile const float kept = sum;
    CoTaskMemFree(list);
}

inline void readLists(IGrooveSampler& engine) {
    for (std::int32_t i = 0; i < kPads; ++i) {
        GrainListEntry* list = nullptr;
        std::int32_t count = 0;
        if (engine.GetPadGrainList(i, &list, &count) == S_OK) readList(list, count);
        list = nullptr;
        count = 0;
        if (engine.GetBinGrainList(i, &list, &count) == S_OK) readList(list, count);
    }
}

/// Plays all files and pads for a few blocks, whole and grain by grain, transposed and with tails, as an
/// engine that has just loaded something would be used.
inline void playEverything(test::EngineHost& host) {
    IGrooveSampler& engine = host.engine;
    std::int32_t files = 0;
    engine.GetBinFileCount(&files);
    engine.SetAuditionEnabled(1);
    for (std::int32_t bin = 0; bin < files; ++bin) engine.AuditionBinFile(bin, -1);
    for (std::int32_t pad = 0; pad < kPads; ++pad) engine.AuditionPad(pad, -1);
    host.block(64);
    engine.PushUndoState();
    for (std::int32_t pad = 0; pad < kPads; ++pad) {
        std::int32_t grains = 0;
        engine.GetGrainCount(kPadLoop, static_cast<std::uint32_t>(pad), &grains);
        engine.SetPadTail(pad, 1);
        for (std::int32_t grain = 0; grain < std::min(grains, kMostGrainsPlayed); ++grain) {
            engine.SetGrainTranspose(pad, grain, grain * 5 - 7);
            engine.AuditionPad(pad, grain);
        }
    }
    for (const std::int32_t frames : {1, 500, 64}) host.block(frames);
    engine.StopPad(-1);
    engine.Undo();
    host.block(512);
}

}  // namespace marnoth::fuzz
