#include <benchmark/benchmark.h>
#include <malloc.h>
#include <unistd.h>

#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>

#include "bench/Bounds.h"
#include "bench/Check.h"
#include "bench/LockWait.h"
#include "support/WaveFile.h"

/// Saving and loading a large project beside `cp` of the same file, and how long a thread that renders
/// meanwhile waits for the engine's lock.
namespace marnoth::bench {
namespace {

constexpr int kRate = 44100;
constexpr int kSeconds = 30;
constexpr int kBeats = 60;
constexpr int kFiles = 16;
constexpr double kMega = 1e6;

/// A stereo loop of a pitch of its own.
test::TempPath writeLoop(int number) {
    const double left = 0.01 * (number + 2), right = 0.013 * (number + 2);
    return test::WaveFile()
        .rate(kRate)
        .channels(2)
        .frames(std::int64_t{kRate} * kSeconds,
                [&](std::int64_t i, int c) {
                    return 0.3 * std::sin((c ? right : left) * static_cast<double>(i));
                })
        .acid({.beats = kBeats, .tempo = 120})
        .writeTemp();
}

/// An engine whose sixteen pads play sixteen loops, and the file that it is saved to.
class Stage {
public:
    Stage() : file(".mrn"), copy(".mrn") {
        for (int pad = 0; pad < kFiles; ++pad) {
            const test::TempPath loop = writeLoop(pad);
            std::int32_t bin = -1;
            std::uint32_t status = 0;
            check(host.engine.LoadFileToPad(pad, "loop", loop.c_str(), &bin, &status), "LoadFileToPad");
        }
        host.engine.SetAuditionEnabled(1);
        save();
    }

    void save() { check(host.engine.SaveProject(0, file.c_str()), "SaveProject"); }
    void load() { check(host.engine.LoadProject(file.c_str()), "LoadProject"); }
    /// The system's own copy of the project's file, over the former one.
    void copyFile() {
        if (std::system(("cp '" + file.string() + "' '" + copy.string() + "'").c_str()) != 0)
            throw std::runtime_error("cp");
    }
    void playAll() {
        for (int pad = 0; pad < kFiles; ++pad) check(host.engine.AuditionPad(pad, -1), "AuditionPad");
    }
    void clear() {
        check(host.engine.ClearProject(), "ClearProject");
        malloc_trim(0);
    }
    double megabytes() const { return static_cast<double>(std::filesystem::file_size(file.path())) / kMega; }

    test::EngineHost host{kRate, 2};

private:
    test::TempPath file, copy;
};

/// One for all benchmarks: it takes seconds to make.
Stage& stage() {
    static Stage one;
    return one;
}

/// Seconds by the clock on the wall: part of the work is done by other threads, and that of `cp` by another
/// process.
template <class Work>
double timed(const Work& work) {
    const auto begin = std::chrono::steady_clock::now();
    work();
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
    return taken.count();
}

/// The rate of `work`, which writes or reads the project's file, beside that of `cp`.
template <class Prepare, class Work>
void besideCopy(benchmark::State& state, const Prepare& prepare, const Work& work) {
    Stage& it = stage();
    it.copyFile();
    std::vector<double> times, copies;
    for (auto _ : state) {
        // What earlier turns left to be written to the disk is written first.
        prepare();
        sync();
        times.push_back(timed(work));
        sync();
        copies.push_back(timed([&] { it.copyFile(); }));
        state.SetIterationTime(times.back());
    }
    state.counters["MB"] = it.megabytes();
    state.counters["MB_per_s"] = it.megabytes() / medianOf(times);
    state.counters["cp_MB_per_s"] = it.megabytes() / medianOf(copies);
    state.counters["of_cp"] = medianOf(copies) / medianOf(times);
}

void save(benchmark::State& state) {
    besideCopy(
        state, [] {}, [] { stage().save(); });
}

void load(benchmark::State& state) {
    besideCopy(
        state, [] { stage().clear(); }, [] { stage().load(); });
}

/// Keeps every processor busy for some time, as the threads of a load do, and touches no lock.
void crowd(double seconds) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
    const auto spin = [end] {
        while (std::chrono::steady_clock::now() < end) {
        }
    };
    std::vector<std::thread> others(std::max(std::thread::hardware_concurrency(), 1u) - 1);
    for (std::thread& other : others) other = std::thread(spin);
    spin();
    for (std::thread& other : others) other.join();
}

/// The longest wait during `work`, and in as long a time with busy processors but without it: what the
/// machine does to the thread.
template <class Work>
void lockWait(benchmark::State& state, Pace pace, const Work& work) {
    Stage& it = stage();
    std::vector<double> waits, crowdWaits;
    std::int64_t blocks = 0;
    for (auto _ : state) {
        it.playAll();
        sync();
        RenderingThread busy(it.host, pace);
        const double taken = timed(work);
        waits.push_back(busy.finish());
        blocks += busy.blocks();
        state.SetIterationTime(waits.back());
        it.playAll();
        RenderingThread other(it.host, pace);
        crowd(taken);
        crowdWaits.push_back(other.finish());
    }
    const auto longest = [](const std::vector<double>& all) {
        return *std::max_element(all.begin(), all.end()) * 1e6;
    };
    state.counters["longest_us"] = longest(waits);
    state.counters["median_us"] = medianOf(waits) * 1e6;
    state.counters["crowd_longest_us"] = longest(crowdWaits);
    state.counters["crowd_median_us"] = medianOf(crowdWaits) * 1e6;
    state.counters["blocks"] = static_cast<double>(blocks);
}

template <class Run>
void add(const char* name, const Run& run) {
    benchmark::RegisterBenchmark(name, run)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(11);
}

template <class Work>
void addLockWait(const std::string& name, Pace pace, Work work) {
    add(name.c_str(), [=](benchmark::State& state) { lockWait(state, pace, work); });
}

void addAll() {
    add("Project/save", save);
    add("Project/load", load);
    const std::pair<Pace, std::string> paces[]{
        {Pace::realTime, "in_real_time"}, {Pace::tenfold, "tenfold"}, {Pace::freeRunning, "free_running"}};
    for (const auto& [pace, name] : paces) {
        addLockWait("Project/wait_while_saving/" + name, pace, [] { stage().save(); });
        addLockWait("Project/wait_while_loading/" + name, pace, [] { stage().load(); });
    }
}

[[maybe_unused]] const bool kAdded = (addAll(), true);

}  // namespace
}  // namespace marnoth::bench
