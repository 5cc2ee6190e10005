#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <numeric>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/Bounds.h"
#include "bench/Check.h"
#include "bench/HeldPads.h"
#include "bench/StretchedLoops.h"
#include "host/CreateInstance.h"
#include "hostkit/HostRig.h"
#include "hostkit/LiveHost.h"

/// The live host beside the rig that renders offline: the same sixteen pads, the same blocks cut at the same
/// frames, the audio of both put into separate channels.
namespace marnoth::bench {
namespace {

struct Scene {
    int outputs;  ///< 1: the mix alone
    int block;
    bool played;  ///< in each block a key goes down and up again; otherwise all sixteen are held

    std::int64_t blocks() const { return kPassFrames / block; }
    std::int32_t downAt() const { return block / 3; }
    std::int32_t upAt() const { return 2 * block / 3; }
    std::uint8_t keyOf(std::int64_t block) const {
        return static_cast<std::uint8_t>(kFirstKey + block % kPads);
    }
    std::vector<int> pins() const {
        std::vector<int> pins(static_cast<std::size_t>(outputs));
        std::iota(pins.begin(), pins.end(), 0);
        return pins;
    }
};

/// Room for a block of every channel.
struct Channels {
    explicit Channels(const Scene& scene)
        : memory(2 * static_cast<std::size_t>(scene.outputs),
                 std::vector<float>(static_cast<std::size_t>(scene.block))) {
        for (std::vector<float>& channel : memory) pointers.push_back(channel.data());
    }
    std::vector<std::vector<float>> memory;
    std::vector<float*> pointers;
};

class LiveStage {
public:
    LiveStage(const Scene& scene, const std::vector<test::TempPath>& files) : channels(scene), scene_(scene) {
        check(host_.connect({.rate = kRate, .mostFrames = scene.block, .outputs = scene.pins()}), "connect");
        layPads(host_.sampler(), files, scene.outputs);
    }

    void renderBlock(std::int64_t block) {
        if (scene_.played) {
            host_.addMessage(scene_.downAt(), 0x90, scene_.keyOf(block), 100);
            host_.addMessage(scene_.upAt(), 0x80, scene_.keyOf(block), 0);
        } else if (block == 0) {
            for (int pad = 0; pad < kPads; ++pad)
                host_.addMessage(0, 0x90, static_cast<std::uint8_t>(kFirstKey + pad), 100);
        }
        const LiveTransport transport{true, block * scene_.block, {}, kHostTempo};
        check(host_.process(scene_.block, transport, channels.pointers), "process");
    }

    Channels channels;

private:
    Scene scene_;
    LiveHost host_{createInstrument};
};

class RigStage {
public:
    RigStage(const Scene& scene, const std::vector<test::TempPath>& files) : channels(scene), scene_(scene) {
        check(rig_.connect(kRate, 2, scene.pins()), "connect");
        check(rig_.setBlock(scene.block), "setBlock");
        check(rig_.attach({.tempo = kHostTempo, .key = {}}), "attach");
        layPads(rig_.sampler(), files, scene.outputs);
        for (int pin : scene.pins())
            rig_.setTaker(pin, [this, pin](std::span<const float> samples, bool silent) {
                outputs_.take(pin, samples, silent);
            });
    }

    void renderBlock(std::int64_t block) {
        outputs_.begin(channels.pointers, scene_.block);
        if (block == 0) start();
        if (!scene_.played) return renderPiece(0, scene_.block);
        renderPiece(0, scene_.downAt());
        queue(0x90, scene_.keyOf(block));
        renderPiece(scene_.downAt(), scene_.upAt());
        queue(0x80, scene_.keyOf(block));
        renderPiece(scene_.upAt(), scene_.block);
    }

    Channels channels;

private:
    void start() {
        check(rig_.synth().StartPlayback(0), "StartPlayback");
        rig_.setDiscontinuity(0.0);
        for (int pad = 0; !scene_.played && pad < kPads; ++pad)
            queue(0x90, static_cast<std::uint8_t>(kFirstKey + pad));
    }
    void queue(std::uint8_t status, std::uint8_t key) {
        const RawMidiEvent event{0, status, key, 100, 0};
        check(rig_.queueRawInput(0, {&event, 1}), "queueRawInput");
    }
    void renderPiece(std::int32_t begin, std::int32_t end) {
        outputs_.moveTo(begin);
        check(rig_.render(end - begin), "render");
    }

    Scene scene_;
    SeparateOutputs outputs_;
    HostRig rig_{createInstrument};
};

/// What a stage plays in a whole pass; throws when it is silent.
template <class Stage>
std::vector<float> audioOf(Stage& stage, const Scene& scene) {
    std::vector<float> audio;
    for (std::int64_t block = 0; block < scene.blocks(); ++block) {
        stage.renderBlock(block);
        for (const std::vector<float>& channel : stage.channels.memory)
            audio.insert(audio.end(), channel.begin(), channel.end());
    }
    if (*std::max_element(audio.begin(), audio.end()) < 0.01f) throw std::runtime_error("silence");
    return audio;
}

/// Each block at its best of all passes.
class Passes {
public:
    explicit Passes(const Scene& scene)
        : best_(static_cast<std::size_t>(scene.blocks()), std::numeric_limits<double>::infinity()) {}

    template <class Stage>
    double turn(Stage& stage) {
        double seconds = 0;
        for (std::size_t block = 0; block < best_.size(); ++block) {
            const double taken =
                BestTime().turn(1, [&] { stage.renderBlock(static_cast<std::int64_t>(block)); });
            best_[block] = std::min(best_[block], taken);
            seconds += taken;
        }
        return seconds;
    }
    double sum() const { return std::accumulate(best_.begin(), best_.end(), 0.0); }
    double median() const { return medianOf(best_); }

private:
    std::vector<double> best_;
};

void run(benchmark::State& state, Scene scene) {
    const std::vector<test::TempPath> files = writeLoops();
    LiveStage live(scene, files);
    RigStage rig(scene, files);
    const std::vector<float> audio = audioOf(live, scene);
    if (audio != audioOf(rig, scene)) throw std::runtime_error("the two sound different");
    char label[32];
    std::snprintf(label, sizeof label, "audio %016llx",
                  static_cast<unsigned long long>(fingerprint(audio.data(), audio.size() * sizeof(float))));
    state.SetLabel(label);
    Passes lives(scene), rigs(scene);
    for (auto _ : state) {
        rigs.turn(rig);
        state.SetIterationTime(lives.turn(live));
    }
    state.counters["live_us"] = lives.median() * 1e6;
    state.counters["rig_us"] = rigs.median() * 1e6;
    state.counters["x_rig"] = lives.sum() / rigs.sum();
}

void addScenes() {
    for (bool played : {false, true}) {
        for (int outputs : {1, static_cast<int>(kOutputPins)}) {
            for (int block : {64, 512}) {
                const std::string name = "Live/outputs_" + std::to_string(outputs) +
                                         (played ? "/played" : "/held") + "/blocks_of_" +
                                         std::to_string(block);
                benchmark::RegisterBenchmark(name.c_str(), run, Scene{outputs, block, played})
                    ->UseManualTime()
                    ->Unit(benchmark::kMillisecond)
                    ->MinTime(0.5);
            }
        }
    }
}

[[maybe_unused]] const bool kAdded = (addScenes(), true);

}  // namespace
}  // namespace marnoth::bench
