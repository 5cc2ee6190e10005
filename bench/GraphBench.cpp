#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <span>
#include <stdexcept>
#include <thread>
#include <utility>
#include <vector>

#include "bench/Check.h"
#include "bench/ComponentBench.h"
#include "bench/StretchedLoops.h"
#include "host/CreateInstance.h"
#include "hostkit/HostRig.h"
#include "hostkit/InstrumentGraph.h"
#include "shellkit/component/RegisteredInstrument.h"
#include "shellkit/component/SystemGraph.h"

namespace marnoth::bench {
namespace {

constexpr int kPads = 16;
constexpr std::int32_t kBlock = 512;
constexpr std::chrono::milliseconds kBlockTime(11);

/// A host in which sixteen stretched loops play.
class Stage {
public:
    Stage(InstrumentMaker make, GraphMaker makeGraph) : rig_(make, makeGraph) {
        const int mix = 0;
        check(rig_.connect(kRate, 2, {&mix, 1}), "connect");
        check(rig_.setBlock(kBlock), "setBlock");
        check(rig_.attach({.tempo = kHostTempo, .key = {}}), "attach");
        for (int pad = 0; pad < kPads; ++pad) load(pad);
        rig_.setTaker(0, [this](std::span<const float> samples, bool) {
            for (const float sample : samples) sum_ += sample < 0 ? -sample : sample;
        });
    }

    /// Plays from the beginning, each block at its best time of all passes.
    void playPass() {
        check(rig_.synth().StopPlayback(), "StopPlayback");
        check(rig_.synth().StartPlayback(0), "StartPlayback");
        rig_.setDiscontinuity(0);
        check(rig_.queueEvents(0, notes_), "queueEvents");
        for (double& best : best_)
            best = std::min(best, timed([&] { check(rig_.render(kBlock), "render"); }));
        if (sum_ == 0) throw std::runtime_error("silence");
    }
    Times blocks() const { return Times(best_); }
    double loudness() const { return sum_; }

private:
    void load(int pad) {
        files_.push_back(writeLoop(0.05, 0.01 * (pad + 2), 0.013 * (pad + 2)));
        std::int32_t bin = -1;
        std::uint32_t status = 0;
        check(rig_.sampler().LoadFileToPad(pad, "loop", files_.back().c_str(), &bin, &status),
              "LoadFileToPad");
        KeyMapRecord key{};
        key.pad = pad;
        check(rig_.sampler().GetKeyMapEntry(&key), "GetKeyMapEntry");
        SynthEvent note;
        note.note = static_cast<std::uint8_t>(key.rootKey);
        note.velocity = 100;
        note.duration = 960 * 1000;
        notes_.push_back(note);
    }

    double sum_ = 0;
    HostRig rig_;
    std::vector<test::TempPath> files_;
    std::vector<SynthEvent> notes_;
    std::vector<double> best_ = std::vector<double>(kPassFrames / kBlock, 1e9);
};

}  // namespace

void benchBlock() {
    Stage kit(createInstrument, makeHostGraph);
    Stage component(createRegistered, makeSystemGraph);
    for (int pass = 0; pass < 40; ++pass) {
        kit.playPass();
        component.playPass();
    }
    if (kit.loudness() != component.loudness()) throw std::runtime_error("the two sound different");
    const double peer = kit.blocks().median();
    print("hostkit's graph, median block", peer);
    print("the system's graph, median block", component.blocks().median(), 1.25 * peer);
    std::printf("  ratio %.3f\n", component.blocks().median() / peer);
}

namespace {

enum class Waiting { inTheSink, betweenBlocks };

/// The component in the system's graph with a thread that sends a block each 11 ms for as long as this lives.
class Streaming {
public:
    explicit Streaming(Waiting waiting) {
        const int mix = 0;
        check(host_.connect(kRate, 2, {&mix, 1}), "connect");
        if (waiting == Waiting::inTheSink)
            host_.sink(0).setTaker([](auto, bool) { std::this_thread::sleep_for(kBlockTime); });
        check(host_.graph().run(), "run");
        thread_ = std::thread([this, waiting] {
            while (!ending_) {
                host_.send({.frames = kBlock});
                if (waiting == Waiting::betweenBlocks) std::this_thread::sleep_for(kBlockTime);
            }
        });
    }
    ~Streaming() {
        ending_ = true;
        thread_.join();
    }
    Streaming(const Streaming&) = delete;
    Streaming& operator=(const Streaming&) = delete;

    /// Calls of a page, which come at any moment of a block.
    Times pageCalls(int count) {
        std::vector<double> times;
        for (int i = 0; i < count; ++i) {
            const float volume = 0.5f + 0.001f * static_cast<float>(i % 100);
            times.push_back(timed([&] { check(host_.sampler().SetPadVolume(3, volume), "SetPadVolume"); }));
            std::this_thread::sleep_for(std::chrono::microseconds(700 + 37 * (i % 41)));
        }
        return Times(std::move(times));
    }

private:
    InstrumentGraph host_{createRegistered, makeSystemGraph};
    std::atomic<bool> ending_ = false;
    std::thread thread_;
};

}  // namespace

void benchPageCall() {
    constexpr int kCalls = 2000;
    const Times free = Streaming(Waiting::betweenBlocks).pageCalls(kCalls);
    const Times kept = Streaming(Waiting::inTheSink).pageCalls(kCalls);
    print("a source that waits 11 ms, median", free.median());
    print("the same, 99 of 100", free.of100(99));
    print("the same, worst", free.worst());
    print("a sink that keeps each block 11 ms, median", kept.median());
    print("the same, 99 of 100", kept.of100(99), 1000);
    print("the same, worst", kept.worst(), 10000);
}

void benchCreate() {
    constexpr int kTimes = 300;
    const auto makeAndRelease = [](InstrumentMaker make) {
        RefPtr<IUnknown> made;
        check(make(nullptr, IID_IUnknown, made.putVoid()), "making an instrument");
    };
    std::vector<double> linked, registered;
    makeAndRelease(createRegistered);
    for (int i = 0; i < kTimes; ++i) {
        linked.push_back(timed([&] { makeAndRelease(createInstrument); }));
        registered.push_back(timed([&] { makeAndRelease(createRegistered); }));
    }
    print("made and released in the program, median", Times(linked).median());
    print("by class id, median", Times(registered).median(), 1000);
    print("by class id, worst", Times(registered).worst());
}

}  // namespace marnoth::bench
