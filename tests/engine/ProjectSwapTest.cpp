#include <atomic>
#include <chrono>
#include <thread>

#include "engine/ProjectRig.h"

namespace marnoth::test::project_swap_test {
namespace {

/// A project of `files` files and as many grains on each pad, which all sound the constant `level`.
ProjectBytes constantProject(std::int32_t files, float level) {
    ProjectBytes project;
    for (std::int32_t i = 0; i < files; ++i) {
        project.files.push_back(projectFile(2000, files, i));
        std::fill(project.files.back().data.begin(), project.files.back().data.end(), level);
    }
    for (std::size_t pad = 0; pad < project.pads.size(); ++pad) {
        project.pads[pad] = padOf(project.files[pad % static_cast<std::size_t>(files)]);
        project.pads[pad].settings.midiChannel = files;
    }
    return project;
}

/// What stands in the engine between two blocks; 0 when that is nothing, -1 when it is none of the projects.
std::int32_t projectSeen(ProjectRig& rig) {
    const std::int32_t files = rig.binFiles();
    for (std::int32_t pad = 0; pad < kPads; ++pad) {
        if (rig.count(kPadLoop, static_cast<std::uint32_t>(pad)) != files) return -1;
        if (files > 0 && rig.get(&IGrooveSampler::GetPadChannel, pad) != files) return -1;
    }
    for (std::int32_t file = 0; file < files; ++file) {
        if (rig.count(kBinLoop, static_cast<std::uint32_t>(file)) != files) return -1;
    }
    return files;
}

TEST(ProjectSwap, NoBlockSeesAProjectThatIsReadInPart) {
    constexpr int kLoads = 60;
    ProjectRig rig;
    const Bytes three = constantProject(3, 0.25f).bytes();
    const Bytes seven = constantProject(7, 0.5f).bytes();
    Bytes broken = seven;
    broken.resize(broken.size() - 1000);
    std::atomic<bool> done = false;
    std::thread editor([&] {
        for (int i = 0; i < kLoads; ++i) {
            EXPECT_EQ(rig.loadStream(i % 2 ? three : seven), S_OK);
            for (std::int32_t pad = 0; pad < kPads; ++pad) rig.engine.AuditionPad(pad, -1);
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
            if (i % 5 == 4) {
                EXPECT_EQ(rig.loadStream(broken), E_FAIL);
            }
        }
        done = true;
    });
    std::int64_t sounding = 0;
    bool whole = true;
    while (!done) {
        // The lock is anybody's for a moment: a loop that takes it at once again would keep it.
        std::this_thread::sleep_for(std::chrono::microseconds(50));
        CAutoLock lock(rig.engine);
        const std::int32_t files = projectSeen(rig);
        whole = whole && (files == 0 || files == 3 || files == 7);
        rig.block(64);
        sounding += files > 0 && peakOf(rig.audio[0]) > 0.1f;
    }
    editor.join();
    EXPECT_TRUE(whole);
    EXPECT_GT(sounding, 0);
}

}  // namespace
}  // namespace marnoth::test::project_swap_test
