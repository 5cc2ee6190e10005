#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cmath>
#include <random>
#include <thread>

#include "shellkit/files/LoopFiles.h"
#include "shellkit/media/WaveFrames.h"
#include "shells/desktop/playing/LiveInstrument.h"
#include "support/TempPath.h"
#include "support/WaveFile.h"

namespace marnoth::test::live_instrument_threads_test {
namespace {

constexpr std::uint32_t kRate = 48000;
constexpr std::int32_t kFrames = 64;
constexpr std::chrono::microseconds kRest{20};
constexpr std::uint8_t kFirstPad = 60;

/// Asks for block after block on a thread of its own, with a note in each, as an audio system does.
class AudioThread {
public:
    explicit AudioThread(LiveInstrument& live) : live_(live), thread_([this] { run(); }) {}
    ~AudioThread() { finish(); }
    AudioThread(const AudioThread&) = delete;
    AudioThread& operator=(const AudioThread&) = delete;

    void finish() {
        ends_ = true;
        if (thread_.joinable()) thread_.join();
    }
    void awaitBlocks(std::uint32_t count) const {
        std::uint32_t now = blocks_;
        for (const std::uint32_t until = now + count; now < until; now = blocks_) blocks_.wait(now);
    }
    std::uint32_t blocks() const { return blocks_; }

    // Once it has finished.
    bool isFinite() const { return isFinite_; }
    bool sounded() const { return sounded_; }

private:
    void run() {
        std::vector<float> left(kFrames);
        std::vector<float> right(kFrames);
        const std::array<float*, 2> outputs{left.data(), right.data()};
        while (!ends_) {
            live_.midi(7, blocks_ % 2 ? 0x80 : 0x90, kFirstPad, 100);
            live_.render(kFrames, outputs);
            for (const float sample : left) {
                isFinite_ = isFinite_ && std::isfinite(sample);
                sounded_ = sounded_ || sample != 0.0f;
            }
            ++blocks_;
            blocks_.notify_one();
            // An audio system waits for the next cycle: the one lock is free between two blocks.
            std::this_thread::sleep_for(kRest);
        }
    }

    LiveInstrument& live_;
    std::atomic<bool> ends_ = false;
    std::atomic<std::uint32_t> blocks_ = 0;
    bool isFinite_ = true;
    bool sounded_ = false;
    std::thread thread_;
};

/// A window whose user does everything that there is to do, in no order.
class Window {
public:
    explicit Window(LiveInstrument& live) : live_(live) {}

    void act() {
        switch (any(16)) {
            case 0:
            case 1:
                return live_.play();
            case 2:
                return live_.stop();
            case 3:
                return live_.locate(any(20000));
            case 4:
                return live_.setTempo(40 + any(200));
            case 5:
                return live_.setLoop(any(3));
            case 6:
                return live_.setMetronome(any(2) != 0);
            case 7:
                return live_.setSong(any(4) == 0 ? nullptr : song());
            case 8:
                return live_.followSongTempo(any(2) != 0);
            case 9:
                return live_.note(static_cast<std::uint8_t>(kFirstPad + any(16)), any(2) != 0);
            case 10:
                return live_.panic();
            case 11:
                live_.setKey(any(2) ? std::optional(static_cast<std::uint32_t>(any(12))) : std::nullopt);
                return;
            case 12:
                return live_.master().set(static_cast<float>(any(20)) / 10.0f);
            case 13:
                return record();
            case 14:
                return reload();
            default:
                return look();
        }
    }

    /// Takes that have ended whole.
    int takes() const { return takes_; }

private:
    std::unique_ptr<const Song> song() {
        auto made = std::make_unique<Song>();
        for (std::int32_t tick = 0; tick < 4 * 3840; tick += 120 + any(400))
            made->notes.push_back({tick, tick + 240, 0, static_cast<std::uint8_t>(kFirstPad + any(16)), 90});
        made->tempos = {{0, 120.0}, {960 * (1 + any(8)), 60.0 + any(100)}};
        made->end = 4 * 3840;
        return made;
    }
    void reload() {
        auto state = live_.saveState();
        ASSERT_TRUE(state);
        EXPECT_TRUE(live_.loadState(std::move(*state)));
    }
    void record() {
        if (!live_.recorder().isRecording()) return live_.recorder().start(take_.c_str(), live_.rate());
        const std::string failure = live_.recorder().stop();
        // A ring that runs over is told: that thread plays as fast as it can.
        takes_ += failure.empty() && readWaveFrames(take_.path()).rate == kRate;
    }
    void look() {
        EXPECT_GE(live_.master().takePeak(0), 0.0f);
        EXPECT_GE(live_.tick(), 0.0);
        EXPECT_GE(live_.blockTimes().takeRecent(), 0.0f);
        EXPECT_EQ(live_.dropouts(), 0u);
    }
    int any(int count) { return static_cast<int>(random_() % static_cast<unsigned>(count)); }

    LiveInstrument& live_;
    const TempPath take_{".wav"};
    std::mt19937 random_{22};
    int takes_ = 0;
};

TEST(LiveInstrumentThreads, TheWindowDoesWhatItLikesWhileBlocksAreRendered) {
    constexpr int kActs = 300;
    LiveInstrument live;
    ASSERT_TRUE(live.prepare(kRate, kFrames));
    const TempPath loop = WaveFile()
                              .channels(2)
                              .rate(kRate)
                              .frames(kRate / 4, [](auto i, int c) { return 0.3 * std::sin(0.02 * i + c); })
                              .acid({.beats = 1})
                              .writeTemp();
    for (std::int32_t pad = 0; pad < 4; ++pad) loadLoopFile(live.sampler(), pad, loop.c_str());

    AudioThread audio(live);
    Window window(live);
    for (int act = 0; act < kActs; ++act) {
        window.act();
        audio.awaitBlocks(1);
    }
    live.followSongTempo(false);
    live.setTempo(97.0);
    live.stop();
    audio.awaitBlocks(2);
    EXPECT_FALSE(live.isPlaying());
    EXPECT_EQ(live.tempo(), 97.0);
    audio.finish();

    EXPECT_TRUE(audio.isFinite());
    EXPECT_TRUE(audio.sounded());
    EXPECT_EQ(live.messages(), audio.blocks());
    EXPECT_EQ(live.blockTimes().blocks(), audio.blocks());
    EXPECT_GT(window.takes(), 0);
}

}  // namespace
}  // namespace marnoth::test::live_instrument_threads_test
