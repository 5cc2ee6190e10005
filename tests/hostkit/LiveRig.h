#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <vector>

#include "host/CreateInstance.h"
#include "hostkit/LiveHost.h"
#include "support/WaveFile.h"

namespace marnoth::test {

/// All outputs of the instrument.
inline std::vector<int> everyOutput() {
    std::vector<int> all;
    for (int output = 0; output < kOutputPins; ++output) all.push_back(output);
    return all;
}

/// Four files for sixteen pads: two loops of a beat at 120 beats per minute and two shots of a second.
inline std::vector<TempPath> padFiles(std::uint32_t rate) {
    std::vector<TempPath> files;
    for (int file = 0; file < 4; ++file) {
        WaveFile wave;
        wave.rate(rate).channels(2).floats().frames(file < 2 ? rate / 2 : rate, [&](std::int64_t i, int c) {
            return 0.2 * std::sin(0.011 * (file + 2) * i + c);
        });
        if (file < 2) wave.acid({.flags = 4, .beats = 1, .tempo = 120});
        files.push_back(wave.writeTemp());
    }
    return files;
}

/// Lays the files on the sixteen pads: synced and not, one-shot and gated, on outputs of their own and on the
/// mix. Pad n plays by key 48 + n and by no other.
inline void layPads(IGrooveSampler& sampler, const std::vector<TempPath>& files) {
    for (std::int32_t pad = 0; pad < kPads; ++pad) {
        std::int32_t bin = -1;
        std::uint32_t status = 99;
        const TempPath& file = files[static_cast<std::size_t>(pad) % files.size()];
        const std::string title = "pad " + std::to_string(pad);
        ASSERT_EQ(sampler.LoadFileToPad(pad, title.c_str(), file.c_str(), &bin, &status), S_OK);
        ASSERT_EQ(status, 0u);
        sampler.SetPadOneShot(pad, pad / 4 % 2);
        sampler.SetPadOutput(pad, static_cast<std::uint32_t>(pad % 3 ? pad + 1 : 0));
        const KeyMapRecord key{pad, 48 + pad, 48 + pad, 48 + pad, 0, 127};
        sampler.SetKeyMapEntry(&key);
    }
}

/// A live host whose audio is kept, with what a player does in a line each.
struct LiveRig {
    static constexpr std::uint32_t kRate = 44100;
    static constexpr std::int32_t kMost = 512;

    explicit LiveRig(const std::vector<int>& outputs = everyOutput(), InstrumentMaker make = createInstrument)
        : host(make) {
        connect(outputs, kRate);
    }
    void connect(const std::vector<int>& outputs, std::uint32_t rate) {
        EXPECT_EQ(host.connect({.rate = rate, .mostFrames = kMost, .outputs = outputs}), S_OK);
    }

    void on(std::int32_t frame, int key, int channel = 0) { message(frame, 0x90 | channel, key, 100); }
    void off(std::int32_t frame, int key, int channel = 0) { message(frame, 0x80 | channel, key, 64); }
    void message(std::int32_t frame, int status, int data1, int data2) {
        EXPECT_TRUE(host.addMessage(frame, static_cast<std::uint8_t>(status),
                                    static_cast<std::uint8_t>(data1), static_cast<std::uint8_t>(data2)));
    }

    /// A block by the host's own transport, or by the caller's.
    void block(std::int32_t frames) {
        prepare(frames);
        EXPECT_EQ(host.process(frames, pointers), S_OK);
    }
    void block(std::int32_t frames, const LiveTransport& transport) {
        prepare(frames);
        EXPECT_EQ(host.process(frames, transport, pointers), S_OK);
    }
    /// Frames from `first` on of the mix's left channel.
    float peakFrom(std::size_t first) const {
        float peak = 0;
        for (std::size_t i = first; i < audio[0].size(); ++i) peak = std::max(peak, std::abs(audio[0][i]));
        return peak;
    }

    LiveHost host;
    std::array<std::vector<float>, 34> audio;  ///< by output and channel
    std::array<float*, 34> pointers{};

private:
    void prepare(std::int32_t frames) {
        for (std::size_t i = 0; i < audio.size(); ++i) {
            const std::size_t begin = audio[i].size();
            audio[i].resize(begin + static_cast<std::size_t>(frames), 9.0f);
            pointers[i] = audio[i].data() + begin;
        }
    }
};

}  // namespace marnoth::test
