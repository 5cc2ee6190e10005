#include "tools/Voices.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>

namespace marnoth::tools {

namespace {

constexpr double kTurn = 2 * std::numbers::pi;
constexpr double kShortestAttack = 0.001;  ///< seconds: below it a beginning clicks

double sine(double turns) {
    return std::sin(kTurn * turns);
}

double pitchOf(int note) {
    return 440.0 * std::exp2((note - 69) / 12.0);
}

double attack(double seconds, double length) {
    return std::min(1.0, seconds / length);
}

/// White noise from -1 to 1, the same in every run. Remembers its last value.
class Noise {
public:
    explicit Noise(std::uint32_t seed) : numbers_(seed) {}
    double next() {
        last_ = value_;
        value_ = numbers_() / 2147483647.5 - 1.0;
        return value_;
    }
    /// With the lows taken away.
    double bright() { return (next() - last_) / 2; }

private:
    std::mt19937 numbers_;
    double value_ = 0;
    double last_ = 0;
};

}  // namespace

Voice kick() {
    constexpr double kLow = 48;     // Hz, where the fall of the pitch ends
    constexpr double kSweep = 260;  // Hz above it at the beginning
    constexpr double kFall = 32;    // per second
    return [](double t) {
        const double turns = kLow * t + kSweep / kFall * (1 - std::exp(-kFall * t));
        return sine(turns) * std::exp(-7 * t) * attack(t, kShortestAttack);
    };
}

Voice snare() {
    return [noise = Noise(11)](double t) mutable {
        const double rattle = noise.bright() * std::exp(-17 * t);
        const double skin = sine(188 * t) * std::exp(-26 * t);
        return 0.9 * rattle + 0.5 * skin;
    };
}

Voice hat(double decay) {
    return [noise = Noise(23), decay](double t) mutable {
        return noise.bright() * std::exp(-decay * t) * attack(t, kShortestAttack);
    };
}

Voice shaker() {
    return [noise = Noise(37)](double t) mutable {
        return noise.bright() * std::exp(-38 * t) * attack(t, 0.012);
    };
}

Voice conga(double pitch) {
    return [pitch](double t) {
        const double turns = pitch * t + 1.2 * (1 - std::exp(-40 * t));
        const double body = sine(turns) * std::exp(-11 * t);
        return (body + 0.25 * sine(2.3 * turns) * std::exp(-40 * t)) * attack(t, kShortestAttack);
    };
}

Voice clave() {
    return [](double t) {
        return (sine(1850 * t) + 0.4 * sine(2630 * t)) * std::exp(-55 * t) * attack(t, kShortestAttack);
    };
}

Voice bassNote(int note, double seconds) {
    constexpr int kPartials = 14;
    return [pitch = pitchOf(note), seconds](double t) {
        // The partials of a saw, the high ones dying first as behind a closing filter.
        double sum = 0;
        for (int n = 1; n <= kPartials; ++n)
            sum += sine(n * pitch * t) / n * std::exp(-(n - 1) * (0.08 + 0.9 * t));
        return sum * std::exp(-1.6 * t) * attack(t, 0.004) * attack(seconds - t, 0.012);
    };
}

Voice chord(const std::vector<int>& notes, double seconds, int side) {
    constexpr int kPartials = 5;
    constexpr double kDetune = 0.0022;
    constexpr double kSlow = 0.35;  // seconds of rise and fall
    return [notes, seconds, side](double t) {
        double sum = 0;
        for (const int note : notes) {
            const double pitch = pitchOf(note) * (1 + side * kDetune);
            for (int n = 1; n <= kPartials; ++n) sum += sine(n * pitch * t + 0.17 * n * side) / (n * n);
        }
        const double sway = 1 + 0.12 * side * sine(0.75 * t);
        return sum * sway * attack(t, kSlow) * attack(seconds - t, kSlow);
    };
}

}  // namespace marnoth::tools
