#include <benchmark/benchmark.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/Bounds.h"
#include "bench/HeldPads.h"
#include "lv2/EventBuffer.h"
#include "lv2/PluginWorld.h"
#include "shells/lv2/Descriptors.h"
#include "shells/lv2/Plugin.h"

/// A plug-in's instance with a loop on each pad, in a host that sends it nothing.
namespace marnoth::bench {
namespace {

constexpr std::uint32_t kFrames = 64;
constexpr double kMostMicroseconds = 2;

class Resting {
public:
    explicit Resting(std::uint32_t index)
        : descriptor_(*pluginDescriptor(index)),
          audio_(index == 0 ? 2 : 34, std::vector<float>(kFrames)),
          instance_(descriptor_.instantiate(&descriptor_, kRate, "", world_.features())) {
        if (!instance_) throw std::runtime_error("no instance");
        layPads(static_cast<Plugin*>(instance_)->sampler(), writeLoops(),
                static_cast<int>(audio_.size() / 2));
        in_.end();
        descriptor_.connect_port(instance_, kEventsIn, in_.data());
        descriptor_.connect_port(instance_, kEventsOut, out_.data());
        for (std::uint32_t i = 0; i < audio_.size(); ++i)
            descriptor_.connect_port(instance_, kFirstAudioOut + i, audio_[i].data());
        descriptor_.activate(instance_);
    }
    ~Resting() { descriptor_.cleanup(instance_); }
    Resting(const Resting&) = delete;
    Resting& operator=(const Resting&) = delete;

    void renderBlock() {
        out_.offer();
        descriptor_.run(instance_, kFrames);
    }

private:
    test::PluginWorld world_;
    test::EventBuffer in_{world_};
    test::EventBuffer out_{world_};
    const LV2_Descriptor& descriptor_;
    std::vector<std::vector<float>> audio_;
    LV2_Handle instance_;
};

void rest(benchmark::State& state, std::uint32_t index) {
    Resting instance(index);
    BestTime time;
    for (auto _ : state) state.SetIterationTime(time.turn(1000, [&] { instance.renderBlock(); }));
    state.counters["us"] = time.nanoseconds() / 1000;
    state.counters["x_bound"] = time.nanoseconds() / 1000 / kMostMicroseconds;
}

BENCHMARK_CAPTURE(rest, stereo, 0)->Name("Lv2/loaded/stereo")->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(rest, multi, 1)->Name("Lv2/loaded/multi")->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace marnoth::bench
