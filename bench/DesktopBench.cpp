#include <benchmark/benchmark.h>
#include <pthread.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <limits>
#include <memory>
#include <numeric>
#include <random>
#include <stdexcept>
#include <thread>
#include <vector>

#include "bench/Bounds.h"
#include "bench/HeldPads.h"
#include "host/CreateInstance.h"
#include "hostkit/LiveHost.h"
#include "shells/desktop/playing/LiveInstrument.h"

/// The desktop program's block, without its window: sixteen pads held, all seventeen outputs, transport,
/// metronome, level and meter of the mix, and a take under way; 64 frames at 48000 Hz.
namespace marnoth::bench {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::uint32_t kDesktopRate = 48000;
constexpr std::int32_t kFrames = 64;
constexpr double kPeriod = static_cast<double>(kFrames) / kDesktopRate;  ///< seconds
constexpr std::int64_t kBlocks = 4 * kDesktopRate / kFrames;
constexpr double kQuarter = 0.25;  ///< of the period: the bound of a block

/// The outputs of a block, as an audio system has them.
class Outputs {
public:
    Outputs() {
        for (std::size_t i = 0; i < pointers_.size(); ++i) pointers_[i] = memory_.data() + i * kFrames;
    }
    OutputPointers pointers() { return pointers_; }
    bool isSilent() const { return *std::max_element(memory_.begin(), memory_.end()) < 0.01f; }

private:
    std::vector<float> memory_ = std::vector<float>(SeparateOutputs::kPointers * kFrames);
    std::array<float*, SeparateOutputs::kPointers> pointers_{};
};

/// The program at work.
class Program {
public:
    Program() {
        if (!live_.prepare(kDesktopRate, kFrames)) throw std::runtime_error("prepare");
        layPads(live_.sampler(), files_, kOutputPins);
        live_.setTempo(kHostTempo);
        live_.setMetronome(true);
        live_.recorder().start(take_.string(), kDesktopRate);
        live_.play();
        // Memory that the first notes touch is brought in.
        renderBlock(0);
    }

    /// From block 0 on the same again.
    void renderBlock(std::int64_t block) {
        if (block == 0) live_.locate(0.0);
        if (block == 0)
            for (std::uint8_t pad = 0; pad < kPads; ++pad)
                live_.midi(0, 0x90, static_cast<std::uint8_t>(kFirstKey + pad), 100);
        live_.render(kFrames, outputs.pointers());
    }
    LiveInstrument& live() { return live_; }
    const std::vector<test::TempPath>& files() const { return files_; }

    Outputs outputs;

private:
    const std::vector<test::TempPath> files_ = writeLoops();
    const test::TempPath take_{".wav"};
    LiveInstrument live_;
};

/// The same pads, the transport and nothing else.
class Host {
public:
    explicit Host(const std::vector<test::TempPath>& files) {
        std::array<int, kOutputPins> pins{};
        std::iota(pins.begin(), pins.end(), 0);
        check(host_.connect({kDesktopRate, kFrames, pins}), "connect");
        layPads(host_.sampler(), files, kOutputPins);
        renderBlock(0);
    }

    void renderBlock(std::int64_t block) {
        if (block == 0)
            for (std::uint8_t pad = 0; pad < kPads; ++pad)
                host_.addMessage(0, 0x90, static_cast<std::uint8_t>(kFirstKey + pad), 100);
        const LiveTransport transport{true, block * kFrames, {}, kHostTempo};
        check(host_.process(kFrames, transport, outputs.pointers()), "process");
    }

    Outputs outputs;

private:
    LiveHost host_{createInstrument};
};

/// Each block at its best of all turns.
class BestBlocks {
public:
    template <class Work>
    double turn(const Work& renderBlock) {
        double seconds = 0;
        for (std::size_t block = 0; block < best_.size(); ++block) {
            const double taken = BestTime().turn(1, [&] { renderBlock(static_cast<std::int64_t>(block)); });
            best_[block] = std::min(best_[block], taken);
            seconds += taken;
        }
        return seconds;
    }
    double sum() const { return std::accumulate(best_.begin(), best_.end(), 0.0); }
    double mean() const { return sum() / static_cast<double>(best_.size()); }
    double worst() const { return *std::max_element(best_.begin(), best_.end()); }

private:
    std::vector<double> best_ = std::vector<double>(kBlocks, std::numeric_limits<double>::infinity());
};

void held(benchmark::State& state) {
    Program program;
    Host host(program.files());
    BestBlocks programs, hosts;
    for (auto _ : state) {
        hosts.turn([&](std::int64_t block) { host.renderBlock(block); });
        state.SetIterationTime(programs.turn([&](std::int64_t block) { program.renderBlock(block); }));
    }
    if (program.outputs.isSilent() || host.outputs.isSilent()) throw std::runtime_error("silence");
    state.counters["mean_us"] = programs.mean() * 1e6;
    state.counters["worst_us"] = programs.worst() * 1e6;
    state.counters["x_host"] = programs.sum() / hosts.sum();
    state.counters["x_quarter"] = programs.worst() / (kPeriod * kQuarter);
}
BENCHMARK(held)->Name("Desktop/held")->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(10);

/// A user at the page: presses, levels, undo, and now and then a file, or a copy for after a crash.
class Editing {
public:
    explicit Editing(Program& program) : program_(program), thread_([this] { run(); }) {}
    ~Editing() { finish(); }
    Editing(const Editing&) = delete;
    Editing& operator=(const Editing&) = delete;

    void finish() {
        ends_ = true;
        if (thread_.joinable()) thread_.join();
    }
    int edits() const { return edits_; }

private:
    static constexpr std::chrono::milliseconds kRest{1};

    void run() {
        for (; !ends_; ++edits_) {
            edit();
            std::this_thread::sleep_for(kRest);
        }
    }
    void edit() {
        IGrooveSampler& sampler = program_.live().sampler();
        const std::int32_t pad = any(kPads);
        std::int32_t index = 0;
        std::uint32_t status = 0;
        switch (any(40)) {
            case 0:
                sampler.LoadFileToPad(pad, "loop", program_.files()[static_cast<std::size_t>(pad)].c_str(),
                                      &index, &status);
                return;
            case 1:
                if (!program_.live().saveState()) throw std::runtime_error("saveState");
                return;
            case 2:
            case 3:
                sampler.Undo();
                return;
            default:
                break;
        }
        sampler.PushUndoState();
        if (any(2)) {
            sampler.SetPadVolume(pad, static_cast<float>(any(20)) / 10.0f);
        } else {
            sampler.MoveGrain(pad, any(16), pad, any(16) * (std::int64_t{960} << 16), &index, 0);
        }
    }
    int any(int count) { return static_cast<int>(random_() % static_cast<unsigned>(count)); }

    Program& program_;
    std::mt19937 random_{11};
    std::atomic<bool> ends_ = false;
    std::atomic<int> edits_ = 0;
    std::thread thread_;
};

/// Calls `work` when each block is due, on a thread with the priority of audio where the system allows that;
/// seconds that each call took.
template <class Work>
std::vector<double> inRealTime(const Work& work) {
    std::vector<double> taken;
    taken.reserve(kBlocks);
    std::thread thread([&] {
        sched_param priority{};
        priority.sched_priority = 60;
        pthread_setschedparam(pthread_self(), SCHED_FIFO, &priority);
        auto due = Clock::now();
        for (std::int64_t block = 0; block < kBlocks; ++block) {
            const auto begin = Clock::now();
            work(block);
            taken.push_back(std::chrono::duration<double>(Clock::now() - begin).count());
            due += std::chrono::nanoseconds(std::int64_t{kFrames} * 1'000'000'000 / kDesktopRate);
            std::this_thread::sleep_until(due);
        }
    });
    thread.join();
    return taken;
}

struct Summary {
    explicit Summary(std::vector<double> taken) {
        mean = std::accumulate(taken.begin(), taken.end(), 0.0) / static_cast<double>(taken.size());
        beyond = static_cast<double>(
            std::count_if(taken.begin(), taken.end(), [](double one) { return one > kPeriod * kQuarter; }));
        std::sort(taken.begin(), taken.end());
        most999 = taken[taken.size() * 999 / 1000];
        worst = taken.back();
    }
    double mean, most999, worst, beyond;
};

void edited(benchmark::State& state) {
    Program program;
    for (auto _ : state) {
        Editing editing(program);
        const Summary blocks(inRealTime([&](std::int64_t block) { program.renderBlock(block); }));
        editing.finish();
        // A loop that reads the clock as long meets the machine's own halts, and nothing else.
        const Summary halts(inRealTime([&](std::int64_t) {
            for (const auto begin = Clock::now();
                 std::chrono::duration<double>(Clock::now() - begin).count() < blocks.mean;) {
            }
        }));
        state.counters["mean_us"] = blocks.mean * 1e6;
        state.counters["most_of_1000_us"] = blocks.most999 * 1e6;
        state.counters["worst_us"] = blocks.worst * 1e6;
        state.counters["x_quarter"] = blocks.worst / (kPeriod * kQuarter);
        state.counters["beyond_quarter"] = blocks.beyond;
        state.counters["machine_worst_us"] = halts.worst * 1e6;
        state.counters["machine_beyond_quarter"] = halts.beyond;
        state.counters["edits"] = editing.edits();
    }
}
BENCHMARK(edited)->Name("Desktop/edited")->Iterations(1)->UseRealTime()->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace marnoth::bench
