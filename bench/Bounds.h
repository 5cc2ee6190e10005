#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <ctime>
#include <limits>
#include <vector>

/// Measuring beside a bound. The machines are noisy, so work and bounds take turns within one run, the best
/// turn of each counts, and ratios are printed.
namespace marnoth::bench {

/// The best time of a piece of work that is measured in turns of many calls.
class BestTime {
public:
    /// Runs `work` `calls` times; returns the seconds that the turn took.
    template <class Work>
    double turn(int calls, const Work& work) {
        const auto begin = std::chrono::steady_clock::now();
        for (int i = 0; i < calls; ++i) {
            work();
            benchmark::ClobberMemory();
        }
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
        best = std::min(best, taken.count() / calls);
        return taken.count();
    }

    double nanoseconds() const { return best * 1e9; }

private:
    double best = std::numeric_limits<double>::infinity();
};

/// The middle one of the values, the upper of two; there must be one.
inline double medianOf(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

/// Times of the processor, one per turn, for work of a millisecond and more: what other programs take from
/// the machine meanwhile isn't counted.
class ProcessorTimes {
public:
    /// Runs `work`; returns the seconds that the turn took.
    template <class Work>
    double turn(const Work& work) {
        const std::clock_t begin = std::clock();
        work();
        seconds.push_back(static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC);
        return seconds.back();
    }

    double median() const { return medianOf(seconds); }

private:
    std::vector<double> seconds;
};

/// Tells apart two renders that differ in a single bit.
inline std::uint64_t fingerprint(const void* data, std::size_t bytes) {
    std::uint64_t hash = 14695981039346656037u;
    const auto* byte = static_cast<const unsigned char*>(data);
    for (std::size_t i = 0; i < bytes; ++i) hash = (hash ^ byte[i]) * 1099511628211u;
    return hash;
}

}  // namespace marnoth::bench
