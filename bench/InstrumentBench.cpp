#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <limits>
#include <numeric>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/Bounds.h"
#include "bench/Check.h"
#include "bench/StretchedLoops.h"
#include "host/CreateInstance.h"
#include "hostkit/HostRig.h"

/// The whole instrument as a host drives it, pins and all: pads that play loops of 16 grains, each stretched
/// to 1.25 of its length.
namespace marnoth::bench {
namespace {

constexpr int kGrains = 16;

struct Scene {
    int pads;
    int semitones;
    int block;

    std::int64_t blocks() const { return kPassFrames / block; }
};

/// A host with the pads of a scene, each with a file of its own.
class Stage {
public:
    explicit Stage(const Scene& scene) : scene(scene) {
        const int mix = 0;
        check(rig.connect(kRate, 2, {&mix, 1}), "connect");
        check(rig.setBlock(scene.block), "setBlock");
        check(rig.attach({.tempo = kHostTempo, .key = {}}), "attach");
        for (int pad = 0; pad < scene.pads; ++pad) load(pad);
    }

    /// Plays the scene from its beginning; `onBlock` is called for every block and renders it.
    template <class OnBlock>
    void play(const OnBlock& onBlock) {
        check(rig.synth().StopPlayback(), "StopPlayback");
        check(rig.synth().StartPlayback(0), "StartPlayback");
        // Every pass from frame 0 on, so that its blocks are those of the pass before.
        rig.setDiscontinuity(0);
        check(rig.queueEvents(0, notes), "queueEvents");
        for (std::int64_t i = 0; i < scene.blocks(); ++i) onBlock(i);
    }

    void renderBlock() { check(rig.render(scene.block), "render"); }

    /// What the scene sounds like, for eyes; throws when it is silent.
    std::string audioLabel() {
        std::vector<float> audio;
        rig.setTaker(0, [&](std::span<const float> samples, bool) {
            audio.insert(audio.end(), samples.begin(), samples.end());
        });
        play([&](std::int64_t) { renderBlock(); });
        rig.setTaker(0, {});
        const float peak = *std::max_element(audio.begin(), audio.end());
        if (peak < 0.1f) throw std::runtime_error("silence");
        const auto print = fingerprint(audio.data(), audio.size() * sizeof(float));
        char label[64];
        std::snprintf(label, sizeof label, "audio %016llx peak %.2f", static_cast<unsigned long long>(print),
                      peak);
        return label;
    }

private:
    void load(int pad) {
        IGrooveSampler& sampler = rig.sampler();
        files.push_back(writeLoop(0.3, 0.01 * (pad + 2), 0.013 * (pad + 2)));
        std::int32_t bin = -1, grains = 0;
        std::uint32_t status = 0;
        check(sampler.LoadFileToPad(pad, "loop", files.back().c_str(), &bin, &status), "LoadFileToPad");
        check(sampler.GetGrainCount(kPadLoop, static_cast<std::uint32_t>(pad), &grains), "GetGrainCount");
        if (grains != kGrains) throw std::runtime_error("not 16 grains");
        for (int grain = 0; grain < kGrains; ++grain)
            check(sampler.SetGrainTranspose(pad, grain, scene.semitones), "SetGrainTranspose");
        KeyMapRecord key{};
        key.pad = pad;
        check(sampler.GetKeyMapEntry(&key), "GetKeyMapEntry");
        SynthEvent note;
        note.note = static_cast<std::uint8_t>(key.rootKey);
        note.velocity = 100;
        note.duration = 960 * 1000;
        notes.push_back(note);
    }

    Scene scene;
    HostRig rig{createInstrument};
    std::vector<test::TempPath> files;
    std::vector<SynthEvent> notes;
};

/// Copies what each pad of a block has to read, out of as much memory as the pads' waves take.
class BlockCopy {
public:
    explicit BlockCopy(const Scene& scene)
        : scene(scene),
          waves(static_cast<std::size_t>(scene.pads * kLoopFrames * 2), 0.5f),
          out(static_cast<std::size_t>(scene.block) * 2) {}

    void operator()(std::int64_t block) {
        const std::int64_t place = block * scene.block % (kLoopFrames - scene.block);
        for (int pad = 0; pad < scene.pads; ++pad) {
            std::memcpy(out.data(), waves.data() + (pad * kLoopFrames + place) * 2,
                        out.size() * sizeof(float));
            benchmark::ClobberMemory();
        }
    }

private:
    Scene scene;
    std::vector<float> waves, out;
};

/// Per block of the scene the best time of all passes: what is left is the block's own cost.
class BlockTimes {
public:
    explicit BlockTimes(const Scene& scene)
        : best(static_cast<std::size_t>(scene.blocks()), std::numeric_limits<double>::infinity()) {}

    template <class Work>
    void measure(std::int64_t block, const Work& work) {
        double& time = best[static_cast<std::size_t>(block)];
        time = std::min(time, BestTime().turn(1, work));
    }

    double sum() const { return std::accumulate(best.begin(), best.end(), 0.0); }
    double worst() const { return *std::max_element(best.begin(), best.end()); }
    double median() const { return medianOf(best); }

private:
    std::vector<double> best;
};

void run(benchmark::State& state, Scene scene) {
    Stage stage(scene);
    state.SetLabel(stage.audioLabel());
    BlockCopy copy(scene);
    BlockTimes renders(scene), copies(scene);
    ProcessorTimes passes;
    for (auto _ : state) {
        state.SetIterationTime(passes.turn(
            [&] { stage.play([&](std::int64_t i) { renders.measure(i, [&] { stage.renderBlock(); }); }); }));
        for (std::int64_t i = 0; i < scene.blocks(); ++i) copies.measure(i, [&] { copy(i); });
    }
    const double blockSeconds = static_cast<double>(scene.block) / kRate;
    const double audioSeconds = blockSeconds * static_cast<double>(scene.blocks());
    state.counters["x_realtime"] = audioSeconds / passes.median();
    state.counters["best_x_realtime"] = audioSeconds / renders.sum();
    state.counters["median_us"] = renders.median() * 1e6;
    state.counters["worst_us"] = renders.worst() * 1e6;
    state.counters["worst_x_realtime"] = blockSeconds / renders.worst();
    state.counters["copy_us"] = copies.median() * 1e6;
    state.counters["x_copy"] = renders.median() / copies.median();
}

void addScenes() {
    for (int semitones : {0, 3}) {
        for (int pads : {1, 4, 16}) {
            for (int block : {64, 512}) {
                const std::string name = "Instrument/pads_" + std::to_string(pads) +
                                         (semitones ? "/transposed_by_3" : "/untransposed") + "/blocks_of_" +
                                         std::to_string(block);
                benchmark::RegisterBenchmark(name.c_str(), run, Scene{pads, semitones, block})
                    ->UseManualTime()
                    ->Unit(benchmark::kMillisecond)
                    ->MinTime(0.5);
            }
        }
    }
}

[[maybe_unused]] const bool kAdded = (addScenes(), true);

}  // namespace
}  // namespace marnoth::bench
