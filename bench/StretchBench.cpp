#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "bench/Bounds.h"
#include "dsp/Stretch.h"

/// One stereo grain of half a second rendered block by block over its whole target, beside a copy of the same
/// bytes.
namespace marnoth::bench {
namespace {

constexpr std::int64_t kSourceFrames = 22050;
constexpr int kRate = 44100;

struct Scene {
    std::int64_t target;
    int semitones;
    int block;
};

std::vector<float> sourceSamples() {
    std::vector<float> samples((kSourceFrames + 1) * 2);
    for (std::int64_t i = 0; i < kSourceFrames; ++i) {
        samples[2 * i] = static_cast<float>(std::sin(static_cast<double>(i) * 0.05) * 0.5);
        samples[2 * i + 1] = static_cast<float>(std::sin(static_cast<double>(i) * 0.031) * 0.5);
    }
    samples[2 * kSourceFrames] = samples[2 * kSourceFrames - 2];
    samples[2 * kSourceFrames + 1] = samples[2 * kSourceFrames - 1];
    return samples;
}

void renderTarget(const StretchSource& source, const Scene& scene, std::vector<float>& out) {
    const StereoGain gain = grainGain(0.8f, 0.4f, 0.9, 0.6);
    for (std::int64_t pos = 0; pos < scene.target; pos += scene.block) {
        const auto frames =
            static_cast<std::int32_t>(std::min<std::int64_t>(scene.block, scene.target - pos));
        const StretchSpan span{pos, frames, scene.target};
        const StretchDest dest{out.data() + 2 * pos, 2};
        if (scene.semitones == 0) {
            renderStretched(source, span, dest, gain);
        } else {
            renderShifted(source, span, dest, gain, scene.semitones, 1.0);
        }
    }
}

void run(benchmark::State& state, Scene scene) {
    const std::vector<float> samples = sourceSamples();
    const StretchSource source{{samples.data(), kSourceFrames, 2}, 0, kSourceFrames, kRate, 32};
    std::vector<float> out(scene.target * 2, 0.0f);
    std::vector<float> copy(scene.target * 2, 0.0f);
    const std::size_t bytes = out.size() * sizeof(float);
    renderTarget(source, scene, out);
    char label[32];
    std::snprintf(label, sizeof label, "audio %016llx",
                  static_cast<unsigned long long>(fingerprint(out.data(), bytes)));

    BestTime renderTime, copyTime;
    for (auto _ : state) {
        std::memset(out.data(), 0, bytes);
        state.SetIterationTime(renderTime.turn(1, [&] { renderTarget(source, scene, out); }));
        copyTime.turn(1, [&] { std::memcpy(copy.data(), out.data(), bytes); });
    }
    const double perFrame = renderTime.nanoseconds() / static_cast<double>(scene.target);
    state.SetLabel(label);
    state.counters["ns/frame"] = perFrame;
    state.counters["x_copy"] = renderTime.nanoseconds() / copyTime.nanoseconds();
    state.counters["x_realtime"] = 1e9 / kRate / perFrame;
}

void addScenes() {
    const std::pair<const char*, std::int64_t> targets[] = {{"same_length", kSourceFrames},
                                                            {"longer_1.25", kSourceFrames * 5 / 4},
                                                            {"longer_2", kSourceFrames * 2},
                                                            {"shorter_0.8", kSourceFrames * 4 / 5}};
    for (const auto& [name, target] : targets) {
        for (int semitones : {0, 3, -12}) {
            for (int block : {64, 512}) {
                const std::string full = std::string(semitones == 0 ? "Render/" : "RenderShifted/") + name +
                                         (semitones == 0 ? "" : "/by_" + std::to_string(semitones)) +
                                         "/blocks_of_" + std::to_string(block);
                benchmark::RegisterBenchmark(full.c_str(), run, Scene{target, semitones, block})
                    ->UseManualTime()
                    ->MinTime(0.05);
            }
        }
    }
}

[[maybe_unused]] const bool kAdded = (addScenes(), true);

}  // namespace
}  // namespace marnoth::bench
