#include "shells/cli/Progress.h"

#include <iostream>

#include "shells/cli/Console.h"

namespace marnoth {

namespace {

constexpr int kBarWidth = 40;

std::string bar(double done) {
    const int full = static_cast<int>(done * kBarWidth);
    const std::string percent = std::to_string(static_cast<int>(done * 100));
    return "[" + std::string(full, '#') + std::string(kBarWidth - full, '.') + "] " + percent + " %";
}

}  // namespace

Progress::Progress(bool wanted) : watched_(wanted && errorIsTerminal()) {}

Progress::~Progress() {
    // The line is wiped: what follows begins on a clean one.
    if (!shown_.empty()) std::cerr << '\r' << std::string(shown_.size(), ' ') << '\r' << std::flush;
}

void Progress::show(double done) {
    if (!watched_) return;
    const std::string text = bar(done);
    if (text == shown_) return;
    shown_ = text;
    std::cerr << '\r' << shown_ << std::flush;
}

}  // namespace marnoth
