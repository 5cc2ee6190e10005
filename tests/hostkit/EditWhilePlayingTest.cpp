#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cmath>
#include <random>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "host/CreateInstance.h"
#include "hostkit/PlayingRig.h"

namespace marnoth::test::edit_while_playing_test {
namespace {

constexpr std::chrono::seconds kDuration{3};
/// A slow or busy machine gets longer for the least number of operations.
constexpr std::chrono::seconds kLongestDuration{60};
constexpr int kLeastOperations = 500;
constexpr std::chrono::microseconds kRest{20};
constexpr int kPads = 16;
constexpr std::int64_t kBeat = 62914560;  // 16.16 ticks

/// An editor at work: random operations of the whole control surface, with some indices out of range, on a
/// thread of its own.
class Editor {
public:
    Editor(IGrooveSampler& sampler, const std::vector<TempPath>& files) : sampler_(sampler), files_(files) {}

    void workUntil(const std::atomic<bool>& done) {
        while (!done) {
            // An editor that never rests would take the lock from under the blocks, and every change of its
            // would be in order by that: a change without the lock would go unseen.
            std::this_thread::sleep_for(kRest);
            try {
                operate();
                ++operations_;
            } catch (const std::invalid_argument&) {
                ++refusedGrains_;
            }
        }
    }

    /// Any thread may ask.
    int operations() const { return operations_; }
    int refusedGrains() const { return refusedGrains_; }

private:
    /// What costs little comes often: a load takes as long as hundreds of edits.
    void operate() {
        const int kind = any(200);
        if (kind == 0) return loadFiles();
        if (kind < 4) return changeProject();
        if (kind < 60) return editGrains();
        if (kind < 120) return editPad();
        if (kind < 130) return audition();
        if (kind < 150) return readLists();
        if (kind < 170) return readPad();
        if (kind < 180) return editKeys();
        poll();
    }

    void editGrains() {
        std::int32_t index = 0;
        switch (any(8)) {
            case 0:
                sampler_.AddGrain(any(4), any(8), pad(), any(16) * (kBeat / 4));
                break;
            case 1:
                sampler_.DeleteGrain(pad(), any(8), 0);
                break;
            case 2:
                sampler_.DeleteGrain(pad(), any(8), 1);
                sampler_.CommitGrainEdits();
                break;
            case 3:
                sampler_.ReplaceGrain(pad(), any(8), any(4), any(8));
                break;
            case 4:
                sampler_.SetGrainTranspose(pad(), any(8), any(25) - 12);
                break;
            case 5:
                sampler_.SetGrainVolume(pad(), any(8), static_cast<float>(any(20)) / 10.0f);
                break;
            case 6:
                sampler_.MoveGrain(pad(), any(8), pad(), any(16) * (kBeat / 4), &index, 0);
                break;
            default:
                sampler_.CopyGrain(pad(), any(8), pad(), any(16) * (kBeat / 4), &index);
        }
    }

    void editPad() {
        const std::int32_t target = pad();
        switch (any(12)) {
            case 0:
                sampler_.SetPadVolume(target, static_cast<float>(any(20)) / 10.0f);
                break;
            case 1:
                sampler_.SetPadPan(target, static_cast<float>(any(11)) / 10.0f);
                break;
            case 2:
                sampler_.SetPadOutput(target, static_cast<std::uint32_t>(any(18)));
                break;
            case 3:
                sampler_.SetPadLooping(target, any(4) != 0);
                break;
            case 4:
                sampler_.SetPadSynced(target, flag());
                break;
            case 5:
                sampler_.SetPadMute(target, any(4) == 0);
                break;
            case 6:
                sampler_.SetPadSolo(target, any(50) == 0);
                break;
            case 7:
                sampler_.SetPadOneShot(target, flag());
                break;
            case 8:
                sampler_.SetPadTail(target, flag());
                break;
            case 9:
                sampler_.SetPadFollowKey(target, flag());
                break;
            case 10:
                sampler_.SetPadRootNote(target, any(12));
                break;
            default:
                sampler_.SetLoopLength(kPadLoop, static_cast<std::uint32_t>(target), (1 + any(16)) * kBeat);
        }
    }

    void changeProject() {
        switch (any(20)) {
            case 0:
                sampler_.ClearProject();
                break;
            case 1:
                sampler_.RemoveBinFile(any(4));
                break;
            case 2:
            case 3:
            case 4:
                sampler_.Redo();
                break;
            case 5:
            case 6:
            case 7:
            case 8:
                sampler_.Undo();
                break;
            case 9:
            case 10:
                sampler_.LoadPadFromBin(pad(), any(4));
                break;
            default:
                sampler_.PushUndoState();
        }
    }

    void loadFiles() {
        if (any(4) == 0) return reload();
        std::int32_t bin = -1;
        std::uint32_t status = 0;
        const TempPath& file = files_[static_cast<std::size_t>(any(static_cast<int>(files_.size())))];
        if (flag()) {
            sampler_.LoadFileToBin("file", file.c_str(), &bin, &status);
        } else {
            sampler_.LoadFileToPad(pad(), "file", file.c_str(), &bin, &status);
        }
    }

    /// Whatever the editing made of the project, it is saved and comes back.
    void reload() {
        EXPECT_EQ(sampler_.SaveProject(0, project_.c_str()), S_OK);
        if (flag()) {
            EXPECT_EQ(sampler_.LoadProject(project_.c_str()), S_OK);
        }
    }

    void audition() {
        switch (any(6)) {
            case 0:
                sampler_.AuditionPad(pad(), -1);
                break;
            case 1:
                sampler_.AuditionPad(pad(), any(8));
                break;
            case 2:
                sampler_.StopPad(any(17) - 1);
                break;
            case 3:
                sampler_.AuditionBinFile(any(4), any(5) - 1);
                break;
            case 4:
                sampler_.StopBinAudition(any(5) - 1);
                break;
            default:
                sampler_.SetAuditionEnabled(flag());
        }
    }

    void readLists() {
        GrainListEntry* list = nullptr;
        std::int32_t count = 0;
        const HRESULT hr = flag() ? sampler_.GetPadGrainList(pad(), &list, &count)
                                  : sampler_.GetBinGrainList(any(4), &list, &count);
        // This thread alone removes files, so the peaks are there while it reads them.
        float loudest = 0.0f;
        for (std::int32_t i = 0; SUCCEEDED(hr) && i < count; ++i) {
            if (list[i].plotData && list[i].plotLength > 0) loudest = std::max(loudest, *list[i].plotData);
        }
        CoTaskMemFree(list);
        EXPECT_TRUE(std::isfinite(loudest));
    }

    void readPad() {
        std::uint32_t value = 0;
        float real = 0.0f;
        std::int32_t number = 0;
        std::int64_t time = 0;
        const std::int32_t target = pad();
        sampler_.GetPadPlaying(target, &value);
        sampler_.GetBinPlaying(any(4), &value);
        sampler_.GetPadVolume(target, &real);
        sampler_.GetPadEndTime(target, &time);
        sampler_.GetPadRootNote(target, &number);
        sampler_.GetGrainCount(kPadLoop, static_cast<std::uint32_t>(target), &number);
        sampler_.GetGrainTranspose(target, any(8), &number);
    }

    void editKeys() {
        KeyMapRecord record{};
        record.pad = pad();
        sampler_.GetKeyMapEntry(&record);
        record.lowKey = any(64);
        record.highKey = 64 + any(64);
        sampler_.SetKeyMapEntry(&record);
        sampler_.SetPadChannel(pad(), any(3) - 1);
    }

    void poll() {
        std::uint32_t request = 0;
        sampler_.GetRefreshRequest(&request);
        sampler_.SetRefreshRequest(flag());
    }

    int any(int count) { return static_cast<int>(random_() % static_cast<unsigned>(count)); }
    std::uint32_t flag() { return static_cast<std::uint32_t>(any(2)); }
    std::int32_t pad() { return any(kPads); }

    IGrooveSampler& sampler_;
    const std::vector<TempPath>& files_;
    const TempPath project_{".mrn"};
    std::mt19937 random_{20};
    std::atomic<int> operations_ = 0;
    std::atomic<int> refusedGrains_ = 0;
};

/// A host at work: notes, live MIDI, transport and blocks of all sizes.
class Player {
public:
    explicit Player(HostRig& rig) : rig_(rig) {}

    void step() {
        const int kind = any(60);
        if (kind == 0) {
            EXPECT_EQ(rig_.synth().StartPlayback(960 * any(8)), S_OK);
        }
        if (kind == 1) {
            EXPECT_EQ(rig_.synth().StopPlayback(), S_OK);
        }
        if (kind < 20) queueNote();
        if (kind > 40) queueLive();
        if (kind % 7 == 0) {
            EXPECT_EQ(rig_.setBlock(1 + any(700)), S_OK);
        }
        EXPECT_EQ(rig_.render(1 + any(1500)), S_OK);
    }

private:
    void queueNote() {
        SynthEvent event;
        event.time = 960 * any(8) + any(960);
        event.note = key();
        event.velocity = 100;
        event.duration = static_cast<std::uint32_t>(any(1920));
        EXPECT_EQ(rig_.queueEvents(0, {&event, 1}), S_OK);
    }
    void queueLive() {
        RawMidiEvent event;
        event.status = any(2) ? 0x90 : 0x80;
        event.data1 = key();
        event.data2 = 90;
        EXPECT_EQ(rig_.queueRawInput(0, {&event, 1}), S_OK);
    }
    std::uint8_t key() { return static_cast<std::uint8_t>(48 + any(40)); }
    int any(int count) { return static_cast<int>(random_() % static_cast<unsigned>(count)); }

    HostRig& rig_;
    std::mt19937 random_{21};
};

std::vector<TempPath> loops() {
    std::vector<TempPath> files;
    for (int file = 0; file < 4; ++file) {
        files.push_back(
            WaveFile()
                .rate(file % 2 ? 22050 : 44100)
                .channels(file < 2 ? 1 : 2)
                .frames(22050, [&](std::int64_t i, int c) { return 0.5 * std::sin(0.02 * i + c + file); })
                .acid({.flags = 4, .beats = static_cast<std::uint32_t>(1 + file)})
                .writeTemp());
    }
    return files;
}

TEST(EditWhilePlaying, BlocksRunOnWhateverTheEditorDoes) {
    HostRig rig{createInstrument};
    std::int64_t frames = 0;
    std::int64_t soundingSamples = 0;
    bool allFinite = true;
    rig.setTaker(0, [&](std::span<const float> samples, bool) {
        frames += static_cast<std::int64_t>(samples.size() / 2);
        for (float sample : samples) {
            soundingSamples += sample != 0.0f;
            allFinite = allFinite && std::isfinite(sample);
        }
    });
    const std::array<int, 4> pins{0, 1, 2, 16};
    ASSERT_EQ(rig.connect(44100, 2, pins), S_OK);
    ASSERT_EQ(rig.attach({.tempo = 133.0, .key = 3}), S_OK);
    const std::vector<TempPath> files = loops();
    for (int pad = 0; pad < kPads; ++pad) {
        std::int32_t bin = -1;
        std::uint32_t status = 0;
        const TempPath& file = files[static_cast<std::size_t>(pad) % files.size()];
        ASSERT_EQ(rig.sampler().LoadFileToPad(pad, "loop", file.c_str(), &bin, &status), S_OK);
    }
    Editor editor(rig.sampler(), files);
    Player player(rig);

    std::atomic<bool> done = false;
    std::thread editing([&] { editor.workUntil(done); });
    const auto begin = std::chrono::steady_clock::now();
    const auto playedFor = [&] { return std::chrono::steady_clock::now() - begin; };
    const auto edited = [&] { return editor.operations() >= kLeastOperations && editor.refusedGrains() > 0; };
    while (playedFor() < kDuration || (!edited() && playedFor() < kLongestDuration)) player.step();
    done = true;
    editing.join();

    EXPECT_GT(frames, 44100);
    EXPECT_GT(soundingSamples, 44100) << "the blocks have work to do";
    EXPECT_TRUE(allFinite);
    EXPECT_GE(editor.operations(), kLeastOperations);
    EXPECT_GT(editor.refusedGrains(), 0) << "bad grains are part of the work";
}

}  // namespace
}  // namespace marnoth::test::edit_while_playing_test
