#pragma once

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <span>
#include <vector>

#include "host/CreateInstance.h"
#include "hostkit/HostRig.h"
#include "hostkit/InstrumentOptions.h"
#include "support/WaveFile.h"

/// What tests of the steady mode play and listen to.
namespace marnoth::test::steady {

inline constexpr int kRate = 44100;
inline constexpr std::int64_t kFade = kRate / 50;  // 20 ms
inline constexpr std::uint32_t kOpen = 0xFFFFFFFF;

/// A loop of four beats at 125 beats per minute, in sixteenths.
inline TempPath beatLoop(int pitch) {
    return WaveFile()
        .rate(kRate)
        .channels(2)
        .bits(16)
        .frames(kRate * 4 * 60 / 125,
                [=](std::int64_t i, int c) {
                    return 0.2 * std::sin(0.01 * (pitch + c + 1) * static_cast<double>(i));
                })
        .acid({.beats = 4, .tempo = 125})
        .writeTemp();
}

/// A sound without loop data.
inline TempPath plainSound(std::int64_t frames, double level) {
    return WaveFile()
        .rate(kRate)
        .channels(2)
        .bits(16)
        .frames(frames, [=](std::int64_t, int) { return level; })
        .writeTemp();
}

inline SynthEvent note(std::int32_t tick, int key, std::uint32_t duration) {
    SynthEvent event;
    event.time = tick;
    event.note = static_cast<std::uint8_t>(key);
    event.velocity = 100;
    event.duration = duration;
    return event;
}

/// A rig in the steady mode whose mix is kept.
class SteadyRig {
public:
    SteadyRig() {
        const int mix = 0;
        EXPECT_EQ(rig.connect(kRate, 2, {&mix, 1}), S_OK);
        EXPECT_EQ(rig.setBlock(8192), S_OK);
        EXPECT_EQ(setSteady(rig.sampler(), true), S_OK);
        rig.setTaker(0, [this](std::span<const float> samples, bool) {
            audio.insert(audio.end(), samples.begin(), samples.end());
        });
    }

    void attach(double tempo) { EXPECT_EQ(rig.attach({.tempo = tempo, .key = {}}), S_OK); }
    /// The pad answers one key alone.
    void load(int pad, const TempPath& file, int key) {
        std::int32_t bin = -1;
        std::uint32_t status = 0;
        ASSERT_EQ(rig.sampler().LoadFileToPad(pad, "loop", file.c_str(), &bin, &status), S_OK);
        const KeyMapRecord entry{pad, key, key, key, 0, 127};
        ASSERT_EQ(rig.sampler().SetKeyMapEntry(&entry), S_OK);
    }
    void start(std::span<const SynthEvent> notes) {
        EXPECT_EQ(rig.synth().StartPlayback(0), S_OK);
        EXPECT_EQ(rig.queueEvents(0, notes), S_OK);
    }
    void render(std::int64_t frames) { EXPECT_EQ(rig.render(frames), S_OK); }
    /// The left side.
    float at(std::int64_t frame) const { return audio[static_cast<std::size_t>(2 * frame)]; }

    HostRig rig{createInstrument};
    std::vector<float> audio;
};

/// One pad with a steady level, looping without end, in blocks of 64.
class LevelRig : public SteadyRig {
public:
    explicit LevelRig(bool oneShot) {
        attach(120);
        load(0, plainSound(20000, 0.5), 60);
        EXPECT_EQ(rig.sampler().SetPadLooping(0, 1), S_OK);
        EXPECT_EQ(rig.sampler().SetPadOneShot(0, oneShot ? 1 : 0), S_OK);
        EXPECT_EQ(rig.setBlock(64), S_OK);
    }
    /// Plays the pad from now on.
    void hold(std::int64_t frames) {
        const SynthEvent notes[] = {note(0, 60, kOpen)};
        start(notes);
        render(frames);
    }
    void expectFadeFrom(std::int64_t frame) const {
        const float level = at(frame - 1);
        ASSERT_GT(level, 0.3f);
        for (std::int64_t i = 0; i < kFade; ++i)
            ASSERT_NEAR(at(frame + i), level * (1.0 - static_cast<double>(i) / kFade), 1e-5) << "frame " << i;
        for (std::int64_t i = kFade; i < kFade + 500; ++i) ASSERT_EQ(at(frame + i), 0.0f) << "frame " << i;
    }
};

/// 960 ticks are 22050 frames at 120 beats per minute.
inline std::int64_t frameOf(int tick) {
    return std::llround(tick * 22050.0 / 960);
}

/// The first frame in which two stereo signals differ, -1 when none does, -2 when one is longer.
inline std::int64_t firstDifference(const std::vector<float>& a, const std::vector<float>& b) {
    if (a.size() != b.size()) return -2;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (std::bit_cast<std::uint32_t>(a[i]) != std::bit_cast<std::uint32_t>(b[i]))
            return static_cast<std::int64_t>(i / 2);
    return -1;
}

}  // namespace marnoth::test::steady
