#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <thread>

#include "engine/EditRig.h"
#include "project/SavedProject.h"
#include "support/FaultyStream.h"

namespace marnoth::test::project_concurrency_test {
namespace {

/// A stream that looks, at every write, whether another thread gets the engine's lock.
class LockProbe : public FaultyStream {
public:
    explicit LockProbe(EngineHost& host) : host_(host) {}

    HRESULT Write(const void* from, ULONG count, ULONG* written) override {
        ++writes;
        if (!waiting_.valid()) lookOnce();
        return FaultyStream::Write(from, count, written);
    }

    int writes = 0;
    int blocks = 0;  ///< rendered while a write was under way

private:
    void lookOnce() {
        auto block = std::async(std::launch::async, [this] { host_.block(64); });
        if (block.wait_for(std::chrono::seconds(20)) == std::future_status::ready) {
            ++blocks;
        } else {
            waiting_ = std::move(block);
        }
    }

    EngineHost& host_;
    std::future<void> waiting_;  ///< the first block that didn't get the lock
};

TEST(ProjectConcurrency, BlocksGoOnWhileTheBytesGoOut) {
    EditRig rig;
    rig.lay(0, loopFile(1));
    LockProbe stream(rig);
    EXPECT_EQ(rig.engine.SaveState(&stream), S_OK);
    EXPECT_GT(stream.writes, 50);
    EXPECT_EQ(stream.blocks, stream.writes);
}

TEST(ProjectConcurrency, SavesWhileAnotherThreadRendersAreAllTheSame) {
    EditRig rig;
    rig.lay(0, loopFile(2));
    rig.engine.AuditionPad(0, -1);
    FaultyStream before;
    ASSERT_EQ(rig.engine.SaveState(&before), S_OK);
    std::atomic<bool> done{false};
    std::thread player([&] {
        while (!done) rig.block(64);
    });
    for (int i = 0; i < 20; ++i) {
        FaultyStream stream;
        EXPECT_EQ(rig.engine.SaveState(&stream), S_OK);
        EXPECT_EQ(stream.bytes, before.bytes);
    }
    done = true;
    player.join();
}

TEST(ProjectConcurrency, ASaveKeepsTheAudioOfFilesThatAreRemovedMeanwhile) {
    class Remover : public FaultyStream {
    public:
        explicit Remover(EditRig& host) : host_(host) {}
        HRESULT Write(const void* from, ULONG count, ULONG* written) override {
            if (writes++ == 0) host_.engine.ClearProject();
            return FaultyStream::Write(from, count, written);
        }
        int writes = 0;

    private:
        EditRig& host_;
    };
    EditRig rig;
    rig.lay(0, loopFile(1));
    FaultyStream whole;
    ASSERT_EQ(rig.engine.SaveState(&whole), S_OK);
    Remover stream(rig);
    EXPECT_EQ(rig.engine.SaveState(&stream), S_OK);
    EXPECT_EQ(stream.bytes, whole.bytes);
    EXPECT_EQ(rig.binFiles(), 0);
}

TEST(ProjectConcurrency, TwoSavesUnderOneNameComeOneAfterTheOther) {
    EditRig small;
    EditRig large;
    large.load(plainFile(2, 44100));
    const ProjectPath path;
    auto saves = [&path](EditRig& rig) {
        return std::async(std::launch::async, [&path, &rig] {
            for (int i = 0; i < 20; ++i) {
                if (rig.engine.SaveProject(0, path.c_str()) != S_OK) return false;
            }
            return true;
        });
    };
    auto first = saves(small);
    auto second = saves(large);
    EXPECT_TRUE(first.get());
    EXPECT_TRUE(second.get());
    EXPECT_TRUE(isSavedProject(path.path()));
    EXPECT_FALSE(std::filesystem::exists(path.backup()));
}

}  // namespace
}  // namespace marnoth::test::project_concurrency_test
