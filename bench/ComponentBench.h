#pragma once

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <utility>
#include <vector>

/// Measuring the registered component on Windows: wall-clock times, each figure beside its peer of the same
/// run.
namespace marnoth::bench {

/// What there is; each prints its rows, and throws when something fails.
void benchBlock();     ///< a block through the system's graph
void benchPageCall();  ///< under a sink that keeps its blocks
void benchAnswers();   ///< before a renderer that keeps a block of a paused graph
void benchCreate();    ///< by class id
void benchPage();      ///< the property page's first picture

/// Microseconds that `work` takes.
template <class Work>
double timed(const Work& work) {
    const auto begin = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - begin).count();
}

/// Times in microseconds; there must be one.
class Times {
public:
    explicit Times(std::vector<double> times) : sorted_(std::move(times)) {
        std::sort(sorted_.begin(), sorted_.end());
    }
    double median() const { return at(0.5); }
    double of100(int place) const { return at(place / 100.0); }
    double worst() const { return sorted_.back(); }

private:
    double at(double share) const {
        return sorted_[static_cast<std::size_t>(share * static_cast<double>(sorted_.size() - 1))];
    }

    std::vector<double> sorted_;
};

/// A row: a peer's time, or one with the bound that it has to keep.
inline void print(const char* name, double microseconds) {
    std::printf("  %-46s %12.1f us\n", name, microseconds);
}
inline void print(const char* name, double microseconds, double bound) {
    std::printf("  %-46s %12.1f us   bound %10.1f   %s\n", name, microseconds, bound,
                microseconds <= bound ? "met" : "missed");
}

}  // namespace marnoth::bench
