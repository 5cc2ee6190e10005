/// A graph that is put together, played and taken apart over and over: nothing is left of a round.
///
/// MARNOTH_ROUNDS says how many there are in place of fifty.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "support/WaveFile.h"
#include "windows/Registered.h"
#include "windows/SystemRig.h"

namespace marnoth::test::rounds_test {
namespace {

constexpr std::array<std::uint32_t, 6> kRates{44100, 48000, 22050, 96000, 32000, 11025};
constexpr std::uint8_t kKey = 60;

int wantedRounds() {
    const char* const wanted = std::getenv("MARNOTH_ROUNDS");
    return wanted ? std::max(std::atoi(wanted), 20) : 50;
}

/// Bytes that are in use on all heaps of the process.
std::int64_t heapBytes() {
    std::array<HANDLE, 64> heaps{};
    const DWORD count = std::min<DWORD>(GetProcessHeaps(static_cast<DWORD>(heaps.size()), heaps.data()),
                                        static_cast<DWORD>(heaps.size()));
    std::int64_t bytes = 0;
    for (DWORD i = 0; i < count; ++i) {
        PROCESS_HEAP_ENTRY entry{};
        HeapLock(heaps[i]);
        while (HeapWalk(heaps[i], &entry))
            if (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) bytes += entry.cbData;
        HeapUnlock(heaps[i]);
    }
    return bytes;
}

/// A rig whose mix goes to a renderer of the system's, and its channels to sinks of our own.
class Stage {
public:
    Stage() {
        const TempPath wave =
            WaveFile().floats().frames(20000, [](auto i, int) { return std::sin(0.05 * i); }).writeTemp();
        std::int32_t bin = -1;
        std::uint32_t status = 99;
        EXPECT_EQ(rig.host.sampler().LoadFileToPad(0, "wave", wave.c_str(), &bin, &status), S_OK);
        EXPECT_EQ(rig.host.sampler().SetPadOutput(0, 1), S_OK);
        for (int pin = 1; pin < kOutputPins; ++pin) channels_.push_back(pin);
        rig.host.sink(1).setTaker([this](std::span<const float> samples, bool) {
            for (const float sample : samples) peak_ = std::max(peak_, std::abs(sample));
        });
        EXPECT_EQ(rig.graph->AddFilter(renderer_.get(), L"Renderer"), S_OK);
    }

    void playRound(int round) {
        peak_ = 0;
        connect(kRates[static_cast<std::size_t>(round) % kRates.size()], 1 + round % 2);
        run();
        EXPECT_GT(peak_, 0.1f) << "in round " << round;
        flush();
        pauseWithABlockInsideAndStop();
        EXPECT_EQ(rig.host.graph().disconnectAll(), S_OK);
    }

    /// Who is held by whom, while nothing is connected.
    std::vector<ULONG> references() {
        return {otherReferences(*rig.filter),        otherReferences(*renderer_),
                otherReferences(*rig.graph),         otherReferences(static_cast<IPin&>(rig.host.sink(1))),
                otherReferences(*rig.pin(L"Input")), otherReferences(*rig.pin(L"Mix Output"))};
    }

private:
    void connect(std::uint32_t rate, std::uint32_t channels) {
        ASSERT_EQ(rig.host.connect(rate, channels, channels_), S_OK);
        ASSERT_EQ(rig.graph->Connect(rig.pin(L"Mix Output").get(), pinOf(*renderer_).get()), S_OK);
    }

    void run() {
        ASSERT_GE(rig.control->Run(), S_OK);
        sendMessage(0x90);
        for (int block = 0; block < 4; ++block) ASSERT_EQ(rig.send(), S_OK);
        sendMessage(0x80);
        rig.waitFor(State_Running);
    }

    void flush() {
        const RefPtr<IPin> input = rig.pin(L"Input");
        EXPECT_EQ(input->BeginFlush(), S_OK);
        EXPECT_EQ(input->EndFlush(), S_OK);
        EXPECT_EQ(rig.send(), S_OK);
    }

    void pauseWithABlockInsideAndStop() {
        ASSERT_GE(rig.control->Pause(), S_OK);
        SentBlock block(rig);
        rig.waitFor(State_Paused);
        EXPECT_EQ(answerOf([&] { return rig.control->Stop(); }), S_OK);
        block.result();
    }

    void sendMessage(std::uint8_t status) {
        const RawMidiEvent event{0, status, kKey, 100, 0};
        EXPECT_EQ(rig.host.synth().QueueRawInput(
                      0, makeObject<RawEventList>(std::span<const RawMidiEvent>(&event, 1)).get()),
                  S_OK);
    }

    float peak_ = 0;
    std::vector<int> channels_;
    RefPtr<IBaseFilter> renderer_ = makeRenderer(kNullRenderer);
    SystemRig rig;
};

class Rounds : public Registered<> {};

TEST_F(Rounds, LeaveReferencesAndMemoryAsTheyWere) {
    const ComApartment apartment(COINIT_MULTITHREADED);
    constexpr int kWarmUp = 12;              // twice each rate
    constexpr std::int64_t kTolerance = 64;  // bytes a round, for what the system keeps
    const int rounds = wantedRounds();
    Stage stage;
    std::vector<ULONG> references;
    std::int64_t before = 0;
    for (int round = 0; round < rounds; ++round) {
        stage.playRound(round);
        if (round == 0) references = stage.references();
        EXPECT_EQ(stage.references(), references) << "behind round " << round;
        if (round == kWarmUp - 1) before = heapBytes();
        if (HasFailure()) return;
    }
    const std::int64_t grown = heapBytes() - before;
    std::printf("%d rounds: %lld bytes in use, %+lld since the warm-up\n", rounds,
                static_cast<long long>(before + grown), static_cast<long long>(grown));
    EXPECT_LE(grown, kTolerance * (rounds - kWarmUp));
}

TEST_F(Rounds, OfInstrumentsLeaveNoModuleBehind) {
    for (const COINIT kind : {COINIT_MULTITHREADED, COINIT_APARTMENTTHREADED}) {
        inApartment(kind, [] {
            for (int round = 0; round < 5; ++round) Stage().playRound(round);
        });
        EXPECT_EQ(GetModuleHandleW(std::filesystem::absolute(Component::builtFile()).c_str()), nullptr);
    }
}

}  // namespace
}  // namespace marnoth::test::rounds_test
