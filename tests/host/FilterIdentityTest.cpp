#include "host/CreateInstance.h"
#include "host/FilterHost.h"
#include "platform/com/ModuleLock.h"
#include "seam/ClassIds.h"

namespace marnoth::test::filter_identity_test {
namespace {

RefPtr<IUnknown> query(IUnknown& object, REFIID iid) {
    RefPtr<IUnknown> found;
    object.QueryInterface(iid, found.putVoid());
    return found;
}

TEST(Instrument, AnswersEveryInterfaceAsOneObject) {
    RefPtr<IUnknown> instrument;
    ASSERT_EQ(createInstrument(nullptr, IID_IUnknown, instrument.putVoid()), S_OK);
    for (const IID& iid :
         {IID_IGrooveSampler, IID_IDispatch, IID_IMarnothFaults, IID_IMarnothOptions, IID_IKvxSoftSynth,
          IID_IKvxSoftSynth2, IID_IKvxNotify, IID_IKvxInputPort, IID_ISpecifyPropertyPages,
          IID_IPersistStream, IID_IBaseFilter, IID_IMediaFilter, IID_IPersist, IID_IAMovieSetup}) {
        const auto found = query(*instrument, iid);
        ASSERT_TRUE(found);
        EXPECT_TRUE(query(*found, IID_IUnknown) == instrument);
        EXPECT_TRUE(query(*found, IID_IKvxNotify) == query(*instrument, IID_IKvxNotify));
    }
}

TEST(Instrument, HasOneTableForBothSynthsAndOneForBothSamplers) {
    FilterHost host;
    EXPECT_TRUE(query(*host.owner, IID_IKvxSoftSynth) == query(*host.owner, IID_IKvxSoftSynth2));
    EXPECT_TRUE(query(*host.owner, IID_IGrooveSampler) == query(*host.owner, IID_IDispatch));
}

TEST(Instrument, DoesntKnowOtherInterfaces) {
    FilterHost host;
    void* out = &host;
    EXPECT_EQ(host.owner->QueryInterface(IID_IMemInputPin, &out), E_NOINTERFACE);
    EXPECT_EQ(out, nullptr);
}

TEST(Instrument, CountsOneSetOfReferences) {
    FilterHost host;
    IUnknown& synth = static_cast<IKvxSoftSynth2&>(*host.filter);
    IUnknown& sampler = static_cast<IGrooveSampler&>(*host.filter);
    EXPECT_EQ(synth.AddRef(), 2u);
    EXPECT_EQ(sampler.AddRef(), 3u);
    EXPECT_EQ(host.input().AddRef(), 4u);
    EXPECT_EQ(host.input().Release(), 3u);
    EXPECT_EQ(host.owner->Release(), 2u);
    EXPECT_EQ(synth.Release(), 1u);
}

TEST(Instrument, KeepsTheModuleLoadedWhileItLives) {
    const long before = ModuleLock::count();
    {
        FilterHost host;
        EXPECT_GT(ModuleLock::count(), before);
    }
    EXPECT_EQ(ModuleLock::count(), before);
}

TEST(Instrument, SaysItsClassAndThatOfItsPage) {
    FilterHost host;
    CLSID id{};
    EXPECT_EQ(host.filter->GetClassID(&id), S_OK);
    EXPECT_TRUE(id == CLSID_Marnoth);
    EXPECT_EQ(host.filter->GetClassID(nullptr), E_POINTER);

    CAUUID pages{};
    ASSERT_EQ(host.filter->GetPages(&pages), S_OK);
    ASSERT_EQ(pages.cElems, 1u);
    EXPECT_TRUE(pages.pElems[0] == CLSID_MarnothProperties);
    CoTaskMemFree(pages.pElems);
    EXPECT_EQ(host.filter->GetPages(nullptr), E_POINTER);
}

TEST(Instrument, HasNoVendorInfo) {
    FilterHost host;
    LPWSTR text = nullptr;
    EXPECT_EQ(host.filter->QueryVendorInfo(&text), E_NOTIMPL);
}

TEST(CreateInstrument, GivesTheInterfaceAskedFor) {
    RefPtr<IGrooveSampler> sampler;
    ASSERT_EQ(createInstrument(nullptr, IID_IGrooveSampler, sampler.putVoid()), S_OK);
    std::int32_t files = -1;
    EXPECT_EQ(sampler->GetBinFileCount(&files), S_OK);
    EXPECT_EQ(files, 0);
}

TEST(CreateInstrument, LeavesNothingBehindWhenTheInterfaceIsUnknown) {
    const long before = ModuleLock::count();
    void* out = &out;
    EXPECT_EQ(createInstrument(nullptr, IID_IMemInputPin, &out), E_NOINTERFACE);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(ModuleLock::count(), before);
    EXPECT_EQ(createInstrument(nullptr, IID_IUnknown, nullptr), E_POINTER);
}

TEST(CreateInstrument, AsAPartOfAnotherGivesOnlyItsOwnIdentity) {
    struct Outer : TestObject<IUnknown> {
        void* find(REFIID) override { return nullptr; }
    } outer;
    void* out = nullptr;
    EXPECT_EQ(createInstrument(&outer, IID_IBaseFilter, &out), E_NOINTERFACE);

    RefPtr<IUnknown> inner;
    ASSERT_EQ(createInstrument(&outer, IID_IUnknown, inner.putVoid()), S_OK);
    RefPtr<IBaseFilter> filter;
    ASSERT_EQ(inner->QueryInterface(IID_IBaseFilter, filter.putVoid()), S_OK);
    EXPECT_EQ(outer.references, 1u);
    // Its interfaces answer with the other's identity.
    void* found = nullptr;
    EXPECT_EQ(filter->QueryInterface(IID_IBaseFilter, &found), E_NOINTERFACE);
    filter.reset();
    EXPECT_EQ(outer.references, 0u);
}

}  // namespace
}  // namespace marnoth::test::filter_identity_test
