#include <future>

#include "host/SynthUnderTest.h"

namespace marnoth::test::soft_synth_attach_test {
namespace {

TEST(AttachHost, TakesTheServicesAndTheCallersReferenceToTheContext) {
    SynthHost host;
    host.context.hasTimeConverter = host.context.hasKeyMap = true;
    host.context.hasEventTarget = host.context.hasPinHost = true;
    EXPECT_EQ(host.attach(), S_OK);
    EXPECT_EQ(host.context.references, 0u);
    EXPECT_EQ(host.context.tempoMap.references, 1u);
    EXPECT_EQ(host.context.serviceReferences(), 5u);
}

TEST(AttachHost, WithoutATempoMapFailsAndTheInstrumentStaysDetached) {
    SynthHost host;
    host.context.hasTempoMap = false;
    host.context.hasTimeConverter = true;
    EXPECT_EQ(host.attach(), E_NOINTERFACE);
    EXPECT_EQ(host.context.references, 1u);
    EXPECT_EQ(host.context.serviceReferences(), 0u);
    EXPECT_EQ(host.queue({note(0, 60)}), E_UNEXPECTED);
}

TEST(AttachHost, ASecondTimeIsUnexpectedAndKeepsTheContextTheCallers) {
    SynthHost host;
    ASSERT_EQ(host.attach(), S_OK);
    EXPECT_EQ(host.attach(), E_UNEXPECTED);
    EXPECT_EQ(host.context.references, 1u);
    EXPECT_EQ(host.context.tempoMap.references, 1u);
}

TEST(AttachHost, ManagesWithTheTempoMapAlone) {
    SynthHost host;
    EXPECT_EQ(host.attach(), S_OK);
    EXPECT_EQ(host.context.serviceReferences(), 1u);
}

TEST(DetachHost, ReleasesEverythingAndLetsAttachAgain) {
    SynthHost host;
    host.context.hasTimeConverter = host.context.hasKeyMap = true;
    host.context.hasEventTarget = host.context.hasPinHost = true;
    ASSERT_EQ(host.attach(), S_OK);
    EXPECT_EQ(host.synth.DetachHost(), S_OK);
    EXPECT_EQ(host.context.serviceReferences(), 0u);
    EXPECT_EQ(host.queue({note(0, 60)}), E_UNEXPECTED);
    EXPECT_EQ(host.attach(), S_OK);
}

TEST(DetachHost, HappensAtTheEndOfTheSynth) {
    FakeHostContext context;
    context.hasPinHost = true;
    FakePzi pzi;
    {
        SynthUnderTest synth(pzi);
        context.AddRef();
        ASSERT_EQ(synth.AttachHost(&context), S_OK);
        ASSERT_EQ(context.serviceReferences(), 2u);
    }
    EXPECT_EQ(context.serviceReferences(), 0u);
}

TEST(EventTarget, IsNullWithAnAnswerOfNoUntilGiven) {
    SynthHost host;
    IUnknown* out = &host.context;
    EXPECT_EQ(host.synth.GetEventTarget(&out), S_FALSE);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(host.synth.GetEventTarget(nullptr), E_POINTER);
}

TEST(EventTarget, IsHeldAndGivenOutWithReferences) {
    SynthHost host;
    FakeEventTarget first, second;
    EXPECT_EQ(host.synth.SetEventTarget(&first), S_OK);
    IUnknown* out = nullptr;
    EXPECT_EQ(host.synth.GetEventTarget(&out), S_OK);
    EXPECT_EQ(out, &first);
    EXPECT_EQ(first.references, 2u);
    out->Release();

    EXPECT_EQ(host.synth.SetEventTarget(&second), S_OK);
    EXPECT_EQ(first.references, 0u);
    EXPECT_EQ(second.references, 1u);
    EXPECT_EQ(host.synth.SetEventTarget(nullptr), S_OK);
    EXPECT_EQ(second.references, 0u);
}

TEST(EventTarget, IsTheServiceThatTheHostOffers) {
    SynthHost host;
    host.context.hasEventTarget = true;
    ASSERT_EQ(host.attach(), S_OK);
    IUnknown* out = nullptr;
    EXPECT_EQ(host.synth.GetEventTarget(&out), S_OK);
    EXPECT_EQ(out, &host.context.eventTarget);
    out->Release();
}

TEST(GetInstrument, WithoutAPlaceForItIsABadPointer) {
    SynthHost host;
    EXPECT_EQ(host.synth.GetInstrument(0, nullptr), E_POINTER);
}

TEST(TheLock, IsNotWaitedForByTempoRateAndTransport) {
    SynthHost host;
    CAutoLock lock(host.pzi);
    auto asked = std::async(std::launch::async, [&] {
        host.synth.SetTempo(90.0);
        return host.synth.GetTempo() == 90.0 && host.synth.GetSampleRate() == 44100 &&
               host.synth.IsTransportRunning() == 0;
    });
    ASSERT_EQ(asked.wait_for(std::chrono::seconds(10)), std::future_status::ready);
    EXPECT_TRUE(asked.get());
}

TEST(TheLock, IsWaitedForByTheTransport) {
    SynthHost host;
    std::future<HRESULT> started;
    {
        CAutoLock lock(host.pzi);
        started = std::async(std::launch::async, [&] { return host.synth.StartPlayback(0); });
        EXPECT_EQ(started.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
        EXPECT_EQ(host.pzi.resets, 0);
    }
    EXPECT_EQ(started.get(), S_OK);
    EXPECT_EQ(host.pzi.resets, 1);
}

}  // namespace
}  // namespace marnoth::test::soft_synth_attach_test
