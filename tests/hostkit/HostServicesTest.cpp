#include <gtest/gtest.h>

#include <array>

#include "hostkit/EventList.h"
#include "hostkit/HostContext.h"
#include "hostkit/MakeObject.h"
#include "hostkit/TempoMap.h"

namespace marnoth::test::host_services_test {
namespace {

TEST(EventList, GivesItsEventsInOrder) {
    const std::array<SynthEvent, 2> events{SynthEvent{.time = 5, .note = 60},
                                           SynthEvent{.time = 9, .note = 72}};
    RefPtr<EventList> list = makeObject<EventList>(events);
    std::int32_t count = -1;
    SynthEvent event;
    EXPECT_EQ(list->GetCount(&count), S_OK);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(list->GetAt(1, &event), S_OK);
    EXPECT_EQ(event.time, 9);
    EXPECT_EQ(event.note, 72);
}

TEST(EventList, RefusesIndicesOutsideAndNullPointers) {
    const std::array<RawMidiEvent, 1> events{RawMidiEvent{.time = 5}};
    RefPtr<RawEventList> list = makeObject<RawEventList>(events);
    RawMidiEvent event{.time = 1};
    EXPECT_EQ(list->GetAt(1, &event), E_INVALIDARG);
    EXPECT_EQ(list->GetAt(-1, &event), E_INVALIDARG);
    EXPECT_EQ(event.time, 1u);
    EXPECT_EQ(list->GetAt(0, nullptr), E_POINTER);
    EXPECT_EQ(list->GetCount(nullptr), E_POINTER);
    EXPECT_EQ(list->reserved3(), E_NOTIMPL);
}

TEST(KeyService, GivesItsKeyAtAnyTime) {
    RefPtr<KeyService> service = makeObject<KeyService>(11u);
    std::uint32_t key = 0;
    EXPECT_EQ(service->GetKeyAt(nullptr, &key), S_OK);
    EXPECT_EQ(key, 11u);
    EXPECT_EQ(service->GetKeyAt(nullptr, nullptr), E_POINTER);
}

TEST(KeyService, MayChange) {
    RefPtr<KeyService> service = makeObject<KeyService>(11u);
    service->setKey(4);
    std::uint32_t key = 0;
    EXPECT_EQ(service->GetKeyAt(nullptr, &key), S_OK);
    EXPECT_EQ(key, 4u);
}

TEST(PinService, AcceptsEveryChange) {
    RefPtr<PinService> service = makeObject<PinService>();
    EXPECT_EQ(service->OnPinSetChange(kPinSetAsking, nullptr, 18), S_OK);
    EXPECT_EQ(service->OnPinSetChange(kPinSetChanged, nullptr, 0), S_OK);
}

TEST(HostContext, AnswersForTheServicesThatItHas) {
    HostContext::Services services;
    services.tempoMap = RefPtr<TempoService>(makeObject<TempoMap>(120.0).get());
    services.pins = makeObject<PinService>();
    RefPtr<HostContext> context = makeObject<HostContext>(services);
    RefPtr<IKvxTempoMap> tempoMap;
    RefPtr<IKvxPinHost> pins;
    RefPtr<IUnknown> refused;
    EXPECT_EQ(context->QueryInterface(IID_IKvxTempoMap, tempoMap.putVoid()), S_OK);
    EXPECT_EQ(context->QueryInterface(IID_IKvxPinHost, pins.putVoid()), S_OK);
    EXPECT_EQ(context->QueryInterface(IID_IKvxTimeConverter, refused.putVoid()), E_NOINTERFACE);
    EXPECT_EQ(context->QueryInterface(IID_IKvxProjectKeyMap, refused.putVoid()), E_NOINTERFACE);
    EXPECT_EQ(context->QueryInterface(IID_IKvxEventTarget, refused.putVoid()), E_NOINTERFACE);

    services = {};
    context.reset();
    EXPECT_EQ(tempoMap->TicksToMilliseconds(960), 500) << "a service lives as long as somebody holds it";
}

}  // namespace
}  // namespace marnoth::test::host_services_test
