#pragma once

#include <gtest/gtest.h>

#include <cstdint>

#include "host/FilterHost.h"
#include "seam/MusicalTime.h"
#include "support/WaveFile.h"

namespace marnoth::test {

/// An instrument with a loop of two beats laid on pad 2, and what a user may have set besides.
struct ProjectHost : FilterHost {
    ProjectHost() { EXPECT_EQ(connectInput(), S_OK); }
    void layLoop() {
        const auto wave = WaveFile()
                              .frames(44100, [](auto frame, int) { return (frame % 100) / 100.0 - 0.5; })
                              .acid({.beats = 2})
                              .writeTemp();
        std::int32_t bin = -1;
        std::uint32_t status = 0;
        ASSERT_EQ(filter->LoadFileToPad(2, "Loop", wave.c_str(), &bin, &status), S_OK);
        ASSERT_EQ(filter->SetPadVolume(2, 0.75f), S_OK);
        ASSERT_EQ(filter->SetPadRootNote(2, 57), S_OK);
        ASSERT_EQ(filter->SetPadOutput(2, 5), S_OK);
        ASSERT_EQ(filter->SetGrainTranspose(2, 0, -3), S_OK);
        const KeyMapRecord keys{2, 40, 50, 45, 1, 100};
        ASSERT_EQ(filter->SetKeyMapEntry(&keys), S_OK);
    }
    std::int32_t grains(std::int32_t pad) {
        std::int32_t count = -1;
        EXPECT_EQ(filter->GetGrainCount(kPadLoop, static_cast<std::uint32_t>(pad), &count), S_OK);
        return count;
    }
    std::int32_t files() {
        std::int32_t count = -1;
        EXPECT_EQ(filter->GetBinFileCount(&count), S_OK);
        return count;
    }
    void expectLoop() {
        EXPECT_EQ(files(), 1);
        EXPECT_GT(grains(2), 0);
        EXPECT_EQ(grains(1), 0);
        float volume = 0;
        filter->GetPadVolume(2, &volume);
        EXPECT_EQ(volume, 0.75f);
        std::int32_t note = 0, semitones = 0;
        filter->GetPadRootNote(2, &note);
        EXPECT_EQ(note, 57);
        filter->GetGrainTranspose(2, 0, &semitones);
        EXPECT_EQ(semitones, -3);
        std::uint32_t output = 0;
        filter->GetPadOutput(2, &output);
        EXPECT_EQ(output, 5u);
        std::int64_t length = 0;
        filter->GetLoopLength(kPadLoop, 2, &length);
        EXPECT_EQ(length, 2 * kTicks16PerBeat);
        KeyMapRecord keys{2, 0, 0, 0, 0, 0};
        filter->GetKeyMapEntry(&keys);
        EXPECT_EQ(keys.lowKey, 40);
        EXPECT_EQ(keys.rootKey, 45);
        EXPECT_EQ(keys.highVelocity, 100);
        char name[260]{};
        filter->GetBinFileName(0, 0, name);
        EXPECT_STREQ(name, "Loop");
    }
    void expectEmpty() {
        EXPECT_EQ(files(), 0);
        EXPECT_EQ(grains(2), 0);
        KeyMapRecord keys{2, 0, 0, 0, 0, 0};
        filter->GetKeyMapEntry(&keys);
        EXPECT_EQ(keys.lowKey, keys.highKey) << "one key to a pad";
    }
};

}  // namespace marnoth::test
