#include <gtest/gtest.h>
#include <sched.h>

#include <cmath>
#include <random>

#include "shellkit/TempFolder.h"
#include "shellkit/files/LoopFiles.h"
#include "shells/desktop/audio/RealTime.h"
#include "shells/desktop/playing/LiveInstrument.h"
#include "support/RealTimeGuard.h"
#include "support/WaveFile.h"

namespace marnoth::test::live_real_time_test {
namespace {

constexpr std::uint32_t kRate = 48000;

/// An instrument with all that the program has around it at work, and a user who presses everything.
class Stage {
public:
    Stage() {
        EXPECT_TRUE(live_.prepare(kRate, 256));
        WaveFile()
            .floats()
            .channels(2)
            .rate(kRate)
            .frames(kRate, [](auto i, int c) { return 0.3 * std::sin(0.02 * i + c); })
            .acid({.beats = 2})
            .write(folder_ / "a.wav");
        for (std::int32_t pad = 0; pad < 4; ++pad) loadLoopFile(live_.sampler(), pad, folder_.name("a.wav"));
        live_.setSong(song());
        live_.setMetronome(true);
        live_.recorder().start(folder_.name("take.wav"), kRate);
    }

    RealTimeGuard::Offences block() {
        press();
        const std::int32_t frames = any(10) == 0 ? any(6000) : 64 << any(4);
        RealTimeGuard guard;
        if (any(20) == 0) followed_ = !followed_;
        if (followed_) live_.follow(clock());
        for (int i = any(4); i > 0; --i)
            live_.midi(any(64), any(2) ? 0x90 : 0x80, static_cast<std::uint8_t>(60 + any(4)), 90);
        live_.render(frames, outputs_);
        static_cast<void>(live_.placeOf(clock_.frame));
        const RealTimeGuard::Offences offences = guard.finish();
        clock_.frame += frames;
        for (std::int32_t i = 0; i < frames; ++i)
            loudest_ = std::max(loudest_, std::abs(left_[static_cast<std::size_t>(i)]));
        return offences;
    }
    float loudest() const { return loudest_; }
    LiveInstrument& live() { return live_; }

private:
    static std::unique_ptr<const Song> song() {
        auto song = std::make_unique<Song>();
        for (std::int32_t i = 0; i < 400; ++i)
            song->notes.push_back({i * 60, i * 60 + 200, 0, static_cast<std::uint8_t>(60 + i % 4), 100});
        song->tempos = {{0, 120.0}, {960, 150.0}, {5000, 90.0}};
        song->end = 960 * 28;
        return song;
    }
    int any(int count) { return static_cast<int>(random_() % static_cast<unsigned>(count)); }
    LiveTransport clock() {
        if (any(10) == 0) clock_.playing = !clock_.playing;
        if (any(10) == 0) clock_.frame = any(1'000'000);
        clock_.tempo = any(2) ? std::optional(60.0 + any(100)) : std::nullopt;
        clock_.tick = clock_.tempo && any(2) ? std::optional(1.0 * any(20'000)) : std::nullopt;
        return clock_;
    }
    void press() {
        if (any(9) == 0) live_.play();
        if (any(20) == 0) live_.stop();
        if (any(9) == 0) live_.locate(any(20'000));
        if (any(9) == 0) live_.setTempo(60 + any(100));
        if (any(9) == 0) live_.setLoop(any(3));
        if (any(9) == 0) live_.followSongTempo(any(2) != 0);
        if (any(9) == 0) live_.repeatSong(any(2) != 0);
        if (any(20) == 0) live_.setSong(any(2) ? song() : nullptr);
        if (any(30) == 0) live_.panic();
        if (any(9) == 0) live_.master().set(0.5f * static_cast<float>(1 + any(3)));
        if (any(9) == 0) live_.note(static_cast<std::uint8_t>(60 + any(4)), any(2) != 0);
    }

    TempFolder folder_;
    LiveInstrument live_;
    std::vector<float> left_ = std::vector<float>(6000);
    std::vector<float> right_ = left_;
    std::vector<float> pad_ = left_;
    std::array<float*, 4> outputs_{left_.data(), right_.data(), pad_.data(), nullptr};
    LiveTransport clock_;
    bool followed_ = false;
    float loudest_ = 0;
    std::mt19937 random_{23};
};

TEST(LiveInstrumentRealTime, ABlockTakesNoMemoryAndGivesNoneBack) {
    Stage stage;
    for (int i = 0; i < 1500; ++i) {
        const auto offences = stage.block();
        ASSERT_EQ(offences.allocations, 0) << "in block " << i;
        ASSERT_EQ(offences.frees, 0) << "in block " << i;
    }
    EXPECT_GT(stage.loudest(), 0.1f);
    // So fast that the take may have gaps.
    EXPECT_TRUE(stage.live().recorder().isRecording());
    stage.live().recorder().stop();
}

TEST(RealTime, AThreadHasPriorityWhereThatIsAllowedAndElseIsAsItWas) {
    bool isGiven = false;
    int policy = -1;
    std::thread([&] {
        isGiven = givePriority();
        policy = sched_getscheduler(0);
    }).join();
    EXPECT_EQ(policy, isGiven ? SCHED_FIFO : SCHED_OTHER);
}

TEST(RealTime, WhatIsMissingIsSaidWithWhatHelps) {
    EXPECT_EQ(missingRights({true, true}), "");
    EXPECT_EQ(missingRights({true, false}),
              "The system doesn't grant real-time priority: sound may drop out while it is busy. The user's "
              "limits (rtprio) "
              "decide that.");
    EXPECT_NE(missingRights({false, true}).find("memlock"), std::string::npos);
    EXPECT_NE(missingRights({false, false}).find("rtprio and memlock"), std::string::npos);
}

}  // namespace
}  // namespace marnoth::test::live_real_time_test
