#include <gtest/gtest.h>

#include <functional>
#include <random>

#include "hostkit/LiveRig.h"
#include "support/Sparingly.h"

/// What live shells hear of the steady mode: the same messages, and the same commands on the same frames,
/// give the same audio however blocks lie.
namespace marnoth::test::live_steady_test {
namespace {

constexpr std::int64_t kFrames = 30000;

/// Something that happens at a frame: a message lies anywhere in a block, a command between two.
struct Act {
    std::int64_t frame;
    std::function<void(LiveRig&, std::int32_t)> what;  ///< is told the frame of the block
    bool isMessage;
};

class Scene {
public:
    void note(std::int64_t frame, int key, std::int64_t length) {
        at(
            frame, [key](LiveRig& rig, std::int32_t in) { rig.on(in, key); }, true);
        end_ = frame + length;
        at(
            end_, [key](LiveRig& rig, std::int32_t in) { rig.off(in, key); }, true);
    }
    /// Of the last note.
    std::int64_t end() const { return end_; }
    void command(std::int64_t frame, std::function<void(LiveHost&)> what) {
        at(
            frame, [what = std::move(what)](LiveRig& rig, std::int32_t) { what(rig.host); }, false);
    }
    /// Of the mix's left side; `next` gives the length of each block.
    template <class Next>
    std::vector<float> play(const std::vector<TempPath>& files, Next next) {
        std::stable_sort(acts_.begin(), acts_.end(),
                         [](const Act& a, const Act& b) { return a.frame < b.frame; });
        LiveRig rig({0});
        layPads(rig.host.sampler(), files);
        auto act = acts_.begin();
        for (std::int64_t frame = 0; frame < kFrames;) {
            for (; act != acts_.end() && act->frame == frame && !act->isMessage; ++act) act->what(rig, 0);
            std::int64_t end = std::min<std::int64_t>(frame + next(), kFrames);
            for (; act != acts_.end() && act->frame < end; ++act) {
                if (!act->isMessage) end = act->frame;
                if (act->isMessage) act->what(rig, static_cast<std::int32_t>(act->frame - frame));
                if (!act->isMessage) break;
            }
            rig.block(static_cast<std::int32_t>(end - frame));
            frame = end;
        }
        return rig.audio[0];
    }

private:
    void at(std::int64_t frame, std::function<void(LiveRig&, std::int32_t)> what, bool isMessage) {
        acts_.push_back({frame, std::move(what), isMessage});
    }
    std::vector<Act> acts_;
    std::int64_t end_ = 0;
};

void expectSameInAllBlocks(Scene& scene) {
    const std::vector<TempPath> files = padFiles(LiveRig::kRate);
    const std::vector<float> expected = scene.play(files, [] { return 4096; });
    ASSERT_GT(*std::max_element(expected.begin(), expected.end()), 0.1f);
    const auto expectSame = [&](const std::vector<float>& heard, const std::string& blocks) {
        const auto first = std::mismatch(expected.begin(), expected.end(), heard.begin()).first;
        EXPECT_EQ(first, expected.end()) << blocks << ", frame " << first - expected.begin();
    };
    for (const int block : {1, 64, 441, 1024})
        expectSame(scene.play(files, [=] { return block; }), "blocks of " + std::to_string(block));
    std::mt19937 random(4);
    for (int i = 0; i < 3; i += kSparingly)
        expectSame(scene.play(files, [&] { return 1 + random() % 900; }), "random cuts");
}

Scene heldNotes() {
    Scene scene;
    for (int pad = 0; pad < kPads; ++pad) scene.note(37 * pad + 5, 48 + pad, 20000 + 700 * pad);
    return scene;
}

TEST(LiveSteady, RetriggersOneFrameApart) {
    Scene scene;
    for (int pad = 0; pad < kPads; ++pad)
        for (int i = 0; i < 6; ++i) scene.note(3000 + 501 * pad + i, 48 + pad, 1 + 40 * i);
    expectSameInAllBlocks(scene);
}

TEST(LiveSteady, NotesOfOneFrame) {
    Scene scene;
    for (int pad = 0; pad < kPads; ++pad)
        for (int i = 0; i < 5; ++i) scene.note(100 + 501 * pad + 3 * i, 48 + pad, 1);
    expectSameInAllBlocks(scene);
}

TEST(LiveSteady, NotesBehindEachOtherWhileTheTransportStands) {
    // A synced pad begins anew where nothing sounds any more, and joins what does. Fades end 882 frames
    // behind notes.
    Scene scene;
    scene.note(100, 48, 2000);
    for (const int apart : {883, 881, 982, 882, 884, 1500}) {
        const std::int64_t start = scene.end() + apart;
        scene.note(start, 48 + apart % 2, 2000);
    }
    expectSameInAllBlocks(scene);
}

TEST(LiveSteady, NotesThatEndWhereTheyBegin) {
    Scene scene;
    for (int pad = 0; pad < kPads; ++pad) {
        scene.note(500 * pad, 48 + pad, 0);
        scene.note(500 * pad + 1000, 48 + pad, 3000);
        scene.note(500 * pad + 4000, 48 + pad, 0);
    }
    expectSameInAllBlocks(scene);
}

TEST(LiveSteady, HundredsOfGrainsInAPiece) {
    Scene scene;
    scene.command(0, [](LiveHost& host) {
        // A grain at each tick, of 23 frames, and each of them a sixteenth long.
        for (int tick = 1; tick <= 300; ++tick)
            EXPECT_EQ(host.sampler().AddGrain(0, tick % 4, 0, std::int64_t{tick} * 65536), S_OK);
        EXPECT_EQ(host.sampler().SetPadVolume(0, 0.5f), S_OK);
    });
    scene.note(5, 48, 20000);
    expectSameInAllBlocks(scene);
}

TEST(LiveSteady, LoopsOfAFewFrames) {
    Scene scene = heldNotes();
    scene.command(0, [](LiveHost& host) {
        for (int pad = 0; pad < kPads; ++pad) {
            EXPECT_EQ(host.sampler().SetPadLooping(pad, 1), S_OK);
            EXPECT_EQ(
                host.sampler().SetLoopLength(kPadLoop, static_cast<std::uint32_t>(pad), 65536 * (1 + pad)),
                S_OK);
        }
    });
    expectSameInAllBlocks(scene);
}

TEST(LiveSteady, TailsBehindTransposedGrains) {
    Scene scene = heldNotes();
    scene.command(0, [](LiveHost& host) {
        for (int pad = 0; pad < kPads; ++pad) {
            EXPECT_EQ(host.sampler().SetPadTail(pad, 1), S_OK);
            EXPECT_EQ(host.sampler().SetGrainTranspose(pad, 0, pad - 8), S_OK);
        }
        host.setTempo(97.0);
    });
    scene.command(700, [](LiveHost& host) { host.play(); });
    for (int pad = 0; pad < kPads; ++pad) scene.note(1100 + 37 * pad, 48 + pad, 9000);
    expectSameInAllBlocks(scene);
}

TEST(LiveSteady, TemposAndStarts) {
    Scene scene = heldNotes();
    scene.command(3000, [](LiveHost& host) { host.play(); });
    for (int i = 0; i < 8; ++i)
        scene.command(4000 + 1777 * i, [i](LiveHost& host) { host.setTempo(90 + 17 * i % 60); });
    for (int pad = 0; pad < kPads; ++pad) scene.note(3001 + 311 * pad, 48 + pad, 9000);
    scene.command(20001, [](LiveHost& host) { host.locate(1234.5); });
    for (int pad = 0; pad < kPads; ++pad) scene.note(20010 + 31 * pad, 48 + pad, 3000);
    scene.command(27000, [](LiveHost& host) { host.stop(); });
    expectSameInAllBlocks(scene);
}

TEST(LiveSteady, Keys) {
    Scene scene = heldNotes();
    scene.command(0, [](LiveHost& host) {
        for (int pad = 0; pad < kPads; ++pad) {
            EXPECT_EQ(host.sampler().SetPadFollowKey(pad, 1), S_OK);
            EXPECT_EQ(host.sampler().SetPadRootNote(pad, pad % 12), S_OK);
        }
    });
    for (std::uint32_t i = 0; i < 12; ++i)
        scene.command(1000 + 2111 * i, [i](LiveHost& host) { EXPECT_TRUE(host.setKey(i)); });
    scene.command(26500, [](LiveHost& host) { EXPECT_TRUE(host.setKey({})); });
    expectSameInAllBlocks(scene);
}

TEST(LiveSteady, FilesThatGoAndLoopsThatAreReplaced) {
    Scene scene = heldNotes();
    scene.command(1, [](LiveHost& host) { EXPECT_EQ(host.sampler().PushUndoState(), S_OK); });
    scene.command(5003, [](LiveHost& host) { EXPECT_EQ(host.sampler().LoadPadFromBin(1, 0), S_OK); });
    scene.command(7001, [](LiveHost& host) { EXPECT_EQ(host.sampler().Undo(), S_OK); });
    scene.command(9001, [](LiveHost& host) { EXPECT_EQ(host.sampler().AuditionPad(2, -1), S_OK); });
    scene.command(11003, [](LiveHost& host) { EXPECT_EQ(host.sampler().RemoveBinFile(1), S_OK); });
    scene.command(11400, [](LiveHost& host) { EXPECT_EQ(host.sampler().RemoveBinFile(1), S_OK); });
    scene.command(15003, [](LiveHost& host) { EXPECT_EQ(host.sampler().ClearProject(), S_OK); });
    expectSameInAllBlocks(scene);
}

TEST(LiveSteady, WhatIsPlayedFromThePage) {
    Scene scene;
    for (int pad = 0; pad < kPads; ++pad) {
        scene.command(100 + 700 * pad, [pad](LiveHost& host) { host.sampler().AuditionPad(pad, -1); });
        scene.command(500 + 900 * pad, [pad](LiveHost& host) { host.sampler().StopPad(pad); });
    }
    scene.command(9000, [](LiveHost& host) { host.sampler().AuditionBinFile(2, -1); });
    scene.command(15001, [](LiveHost& host) { host.sampler().SetPadMute(5, 1); });
    scene.command(15301, [](LiveHost& host) { host.sampler().SetPadSolo(6, 1); });
    scene.command(15777, [](LiveHost& host) { host.sampler().SetPadPan(6, 0.2f); });
    scene.command(17001, [](LiveHost& host) { host.sampler().SetPadSolo(6, 0); });
    scene.command(19000, [](LiveHost& host) { host.panic(); });
    expectSameInAllBlocks(scene);
}

TEST(LiveSteady, APadThatIsPressedWhileANotePlaysIt) {
    Scene scene;
    scene.note(606, 52, 1);  // switches a loop on
    scene.command(1178, [](LiveHost& host) { host.sampler().SetPadSolo(1, 1); });
    scene.command(1232, [](LiveHost& host) { host.sampler().AuditionPad(4, -1); });
    scene.note(20000, 49, 3000);
    expectSameInAllBlocks(scene);
}

TEST(LiveSteady, NotesBeforeTickZero) {
    Scene scene;
    scene.command(629, [](LiveHost& host) { host.locate(-500); });
    scene.command(1321, [](LiveHost& host) { host.play(); });
    scene.command(2161, [](LiveHost& host) { host.stop(); });
    for (int pad = 0; pad < kPads; ++pad) scene.note(3166 + 501 * pad, 48 + pad, 1480 + pad);
    expectSameInAllBlocks(scene);
}

TEST(LiveSteady, WhatHasPlayedOutIsOverWhateverMovesItsZeroOrItsEnd) {
    Scene scene;
    scene.command(10, [](LiveHost& host) { host.sampler().SetPadLooping(13, 0); });
    scene.command(11, [](LiveHost& host) { host.sampler().PushUndoState(); });
    for (const std::uint32_t pad : {13u, 14u})
        scene.command(12, [pad](LiveHost& host) { host.sampler().SetLoopLength(kPadLoop, pad, 500000); });
    scene.command(601, [](LiveHost& host) { host.sampler().AuditionPad(13, -1); });
    scene.note(910, 61, 5044);
    scene.command(4327, [](LiveHost& host) { host.sampler().AuditionPad(14, -1); });
    scene.command(5333, [](LiveHost& host) { host.sampler().Undo(); });
    scene.note(20000, 49, 3000);
    expectSameInAllBlocks(scene);
}

/// A page, a clock and two hands at random.
class RandomScene {
public:
    explicit RandomScene(unsigned seed) : random_(seed) {
        for (int i = 0; i < 60; ++i) {
            scene_.note(any(28000), 48 + any(16), any(3) == 0 ? any(4) : any(6000));
            if (any(4) == 0) scene_.note(scene_.end() + any(3), 48 + any(16), any(3000));
            if (any(3) == 0) act(any(28000));
        }
    }
    Scene& scene() { return scene_; }

private:
    int any(int count) { return static_cast<int>(random_() % static_cast<unsigned>(count)); }

    static void transpose(IGrooveSampler& sampler, std::int32_t pad, std::int32_t semitones) {
        std::int32_t grains = 0;
        sampler.GetGrainCount(kPadLoop, static_cast<std::uint32_t>(pad), &grains);
        if (grains > 0) sampler.SetGrainTranspose(pad, grains / 2, semitones);
    }

    void act(std::int64_t frame) {
        const std::int32_t pad = any(16), value = any(12), on = any(2);
        const auto number = static_cast<std::uint32_t>(pad);
        const auto flag = static_cast<std::uint32_t>(on);
        const std::function<void(LiveHost&)> acts[] = {
            [=](LiveHost& host) { host.play(); },
            [=](LiveHost& host) { host.stop(); },
            [=](LiveHost& host) { host.locate(value * 333.3 - 500); },
            [=](LiveHost& host) { host.setTempo(80 + 11.1 * value); },
            [=](LiveHost& host) { host.setKey(static_cast<std::uint32_t>(value)); },
            [=](LiveHost& host) { host.panic(); },
            [=](LiveHost& host) { host.sampler().AuditionPad(pad, -1); },
            [=](LiveHost& host) { host.sampler().StopPad(pad); },
            [=](LiveHost& host) { host.sampler().AuditionBinFile(value % 4, -1); },
            [=](LiveHost& host) { host.sampler().StopBinAudition(value % 4); },
            [=](LiveHost& host) { host.sampler().SetPadMute(pad, flag); },
            [=](LiveHost& host) { host.sampler().SetPadSolo(pad, flag); },
            [=](LiveHost& host) { host.sampler().SetPadPan(pad, 0.1f * static_cast<float>(value)); },
            [=](LiveHost& host) { host.sampler().SetPadVolume(pad, 0.1f * static_cast<float>(value)); },
            [=](LiveHost& host) { host.sampler().SetPadFollowKey(pad, 1); },
            [=](LiveHost& host) { transpose(host.sampler(), pad, value - 6); },
            [=](LiveHost& host) { host.sampler().SetPadTail(pad, flag); },
            [=](LiveHost& host) { host.sampler().SetPadOneShot(pad, flag); },
            [=](LiveHost& host) { host.sampler().SetPadLooping(pad, flag); },
            [=](LiveHost& host) { host.sampler().SetPadSynced(pad, flag); },
            [=](LiveHost& host) { host.sampler().SetLoopLength(kPadLoop, number, 100000 * (1 + value)); },
            [=](LiveHost& host) { host.sampler().LoadPadFromBin(pad, value % 4); },
            [=](LiveHost& host) { host.sampler().PushUndoState(); },
            [=](LiveHost& host) { host.sampler().Undo(); },
            [=](LiveHost& host) { host.sampler().RemoveBinFile(value); },
        };
        scene_.command(frame, acts[any(std::size(acts))]);
    }

    std::mt19937 random_;
    Scene scene_;
};

TEST(LiveSteady, AnythingAtRandom) {
    for (unsigned seed = 1; seed <= 4; seed += kSparingly) {
        SCOPED_TRACE(seed);
        expectSameInAllBlocks(RandomScene(seed).scene());
    }
}

}  // namespace
}  // namespace marnoth::test::live_steady_test
