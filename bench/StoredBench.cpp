#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/Bounds.h"
#include "bench/Check.h"
#include "bench/LargeProject.h"
#include "seam/MusicalTime.h"
#include "support/EngineHost.h"

/// A block costs what sounds, not what is stored: blocks of pads that hold 65,536 grains beside the same
/// blocks of pads that hold 16, while one grain at a time sounds on each.
namespace marnoth::bench {
namespace {

constexpr std::int32_t kFew = 16;
constexpr std::int32_t kMany = 65'536;
constexpr int kRate = 44100;
/// The 128th part of a beat, 172.3 frames at 120 beats per minute.
constexpr GrainLength kGrain{kTicks16PerBeat / 128, 172};
/// Of a turn: some 128 grains.
constexpr std::int64_t kTurnFrames = 22'016;
constexpr double kBound = 1.2;

enum class Timing { locked, unlocked, unsynced };

struct Scene {
    int pads;
    std::int32_t block;  ///< frames
    Timing timing;       ///< by ticks, by ticks with ends that go by the audio's length, or by frames
    std::int64_t cycle;  ///< of 16 grains each, where playing begins

    std::int64_t blocks() const { return kTurnFrames / block; }
};

float peakOf(const std::vector<float>& audio) {
    return *std::max_element(audio.begin(), audio.end());
}

test::ProjectBytes projectOf(const Scene& scene, std::int32_t grains) {
    test::ProjectBytes project = largeProject(kFew, grains, kGrain, scene.pads);
    for (test::ProjectBytes::Pad& pad : project.pads) {
        pad.settings.synced = scene.timing != Timing::unsynced;
        for (test::ProjectBytes::Grain& grain : pad.grains)
            grain.tempoLocked = scene.timing == Timing::locked;
    }
    return project;
}

/// Pads of so many grains that play from a place of the project on.
class Stage {
public:
    Stage(const Scene& scene, std::int32_t grains)
        : scene_(scene), values_(static_cast<std::size_t>(scene.block) * 2 * host_.context.pinIds.size()) {
        check(host_.engine.LoadProject(projectOf(scene, grains).writeTemp().c_str()), "LoadProject");
        for (int pad = 0; pad < scene.pads; ++pad) check(host_.engine.AuditionPad(pad, -1), "AuditionPad");
        host_.context.running = 1;
        // Pads that aren't synced begin with their first block, and all others count from the project's zero.
        renderBlock();
    }

    /// Plays the turn; `onBlock` is called behind each block.
    template <class OnBlock>
    void play(const OnBlock& onBlock) {
        host_.position = host_.context.TicksToSamples(scene_.cycle * kFew * kGrain.ticks);
        for (std::int64_t i = 0; i < scene_.blocks(); ++i) {
            renderBlock();
            onBlock();
        }
    }

    /// The mix of a turn.
    std::vector<float> audio() {
        std::vector<float> all;
        play([&] {
            all.insert(all.end(), values_.begin(), values_.begin() + scene_.block * 2);
            std::fill(values_.begin(), values_.end(), 0.0f);
        });
        return all;
    }

private:
    void renderBlock() {
        const std::size_t perPin = static_cast<std::size_t>(scene_.block) * 2;
        for (std::size_t i = 0; i < pins_.size(); ++i)
            pins_[i] = {scene_.block, host_.context.pinIds[i], nullptr, values_.data() + i * perPin, 1};
        PinBuffer input{scene_.block, 0, nullptr, nullptr, 1};
        const CAutoLock lock(host_.engine);
        check(host_.engine.ProcessBlock(host_.position, &input, pins_.data(),
                                        static_cast<std::int32_t>(pins_.size()), 0, &host_.notes),
              "ProcessBlock");
        host_.position += scene_.block;
    }

    const Scene scene_;
    test::EngineHost host_{kRate, 2};
    std::vector<float> values_;
    std::vector<PinBuffer> pins_{host_.context.pinIds.size()};
};

/// Both play the same, or the comparison says nothing. Ends that go by the audio's length are rounded where
/// they lie, so that those of the two can be a frame apart.
std::string labelOf(Stage& few, Stage& many, Timing timing) {
    const std::vector<float> audio = few.audio(), other = many.audio();
    if (timing != Timing::unlocked && audio != other) throw std::runtime_error("not the same audio");
    if (std::min(peakOf(audio), peakOf(other)) < 0.1f) throw std::runtime_error("silence");
    return "audio " + std::to_string(fingerprint(other.data(), other.size() * sizeof(float)));
}

void run(benchmark::State& state, const Scene& scene) {
    Stage few(scene, kFew), many(scene, kMany);
    state.SetLabel(labelOf(few, many, scene.timing));
    BestTime fewTime, manyTime;
    for (auto _ : state) {
        fewTime.turn(1, [&] { few.play([] {}); });
        state.SetIterationTime(manyTime.turn(1, [&] { many.play([] {}); }));
    }
    const double blocks = static_cast<double>(scene.blocks());
    const double ratio = manyTime.nanoseconds() / fewTime.nanoseconds();
    state.counters["few_us"] = fewTime.nanoseconds() / blocks / 1000;
    state.counters["many_us"] = manyTime.nanoseconds() / blocks / 1000;
    state.counters["x_few"] = ratio;
    state.counters["x_bound"] = ratio / kBound;
}

void addScenes() {
    const std::pair<Timing, std::string> timings[]{
        {Timing::locked, "tempo_locked"}, {Timing::unlocked, "own_length"}, {Timing::unsynced, "unsynced"}};
    const std::pair<std::int64_t, std::string> places[]{
        {0, "first_grains"}, {kMany / kFew / 2, "middle"}, {kMany / kFew - 1, "last_grains"}};
    for (const int pads : {1, 16}) {
        for (const auto& [timing, timingName] : timings) {
            for (const auto& [cycle, placeName] : places) {
                const std::string name =
                    "Stored/pads_" + std::to_string(pads) + "/" + timingName + "/" + placeName;
                benchmark::RegisterBenchmark(
                    name.c_str(),
                    [scene = Scene{pads, 64, timing, cycle}](benchmark::State& state) { run(state, scene); })
                    ->UseManualTime()
                    ->Unit(benchmark::kMicrosecond)
                    ->Iterations(25);
            }
        }
    }
}

[[maybe_unused]] const bool kAdded = (addScenes(), true);

}  // namespace
}  // namespace marnoth::bench
