#include "editor/padeditor/EventPlot.h"

#include <algorithm>
#include <stdexcept>

#include "editor/padeditor/TimeScale.h"

namespace marnoth {
namespace {

int leftOf(const TimeScale& scale, const EventPlotInfo& entry) {
    return scale.TickToPixel(entry.start);
}

int rightOf(const TimeScale& scale, const EventPlotInfo& entry) {
    return entry.tail ? leftOf(scale, entry) + kTailGrainWidth : scale.TickToPixel(entry.end);
}

/// From `first` on, as long as entries begin at or before `x`: the last one that reaches it.
std::int32_t hitForward(const TimeScale& scale, const EventPlot& plot, std::size_t first, int x) {
    std::int32_t hit = -1;
    for (std::size_t i = first; i < plot.size() && x >= leftOf(scale, plot[i]); ++i)
        if (x < rightOf(scale, plot[i])) hit = static_cast<std::int32_t>(i);
    return hit;
}

/// The nearest entry before `end` that begins at or before `x`, if it reaches it: no other is tried.
std::int32_t hitBackward(const TimeScale& scale, const EventPlot& plot, std::size_t end, int x) {
    for (std::size_t i = end; i-- > 0;)
        if (leftOf(scale, plot[i]) <= x)
            return x < rightOf(scale, plot[i]) ? static_cast<std::int32_t>(i) : -1;
    return -1;
}

}  // namespace

std::int32_t hitPlot(const TimeScale& scale, const EventPlot& plot, std::int32_t guess, int x) {
    if (plot.empty()) return -1;
    const auto start = static_cast<std::size_t>(guess);
    if (guess < 0 || start >= plot.size()) throw std::invalid_argument("a guess outside the plot");
    return x >= leftOf(scale, plot[start]) ? hitForward(scale, plot, start, x)
                                           : hitBackward(scale, plot, start, x);
}

std::int32_t guessGrain(std::int64_t tick, std::int64_t loopTicks, std::int32_t count) {
    // Nothing divides by a loop of length 0: that is below every entry.
    if (loopTicks == 0) return 0;
    const double guess = static_cast<double>(tick) / static_cast<double>(loopTicks) * count;
    return static_cast<std::int32_t>(std::clamp(guess, 0.0, count - 1.0));
}

}  // namespace marnoth
