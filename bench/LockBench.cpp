#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "bench/Bounds.h"
#include "bench/LargeProject.h"
#include "bench/LockMeter.h"
#include "host/CreateInstance.h"
#include "hostkit/HostRig.h"
#include "platform/system/CritSec.h"
#include "seam/MusicalTime.h"
#include "seam/Pzi.h"
#include "support/FaultyStream.h"
#include "support/WaveFile.h"

/// How long each operation holds the instrument's lock, at most, with 4096 grains on each of the sixteen
/// pads.
namespace marnoth::bench {
namespace {

constexpr int kGrains = 4096;
constexpr std::int64_t kGrainTicks = kTicks16PerBeat / 64;
constexpr int kCalls = 1000;
/// Less calls are made of what takes long in all, which is told.
constexpr std::chrono::seconds kPatience{60};
constexpr double kBoundMicroseconds = 50;
constexpr int kUndoStates = 129;
constexpr int kEvents = 100'000;

void check(HRESULT result, const char* what) {
    if (FAILED(result)) throw std::runtime_error(std::string(what) + " fails");
}

/// The instrument with its host, what it is fed with, and where the next call is made.
class Studio {
public:
    Studio() {
        const int mix = 0;
        check(rig.connect(44100, 2, {&mix, 1}), "connect");
        check(rig.attach({}), "attach");
        notes.resize(kEvents);
        for (int i = 0; i < kEvents; ++i) {
            notes[static_cast<std::size_t>(i)].time = 7 * (i + 1);
            notes[static_cast<std::size_t>(i)].note = static_cast<std::uint8_t>(60 + i % 12);
            notes[static_cast<std::size_t>(i)].velocity = 100;
            notes[static_cast<std::size_t>(i)].duration = 5;
        }
        reload();
        check(rig.save(saved), "Save");
    }

    /// Everything as it was at first, but for what only the host knows.
    void reload() {
        check(it.LoadProject(project.c_str()), "LoadProject");
        call = 0;
    }
    /// As many states as are kept, each with another grain changed.
    void fillUndoRing() {
        for (int i = 0; i < kUndoStates; ++i) {
            check(it.SetGrainVolume(i % kPads, i, 0.5f), "SetGrainVolume");
            check(it.PushUndoState(), "PushUndoState");
        }
    }
    void freshTimeline() {
        check(rig.synth().StopPlayback(), "StopPlayback");
        check(rig.synth().StartPlayback(0), "StartPlayback");
    }
    void queueAll() { check(rig.queueEvents(0, notes), "QueueEvents"); }
    /// A second file, as large as the first one, isn't there.
    void dropSecondFile() {
        std::int32_t files = 0;
        check(it.GetBinFileCount(&files), "GetBinFileCount");
        if (files > 1) check(it.RemoveBinFile(1), "RemoveBinFile");
    }

    std::int32_t pad() const { return call % kPads; }
    std::int32_t otherPad() const { return (call + 5) % kPads; }
    std::int32_t grain() const { return call * 37 % kGrains; }
    std::int64_t time() const { return grain() * kGrainTicks; }

    HostRig rig{createInstrument};
    IGrooveSampler& it = rig.sampler();
    LockMeter meter{dynamic_cast<CPzi&>(it)};
    test::TempPath project = largeProject(kGrains, kGrains, {kGrainTicks, 60}).writeTemp();
    test::TempPath copy{".mrn"};
    test::TempPath secondFile =
        test::WaveFile().frames(245'760).acid({.beats = 64}).strc(6, markers()).writeTemp();
    test::FaultyStream saved;
    std::vector<SynthEvent> notes;
    int call = 0;
    // What operations write to.
    std::int32_t number = 0;
    std::int32_t second = 0;
    std::uint32_t flag = 0;
    float level = 0;
    std::int64_t ticks = 0;
    char text[260] = {};
    GrainListEntry* list = nullptr;

private:
    static std::vector<test::StretchMarker> markers() {
        std::vector<test::StretchMarker> all;
        for (std::uint32_t i = 1; i < kGrains; ++i) all.push_back({60 * i});
        return all;
    }
};

/// One for all benchmarks: it takes a moment to make.
Studio& studio() {
    static Studio one;
    return one;
}

using Step = std::function<void(Studio&)>;
using Call = std::function<HRESULT(Studio&)>;

struct Operation {
    std::string name;
    Call call;
    Step before = [](Studio&) {};
    Step after = [](Studio&) {};
};

void run(benchmark::State& state, const Operation& operation) {
    Studio& it = studio();
    it.reload();
    std::vector<double> holds;
    for (auto _ : state) {
        const auto begin = std::chrono::steady_clock::now();
        for (it.call = 0; it.call < kCalls && std::chrono::steady_clock::now() - begin < kPatience;
             ++it.call) {
            operation.before(it);
            it.meter.restart();
            check(operation.call(it), operation.name.c_str());
            holds.push_back(static_cast<double>(it.meter.longest()) / 1000);
            operation.after(it);
        }
        state.SetIterationTime(*std::max_element(holds.begin(), holds.end()) / 1e6);
    }
    const double longest = *std::max_element(holds.begin(), holds.end());
    state.counters["longest_us"] = longest;
    state.counters["median_us"] = medianOf(holds);
    state.counters["x_bound"] = longest / kBoundMicroseconds;
    state.counters["beyond_bound"] = static_cast<double>(
        std::count_if(holds.begin(), holds.end(), [](double hold) { return hold > kBoundMicroseconds; }));
    state.counters["calls"] = static_cast<double>(holds.size());
}

std::vector<Operation> projectOperations() {
    const auto lookAway = [](Studio& s) { s.reload(); };
    return {
        {"PushUndoState", [](Studio& s) { return s.it.PushUndoState(); },
         [](Studio& s) { s.it.SetGrainVolume(s.pad(), s.grain(), 0.5f); }},
        {"Undo", [](Studio& s) { return s.it.Undo(); },
         [](Studio& s) {
             s.it.PushUndoState();
             s.it.SetGrainVolume(s.pad(), s.grain(), 0.5f);
         }},
        {"Redo", [](Studio& s) { return s.it.Redo(); },
         [](Studio& s) {
             s.it.PushUndoState();
             s.it.SetGrainVolume(s.pad(), s.grain(), 0.5f);
             s.it.Undo();
         }},
        {"ClearProject", [](Studio& s) { return s.it.ClearProject(); }, [](Studio& s) { s.fillUndoRing(); },
         lookAway},
        {"LoadPadFromBin", [](Studio& s) { return s.it.LoadPadFromBin(s.pad(), 0); }},
        {"SaveProject", [](Studio& s) { return s.it.SaveProject(0, s.copy.c_str()); }},
        {"LoadProject", [](Studio& s) { return s.it.LoadProject(s.project.c_str()); },
         [](Studio& s) { s.fillUndoRing(); }},
        {"RemoveBinFile", [](Studio& s) { return s.it.RemoveBinFile(0); }, [](Studio&) {}, lookAway},
    };
}

std::vector<Operation> grainOperations() {
    const auto putBack = [](Studio& s) { s.it.AddGrain(0, s.grain(), s.pad(), s.time()); };
    return {
        {"CommitGrainEdits", [](Studio& s) { return s.it.CommitGrainEdits(); },
         [](Studio& s) {
             for (int pad = 0; pad < kPads; ++pad) s.it.DeleteGrain(pad, s.grain(), 1);
         },
         [](Studio& s) {
             for (int pad = 0; pad < kPads; ++pad) s.it.AddGrain(0, s.grain(), pad, s.time());
         }},
        {"DeleteGrain", [](Studio& s) { return s.it.DeleteGrain(s.pad(), s.grain(), 0); }, [](Studio&) {},
         putBack},
        {"DeleteGrain_marking", [](Studio& s) { return s.it.DeleteGrain(s.pad(), s.grain(), 1); },
         [](Studio&) {},
         [=](Studio& s) {
             s.it.CommitGrainEdits();
             putBack(s);
         }},
        {"ReplaceGrain", [](Studio& s) { return s.it.ReplaceGrain(s.pad(), s.grain(), 0, 7); }},
        {"AddGrain", [](Studio& s) { return s.it.AddGrain(0, 7, s.pad(), s.time()); }, [](Studio&) {},
         [](Studio& s) { s.it.DeleteGrain(s.pad(), s.grain(), 0); }},
        {"GetGrainSource",
         [](Studio& s) { return s.it.GetGrainSource(s.pad(), s.grain(), &s.number, &s.second); }},
        {"LoadFileToBin",
         [](Studio& s) { return s.it.LoadFileToBin("b", s.secondFile.c_str(), &s.number, &s.flag); },
         [](Studio& s) { s.dropSecondFile(); }},
        {"LoadFileToPad",
         [](Studio& s) { return s.it.LoadFileToPad(s.pad(), "b", s.secondFile.c_str(), &s.number, &s.flag); },
         [](Studio& s) { s.dropSecondFile(); }, [](Studio& s) { s.it.LoadPadFromBin(s.pad(), 0); }},
        {"MoveGrain",
         [](Studio& s) { return s.it.MoveGrain(s.pad(), s.grain(), s.otherPad(), s.time(), &s.number, 0); },
         [](Studio&) {},
         [](Studio& s) {
             s.it.LoadPadFromBin(s.pad(), 0);
             s.it.LoadPadFromBin(s.otherPad(), 0);
         }},
        {"MoveGrain_within_its_pad",
         [](Studio& s) { return s.it.MoveGrain(s.pad(), s.grain(), s.pad(), s.time() + 99, &s.number, 0); }},
        {"CopyGrain",
         [](Studio& s) { return s.it.CopyGrain(s.pad(), s.grain(), s.otherPad(), s.time(), &s.number); },
         [](Studio&) {}, [](Studio& s) { s.it.LoadPadFromBin(s.otherPad(), 0); }},
        {"GetGrainTranspose",
         [](Studio& s) { return s.it.GetGrainTranspose(s.pad(), s.grain(), &s.number); }},
        {"SetGrainTranspose",
         [](Studio& s) { return s.it.SetGrainTranspose(s.pad(), s.grain(), s.call % 12); }},
        {"GetGrainVolume", [](Studio& s) { return s.it.GetGrainVolume(s.pad(), s.grain(), &s.level); }},
        {"SetGrainVolume",
         [](Studio& s) {
             return s.it.SetGrainVolume(s.pad(), s.grain(), 0.001f * static_cast<float>(s.call));
         }},
        {"GetGrainPan", [](Studio& s) { return s.it.GetGrainPan(s.pad(), s.grain(), &s.level); }},
        {"SetGrainPan",
         [](Studio& s) { return s.it.SetGrainPan(s.pad(), s.grain(), 0.001f * static_cast<float>(s.call)); }},
    };
}

std::vector<Operation> listOperations() {
    const auto freeList = [](Studio& s) {
        CoTaskMemFree(s.list);
        s.list = nullptr;
    };
    return {
        {"GetBinFileCount", [](Studio& s) { return s.it.GetBinFileCount(&s.number); }},
        {"GetBinFileName", [](Studio& s) { return s.it.GetBinFileName(0, 1, s.text); }},
        {"GetPadGrainList", [](Studio& s) { return s.it.GetPadGrainList(s.pad(), &s.list, &s.number); },
         [](Studio&) {}, freeList},
        {"GetBinGrainList", [](Studio& s) { return s.it.GetBinGrainList(0, &s.list, &s.number); },
         [](Studio&) {}, freeList},
        {"GetGrainCount",
         [](Studio& s) {
             return s.it.GetGrainCount(kPadLoop, static_cast<std::uint32_t>(s.pad()), &s.number);
         }},
        {"GetPadEndTime", [](Studio& s) { return s.it.GetPadEndTime(s.pad(), &s.ticks); }},
    };
}

std::vector<Operation> playOperations() {
    return {
        {"AuditionPad", [](Studio& s) { return s.it.AuditionPad(s.pad(), -1); }},
        {"StopPad", [](Studio& s) { return s.it.StopPad(-1); },
         [](Studio& s) {
             for (int pad = 0; pad < kPads; ++pad) s.it.AuditionPad(pad, -1);
         }},
        {"AuditionBinFile", [](Studio& s) { return s.it.AuditionBinFile(0, -1); }},
        {"StopBinAudition", [](Studio& s) { return s.it.StopBinAudition(0); },
         [](Studio& s) { s.it.AuditionBinFile(0, -1); }},
        {"GetPadPlaying", [](Studio& s) { return s.it.GetPadPlaying(s.pad(), &s.flag); }},
        {"GetBinPlaying", [](Studio& s) { return s.it.GetBinPlaying(0, &s.flag); }},
    };
}

template <class T>
using Getter = HRESULT (IGrooveSampler::*)(std::int32_t, T*);
template <class T>
using Setter = HRESULT (IGrooveSampler::*)(std::int32_t, T);

/// The two operations of a setting of a pad, which is set to 0 and `high` by turns.
template <class T>
void addSetting(std::vector<Operation>& all, const char* name, Getter<T> get, Setter<T> set, T high) {
    all.push_back({std::string("GetPad") + name, [=](Studio& s) {
                       T value{};
                       return (s.it.*get)(s.pad(), &value);
                   }});
    all.push_back({std::string("SetPad") + name,
                   [=](Studio& s) { return (s.it.*set)(s.pad(), s.call / kPads % 2 ? high : T{}); }});
}

std::vector<Operation> padOperations() {
    using I = IGrooveSampler;
    using Flag = std::uint32_t;
    using Number = std::int32_t;
    std::vector<Operation> all;
    addSetting<Flag>(all, "Looping", &I::GetPadLooping, &I::SetPadLooping, 1);
    addSetting<Flag>(all, "Synced", &I::GetPadSynced, &I::SetPadSynced, 1);
    addSetting<Flag>(all, "PlayMode", &I::GetPadPlayMode, &I::SetPadPlayMode, 1);
    addSetting<Flag>(all, "Mute", &I::GetPadMute, &I::SetPadMute, 1);
    addSetting<float>(all, "Volume", &I::GetPadVolume, &I::SetPadVolume, 1.5f);
    addSetting<float>(all, "Pan", &I::GetPadPan, &I::SetPadPan, 1.0f);
    addSetting<Flag>(all, "Tail", &I::GetPadTail, &I::SetPadTail, 1);
    addSetting<Flag>(all, "FollowKey", &I::GetPadFollowKey, &I::SetPadFollowKey, 1);
    addSetting<Flag>(all, "Output", &I::GetPadOutput, &I::SetPadOutput, 3);
    addSetting<Flag>(all, "Solo", &I::GetPadSolo, &I::SetPadSolo, 1);
    addSetting<Number>(all, "RootNote", &I::GetPadRootNote, &I::SetPadRootNote, 11);
    addSetting<Number>(all, "Channel", &I::GetPadChannel, &I::SetPadChannel, 9);
    addSetting<Flag>(all, "OneShot", &I::GetPadOneShot, &I::SetPadOneShot, 1);
    return all;
}

std::vector<Operation> optionOperations() {
    return {
        {"GetLoopLength",
         [](Studio& s) {
             return s.it.GetLoopLength(kPadLoop, static_cast<std::uint32_t>(s.pad()), &s.ticks);
         }},
        {"SetLoopLength",
         [](Studio& s) {
             return s.it.SetLoopLength(kPadLoop, static_cast<std::uint32_t>(s.pad()), s.time());
         }},
        {"GetKeyMapEntry",
         [](Studio& s) {
             KeyMapRecord entry{s.pad(), 0, 0, 0, 0, 0};
             return s.it.GetKeyMapEntry(&entry);
         }},
        {"SetKeyMapEntry",
         [](Studio& s) {
             const KeyMapRecord entry{s.pad(), 10, 20, 15, 0, s.call % 128};
             return s.it.SetKeyMapEntry(&entry);
         }},
        {"GetAuditionEnabled", [](Studio& s) { return s.it.GetAuditionEnabled(&s.flag); }},
        {"SetAuditionEnabled", [](Studio& s) { return s.it.SetAuditionEnabled(1); }},
        {"GetRefreshRequest", [](Studio& s) { return s.it.GetRefreshRequest(&s.flag); }},
        {"SetRefreshRequest", [](Studio& s) { return s.it.SetRefreshRequest(1); }},
    };
}

std::vector<Operation> hostOperations() {
    const auto ready = [](Studio& s) {
        s.freshTimeline();
        s.queueAll();
    };
    return {
        {"Save",
         [](Studio& s) {
             test::FaultyStream stream;
             return s.rig.save(stream);
         }},
        {"Load",
         [](Studio& s) {
             s.saved.position = 0;
             return s.rig.load(s.saved);
         },
         [](Studio& s) { s.fillUndoRing(); }},
        {"QueueEvents_100000", [](Studio& s) { return s.rig.queueEvents(0, s.notes); },
         [](Studio& s) { s.freshTimeline(); }},
        {"StartPlayback_100000", [](Studio& s) { return s.rig.synth().StartPlayback(0); }, ready},
        {"StopPlayback_100000", [](Studio& s) { return s.rig.synth().StopPlayback(); }, ready},
    };
}

/// Holds as short and as many as those of queueing, with nothing to do in them: what lasts longer there is
/// the machine's own doing, an interrupt as a rule.
std::vector<Operation> machineOperations() {
    constexpr int kHolds = kEvents / 16;
    constexpr std::chrono::microseconds kHold{3};
    return {{"holds_of_3_us", [=](Studio& s) {
                 for (int i = 0; i < kHolds; ++i) {
                     CAutoLock lock(dynamic_cast<CPzi&>(s.it));
                     const auto end = std::chrono::steady_clock::now() + kHold;
                     while (std::chrono::steady_clock::now() < end) {
                     }
                 }
                 return S_OK;
             }}};
}

void add(const std::string& group, const std::vector<Operation>& operations) {
    for (const Operation& operation : operations) {
        benchmark::RegisterBenchmark((group + operation.name).c_str(),
                                     [operation](benchmark::State& state) { run(state, operation); })
            ->UseManualTime()
            ->Unit(benchmark::kMicrosecond)
            ->Iterations(1);
    }
}

void addAll() {
    for (const auto& operations : {projectOperations(), grainOperations(), listOperations(), playOperations(),
                                   padOperations(), optionOperations()}) {
        add("Lock/IGrooveSampler/", operations);
    }
    add("Lock/host/", hostOperations());
    add("Lock/machine/", machineOperations());
}

[[maybe_unused]] const bool kAdded = (addAll(), true);

}  // namespace
}  // namespace marnoth::bench
