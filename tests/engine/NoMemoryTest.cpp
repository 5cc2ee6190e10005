#include <new>

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

TEST(NoMemory, AFailedPushLeavesUndoAndPadsAsTheyWere) {
    EditRig rig;
    rig.lay(0, loopFile(1, 8000));
    rig.engine.PushUndoState();
    rig.engine.SetPadRootNote(0, 9);
    for (const std::int64_t call : {1, 5, 18}) {
        const FailingAllocation failing(call);
        EXPECT_THROW(rig.engine.PushUndoState(), std::bad_alloc);
    }
    EXPECT_EQ(rig.count(kPadLoop, 0), 4);
    EXPECT_EQ(rig.engine.Redo(), S_FALSE);
    EXPECT_EQ(rig.engine.Undo(), S_OK);
    EXPECT_EQ(rig.get(&IGrooveSampler::GetPadRootNote, 0), (((60 + 3) % 12) + 3) % 12);
    EXPECT_EQ(rig.engine.Undo(), S_FALSE);
}

TEST(NoMemory, AFileThatCantBeCopiedToAPadFails) {
    EditRig rig;
    rig.load(loopFile(1, 8000));
    const FailingAllocation failing(2);
    EXPECT_EQ(rig.engine.LoadPadFromBin(0, 0), E_FAIL);
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
