#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "engine/EditRig.h"
#include "engine/persist/ProjectTracks.h"
#include "project/ReadProject.h"

namespace marnoth::test {

inline float peakOf(const std::vector<float>& values) {
    float peak = 0;
    for (const float value : values) peak = std::max(peak, std::fabs(value));
    return peak;
}

/// An engine that loads projects.
struct ProjectRig : EditRig {
    using EditRig::EditRig;

    HRESULT loadProject(const Bytes& bytes) {
        const TempPath path(".mrn");
        WaveFile::writeBytes(path.path(), bytes);
        return engine.LoadProject(path.c_str());
    }
    HRESULT loadProject(const ProjectBytes& project) { return loadProject(project.bytes()); }
    HRESULT loadStream(const Bytes& bytes) {
        FaultyStream stream(bytes);
        return engine.LoadState(&stream);
    }
    KeyMapRecord keys(std::int32_t pad) {
        KeyMapRecord record{pad, -9, -9, -9, -9, -9};
        EXPECT_EQ(engine.GetKeyMapEntry(&record), S_OK);
        return record;
    }
    std::uint32_t auditionEnabled() {
        std::uint32_t value = 99;
        EXPECT_EQ(engine.GetAuditionEnabled(&value), S_OK);
        return value;
    }
    float playPad(std::int32_t pad, std::int64_t frames = 4096) {
        EXPECT_EQ(engine.AuditionPad(pad, -1), S_OK);
        const float peak = peakOf(render(frames));
        engine.ResetVoices();
        return peak;
    }

    /// What every failed load leaves: nothing of the old project, the default keys, and an instrument that
    /// plays whatever is loaded next.
    void expectUsableAndEmpty(const TempPath& nextFile) {
        expectEmpty();
        ASSERT_EQ(lay(3, nextFile).result, S_OK);
        EXPECT_GT(playPad(3, 512), 0.1f);
        EXPECT_EQ(engine.ClearProject(), S_OK);
    }
    void expectEmpty() {
        EXPECT_EQ(binFiles(), 0);
        const auto defaults = ProjectBytes::defaultKeys();
        for (std::int32_t pad = 0; pad < kPads; ++pad) {
            EXPECT_EQ(count(kPadLoop, static_cast<std::uint32_t>(pad)), 0);
            const KeyMapRecord entry = keys(pad);
            const std::int32_t key = defaults[static_cast<std::size_t>(pad)].lowKey;
            EXPECT_EQ(entry.lowKey, key);
            EXPECT_EQ(entry.highKey, key);
            EXPECT_EQ(entry.rootKey, key);
            EXPECT_EQ(entry.lowVelocity, 0);
            EXPECT_EQ(entry.highVelocity, 127);
        }
        EXPECT_EQ(engine.Undo(), S_FALSE);
    }
};

}  // namespace marnoth::test
