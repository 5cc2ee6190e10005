/// What a host meets when memory ends: each allocation of an operation fails in turn, and after each failure
/// the same operation works.

#include <gtest/gtest.h>

#include <cstdint>

#include "host/FilterHost.h"
#include "host/Instrument.h"
#include "support/FailingAllocation.h"
#include "support/FaultyStream.h"
#include "support/WaveFile.h"

namespace marnoth::test::out_of_memory_test {
namespace {

constexpr int kMostAllocations = 100000;

/// Runs `operation` with its first allocation failing, then its second, until all succeed. `check` is given
/// each failed run's result.
template <class Operation, class Check>
void failEach(Operation operation, Check check) {
    for (int number = 1; number < kMostAllocations; ++number) {
        HRESULT hr = E_UNEXPECTED;
        bool happened = false;
        {
            const FailingAllocation failing(number);
            hr = operation();
            happened = failing.happened();
        }
        if (!happened) {
            EXPECT_TRUE(SUCCEEDED(hr));
            EXPECT_GT(number, 1) << "there was nothing that could have failed";
            return;
        }
        check(hr, number);
    }
    FAIL() << "it never ends";
}

void expectOutOfMemory(HRESULT hr, int number) {
    EXPECT_EQ(hr, E_OUTOFMEMORY) << "allocation " << number;
}

TEST(MemoryEnds, WhileANameListIsMade) {
    using Ask = HRESULT (*)(CInstrument&, IKvxNameList**);
    for (const Ask ask :
         {Ask([](CInstrument&names, IKvxNameList**out) { return names.GetPatchList(1, out); }),
          Ask([](CInstrument&names, IKvxNameList**out) { return names.GetNoteList(1, 2, out); }),
          Ask([](CInstrument&names, IKvxNameList**out) { return names.GetControllerList(out); }),
          Ask([](CInstrument&names, IKvxNameList**out) { return names.GetRpnList(out); }),
          Ask([](CInstrument&names, IKvxNameList**out) { return names.GetNrpnList(out); })}) {
        const RefPtr<CInstrument> names(new CInstrument(L"Marnoth"));
        RefPtr<IKvxNameList> list;
        failEach([&] { return ask(*names, list.put()); },
                 [&](HRESULT hr, int number) {
                     expectOutOfMemory(hr, number);
                     EXPECT_FALSE(list);
                 });
        EXPECT_TRUE(list);
    }
}

#ifndef _WIN32  // There the system makes the object, from memory of its own.
TEST(MemoryEnds, WhileSeekingIsAskedFor) {
    FilterHost host;
    RefPtr<IMediaSeeking> seeking;
    failEach([&] { return host.output(0).QueryInterface(IID_IMediaSeeking, seeking.putVoid()); },
             expectOutOfMemory);
    EXPECT_TRUE(seeking);
}
#endif

/// An instrument with a short loop on pad 4.
struct LoopHost : FilterHost {
    LoopHost() {
        EXPECT_EQ(connectInput(), S_OK);
        const auto wave = WaveFile().frames(2205).acid({.beats = 1}).writeTemp();
        std::int32_t bin = -1;
        std::uint32_t status = 0;
        EXPECT_EQ(filter->LoadFileToPad(4, "Loop", wave.c_str(), &bin, &status), S_OK);
        grainsOfLoop = grains();
        EXPECT_GT(grainsOfLoop, 0);
    }
    std::int32_t grains() {
        std::int32_t count = -1;
        EXPECT_EQ(filter->GetGrainCount(kPadLoop, 4, &count), S_OK);
        return count;
    }
    std::int32_t grainsOfLoop = 0;
};

TEST(MemoryEnds, WhileTheProjectIsSaved) {
    LoopHost host;
    FaultyStream stream;
    ASSERT_EQ(host.filter->Save(&stream, TRUE), S_OK);
    const auto whole = stream.bytes;
    failEach(
        [&] {
            stream.position = 0;
            return host.filter->Save(&stream, FALSE);
        },
        [&](HRESULT hr, int number) {
            EXPECT_TRUE(FAILED(hr)) << "allocation " << number;
            EXPECT_EQ(host.filter->IsDirty(), S_FALSE);
        });
    EXPECT_EQ(stream.bytes, whole);
    EXPECT_EQ(host.grains(), host.grainsOfLoop);
}

TEST(MemoryEnds, WhileTheProjectIsLoaded) {
    LoopHost host;
    FaultyStream stream;
    ASSERT_EQ(host.filter->Save(&stream, TRUE), S_OK);
    int failures = 0;
    failEach(
        [&] {
            stream.position = 0;
            return host.filter->Load(&stream);
        },
        [&](HRESULT hr, int number) {
            // Room for another undo history is a comfort: without it the present one is emptied in place.
            failures += FAILED(hr);
            EXPECT_EQ(host.grains(), FAILED(hr) ? 0 : host.grainsOfLoop) << "allocation " << number;
        });
    EXPECT_GT(failures, 10);
    EXPECT_EQ(host.grains(), host.grainsOfLoop);
}

}  // namespace
}  // namespace marnoth::test::out_of_memory_test
