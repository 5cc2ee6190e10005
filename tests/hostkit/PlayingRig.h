#pragma once

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <string>
#include <vector>

#include "host/CreateInstance.h"
#include "hostkit/HostRig.h"
#include "support/WaveFile.h"

namespace marnoth::test {

/// A rig at 44100 Hz whose audio is kept, pin by pin, with what a test does to it in a line each.
struct PlayingRig {
    static constexpr std::uint32_t kRate = 44100;

    explicit PlayingRig(std::vector<int> pins = {0}, std::uint32_t channels = 2,
                        InstrumentMaker make = createInstrument, GraphMaker makeGraph = makeHostGraph)
        : rig(make, makeGraph) {
        for (int pin = 0; pin < 17; ++pin) {
            rig.setTaker(pin, [this, pin](std::span<const float> samples, bool silent) {
                audio[pin].insert(audio[pin].end(), samples.begin(), samples.end());
                silentBlocks[pin] += silent;
                ++blocks[pin];
            });
        }
        EXPECT_EQ(rig.connect(kRate, channels, pins), S_OK);
        EXPECT_EQ(rig.attach({}), S_OK);
    }

    /// Lays a float file of `frames` frames on a pad. It has no loop data, so it plays as it is.
    void load(int pad, std::int64_t frames, const std::function<double(std::int64_t, int)>& value) {
        files.push_back(WaveFile()
                            .floats()
                            .channels(static_cast<std::uint16_t>(rig.channels()))
                            .frames(frames, value)
                            .writeTemp());
        std::int32_t bin = -1;
        std::uint32_t status = 99;
        const std::string title = "wave " + std::to_string(pad);
        EXPECT_EQ(rig.sampler().LoadFileToPad(pad, title.c_str(), files.back().c_str(), &bin, &status), S_OK);
        EXPECT_EQ(status, 0u);
    }
    void loadConstant(int pad, std::int64_t frames, double value) {
        load(pad, frames, [value](std::int64_t, int) { return value; });
    }

    /// The key that plays a pad as it is.
    std::uint8_t keyOf(int pad) {
        KeyMapRecord record{};
        record.pad = pad;
        EXPECT_EQ(rig.sampler().GetKeyMapEntry(&record), S_OK);
        return static_cast<std::uint8_t>(record.rootKey);
    }
    /// A sequenced note on the pad, long enough for whatever the tests play.
    void note(int pad, std::int32_t tick) {
        SynthEvent event;
        event.time = tick;
        event.note = keyOf(pad);
        event.velocity = 100;
        event.duration = 960 * 100;
        EXPECT_EQ(rig.queueEvents(0, {&event, 1}), S_OK);
    }
    void start(std::int32_t tick = 0) { EXPECT_EQ(rig.synth().StartPlayback(tick), S_OK); }
    void render(std::int64_t frames) { EXPECT_EQ(rig.render(frames), S_OK); }

    /// One channel of what a pin has put out.
    std::vector<float> channelOf(int pin, std::size_t channel) const {
        std::vector<float> out;
        for (std::size_t i = channel; i < audio[pin].size(); i += rig.channels())
            out.push_back(audio[pin][i]);
        return out;
    }

    HostRig rig;
    std::array<std::vector<float>, 17> audio;
    std::array<int, 17> blocks{};
    std::array<int, 17> silentBlocks{};
    std::vector<TempPath> files;
};

/// Frames of the fade with which every voice begins: 1 ms at 44100 Hz.
inline constexpr std::int64_t kFadeIn = 44;

}  // namespace marnoth::test
