#include <atomic>
#include <filesystem>
#include <functional>
#include <thread>

#include "engine/EditRig.h"

namespace marnoth::test::changes_test {
namespace {

class Changes : public testing::Test {
protected:
    Changes() { rig.lay(0, loopFile(1)); }
    /// Whether the number has grown.
    bool countsAs(const std::function<void(IGrooveSampler&)>& what) {
        const std::uint64_t before = count();
        what(rig.engine);
        EXPECT_GE(count(), before);
        return count() != before;
    }
    std::uint64_t count() {
        std::uint64_t number = 0;
        EXPECT_EQ(rig.engine.GetChanges(&number), S_OK);
        return number;
    }

    EditRig rig;
};

TEST_F(Changes, OfTheMixAreLostInNoEditThatGoesOnMeanwhile) {
    IGrooveSampler& engine = rig.engine;
    for (int grain = 0; grain < 300; ++grain) engine.AddGrain(0, grain % 4, 0, std::int64_t{grain} << 20);
    std::atomic<bool> ends = false;
    std::atomic<int> edits = 0;
    std::thread editor([&] {
        for (int i = 0; !ends; ++i) {
            EXPECT_EQ(engine.SetGrainTranspose(0, i % 300, i % 12), S_OK);
            ++edits;
        }
    });
    int lost = 0;
    for (int i = 0; i < 1000 || edits < 100; ++i) {
        const float volume = static_cast<float>(i % 1000) / 1000.0f;
        const auto mute = static_cast<std::uint32_t>(i % 2);
        engine.SetPadVolume(0, volume);
        engine.SetPadMute(0, mute);
        std::this_thread::yield();
        lost += rig.get(&IGrooveSampler::GetPadMute, 0) != mute;
        float heard = -1;
        engine.GetPadVolume(0, &heard);
        lost += heard != volume;
    }
    ends = true;
    editor.join();
    EXPECT_EQ(lost, 0);
}

TEST_F(Changes, GrowWithWhateverAProjectKeeps) {
    std::int32_t index = 0;
    EXPECT_TRUE(countsAs([](IGrooveSampler& engine) { engine.SetPadVolume(0, 0.5f); }));
    EXPECT_TRUE(countsAs([](IGrooveSampler& engine) { engine.SetGrainTranspose(0, 1, 5); }));
    EXPECT_TRUE(countsAs([&](IGrooveSampler& engine) { engine.MoveGrain(0, 1, 2, 0, &index, 0); }));
    EXPECT_TRUE(countsAs([](IGrooveSampler& engine) { engine.SetAuditionEnabled(1); }));
    EXPECT_TRUE(countsAs([](IGrooveSampler& engine) {
        const KeyMapRecord keys{3, 40, 50, 45, 0, 127};
        engine.SetKeyMapEntry(&keys);
    }));
    EXPECT_TRUE(countsAs([](IGrooveSampler& engine) { engine.RemoveBinFile(0); }));
    EXPECT_TRUE(countsAs([](IGrooveSampler& engine) { engine.ClearProject(); }));
}

TEST_F(Changes, GrowWithUndoButNotWithWhatItKeeps) {
    EXPECT_FALSE(countsAs([](IGrooveSampler& engine) { engine.PushUndoState(); }));
    EXPECT_TRUE(countsAs([](IGrooveSampler& engine) { engine.Undo(); }));
    EXPECT_TRUE(countsAs([](IGrooveSampler& engine) { engine.Redo(); }));
}

TEST_F(Changes, StayThroughPlayingAuditionsReadingAndSaves) {
    rig.engine.SetAuditionEnabled(1);
    const TempPath place;
    const std::string file = std::string(place.c_str()) + ".mrn";
    EXPECT_FALSE(countsAs([](IGrooveSampler& engine) { engine.AuditionPad(0, -1); }));
    EXPECT_FALSE(countsAs([](IGrooveSampler& engine) { engine.AuditionPad(0, 1); }));
    EXPECT_FALSE(countsAs([](IGrooveSampler& engine) { engine.StopPad(-1); }));
    EXPECT_FALSE(countsAs([](IGrooveSampler& engine) { engine.AuditionBinFile(0, 1); }));
    EXPECT_FALSE(countsAs([](IGrooveSampler& engine) { engine.StopBinAudition(-1); }));
    EXPECT_FALSE(countsAs([](IGrooveSampler& engine) { engine.SetRefreshRequest(1); }));
    EXPECT_FALSE(
        countsAs([&](IGrooveSampler& engine) { EXPECT_EQ(engine.SaveProject(0, file.c_str()), S_OK); }));
    std::filesystem::remove(file);
    EXPECT_EQ(rig.engine.GetChanges(nullptr), E_POINTER);
}

TEST_F(Changes, WhatFailsIsNone) {
    EXPECT_FALSE(countsAs([](IGrooveSampler& engine) { engine.SetPadVolume(16, 0.5f); }));
    EXPECT_FALSE(countsAs([](IGrooveSampler& engine) { engine.DeleteGrain(0, 99, 0); }));
}

}  // namespace
}  // namespace marnoth::test::changes_test
