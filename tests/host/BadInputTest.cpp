/// Null for every pointer of every operation that the instrument gives out, types and numbers that can't be:
/// each gets its code, and the instrument plays on.

#include <array>
#include <functional>

#include "host/FilterHost.h"
#include "seam/IMarnothFaults.h"
#include "support/EventLists.h"

namespace marnoth::test::bad_input_test {
namespace {

struct BadInput : testing::Test, FilterHost {
    template <class Interface>
    RefPtr<Interface> query(IUnknown& object, REFIID iid) {
        RefPtr<Interface> found;
        EXPECT_EQ(object.QueryInterface(iid, found.putVoid()), S_OK);
        return found;
    }
    IPin& inputPin() { return input(); }
    IPin& outputPin() { return output(3); }

    /// What is asked for nothing, or for what there isn't, by way of each of the object's faces.
    void expectRefusesQueries(IUnknown& object) {
        constexpr IID kForeign{0x0F1E2D3C, 0x1111, 0x2222, {1, 2, 3, 4, 5, 6, 7, 8}};
        EXPECT_EQ(object.QueryInterface(IID_IUnknown, nullptr), E_POINTER);
        EXPECT_EQ(object.QueryInterface(kForeign, nullptr), E_POINTER);
        void* out = &out;
        EXPECT_EQ(object.QueryInterface(kForeign, &out), E_NOINTERFACE);
        EXPECT_EQ(out, nullptr);
    }
    RefPtr<IMemAllocator> allocator() {
        RefPtr<IMemAllocator> made;
        EXPECT_EQ(input().GetAllocator(made.put()), S_OK);
        return made;
    }
    RefPtr<IMediaSample> sample() {
        const auto from = allocator();
        ALLOCATOR_PROPERTIES request{1, 64, 1, 0};
        ALLOCATOR_PROPERTIES actual{};
        EXPECT_EQ(from->SetProperties(&request, &actual), S_OK);
        EXPECT_EQ(from->Commit(), S_OK);
        RefPtr<IMediaSample> made;
        EXPECT_EQ(from->GetBuffer(made.put(), nullptr, nullptr, 0), S_OK);
        return made;
    }
};

TEST_F(BadInput, IsRefusedByQueriesOfEveryObject) {
    expectRefusesQueries(*owner);
    expectRefusesQueries(inputPin());
    expectRefusesQueries(outputPin());
    expectRefusesQueries(*allocator());
    expectRefusesQueries(*sample());
    RefPtr<IEnumPins> pins;
    EXPECT_EQ(filter->EnumPins(pins.put()), S_OK);
    expectRefusesQueries(*pins);
    RefPtr<IEnumMediaTypes> types;
    EXPECT_EQ(inputPin().EnumMediaTypes(types.put()), S_OK);
    expectRefusesQueries(*types);
    RefPtr<IKvxNameList> list;
    EXPECT_EQ(filter->GetControllerList(list.put()), S_OK);
    expectRefusesQueries(*list);
}

TEST_F(BadInput, IsRefusedByTheFilter) {
    EXPECT_EQ(filter->GetState(0, nullptr), E_POINTER);
    EXPECT_EQ(filter->GetSyncSource(nullptr), E_POINTER);
    EXPECT_EQ(filter->SetSyncSource(nullptr), S_OK);
    EXPECT_EQ(filter->EnumPins(nullptr), E_POINTER);
    RefPtr<IPin> pin;
    EXPECT_EQ(filter->FindPin(nullptr, pin.put()), E_POINTER);
    EXPECT_EQ(filter->FindPin(L"Input", nullptr), E_POINTER);
    EXPECT_EQ(filter->FindPin(L"input", pin.put()), VFW_E_NOT_FOUND);
    EXPECT_EQ(filter->QueryFilterInfo(nullptr), E_POINTER);
    EXPECT_EQ(filter->JoinFilterGraph(nullptr, nullptr), S_OK);
    EXPECT_EQ(filter->QueryVendorInfo(nullptr), E_NOTIMPL);
    EXPECT_EQ(filter->GetClassID(nullptr), E_POINTER);
    EXPECT_EQ(filter->GetPages(nullptr), E_POINTER);
    EXPECT_EQ(filter->Load(nullptr), E_POINTER);
    EXPECT_EQ(filter->Save(nullptr, TRUE), E_POINTER);
    EXPECT_EQ(filter->GetSizeMax(nullptr), E_POINTER);
}

TEST_F(BadInput, IsRefusedByBothKindsOfPins) {
    const CMediaType type = audioType(44100, 2);
    for (IPin* pin : {&inputPin(), &outputPin()}) {
        EXPECT_EQ(pin->Connect(nullptr, type.Get()), E_POINTER);
        EXPECT_EQ(pin->ReceiveConnection(nullptr, type.Get()), E_POINTER);
        EXPECT_EQ(pin->ReceiveConnection(&source, nullptr), E_POINTER);
        EXPECT_EQ(pin->ConnectedTo(nullptr), E_POINTER);
        EXPECT_EQ(pin->ConnectionMediaType(nullptr), E_POINTER);
        EXPECT_EQ(pin->QueryPinInfo(nullptr), E_POINTER);
        EXPECT_EQ(pin->QueryDirection(nullptr), E_POINTER);
        EXPECT_EQ(pin->QueryId(nullptr), E_POINTER);
        EXPECT_EQ(pin->QueryAccept(nullptr), E_POINTER);
        EXPECT_EQ(pin->EnumMediaTypes(nullptr), E_POINTER);
        EXPECT_EQ(pin->QueryInternalConnections(nullptr, nullptr), E_NOTIMPL);
    }
}

TEST_F(BadInput, OfTypesWithoutTheBlockThatTheyTellOfIsRefused) {
    ASSERT_EQ(connectInput(), S_OK);
    AM_MEDIA_TYPE hollow = *audioType(44100, 2).Get();
    hollow.pbFormat = nullptr;
    for (IPin* pin : {&inputPin(), &outputPin()}) EXPECT_EQ(pin->QueryAccept(&hollow), S_FALSE);
    EXPECT_EQ(outputPin().Connect(&sinks[3], &hollow), VFW_E_TYPE_NOT_ACCEPTED);
    EXPECT_EQ(inputPin().Disconnect(), S_OK);
    EXPECT_EQ(inputPin().ReceiveConnection(&source, &hollow), VFW_E_TYPE_NOT_ACCEPTED);
    EXPECT_EQ(connectInput(), S_OK);
}

TEST_F(BadInput, IsRefusedByTheInputsTransport) {
    const auto transport = query<IMemInputPin>(inputPin(), IID_IMemInputPin);
    EXPECT_EQ(transport->GetAllocator(nullptr), E_POINTER);
    EXPECT_EQ(transport->NotifyAllocator(nullptr, FALSE), E_POINTER);
    EXPECT_EQ(transport->GetAllocatorRequirements(nullptr), E_NOTIMPL);
    EXPECT_EQ(transport->Receive(nullptr), E_POINTER);
    LONG processed = 7;
    IMediaSample* none = nullptr;
    EXPECT_EQ(transport->ReceiveMultiple(nullptr, 1, &processed), E_POINTER);
    EXPECT_EQ(transport->ReceiveMultiple(&none, 1, nullptr), E_POINTER);
    EXPECT_EQ(transport->ReceiveMultiple(&none, 1, &processed), E_POINTER);
    EXPECT_EQ(processed, 0);
    EXPECT_EQ(transport->ReceiveMultiple(&none, -1, &processed), S_OK);
    EXPECT_EQ(processed, 0);
}

TEST_F(BadInput, IsRefusedByEnumerators) {
    RefPtr<IEnumPins> pins;
    ASSERT_EQ(filter->EnumPins(pins.put()), S_OK);
    EXPECT_EQ(pins->Next(1, nullptr, nullptr), E_POINTER);
    std::array<IPin*, 2> two{};
    EXPECT_EQ(pins->Next(2, two.data(), nullptr), E_INVALIDARG);
    EXPECT_EQ(pins->Clone(nullptr), E_POINTER);
    EXPECT_EQ(pins->Skip(0xFFFFFFFF), S_FALSE);
    RefPtr<IEnumMediaTypes> types;
    ASSERT_EQ(inputPin().EnumMediaTypes(types.put()), S_OK);
    EXPECT_EQ(types->Next(1, nullptr, nullptr), E_POINTER);
    EXPECT_EQ(types->Clone(nullptr), E_POINTER);
    EXPECT_EQ(types->Skip(0xFFFFFFFF), S_FALSE);
}

TEST_F(BadInput, IsRefusedByAllocatorsAndSamples) {
    const auto from = allocator();
    ALLOCATOR_PROPERTIES properties{1, 64, 1, 0};
    EXPECT_EQ(from->SetProperties(nullptr, &properties), E_POINTER);
    EXPECT_EQ(from->SetProperties(&properties, nullptr), E_POINTER);
    EXPECT_EQ(from->GetProperties(nullptr), E_POINTER);
    EXPECT_EQ(from->GetBuffer(nullptr, nullptr, nullptr, 0), E_POINTER);
    EXPECT_EQ(from->ReleaseBuffer(nullptr), E_POINTER);
    const auto one = sample();
    LONGLONG time = 0;
    EXPECT_EQ(one->GetPointer(nullptr), E_POINTER);
    EXPECT_EQ(one->GetTime(nullptr, &time), E_POINTER);
    EXPECT_EQ(one->GetTime(&time, nullptr), E_POINTER);
    EXPECT_EQ(one->SetTime(nullptr, &time), E_INVALIDARG);
    EXPECT_EQ(one->GetMediaType(nullptr), E_POINTER);
    EXPECT_EQ(one->GetMediaTime(nullptr, &time), E_POINTER);
    EXPECT_EQ(one->GetMediaTime(&time, nullptr), E_POINTER);
    EXPECT_EQ(one->SetMediaTime(nullptr, &time), E_INVALIDARG);
    EXPECT_EQ(one->SetMediaTime(&time, nullptr), E_INVALIDARG);
    EXPECT_EQ(one->SetActualDataLength(-1), E_INVALIDARG);
    EXPECT_EQ(one->SetActualDataLength(65), VFW_E_BUFFER_OVERFLOW);
}

/// Without a source nobody is there to be asked, whatever is asked for.
TEST_F(BadInput, IsRefusedByTheWayUpstream) {
    const Apartment apartment;
    const auto seeking = query<IMediaSeeking>(outputPin(), IID_IMediaSeeking);
    EXPECT_TRUE(FAILED(seeking->GetCapabilities(nullptr)));
    EXPECT_TRUE(FAILED(seeking->CheckCapabilities(nullptr)));
    EXPECT_TRUE(FAILED(seeking->IsFormatSupported(nullptr)));
    EXPECT_TRUE(FAILED(seeking->QueryPreferredFormat(nullptr)));
    EXPECT_TRUE(FAILED(seeking->GetTimeFormat(nullptr)));
    EXPECT_TRUE(FAILED(seeking->IsUsingTimeFormat(nullptr)));
    EXPECT_TRUE(FAILED(seeking->SetTimeFormat(nullptr)));
    EXPECT_TRUE(FAILED(seeking->GetDuration(nullptr)));
    EXPECT_TRUE(FAILED(seeking->GetStopPosition(nullptr)));
    EXPECT_TRUE(FAILED(seeking->GetCurrentPosition(nullptr)));
    EXPECT_TRUE(FAILED(seeking->ConvertTimeFormat(nullptr, nullptr, 0, nullptr)));
    EXPECT_TRUE(FAILED(seeking->GetPositions(nullptr, nullptr)));
    EXPECT_TRUE(FAILED(seeking->GetAvailable(nullptr, nullptr)));
    EXPECT_TRUE(FAILED(seeking->GetRate(nullptr)));
    EXPECT_TRUE(FAILED(seeking->GetPreroll(nullptr)));
    const auto position = query<IMediaPosition>(outputPin(), IID_IMediaPosition);
    EXPECT_TRUE(FAILED(position->get_Duration(nullptr)));
    EXPECT_TRUE(FAILED(position->get_CurrentPosition(nullptr)));
    EXPECT_TRUE(FAILED(position->get_StopTime(nullptr)));
    EXPECT_TRUE(FAILED(position->get_PrerollTime(nullptr)));
    EXPECT_TRUE(FAILED(position->get_Rate(nullptr)));
    EXPECT_TRUE(FAILED(position->CanSeekForward(nullptr)));
    EXPECT_TRUE(FAILED(position->CanSeekBackward(nullptr)));
}

TEST_F(BadInput, IsRefusedByTheSoftSynth) {
    EXPECT_EQ(filter->AttachHost(nullptr), E_POINTER);
    ASSERT_EQ(attach(), S_OK);
    EXPECT_EQ(filter->QueueEvents(0, 0, 0, nullptr), E_POINTER);
    EXPECT_EQ(filter->QueueRawInput(0, nullptr), E_POINTER);
    EXPECT_EQ(filter->Notify(nullptr), E_POINTER);
    EXPECT_EQ(filter->SetEventTarget(nullptr), S_OK);
    EXPECT_EQ(filter->GetEventTarget(nullptr), E_POINTER);
    EXPECT_EQ(filter->GetInstrument(0, nullptr), E_POINTER);
    std::int32_t* banks = nullptr;
    std::uint32_t count = 0;
    EXPECT_EQ(filter->GetBankList(nullptr, &count), E_POINTER);
    EXPECT_EQ(filter->GetBankList(&banks, nullptr), E_POINTER);
    EXPECT_EQ(filter->GetPatchList(0, nullptr), E_POINTER);
    EXPECT_EQ(filter->GetNoteList(0, 0, nullptr), E_POINTER);
    EXPECT_EQ(filter->GetControllerList(nullptr), E_POINTER);
    EXPECT_EQ(filter->GetRpnList(nullptr), E_POINTER);
    EXPECT_EQ(filter->GetNrpnList(nullptr), E_POINTER);
    EXPECT_EQ(filter->GetPatchList(16384, nullptr), E_INVALIDARG);
}

/// Lists whose counts and entries fail, or tell what can't be.
TEST_F(BadInput, OfEventListsEndsTheCallWithItsCode) {
    struct List final : TestObject<IKvxEventList> {
        HRESULT counted = S_OK, given = S_OK;
        std::int32_t count = 1;
        HRESULT reserved3() override { return E_NOTIMPL; }
        HRESULT GetCount(std::int32_t* out) override { return *out = count, counted; }
        HRESULT GetAt(std::int32_t, SynthEvent*) override { return given; }
        void* find(REFIID) override { return nullptr; }
    } list;
    ASSERT_EQ(attach(), S_OK);
    list.given = E_ABORT;
    EXPECT_EQ(filter->QueueEvents(0, 0, 0, &list), E_ABORT);
    list.counted = E_ACCESSDENIED;
    EXPECT_EQ(filter->QueueEvents(0, 0, 0, &list), E_ACCESSDENIED);
    list = {};
    list.count = -1;
    EXPECT_EQ(filter->QueueEvents(0, 0, 0, &list), S_OK);
}

TEST_F(BadInput, IsRefusedByTheControlSurface) {
    IGrooveSampler& sampler = *filter;
    std::int32_t number = 0;
    std::uint32_t status = 0;
    GrainListEntry* list = nullptr;
    EXPECT_EQ(sampler.SaveProject(0, nullptr), E_POINTER);
    EXPECT_EQ(sampler.LoadProject(nullptr), E_POINTER);
    EXPECT_EQ(sampler.GetGrainSource(0, 0, nullptr, &number), E_POINTER);
    EXPECT_EQ(sampler.GetGrainSource(0, 0, &number, nullptr), E_POINTER);
    EXPECT_EQ(sampler.LoadFileToBin(nullptr, "x", &number, &status), E_POINTER);
    EXPECT_EQ(sampler.LoadFileToBin("x", nullptr, &number, &status), E_POINTER);
    EXPECT_EQ(sampler.LoadFileToBin("x", "x", nullptr, &status), E_POINTER);
    EXPECT_EQ(sampler.LoadFileToBin("x", "x", &number, nullptr), E_POINTER);
    EXPECT_EQ(sampler.LoadFileToPad(0, nullptr, "x", &number, &status), E_POINTER);
    EXPECT_EQ(sampler.LoadFileToPad(0, "x", nullptr, &number, &status), E_POINTER);
    EXPECT_EQ(sampler.LoadFileToPad(0, "x", "x", nullptr, &status), E_POINTER);
    EXPECT_EQ(sampler.LoadFileToPad(0, "x", "x", &number, nullptr), E_POINTER);
    EXPECT_EQ(sampler.MoveGrain(0, 0, 1, 0, nullptr, 0), E_POINTER);
    EXPECT_EQ(sampler.CopyGrain(0, 0, 1, 0, nullptr), E_POINTER);
    EXPECT_EQ(sampler.GetBinFileCount(nullptr), E_POINTER);
    EXPECT_EQ(sampler.GetBinFileName(0, 0, nullptr), S_OK);
    EXPECT_EQ(sampler.GetPadGrainList(0, nullptr, &number), E_POINTER);
    EXPECT_EQ(sampler.GetPadGrainList(0, &list, nullptr), E_POINTER);
    EXPECT_EQ(sampler.GetBinGrainList(0, nullptr, &number), E_POINTER);
    EXPECT_EQ(sampler.GetBinGrainList(0, &list, nullptr), E_POINTER);
    EXPECT_EQ(sampler.GetKeyMapEntry(nullptr), E_POINTER);
    EXPECT_EQ(sampler.SetKeyMapEntry(nullptr), E_POINTER);
    EXPECT_EQ(sampler.GetAuditionEnabled(nullptr), E_POINTER);
    EXPECT_EQ(sampler.GetRefreshRequest(nullptr), E_POINTER);
}

TEST_F(BadInput, IsRefusedByEveryQuestionAboutAPadAGrainOrALoop) {
    using S = IGrooveSampler;
    for (auto get : {&S::GetPadLooping, &S::GetPadSynced, &S::GetPadPlayMode, &S::GetPadMute,
                     &S::GetPadPlaying, &S::GetBinPlaying, &S::GetPadTail, &S::GetPadFollowKey,
                     &S::GetPadOutput, &S::GetPadSolo, &S::GetPadOneShot})
        EXPECT_EQ((filter->*get)(0, nullptr), E_POINTER);
    for (auto get : {&S::GetPadVolume, &S::GetPadPan}) EXPECT_EQ((filter->*get)(0, nullptr), E_POINTER);
    for (auto get : {&S::GetPadRootNote, &S::GetPadChannel}) EXPECT_EQ((filter->*get)(0, nullptr), E_POINTER);
    for (auto get : {&S::GetGrainVolume, &S::GetGrainPan})
        EXPECT_EQ((filter->*get)(0, 0, nullptr), E_POINTER);
    EXPECT_EQ(filter->GetGrainTranspose(0, 0, nullptr), E_POINTER);
    EXPECT_EQ(filter->GetLoopLength(kPadLoop, 0, nullptr), E_POINTER);
    EXPECT_EQ(filter->GetGrainCount(kBinLoop, 0, nullptr), E_POINTER);
    EXPECT_EQ(filter->GetPadEndTime(0, nullptr), E_POINTER);
}

TEST_F(BadInput, IsRefusedByOptionsAndFaults) {
    const auto options = query<IMarnothOptions>(*owner, IID_IMarnothOptions);
    EXPECT_EQ(options->GetSteady(nullptr), E_POINTER);
    EXPECT_EQ(options->GetLenientFiles(nullptr), E_POINTER);
    EXPECT_EQ(options->GetChanges(nullptr), E_POINTER);
    EXPECT_EQ(options->GetSparse(nullptr), E_POINTER);
    const auto faults = query<IMarnothFaults>(*owner, IID_IMarnothFaults);
    EXPECT_EQ(faults->GetLoadFault(nullptr), E_POINTER);
    EXPECT_EQ(faults->GetLoadDamage(nullptr), E_POINTER);
}

TEST_F(BadInput, IsRefusedByDispatchByName) {
    IDispatch& byName = static_cast<IGrooveSampler&>(*filter);
    EXPECT_EQ(byName.GetTypeInfoCount(nullptr), E_POINTER);
    EXPECT_EQ(byName.GetTypeInfo(0, 0, nullptr), E_POINTER);
    EXPECT_TRUE(FAILED(byName.GetIDsOfNames(IID_NULL, nullptr, 1, 0, nullptr)));
    EXPECT_TRUE(FAILED(byName.Invoke(1, IID_NULL, 0, 1, nullptr, nullptr, nullptr, nullptr)));
}

}  // namespace
}  // namespace marnoth::test::bad_input_test
