#include <set>

#include "host/FilterHost.h"
#include "support/AllocationMeter.h"

namespace marnoth::test::output_pins_test {
namespace {

using Calls = std::vector<std::pair<std::uint32_t, std::int32_t>>;

struct AttachedHost : FilterHost {
    AttachedHost() {
        context.hasPinHost = true;
        attach();
    }
};

TEST(Pins, AreOneInputTheMixAndSixteenChannels) {
    FilterHost host;
    EXPECT_EQ(host.filter->GetPinCount(), 18);
    EXPECT_EQ(host.filter->GetOutputPinCount(), 17);
    EXPECT_EQ(host.input().Name(), L"Input");
    EXPECT_EQ(host.input().Direction(), PINDIR_INPUT);
    EXPECT_EQ(host.output(0).Name(), L"Mix Output");
    for (int i = 1; i <= 16; ++i) EXPECT_EQ(host.output(i).Name(), L"Chan " + std::to_wstring(i));
    EXPECT_EQ(host.output(16).Direction(), PINDIR_OUTPUT);
    EXPECT_EQ(host.filter->GetPin(18), nullptr);
    EXPECT_EQ(host.filter->GetPin(-1), nullptr);
}

TEST(Pins, CanBeEnumeratedAndFoundByName) {
    FilterHost host;
    RefPtr<IEnumPins> pins;
    ASSERT_EQ(host.filter->EnumPins(pins.put()), S_OK);
    IPin* all[18] = {};
    ULONG fetched = 0;
    EXPECT_EQ(pins->Next(18, all, &fetched), S_OK);
    EXPECT_EQ(fetched, 18u);
    EXPECT_EQ(all[17], &host.output(16));
    for (IPin* pin : all) pin->Release();
    RefPtr<IPin> found;
    EXPECT_EQ(host.filter->FindPin(L"Chan 7", found.put()), S_OK);
    EXPECT_TRUE(found == &host.output(7));
}

TEST(Pins, HaveIdsThatNoTwoInstrumentsOfAProcessShare) {
    FilterHost first, second;
    std::set<std::uint32_t> ids;
    for (int i = 0; i < 17; ++i) {
        ids.insert(first.filter->GetPinId(i));
        ids.insert(second.filter->GetPinId(i));
    }
    EXPECT_EQ(ids.size(), 34u);
    EXPECT_EQ(ids.count(0), 0u);
    const std::uint32_t last = *ids.rbegin();
    first.filter->RemoveOutputPin(first.filter->GetPinId(16));
    std::uint32_t id = 0;
    first.filter->AddOutputPin("Another", &id);
    EXPECT_EQ(id, last + 1);
}

TEST(Pins, OfABadIndexHaveTheIdOfNone) {
    FilterHost host;
    EXPECT_EQ(host.filter->GetPinId(17), 0xFFFFFFFFu);
    EXPECT_EQ(host.filter->GetPinId(-1), 0xFFFFFFFFu);
    EXPECT_EQ(host.filter->FindOutputPin(0), nullptr);
    EXPECT_EQ(host.filter->FindOutputPin(host.filter->GetPinId(4)), &host.output(4));
}

TEST(Pins, CountTheirOwnReferences) {
    FilterHost host;
    EXPECT_EQ(host.output(0).AddRef(), 2u);
    EXPECT_EQ(host.owner->AddRef(), 2u);
    EXPECT_EQ(host.owner->Release(), 1u);
    EXPECT_EQ(host.output(0).Release(), 1u);
}

TEST(Pins, MayBeLetGoAfterTheInstrument) {
    // What the first instrument of a process makes once stays.
    { FilterHost first; }
    const AllocationMeter meter;
    IPin* pin = nullptr;
    {
        FilterHost host;
        pin = &host.output(3);
        pin->AddRef();
    }
    ASSERT_GE(meter.heldBytes(), static_cast<std::ptrdiff_t>(sizeof(CFilterOutputPin)));
    EXPECT_EQ(pin->Release(), 0u);
    EXPECT_EQ(meter.heldBytes(), 0);
}

TEST(Pins, ThatAreConnectedAtTheEndAreDisconnected) {
    SinkPin sink;
    SourcePin source;
    HRESULT result = S_OK;
    auto* filter = new CFilter(nullptr, &result);
    auto owner = RefPtr<IUnknown>::adopt(filter->Inner());
    const CMediaType type = audioType(44100, 2);
    ASSERT_EQ(filter->GetPin(0)->ReceiveConnection(&source, type.Get()), S_OK);
    ASSERT_EQ(filter->GetPin(1)->Connect(&sink, type.Get()), S_OK);
    EXPECT_TRUE(sink.peer);
    owner.reset();
    EXPECT_FALSE(sink.peer);
    EXPECT_EQ(sink.references, 0u);
    EXPECT_EQ(source.references, 0u);
}

TEST(AddOutputPin, WithoutANameCountsInItsName) {
    FilterHost host;
    std::uint32_t id = 0;
    EXPECT_EQ(host.filter->AddOutputPin(nullptr, &id), S_OK);
    EXPECT_EQ(host.output(17).Name(), L"Output 18");
    EXPECT_EQ(host.filter->GetPinId(17), id);
    EXPECT_EQ(host.filter->GetOutputPinCount(), 18);
    EXPECT_EQ(host.filter->AddOutputPin("No id", nullptr), S_OK);
    EXPECT_EQ(host.output(18).Name(), L"No id");
}

TEST(AddOutputPin, CutsANameAt256Characters) {
    FilterHost host;
    host.filter->AddOutputPin(std::string(300, 'x').c_str(), nullptr);
    EXPECT_EQ(host.output(17).Name(), std::wstring(256, L'x'));
}

TEST(AddOutputPin, AsksTheHostFirstAndTellsItAfterwards) {
    AttachedHost host;
    EXPECT_EQ(host.filter->AddOutputPin("Extra", nullptr), S_OK);
    EXPECT_EQ(host.context.pinHost.calls, (Calls{{1, 18}, {2, 18}}));
    EXPECT_EQ(host.context.pinHost.lastFilter, static_cast<IBaseFilter*>(host.filter));
}

TEST(AddOutputPin, TakesANoFromTheHost) {
    AttachedHost host;
    host.context.pinHost.askResult = E_ACCESSDENIED;
    EXPECT_EQ(host.filter->AddOutputPin("Extra", nullptr), E_ACCESSDENIED);
    EXPECT_EQ(host.filter->GetOutputPinCount(), 17);
    EXPECT_EQ(host.context.pinHost.calls, (Calls{{1, 18}}));
}

TEST(AddOutputPin, DoesntMindWhatTheHostSaysAfterwards) {
    AttachedHost host;
    host.context.pinHost.toldResult = E_FAIL;
    EXPECT_EQ(host.filter->AddOutputPin("Extra", nullptr), S_OK);
}

TEST(AddOutputPin, FailsUnderAHostWithoutASayInPins) {
    FilterHost host;
    host.attach();
    EXPECT_EQ(host.filter->AddOutputPin("Extra", nullptr), E_FAIL);
    EXPECT_EQ(host.filter->GetOutputPinCount(), 17);
}

TEST(AddOutputPin, TellsTheGraph) {
    FilterHost host;
    host.filter->JoinFilterGraph(&host.graph, L"Marnoth");
    host.filter->AddOutputPin("Extra", nullptr);
    EXPECT_EQ(host.graph.events, std::vector<LONG>{EC_GRAPH_CHANGED});
    host.filter->JoinFilterGraph(nullptr, nullptr);
}

TEST(AddOutputPin, MakesEnumeratorsOutOfDate) {
    FilterHost host;
    RefPtr<IEnumPins> pins;
    host.filter->EnumPins(pins.put());
    host.filter->AddOutputPin("Extra", nullptr);
    IPin* pin = nullptr;
    EXPECT_EQ(pins->Next(1, &pin, nullptr), VFW_E_ENUM_OUT_OF_SYNC);
}

TEST(RemoveOutputPin, TakesThePinOut) {
    AttachedHost host;
    const std::uint32_t id = host.filter->GetPinId(1);
    const std::uint32_t next = host.filter->GetPinId(2);
    EXPECT_EQ(host.filter->RemoveOutputPin(id), S_OK);
    EXPECT_EQ(host.filter->FindOutputPin(id), nullptr);
    EXPECT_EQ(host.filter->GetPinId(1), next);
    EXPECT_EQ(host.filter->GetPinCount(), 17);
    EXPECT_EQ(host.context.pinHost.calls, (Calls{{1, 16}, {2, 16}}));
}

TEST(RemoveOutputPin, MakesEnumeratorsOutOfDate) {
    FilterHost host;
    RefPtr<IEnumPins> pins;
    host.filter->EnumPins(pins.put());
    host.filter->RemoveOutputPin(host.filter->GetPinId(1));
    EXPECT_EQ(pins->Skip(1), VFW_E_ENUM_OUT_OF_SYNC);
}

TEST(RemoveOutputPin, GivesBackWhatTheHostSaysAfterwards) {
    AttachedHost host;
    host.context.pinHost.toldResult = E_ABORT;
    EXPECT_EQ(host.filter->RemoveOutputPin(host.filter->GetPinId(1)), E_ABORT);
    EXPECT_EQ(host.filter->GetOutputPinCount(), 16);
}

TEST(RemoveOutputPin, LeavesAConnectedPinAfterAskingTheHost) {
    AttachedHost host;
    host.connectInput();
    ASSERT_EQ(host.connectOutput(2), S_OK);
    const std::uint32_t id = host.filter->GetPinId(2);
    EXPECT_EQ(host.filter->RemoveOutputPin(id), E_UNEXPECTED);
    EXPECT_EQ(host.context.pinHost.calls, (Calls{{1, 16}}));
    EXPECT_NE(host.filter->FindOutputPin(id), nullptr);
    EXPECT_EQ(host.filter->GetOutputPinCount(), 17);
}

TEST(RemoveOutputPin, OfAnUnknownIdTakesOneFromTheCountAndNoPin) {
    FilterHost host;
    const std::uint32_t last = host.filter->GetPinId(16);
    EXPECT_EQ(host.filter->RemoveOutputPin(0xFFFFFFF0), S_OK);
    EXPECT_EQ(host.filter->GetOutputPinCount(), 16);
    EXPECT_EQ(host.filter->GetPinId(16), last);
}

TEST(RemoveAllOutputPins, EmptiesTheListAndThenThereIsNothingToRemove) {
    AttachedHost host;
    EXPECT_EQ(host.filter->RemoveAllOutputPins(), S_OK);
    EXPECT_EQ(host.filter->GetOutputPinCount(), 0);
    EXPECT_EQ(host.filter->GetPinCount(), 1);
    EXPECT_EQ(host.filter->GetPinId(0), 0xFFFFFFFFu);
    EXPECT_EQ(host.context.pinHost.calls, (Calls{{1, 0}, {2, 0}}));
    EXPECT_EQ(host.filter->RemoveOutputPin(1), E_FAIL);
}

TEST(RemoveAllOutputPins, TakesANoFromTheHost) {
    AttachedHost host;
    host.context.pinHost.askResult = E_ACCESSDENIED;
    EXPECT_EQ(host.filter->RemoveAllOutputPins(), E_ACCESSDENIED);
    EXPECT_EQ(host.filter->GetPinCount(), 18);
    EXPECT_NE(host.filter->GetPin(17), nullptr);
}

TEST(RemoveAllOutputPins, EndsAtAConnectedPinWithTheCountUnchanged) {
    FilterHost host;
    host.connectInput();
    ASSERT_EQ(host.connectOutput(5), S_OK);
    const std::uint32_t connected = host.filter->GetPinId(5);
    EXPECT_EQ(host.filter->RemoveAllOutputPins(), E_UNEXPECTED);
    EXPECT_EQ(host.filter->GetPinId(0), connected);
    EXPECT_EQ(host.filter->GetOutputPinCount(), 17);
}

}  // namespace
}  // namespace marnoth::test::output_pins_test
