#include <gtest/gtest.h>

#include <random>

#include "hostkit/LiveRig.h"
#include "support/RealTimeGuard.h"

namespace marnoth::test {
namespace {

/// A player, a page and a clock at work on all sixteen pads. What they do is done without the guard, except
/// for what belongs to the thread that renders.
class BusyRig {
public:
    BusyRig() : files_(padFiles(LiveRig::kRate)) {
        layPads(rig_.host.sampler(), files_);
        for (std::int32_t pad = 0; pad < kPads; ++pad) rig_.host.sampler().SetPadFollowKey(pad, pad % 3 == 0);
        for (std::size_t i = 0; i < memory_.size(); ++i) {
            memory_[i].resize(kMost);
            pointers_[i] = i % 5 == 4 ? nullptr : memory_[i].data();
        }
    }

    /// Whether notes are played, or only everything else.
    void setNotes(bool played) { notes_ = played; }

    RealTimeGuard::Offences block() {
        command();
        move();
        RealTimeGuard guard;
        if (notes_) playNotes();
        const std::int32_t frames = any(8) ? 1 + any(200) : any(kMost);
        const HRESULT hr =
            any(3) ? rig_.host.process(frames, clock_, pointers_) : rig_.host.process(frames, pointers_);
        const RealTimeGuard::Offences offences = guard.finish();
        EXPECT_EQ(hr, S_OK);
        clock_.frame += frames;
        for (int i = 0; i < frames; ++i) loudest_ = std::max(loudest_, std::abs(memory_[0][i]));
        return offences;
    }
    float loudest() const { return loudest_; }
    int noteOns() const { return noteOns_; }

private:
    static constexpr std::int32_t kMost = 2 * LiveRig::kMost;

    int any(int count) { return static_cast<int>(random_() % static_cast<unsigned>(count)); }

    void playNotes() {
        for (int i = any(6); i > 0; --i) {
            const auto key = static_cast<std::uint8_t>(48 + any(16));
            const bool isOn = any(2) != 0;
            noteOns_ += rig_.host.addMessage(any(300), isOn ? 0x90 : 0x80, key, 100) && isOn;
        }
        if (any(20) == 0) rig_.host.addMessage(any(300), 0xB0, static_cast<std::uint8_t>(120 + any(4)), 0);
    }

    void command() {
        if (any(9) == 0) rig_.host.play();
        if (any(9) == 0) rig_.host.stop();
        if (any(9) == 0) rig_.host.locate(any(10000));
        if (any(9) == 0) rig_.host.setTempo(60 + any(100));
        if (any(9) == 0) rig_.host.setKey(static_cast<std::uint32_t>(any(12)));
        if (any(30) == 0) rig_.host.panic();
        if (any(9) == 0) rig_.host.sampler().AuditionPad(any(kPads), -1);
    }

    void move() {
        if (any(15) == 0) clock_.playing = !clock_.playing;
        if (any(15) == 0) clock_.frame = any(1'000'000) - 10'000;
        if (any(5) == 0) clock_.tempo = 60 + any(120);
    }

    std::vector<TempPath> files_;
    LiveRig rig_;
    LiveTransport clock_;
    std::array<std::vector<float>, 34> memory_;
    std::array<float*, 34> pointers_{};
    bool notes_ = true;
    float loudest_ = 0;
    int noteOns_ = 0;
    std::mt19937 random_{17};
};

TEST(LiveRealTime, StartsJumpsStopsTemposAndCommandsTakeNoMemory) {
    BusyRig rig;
    rig.setNotes(false);
    for (int i = 0; i < 1000; ++i) {
        const auto offences = rig.block();
        ASSERT_EQ(offences.allocations, 0) << "in block " << i;
        ASSERT_EQ(offences.frees, 0) << "in block " << i;
    }
    EXPECT_GT(rig.loudest(), 0.1f);
}

TEST(LiveRealTime, NotesTakeNoMemory) {
    BusyRig rig;
    for (int i = 0; i < 1000; ++i) {
        const auto offences = rig.block();
        ASSERT_EQ(offences.allocations, 0) << "in block " << i;
        ASSERT_EQ(offences.frees, 0) << "in block " << i;
    }
    EXPECT_GT(rig.loudest(), 0.1f);
    EXPECT_GT(rig.noteOns(), 500);
}

TEST(LiveRealTime, ATempoThatRunsForMinutesTakesNoMemory) {
    LiveRig rig({0});
    std::array<float*, 1> none{};
    RealTimeGuard guard;
    HRESULT hr = S_OK;
    for (int i = 0; i < 20'000 && SUCCEEDED(hr); ++i)
        hr = rig.host.process(64, {true, 64 * i, {}, 100.0 + 0.01 * i}, none);
    const auto offences = guard.finish();
    EXPECT_EQ(hr, S_OK);
    EXPECT_EQ(offences.allocations, 0);
    EXPECT_EQ(offences.frees, 0);
}

}  // namespace
}  // namespace marnoth::test
