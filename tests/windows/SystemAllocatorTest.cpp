/// All outputs of the instrument into memory of the system's allocator, beside memory whose blocks can be
/// marked as silence.

#include <gtest/gtest.h>

#include <cmath>

#include "hostkit/PlayingRig.h"
#include "windows/Registered.h"
#include "windows/SystemRig.h"
#include "windows/SystemSink.h"

namespace marnoth::test::system_allocator_test {
namespace {

constexpr int kPads = 16;
constexpr double kLevel = 0.25;

std::vector<int> allPins() {
    std::vector<int> pins;
    for (int pin = 0; pin < kOutputPins; ++pin) pins.push_back(pin);
    return pins;
}

struct MarkedMemory : PlayingRig {
    explicit MarkedMemory(std::uint32_t channels)
        : PlayingRig(allPins(), channels, createRegistered, makeSystemGraph) {}
};

struct SystemMemory : PlayingRig {
    explicit SystemMemory(std::uint32_t channels)
        : PlayingRig({}, channels, createRegistered, makeSystemGraph) {
        const auto filter = queryFor<IBaseFilter>(rig.sampler(), IID_IBaseFilter);
        const RefPtr<IGraphBuilder> graph = graphOf(*filter);
        const std::vector<RefPtr<IPin>> pins = pinsOf(*filter);
        for (const int pin : allPins()) {
            const auto sink = makeObject<SystemSink>();
            sink->pin().setTaker([this, pin](std::span<const float> samples, bool silent) {
                audio[pin].insert(audio[pin].end(), samples.begin(), samples.end());
                silentBlocks[pin] += silent;
                ++blocks[pin];
            });
            EXPECT_GE(graph->AddFilter(sink.get(), L"Sink"), S_OK);
            EXPECT_EQ(graph->ConnectDirect(pins[pin + 1].get(), &sink->pin(), nullptr), S_OK);
        }
    }
};

/// Each pad on its own output, for so many frames as nobody else; each begins by itself, once the first ones
/// have ended.
void lay(PlayingRig& it) {
    for (int pad = 0; pad < kPads; ++pad) {
        it.load(pad, 3000 + 700 * pad, [pad](std::int64_t frame, int channel) {
            return kLevel * std::cos(0.01 * (pad + 1) * static_cast<double>(frame) + channel);
        });
        EXPECT_EQ(it.rig.sampler().SetPadOutput(pad, static_cast<std::uint32_t>(pad + 1)), S_OK);
    }
}

/// Notes, some seconds, a stop of the sound, and what is heard behind it; over again with the graph stopped
/// in between.
void play(PlayingRig& it) {
    for (int round = 0; round < 2; ++round) {
        it.start();
        for (int pad = 0; pad < kPads; ++pad) it.note(pad, 240 * pad);
        it.render(44100 * 2);
        EXPECT_EQ(it.rig.synth().StopPlayback(), S_OK);
        it.render(44100);
        EXPECT_EQ(it.rig.stop(), S_OK);
    }
}

float peakOf(const std::vector<float>& samples, std::size_t from, std::size_t to) {
    float peak = 0;
    for (std::size_t i = from; i < to; ++i) peak = std::max(peak, std::abs(samples[i]));
    return peak;
}

class SystemAllocator : public Registered<testing::TestWithParam<std::uint32_t>> {};

TEST_P(SystemAllocator, CarriesTheAudioOfMarkedSamplesOnEveryOutput) {
    const std::uint32_t channels = GetParam();
    const ComApartment apartment(COINIT_MULTITHREADED);
    MarkedMemory marked(channels);
    SystemMemory plain(channels);
    for (PlayingRig* it : {static_cast<PlayingRig*>(&marked), static_cast<PlayingRig*>(&plain)}) {
        lay(*it);
        play(*it);
    }
    for (const int pin : allPins()) {
        EXPECT_EQ(plain.audio[pin].size(), std::size_t{channels} * 2 * 3 * 44100) << pin;
        EXPECT_TRUE(plain.audio[pin] == marked.audio[pin]) << pin;
        // The mix is written in every block.
        EXPECT_EQ(marked.silentBlocks[pin] > 0, pin > 0) << pin;
        EXPECT_EQ(plain.silentBlocks[pin], 0) << pin;
    }
}

TEST_P(SystemAllocator, IsAsLoudAsThePadsAreAndSilentBehindAStop) {
    const std::uint32_t channels = GetParam();
    const ComApartment apartment(COINIT_MULTITHREADED);
    SystemMemory it(channels);
    lay(it);
    play(it);
    for (int pin = 1; pin < kOutputPins; ++pin) {
        EXPECT_NEAR(peakOf(it.audio[pin], 0, it.audio[pin].size()), kLevel, 0.01) << pin;
        EXPECT_EQ(peakOf(it.audio[pin], channels * 2 * 44100, channels * 3 * 44100), 0.0f) << pin;
    }
}

INSTANTIATE_TEST_SUITE_P(Channels, SystemAllocator, testing::Values(1u, 2u));

}  // namespace
}  // namespace marnoth::test::system_allocator_test
