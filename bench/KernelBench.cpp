#include <benchmark/benchmark.h>

#include <cstring>
#include <string>
#include <vector>

#include "bench/Bounds.h"
#include "bench/PlainLoops.h"
#include "dsp/MixKernels.h"

/// Every mix kernel beside a copy of the same bytes and beside the compiler's best plain loop, all within the
/// first cache. A copy moves as many bytes as the larger of source and destination has.
namespace marnoth::bench {
namespace {

/// Bytes of a run, in source or destination, whichever has more: three such buffers stay in the first cache.
constexpr int kRunBytes = 8192;
constexpr int kCallsPerTurn = 200;
/// Any number but a denormal one, in each of the formats.
constexpr unsigned char kSourceByte = 0x3D;

struct Shape {
    int sourceBytes;
    int sourceChannels;
    int destBytes;
    int destChannels;

    int frameBytes() const { return std::max(sourceBytes * sourceChannels, destBytes * destChannels); }
    int frames() const { return kRunBytes / frameBytes(); }
    int bytes() const { return frames() * frameBytes(); }
};

struct Buffers {
    explicit Buffers(const Shape& shape)
        : source(shape.bytes() + 64, kSourceByte), dest(shape.bytes() + 64, 0), copy(shape.bytes() + 64, 0) {}

    static void* aligned(std::vector<unsigned char>& bytes) {
        const auto address = reinterpret_cast<std::uintptr_t>(bytes.data());
        return bytes.data() + (64 - address % 64) % 64;
    }

    std::vector<unsigned char> source, dest, copy;
};

MixArgs argsFor(Buffers& buffers, int frames, bool ramped) {
    MixArgs args;
    args.dest = Buffers::aligned(buffers.dest);
    args.src = Buffers::aligned(buffers.source);
    args.count = frames;
    args.gainL = 0.5f;
    args.gainR = 0.25f;
    if (ramped) {
        args.stepL = args.stepR = -1e-6;
        args.curveL = args.curveR = 1e-10;
    }
    return args;
}

void run(benchmark::State& state, MixKernel kernel, MixKernel plain, const Shape& shape, bool ramped) {
    Buffers buffers(shape);
    const MixArgs args = argsFor(buffers, shape.frames(), ramped);
    BestTime kernelTime, plainTime, copyTime;
    const auto call = [&](MixKernel which) {
        MixArgs fresh = args;
        which(&fresh);
        benchmark::DoNotOptimize(fresh);
    };
    // A cleared destination in each turn: sums that grow without end would leave the range of the format.
    const auto clear = [&] { std::memset(args.dest, 0, shape.bytes()); };
    for (auto _ : state) {
        clear();
        state.SetIterationTime(kernelTime.turn(kCallsPerTurn, [&] { call(kernel); }));
        clear();
        plainTime.turn(kCallsPerTurn, [&] { call(plain); });
        copyTime.turn(kCallsPerTurn,
                      [&] { std::memcpy(Buffers::aligned(buffers.copy), args.src, shape.bytes()); });
    }
    state.counters["ns/call"] = kernelTime.nanoseconds();
    state.counters["copy_ns"] = copyTime.nanoseconds();
    state.counters["x_copy"] = kernelTime.nanoseconds() / copyTime.nanoseconds();
    state.counters["x_plain"] = kernelTime.nanoseconds() / plainTime.nanoseconds();
}

void add(const std::string& name, MixKernel kernel, MixKernel plain, const Shape& shape, bool ramped) {
    benchmark::RegisterBenchmark(name.c_str(), run, kernel, plain, shape, ramped)
        ->UseManualTime()
        ->MinTime(0.02);
}

std::string nameOf(const char* family, int row, const char* depth) {
    const std::string number = std::to_string(row);
    return std::string("Kernel/") + family + "/" + (row < 10 ? "0" : "") + number + "_" + depth +
           ((row & 8) ? "_stereo" : "_mono") + ((row & 2) ? "_to_stereo" : "_to_mono") +
           ((row & 16) ? "_replace" : "_add") + ((row & 1) ? "_ramped" : "_constant");
}

void addTables() {
    for (int row = 0; row < 32; ++row) {
        const int in = (row & 8) ? 2 : 1;
        const int out = (row & 2) ? 2 : 1;
        const bool ramped = (row & 1) != 0;
        add(nameOf("float", row, (row & 4) ? "32" : "16"), mix32Table[row], plainLoop32(row),
            {(row & 4) ? 4 : 2, in, 4, out}, ramped);
        add(nameOf("double", row, (row & 4) ? "64" : "16"), mix64Table[row], plainLoop64(row),
            {(row & 4) ? 8 : 2, in, 8, out}, ramped);
    }
    for (int row = 0; row < 4; ++row) {
        const std::string mode =
            std::string((row & 2) ? "_replace" : "_add") + ((row & 1) ? "_ramped" : "_constant");
        add("Kernel/float/24_mono_to_mono" + mode, mix32Table24[row], plainLoop32From24(row), {3, 1, 4, 1},
            row & 1);
        add("Kernel/double/24_mono_to_mono" + mode, mix64Table24[row], plainLoop64From24(row), {3, 1, 8, 1},
            row & 1);
    }
}

[[maybe_unused]] const bool kAdded = (addTables(), true);

}  // namespace
}  // namespace marnoth::bench
