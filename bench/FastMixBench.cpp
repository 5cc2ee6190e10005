#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "bench/Bounds.h"
#include "dsp/CpuFeatures.h"
#include "dsp/FastMix.h"
#include "dsp/MixKernels.h"

/// The fast bodies of the twelve kernels that have one, beside their plain bodies, which the same kernel
/// takes one sample behind an aligned place, and beside a copy of as many bytes, all within the first cache.
/// And what numbers below the normal ones cost either.
namespace marnoth::bench {
namespace {

constexpr int kRunBytes = 8192;
constexpr int kCallsPerTurn = 200;

struct Gains {
    double left;
    double right;
};
/// What a pad's volume and pan come to: numbers that f32 holds.
constexpr Gains kHeld{0.5, 0.25};
/// What a tail's passes have: those that it doesn't, so that a plain body has to multiply in f64.
constexpr Gains kUnheld{0.1, 0.7};

/// A source and a destination that begin on lines of the cache.
template <class Float>
class Buffers {
public:
    explicit Buffers(Float value) : source(kSamples + kMargin, value), dest(kSamples + kMargin) {}

    /// A run of `row` over 8 KB, `offset` samples behind the lines' begin.
    MixArgs args(int row, Gains gains, int offset) {
        MixArgs args;
        args.dest = aligned(dest) + offset;
        args.src = aligned(source) + offset;
        args.count = kSamples / ((row & 2) != 0 ? 2 : 1);
        args.gainL = gains.left;
        args.gainR = gains.right;
        return args;
    }

    /// Sums that grow without end would leave the range of the format.
    void clear() { std::fill(dest.begin(), dest.end(), Float{0}); }

    void copy() { std::memcpy(aligned(dest), aligned(source), kRunBytes); }

private:
    static constexpr int kSamples = kRunBytes / sizeof(Float);
    static constexpr int kMargin = 128 / sizeof(Float);

    static Float* aligned(std::vector<Float>& samples) {
        const auto address = reinterpret_cast<std::uintptr_t>(samples.data());
        return samples.data() + (64 - address % 64) % 64 / sizeof(Float);
    }

    std::vector<Float> source, dest;
};

template <class Float>
MixKernel kernelOf(int row) {
    return sizeof(Float) == 4 ? mix32Table[row] : mix64Table[row];
}

/// A fast body in the vectors that every processor has, which one with wider vectors doesn't take.
template <class Float, int row>
void narrowBody(MixArgs* args) {
    using From = mix::Source<Float, (row & 8) != 0>;
    using To = mix::Dest<Float, (row & 2) != 0, (row & 16) != 0 ? mix::Mode::Replace : mix::Mode::Add>;
#if defined(__x86_64__)
    mix::mixVectors<From, To>(*args, mix::gainsIn<Float>(*args));
#else
    mix::mixCompiled<From, To>(*args, mix::gainsIn<Float>(*args));
#endif
}

template <class Float>
double turn(BestTime& time, Buffers<Float>& buffers, MixKernel kernel, const MixArgs& args) {
    buffers.clear();
    return time.turn(kCallsPerTurn, [&] {
        MixArgs fresh = args;
        kernel(&fresh);
        benchmark::DoNotOptimize(fresh);
    });
}

template <class Float, int row>
void compare(benchmark::State& state) {
    Buffers<Float> buffers(Float(0.046));
    const MixKernel kernel = kernelOf<Float>(row);
    BestTime fast, plain, plainHeld, narrow, copy;
    for (auto _ : state) {
        state.SetIterationTime(turn(fast, buffers, kernel, buffers.args(row, kUnheld, 0)));
        turn(plain, buffers, kernel, buffers.args(row, kUnheld, 1));
        turn(plainHeld, buffers, kernel, buffers.args(row, kHeld, 1));
        turn(narrow, buffers, narrowBody<Float, row>, buffers.args(row, kUnheld, 0));
        copy.turn(kCallsPerTurn, [&] { buffers.copy(); });
    }
    state.counters["fast_ns"] = fast.nanoseconds();
    state.counters["copy_ns"] = copy.nanoseconds();
    state.counters["x_copy"] = fast.nanoseconds() / copy.nanoseconds();
    state.counters["x_plain"] = fast.nanoseconds() / plain.nanoseconds();
    state.counters["x_plain_held"] = fast.nanoseconds() / plainHeld.nanoseconds();
    state.counters["narrow_ns"] = narrow.nanoseconds();
    state.counters["narrow_x_plain"] = narrow.nanoseconds() / plain.nanoseconds();
}

template <class Float, int row>
void add() {
    const std::string name =
        std::string("FastMix/") + (sizeof(Float) == 4 ? "float/" : "double/") + (row < 10 ? "0" : "") +
        std::to_string(row) + ((row & 8) != 0 ? "_stereo" : "_mono") +
        ((row & 2) != 0 ? "_to_stereo" : "_to_mono") + ((row & 16) != 0 ? "_replace" : "_add");
    benchmark::RegisterBenchmark(name.c_str(), compare<Float, row>)->UseManualTime()->MinTime(0.02);
}

template <class Float>
void addFamily() {
    add<Float, 4>();
    add<Float, 6>();
    add<Float, 14>();
    add<Float, 20>();
    add<Float, 22>();
    add<Float, 30>();
}

#if defined(__x86_64__)

constexpr unsigned kKeepingDenormals = 0x1F80;

/// The end of a long decay. What sinks is a normal number times a gain that takes it below them; what is sunk
/// lies below them in the wave already.
constexpr float kSinking = 2e-38f;
constexpr float kSunk = 1e-40f;

/// `row` over samples of `value`, on a thread that keeps numbers below the normal ones, and behind a fast
/// call, which ends that, beside the same over ordinary samples.
void decay(benchmark::State& state, int row, float value, int offset) {
    Buffers<float> quiet(value), loud(0.046f);
    const MixArgs args = quiet.args(row, kHeld, offset);
    const MixArgs loudArgs = loud.args(row, kHeld, offset);
    BestTime kept, flushed, ordinary;
    for (auto _ : state) {
        _mm_setcsr(kKeepingDenormals);
        turn(kept, quiet, offset == 0 && row == 14 ? narrowBody<float, 14> : mix32Table[row], args);
        flushDenormals();
        state.SetIterationTime(turn(flushed, quiet, mix32Table[row], args));
        turn(ordinary, loud, mix32Table[row], loudArgs);
    }
    state.counters["kept_ns"] = kept.nanoseconds();
    state.counters["flushed_ns"] = flushed.nanoseconds();
    state.counters["x_kept"] = flushed.nanoseconds() / kept.nanoseconds();
    state.counters["x_ordinary"] = flushed.nanoseconds() / ordinary.nanoseconds();
}

void addDecays() {
    const auto add = [](const std::string& name, int row, int offset) {
        for (const auto& [end, value] : {std::pair("sinking", kSinking), std::pair("sunk", kSunk)}) {
            benchmark::RegisterBenchmark(("FastMix/Decay/" + name + "_" + end).c_str(), decay, row, value,
                                         offset)
                ->UseManualTime()
                ->Iterations(100);
        }
    };
    add("14_stereo_add_fast", 14, 0);
    add("14_stereo_add_plain", 14, 1);
    add("15_stereo_add_ramped", 15, 0);
}

#else
void addDecays() {}
#endif

[[maybe_unused]] const bool kAdded = (addFamily<float>(), addFamily<double>(), addDecays(), true);

}  // namespace
}  // namespace marnoth::bench
