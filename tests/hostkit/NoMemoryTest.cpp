/// Memory that ends while an instrument is made, connected, run and played: each allocation fails in turn,
/// once and for good. Every operation ends in a result code, and behind it the same operation works.

#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <new>
#include <vector>

#include "host/CreateInstance.h"
#include "hostkit/HostRig.h"
#include "hostkit/LiveHost.h"
#include "platform/com/RefPtr.h"
#include "platform/graph/Graph.h"
#include "support/FailingAllocation.h"
#include "support/WaveFile.h"

namespace marnoth::test::no_memory_test {
namespace {

constexpr int kMostAllocations = 10000;

/// Runs `operation` on what `make` makes with its first allocation failing, then its second, until all
/// succeed; `check` is given what was made and each failed result.
template <class Make, class Operation, class Check>
void failEach(Make make, Operation operation, Check check) {
    for (const MemoryEnds kind : {MemoryEnds::once, MemoryEnds::forGood}) {
        bool happened = true;
        int number = 0;
        while (happened && number < kMostAllocations) {
            auto made = make();
            HRESULT hr = E_UNEXPECTED;
            {
                const FailingAllocation failing(++number, kind);
                hr = operation(*made);
                happened = failing.happened();
            }
            SCOPED_TRACE("allocation " + std::to_string(number) +
                         (kind == MemoryEnds::once ? "" : " and all behind"));
            if (happened) check(*made, hr);
            EXPECT_TRUE(happened || SUCCEEDED(hr));
            EXPECT_TRUE(SUCCEEDED(operation(*made))) << "it works again";
            if (::testing::Test::HasFailure()) return;
        }
        EXPECT_GT(number, 1) << "there was nothing that could have failed";
        EXPECT_LT(number, kMostAllocations) << "it never ends";
    }
}

struct Nothing {};

void expectOutOfMemory(HRESULT hr) {
    EXPECT_EQ(hr, E_OUTOFMEMORY);
}

TEST(NoMemory, ForAnInstrument) {
    failEach([] { return std::make_unique<Nothing>(); },
             [](Nothing&) {
                 RefPtr<IUnknown> instrument;
                 const HRESULT hr = createInstrument(nullptr, IID_IUnknown, instrument.putVoid());
                 EXPECT_EQ(static_cast<bool>(instrument), SUCCEEDED(hr));
                 return hr;
             },
             [](Nothing&, HRESULT hr) { expectOutOfMemory(hr); });
}

template <class Host>
HRESULT makeHost(Nothing&) try {
    const Host host(createInstrument);
    return S_OK;
} catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
}

TEST(NoMemory, ForAHost) {
    const auto nothing = [] { return std::make_unique<Nothing>(); };
    failEach(nothing, makeHost<HostRig>, [](Nothing&, HRESULT hr) { expectOutOfMemory(hr); });
    failEach(nothing, makeHost<LiveHost>, [](Nothing&, HRESULT hr) { expectOutOfMemory(hr); });
}

std::unique_ptr<HostRig> newRig() {
    return std::make_unique<HostRig>(createInstrument);
}

constexpr std::array<int, 17> kAll{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};

TEST(NoMemory, ForItsConnections) {
    failEach(
        newRig, [](HostRig& rig) { return rig.connect(44100, 2, kAll); },
        [](HostRig&, HRESULT hr) { expectOutOfMemory(hr); });
}

TEST(NoMemory, ForItsServices) {
    failEach(
        newRig,
        [](HostRig& rig) {
            rig.detach();
            return rig.attach({.key = 3});
        },
        [](HostRig&, HRESULT hr) { expectOutOfMemory(hr); });
}

std::unique_ptr<HostRig> connectedRig() {
    auto rig = newRig();
    EXPECT_EQ(rig->connect(44100, 2, kAll), S_OK);
    EXPECT_EQ(rig->attach({}), S_OK);
    return rig;
}

TEST(NoMemory, ToRun) {
    failEach(
        connectedRig,
        [](HostRig& rig) {
            const HRESULT hr = rig.run();
            EXPECT_EQ(rig.stop(), S_OK) << "stopping needs none";
            return hr;
        },
        [](HostRig&, HRESULT hr) { expectOutOfMemory(hr); });
}

TEST(NoMemory, ToPlayNotes) {
    std::vector<SynthEvent> notes(3000);
    for (SynthEvent& note : notes) note.note = 60;
    failEach(
        connectedRig,
        [&](HostRig& rig) {
            const HRESULT hr = rig.queueEvents(0, notes);
            return FAILED(hr) ? hr : rig.render(2000);
        },
        [](HostRig&, HRESULT hr) { expectOutOfMemory(hr); });
}

TEST(NoMemory, ForALiveHostsConnections) {
    failEach([] { return std::make_unique<LiveHost>(createInstrument); },
             [](LiveHost& host) {
                 return host.connect({44100, 256, kAll});
             },
             [](LiveHost& host, HRESULT hr) {
                 expectOutOfMemory(hr);
                 EXPECT_EQ(host.process(16, OutputPointers{}), VFW_E_NOT_CONNECTED);
             });
}

}  // namespace
}  // namespace marnoth::test::no_memory_test
