#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "host/CreateInstance.h"
#include "hostkit/HostRig.h"
#include "support/RealTimeGuard.h"
#include "support/WaveFile.h"

/// Memory taken and given back in blocks, from the media sample that comes in to those that go out, while
/// notes begin and end in each of them.
namespace marnoth::bench {
namespace {

constexpr int kRate = 44100;
constexpr std::int32_t kBlock = 512;
constexpr int kNotesPerBlock = 8;
/// Blocks in which a voice is still there behind the end of its note.
constexpr int kFadingBlocks = 4;
/// Blocks that are counted once all voices are there.
constexpr int kBlocksAtFull = 100;
constexpr int kKeys = 128;

enum class Source { sequence, live };

struct Scene {
    int voices;  ///< at a time, at most
    Source source;

    int blocksPerNote() const { return voices / kNotesPerBlock - kFadingBlocks; }
    int blocks() const { return voices / kNotesPerBlock + kBlocksAtFull; }
};

void check(HRESULT result, const char* what) {
    if (FAILED(result)) throw std::runtime_error(what);
}

/// Whole ticks at 120 beats per minute.
std::int32_t ticksOfBlocks(int blocks) {
    return static_cast<std::int32_t>(std::int64_t{blocks} * kBlock * 1920 / kRate);
}

std::uint8_t keyOf(int block, int note) {
    return static_cast<std::uint8_t>((block * kNotesPerBlock + note) % kKeys);
}

/// A host with a pad that all keys play for as long as they are held.
class Stage {
public:
    explicit Stage(const Scene& scene) : scene_(scene) {
        const int mix = 0;
        check(rig_.connect(kRate, 2, {&mix, 1}), "connect");
        check(rig_.setBlock(kBlock), "setBlock");
        check(rig_.attach({.tempo = 120.0, .key = 3}), "attach");
        rig_.setTaker(0, [this](std::span<const float> samples, bool) {
            for (const float sample : samples) peak_ = std::max(peak_, std::abs(sample));
        });
        loadPad();
        check(rig_.run(), "run");
        check(rig_.synth().StartPlayback(0), "StartPlayback");
        if (scene.source == Source::sequence) queueNotes();
    }

    /// A block with its notes; what it takes and gives back is counted.
    void block(int number) {
        if (scene_.source == Source::live) sendNotes(number);
        test::RealTimeGuard guard;
        const auto begin = std::chrono::steady_clock::now();
        const HRESULT result = rig_.render(kBlock);
        seconds += std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
        const auto offences = guard.finish();
        check(result, "render");
        taken += offences.allocations;
        given += offences.frees;
    }
    float peak() const { return peak_; }

    int taken = 0;
    int given = 0;
    double seconds = 0;

private:
    void loadPad() {
        const test::TempPath loop =
            test::WaveFile()
                .channels(2)
                .frames(kRate, [](std::int64_t i,
                                  int c) { return 0.2 * std::sin(0.05 * static_cast<double>(i) + c); })
                .acid({.beats = 2})
                .writeTemp();
        std::int32_t bin = -1;
        std::uint32_t status = 0;
        check(rig_.sampler().LoadFileToPad(0, "loop", loop.c_str(), &bin, &status), "LoadFileToPad");
        const KeyMapRecord keys{0, 0, kKeys - 1, 60, 0, 127};
        check(rig_.sampler().SetKeyMapEntry(&keys), "SetKeyMapEntry");
        check(rig_.sampler().SetPadOneShot(0, 0), "SetPadOneShot");
    }

    /// The whole sequence, on a port of its own for each note of a block.
    void queueNotes() {
        for (int note = 0; note < kNotesPerBlock; ++note) {
            std::vector<SynthEvent> notes(static_cast<std::size_t>(scene_.blocks()));
            for (int block = 0; block < scene_.blocks(); ++block) {
                SynthEvent& event = notes[static_cast<std::size_t>(block)];
                event.time = ticksOfBlocks(block) + 1;
                event.note = keyOf(block, note);
                event.velocity = 100;
                event.duration = static_cast<std::uint32_t>(ticksOfBlocks(scene_.blocksPerNote()));
            }
            check(rig_.queueEvents(static_cast<std::uint32_t>(note), notes), "queueEvents");
        }
    }

    void sendNotes(int block) {
        std::vector<RawMidiEvent> messages;
        for (int note = 0; note < kNotesPerBlock; ++note) {
            const int former = block - scene_.blocksPerNote();
            if (former >= 0) messages.push_back({0, 0x80, keyOf(former, note), 0, 0});
            messages.push_back({0, 0x90, keyOf(block, note), 100, 0});
        }
        check(rig_.queueRawInput(0, messages), "queueRawInput");
    }

    const Scene scene_;
    float peak_ = 0;
    HostRig rig_{createInstrument};
};

void run(benchmark::State& state, const Scene& scene) {
    Stage stage(scene);
    for (auto _ : state) {
        for (int block = 0; block < scene.blocks(); ++block) stage.block(block);
        state.SetIterationTime(stage.seconds / scene.blocks());
    }
    if (stage.peak() < 0.1f) throw std::runtime_error("silence");
    const double notes = static_cast<double>(scene.blocks()) * kNotesPerBlock;
    state.counters["taken"] = stage.taken;
    state.counters["given"] = stage.given;
    state.counters["per_note"] = (stage.taken + stage.given) / notes;
    state.counters["notes"] = notes;
}

void addScenes() {
    const std::pair<Source, std::string> sources[]{{Source::sequence, "sequence"}, {Source::live, "live"}};
    for (const auto& [source, name] : sources) {
        for (const int voices : {64, 512, 1024, 1536}) {
            benchmark::RegisterBenchmark(
                ("Heap/" + name + "/voices_" + std::to_string(voices)).c_str(),
                [scene = Scene{voices, source}](benchmark::State& state) { run(state, scene); })
                ->UseManualTime()
                ->Unit(benchmark::kMicrosecond)
                ->Iterations(1);
        }
    }
}

[[maybe_unused]] const bool kAdded = (addScenes(), true);

}  // namespace
}  // namespace marnoth::bench
