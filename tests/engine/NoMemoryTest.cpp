#include <functional>

#include "engine/EditRig.h"
#include "engine/ProjectRig.h"
#include "project/SavedProject.h"
#include "support/FailingAllocation.h"

namespace marnoth::test::no_memory_test {
namespace {

TEST(NoMemory, ALoadThatRunsOutAnywhereLeavesTheBinUnchanged) {
    EditRig rig(48000);
    const TempPath path = loopFile(1, 8000).writeTemp();
    std::int64_t call = 0;
    int failures = 0;
    for (bool done = false; !done;) {
        HRESULT result;
        std::int32_t bin = -7;
        std::uint32_t status = 99;
        {
            const FailingAllocation failing(++call);
            result = rig.engine.LoadFileToBin("file", path.c_str(), &bin, &status);
            done = !failing.happened();
        }
        ASSERT_LT(call, 10000);
        if (FAILED(result)) {
            ++failures;
            EXPECT_EQ(bin, -7) << call;
            EXPECT_EQ(rig.binFiles(), 0) << call;
        } else {
            // A grain whose tail found no memory plays without one.
            EXPECT_EQ(rig.count(kBinLoop, 0), 4) << call;
            rig.engine.RemoveBinFile(0);
        }
    }
    EXPECT_GT(failures, 10);
}

TEST(NoMemory, WithoutStorageForTheSamplesTheLoadSaysSo) {
    EditRig rig;
    const TempPath path = loopFile(1).writeTemp();
    bool said = false;
    for (std::int64_t call = 1; call < 200 && !said; ++call) {
        const FailingAllocation failing(call);
        std::int32_t bin = -7;
        std::uint32_t status = 99;
        said = rig.engine.LoadFileToBin("file", path.c_str(), &bin, &status) == E_OUTOFMEMORY;
    }
    EXPECT_TRUE(said);
}

TEST(NoMemory, UndoNeedsNone) {
    EditRig rig;
    rig.lay(0, loopFile(1, 8000));
    {
        const FailingAllocation failing(1);
        EXPECT_EQ(rig.engine.PushUndoState(), S_OK);
        rig.engine.SetPadRootNote(0, 9);
        EXPECT_EQ(rig.engine.Undo(), S_OK);
        EXPECT_FALSE(failing.happened());
    }
    EXPECT_EQ(rig.count(kPadLoop, 0), 4);
    EXPECT_EQ(rig.get(&IGrooveSampler::GetPadRootNote, 0), (((60 + 3) % 12) + 3) % 12);
    EXPECT_EQ(rig.engine.Undo(), S_FALSE);
}

TEST(NoMemory, LayingAFileOnAPadNeedsNone) {
    EditRig rig;
    rig.load(loopFile(1, 8000));
    {
        const FailingAllocation failing(1);
        EXPECT_EQ(rig.engine.LoadPadFromBin(0, 0), S_OK);
        EXPECT_FALSE(failing.happened());
    }
    EXPECT_EQ(rig.count(kPadLoop, 0), 4);
}

/// What can be seen of the pads 0 and 1.
std::vector<std::int64_t> seen(EditRig& rig) {
    std::vector<std::int64_t> all;
    for (const std::int32_t pad : {0, 1}) {
        const std::uint32_t index = static_cast<std::uint32_t>(pad);
        for (const GrainListEntry& grain : rig.padGrains(pad))
            all.insert(all.end(), {grain.startTicks, grain.endTicks, grain.transpose, grain.extra});
        all.insert(all.end(), {rig.count(kPadLoop, index), rig.length(kPadLoop, index)});
    }
    return all;
}

TEST(NoMemory, AnEditThatRunsOutAnywhereLeavesEverythingAsItWas) {
    using Edit = std::function<HRESULT(IGrooveSampler&)>;
    std::int32_t newIndex = 0;
    const std::vector<Edit> edits{
        [](IGrooveSampler& engine) { return engine.SetGrainTranspose(0, 2, 5); },
        [](IGrooveSampler& engine) { return engine.SetPadTail(0, 1); },
        [](IGrooveSampler& engine) { return engine.AddGrain(0, 1, 1, 5 * kBeat); },
        [](IGrooveSampler& engine) { return engine.ReplaceGrain(0, 3, 0, 0); },
        [](IGrooveSampler& engine) { return engine.DeleteGrain(0, 0, 0); },
        [&](IGrooveSampler& engine) { return engine.MoveGrain(0, 1, 1, 0, &newIndex, 0); },
        [&](IGrooveSampler& engine) { return engine.CopyGrain(0, 1, 0, 9 * kBeat, &newIndex); },
        [](IGrooveSampler& engine) { return engine.CommitGrainEdits(); },
        [](IGrooveSampler& engine) { return engine.RemoveBinFile(0); },
    };
    for (std::size_t which = 0; which < edits.size(); ++which) {
        EditRig rig;
        rig.lay(0, loopFile(1, 8000));
        // Two grains that are out of order, so that there is something to commit.
        rig.engine.CopyGrain(0, 0, 1, 3 * kBeat, &newIndex);
        rig.engine.CopyGrain(0, 0, 1, 1 * kBeat, &newIndex);
        const std::vector<std::int64_t> before = seen(rig);
        int failures = 0;
        for (std::int64_t call = 1;; ++call) {
            ASSERT_LT(call, 1000);
            HRESULT result;
            {
                const FailingAllocation failing(call);
                result = edits[which](rig.engine);
                if (!failing.happened()) break;
            }
            ++failures;
            ASSERT_EQ(result, E_OUTOFMEMORY) << "edit " << which << ", call " << call;
            ASSERT_EQ(seen(rig), before) << "edit " << which << ", call " << call;
        }
        EXPECT_GT(failures, 0) << "edit " << which;
        EXPECT_NE(seen(rig), before) << "edit " << which;
    }
}

TEST(NoMemory, ASaveThatRunsOutAnywhereKeepsTheFormerProject) {
    EditRig rig;
    rig.lay(0, loopFile(1, 11025));
    const ProjectPath path;
    ASSERT_EQ(rig.engine.SaveProject(0, path.c_str()), S_OK);
    const Bytes former = fileBytes(path.path());
    std::int64_t call = 0;
    int failures = 0;
    for (bool done = false; !done;) {
        HRESULT result;
        {
            const FailingAllocation failing(++call);
            result = rig.engine.SaveProject(0, path.c_str());
            done = !failing.happened();
        }
        ASSERT_LT(call, 10000);
        failures += result != S_OK;
        EXPECT_TRUE(result == S_OK || result == E_FAIL) << call;
        EXPECT_TRUE(fileBytes(path.path()) == former || fileBytes(path.backup()) == former) << call;
    }
    EXPECT_GT(failures, 10);
    EXPECT_EQ(fileBytes(path.path()), former);
    EXPECT_FALSE(std::filesystem::exists(path.backup()));
}

TEST(NoMemory, AProjectThatRunsOutAnywhereLeavesNothingAndTheDefaultKeys) {
    ProjectRig rig(48000);
    const TempPath path = twoFilesFourPads(2000).writeTemp();
    std::int64_t call = 0;
    int failures = 0;
    for (bool done = false; !done;) {
        HRESULT result;
        {
            const FailingAllocation failing(++call);
            result = rig.engine.LoadProject(path.c_str());
            done = !failing.happened();
        }
        ASSERT_LT(call, 10000);
        if (FAILED(result)) {
            ++failures;
            EXPECT_EQ(result, E_OUTOFMEMORY) << call;
            rig.expectEmpty();
        } else {
            EXPECT_EQ(rig.binFiles(), 2) << call;
            EXPECT_EQ(rig.count(kPadLoop, 2), 4) << call;
        }
    }
    EXPECT_GT(failures, 10);
}

}  // namespace
}  // namespace marnoth::test::no_memory_test
