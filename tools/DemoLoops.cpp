#include "tools/DemoLoops.h"

#include <array>
#include <cmath>

#include "tools/Voices.h"

namespace marnoth::tools {

namespace {

constexpr double kCentre = 0.5;

/// A stroke of a rhythm.
struct Stroke {
    double beat;
    double level;
};

Voice louder(double level, Voice voice) {
    return [level, voice = std::move(voice)](double t) mutable { return level * voice(t); };
}

template <std::size_t N>
void play(Loop& loop, const std::array<Stroke, N>& strokes, double seconds, double pan, const Voice& voice) {
    for (const auto& [beat, level] : strokes) addVoice(loop, beat, seconds, pan, louder(level, voice));
}

/// MIDI notes of A minor, F, C and G: a bar each.
constexpr int kBars = 4;
constexpr std::array<int, kBars> kBassRoots{33, 29, 36, 31};
const std::array<std::vector<int>, kBars> kChordNotes{
    {{57, 60, 64, 71}, {57, 60, 65, 69}, {55, 60, 64, 67}, {55, 59, 62, 69}}};

}  // namespace

Loop drums() {
    Loop loop = Loop::of("Demo drums", 44100, 2, 8, 125);
    constexpr std::array<Stroke, 6> kKicks{{{0, 1}, {1.5, 0.7}, {2.5, 0.9}, {4, 1}, {5.75, 0.6}, {6.5, 0.9}}};
    constexpr std::array<Stroke, 6> kSnares{{{1, 0.9}, {3, 1}, {3.75, 0.2}, {5, 0.9}, {7, 1}, {7.75, 0.35}}};
    play(loop, kKicks, 0.6, kCentre, kick());
    play(loop, kSnares, 0.35, 0.45, louder(0.6, snare()));
    for (int eighth = 0; eighth < 16; ++eighth) {
        const bool open = eighth % 8 == 7;
        addVoice(loop, eighth / 2.0, open ? 0.4 : 0.12, 0.65,
                 louder(eighth % 2 ? 0.35 : 0.22, hat(open ? 11 : 55)));
    }
    loop.normalize(0.42f);
    return loop;
}

Loop percussion() {
    Loop loop = Loop::of("Demo percussion", 48000, 2, 4, 100);
    constexpr double kSwing = 0.045;  // beats by which every second sixteenth is late
    for (int sixteenth = 0; sixteenth < 16; ++sixteenth) {
        const double beat = sixteenth / 4.0 + (sixteenth % 2 ? kSwing : 0);
        addVoice(loop, beat, 0.12, 0.8, louder(sixteenth % 4 == 2 ? 0.5 : 0.25, shaker()));
        if (sixteenth > 0) loop.markers.push_back(loop.frameAt(beat));
    }
    constexpr std::array<Stroke, 4> kHigh{{{0.75 + kSwing, 0.8}, {1.5, 0.6}, {2.75 + kSwing, 0.8}, {3, 0.5}}};
    constexpr std::array<Stroke, 3> kLow{{{1.75 + kSwing, 0.7}, {2, 0.9}, {3.5, 0.8}}};
    constexpr std::array<Stroke, 3> kClaves{{{0, 0.35}, {1.5, 0.3}, {3, 0.3}}};
    play(loop, kHigh, 0.35, 0.25, conga(310));
    play(loop, kLow, 0.45, 0.35, conga(205));
    play(loop, kClaves, 0.12, 0.7, clave());
    loop.normalize(0.2f);
    return loop;
}

Loop bass() {
    Loop loop = Loop::of("Demo bass", 44100, 1, 16, 120);
    loop.rootNote = 57;
    for (int bar = 0; bar < kBars; ++bar) {
        const int root = kBassRoots[static_cast<std::size_t>(bar)];
        const double start = 4 * bar;
        addVoice(loop, start, 0.42, kCentre, bassNote(root, 0.42));
        addVoice(loop, start + 0.75, 0.2, kCentre, louder(0.8, bassNote(root, 0.2)));
        addVoice(loop, start + 1.5, 0.4, kCentre, bassNote(root + 12, 0.4));
        addVoice(loop, start + 2.5, 0.22, kCentre, louder(0.9, bassNote(root, 0.22)));
        addVoice(loop, start + 3, 0.2, kCentre, louder(0.8, bassNote(root + 7, 0.2)));
        addVoice(loop, start + 3.5, 0.22, kCentre, louder(0.8, bassNote(root + 12, 0.22)));
    }
    loop.normalize(0.3f);
    return loop;
}

Loop chords() {
    Loop loop = Loop::of("Demo chords", 48000, 2, 16, 90);
    loop.divisionExponent = 1;
    loop.rootNote = 57;
    const double bar = 4 * 60.0 / loop.tempo;
    constexpr double kOverlap = 0.35;  // seconds: one chord rises while the last one falls
    for (int i = 0; i < kBars; ++i) {
        const auto& notes = kChordNotes[static_cast<std::size_t>(i)];
        for (const int side : {-1, 1})
            addVoice(loop, 4 * i, bar + kOverlap, kCentre + 0.35 * side, chord(notes, bar + kOverlap, side));
    }
    loop.normalize(0.16f);
    return loop;
}

}  // namespace marnoth::tools
