#include <benchmark/benchmark.h>
#include <malloc.h>
#include <sndfile.h>

#include <cmath>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>

#include "bench/Bounds.h"
#include "host/CreateInstance.h"
#include "hostkit/HostRig.h"
#include "support/WaveFile.h"

/// Loading a long loop into the Loop Bin, with its peaks, its change of rate and a tail for each grain,
/// beside libsndfile, which reads the same file as float and no more. Both begin with no memory kept from the
/// turn before, since that is how a file is loaded.
namespace marnoth::bench {
namespace {

constexpr int kEngineRate = 44100;
constexpr int kSeconds = 60;

struct Scene {
    std::uint32_t rate;
    std::uint32_t beats;
    std::uint32_t divisions;  ///< exponent: 2 quarter notes, 4 sixteenths
    std::int32_t grains;
};

test::TempPath writeFile(const Scene& scene) {
    return test::WaveFile()
        .rate(scene.rate)
        .channels(2)
        .bits(16)
        .frames(std::int64_t{scene.rate} * kSeconds,
                [](std::int64_t i, int c) { return 0.3 * std::sin((c ? 0.05 : 0.031) * i); })
        .acid({.beats = scene.beats, .tempo = static_cast<float>(scene.beats)})
        .strc(scene.divisions)
        .writeTemp();
}

class Loader {
public:
    Loader() {
        const int mix = 0;
        if (rig.connect(kEngineRate, 2, {&mix, 1}) != S_OK) throw std::runtime_error("connect");
        if (rig.attach({}) != S_OK) throw std::runtime_error("attach");
    }

    void load(const test::TempPath& file) {
        std::uint32_t status = 0;
        if (rig.sampler().LoadFileToBin("loop", file.c_str(), &bin, &status) != S_OK)
            throw std::runtime_error("LoadFileToBin");
    }
    std::int32_t grains() {
        std::int32_t count = 0;
        rig.sampler().GetGrainCount(kBinLoop, static_cast<std::uint32_t>(bin), &count);
        return count;
    }
    void remove() { rig.sampler().RemoveBinFile(bin); }

private:
    HostRig rig{createInstrument};
    std::int32_t bin = -1;
};

using Samples = std::unique_ptr<float[]>;

void readPlain(const test::TempPath& file, Samples& samples) {
    SF_INFO info{};
    SNDFILE* const sound = sf_open(file.c_str(), SFM_READ, &info);
    if (!sound) throw std::runtime_error("sf_open");
    if (!samples) samples.reset(new float[static_cast<std::size_t>(info.frames * info.channels)]);
    if (sf_readf_float(sound, samples.get(), info.frames) != info.frames)
        throw std::runtime_error("sf_readf_float");
    sf_close(sound);
}

void run(benchmark::State& state, Scene scene) {
    const test::TempPath file = writeFile(scene);
    Loader loader;
    Samples fresh, reused;
    readPlain(file, reused);
    ProcessorTimes loads, reads, repeatedReads;
    for (auto _ : state) {
        malloc_trim(0);
        state.SetIterationTime(loads.turn([&] { loader.load(file); }));
        if (loader.grains() != scene.grains) throw std::runtime_error("unexpected number of grains");
        loader.remove();
        malloc_trim(0);
        reads.turn([&] { readPlain(file, fresh); });
        fresh.reset();
        repeatedReads.turn([&] { readPlain(file, reused); });
    }
    state.counters["ms"] = loads.median() * 1e3;
    state.counters["sndfile_ms"] = reads.median() * 1e3;
    state.counters["sndfile_reused_ms"] = repeatedReads.median() * 1e3;
    state.counters["x_sndfile"] = loads.median() / reads.median();
    state.counters["x_realtime"] = kSeconds / loads.median();
}

void add(const char* name, const Scene& scene) {
    benchmark::RegisterBenchmark(name, run, scene)
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond)
        ->Iterations(25);
}

[[maybe_unused]] const bool kAdded =
    (add("Load/60_s_from_48000_Hz/grains_256", {48000, 64, 4, 256}),
     add("Load/60_s_from_48000_Hz/grains_16", {48000, 16, 2, 16}),
     add("Load/60_s_at_the_engines_rate/grains_256", {44100, 64, 4, 256}), true);

}  // namespace
}  // namespace marnoth::bench
