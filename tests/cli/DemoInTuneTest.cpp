#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <numbers>
#include <vector>

#include "cli/CliRun.h"
#include "shellkit/media/WaveFrames.h"
#include "support/Sparingly.h"
#include "tools/DemoLoops.h"
#include "tools/LoopFile.h"

/// The demo's bass and chords, which are in A minor, as a render of each key gives them.
namespace marnoth::test::demo_in_tune_test {
namespace {

constexpr double kTempo = 112;  // the demo's
constexpr const char* kKeys[] = {"A", "A#", "B", "C", "C#", "D", "D#", "E", "F", "F#", "G", "G#"};

/// The first bar of a stem, at a rate that is enough for its fundamentals.
struct Bar {
    explicit Bar(const WaveFrames& stem) : rate(stem.rate / double{kFold}) {
        const auto frames = static_cast<std::size_t>(4 * 60 / kTempo * stem.rate);
        for (std::size_t i = 0; i + kFold <= frames; i += kFold) {
            double sum = 0;
            for (std::size_t k = 0; k < kFold * stem.channels; ++k)
                sum += stem.samples.at(i * stem.channels + k);
            samples.push_back(sum);
        }
    }
    /// The size of its spectrum at a frequency, under a Hann window.
    double at(double frequency) const {
        const double turn = 2 * std::numbers::pi;
        const std::complex<double> step = std::polar(1.0, -turn * frequency / rate);
        std::complex<double> phase = 1, sum = 0;
        for (std::size_t i = 0; i < samples.size(); ++i, phase *= step) {
            const double window = 0.5 - 0.5 * std::cos(turn * static_cast<double>(i) / samples.size());
            sum += samples[i] * window * phase;
        }
        return std::abs(sum);
    }
    static constexpr std::size_t kFold = 16;
    double rate;
    std::vector<double> samples;
};

double frequencyOf(double note) {
    return 440 * std::exp2((note - 69) / 12);
}

/// The energy of a semitone's width around a note. A transposition joins passes of a fortieth of a second and
/// more, so that low notes have lines beside their own.
double energyOf(int note, const Bar& bar) {
    double energy = 0;
    for (int cents = -45; cents <= 45; cents += 10)
        energy += std::norm(bar.at(frequencyOf(note + cents / 100.0)));
    return energy;
}

/// By how many semitones, from -6 to 5, these MIDI notes have to be moved to be those that are heard best.
int transpositionOf(const std::vector<int>& notes, const Bar& bar) {
    int best = 0;
    double loudest = -1;
    for (int semitones = -6; semitones < 6; ++semitones) {
        double sum = 0;
        for (const int note : notes) sum += std::sqrt(energyOf(note + semitones, bar));
        if (sum > loudest) best = semitones;
        loudest = std::max(loudest, sum);
    }
    return best;
}

/// The demo's two loops with a pitch, rendered into stems.
struct Demo {
    Demo() {
        tools::writeLoop(tools::bass(), tools::SampleKind::pcm16, folder / "bass.wav");
        tools::writeLoop(tools::chords(), tools::SampleKind::float32, folder / "chords.wav");
    }
    void expectTransposed(const std::vector<std::string>& more, int semitones) const {
        std::vector<std::string> words{"render",
                                       "--pad",
                                       "3=" + folder.name("bass.wav"),
                                       "--pad",
                                       "4=" + folder.name("chords.wav"),
                                       "--tempo",
                                       "112",
                                       "--beats",
                                       "4",
                                       "--stems",
                                       folder.name("stems"),
                                       "--out",
                                       folder.name("groove.wav")};
        words.insert(words.end(), more.begin(), more.end());
        const CliRun run = marnoth(words);
        ASSERT_EQ(run.status, 0) << run.err;
        const Bar bass(readWaveFrames(folder / "stems" / "pad03.wav"));
        const Bar chords(readWaveFrames(folder / "stems" / "pad04.wav"));
        // Of A minor: A, its octave and its fifth; A, C, E and the B above.
        EXPECT_EQ(transpositionOf({33, 45, 40}, bass), semitones);
        EXPECT_EQ(transpositionOf({57, 60, 64, 71}, chords), semitones);
    }
    TempFolder folder;
};

TEST(DemoInTune, WithoutAKeyItPlaysAsItWasMade) {
    Demo().expectTransposed({}, 0);
}

TEST(DemoInTune, EachKeyIsReachedTheShortWay) {
    const Demo demo;
    for (int key = 0; key < 12; key += kSparingly) {
        SCOPED_TRACE(kKeys[key]);
        demo.expectTransposed({"--key", kKeys[key]}, key < 6 ? key : key - 12);
    }
}

}  // namespace
}  // namespace marnoth::test::demo_in_tune_test
