#include "platform/com/Unknown.h"
#include "seam/ClassIds.h"
#include "seam/IGrooveSampler.h"
#include "seam/KvxInterfaces.h"
#include "windows/Component.h"

namespace marnoth::test::server_test {
namespace {

constexpr CLSID kForeign{0x0F1E2D3C, 0x1111, 0x2222, {1, 2, 3, 4, 5, 6, 7, 8}};

TEST(Server, GivesFactoriesOfItsClassesAlone) {
    const Component component;
    void* out = &out;
    EXPECT_EQ(component.getClassObject(kForeign, IID_IClassFactory, &out), CLASS_E_CLASSNOTAVAILABLE);
    EXPECT_EQ(out, nullptr);
    RefPtr<IUnknown> factory;
    EXPECT_EQ(component.getClassObject(CLSID_Marnoth, IID_IUnknown, factory.putVoid()), S_OK);
    EXPECT_EQ(component.getClassObject(CLSID_Marnoth, IID_IClassFactory, nullptr), E_POINTER);
}

TEST(Server, GivesNothingButFactoriesWhateverTheClass) {
    const Component component;
    for (const CLSID& id : {CLSID_Marnoth, kForeign}) {
        void* out = &out;
        EXPECT_EQ(component.getClassObject(id, IID_IBaseFilter, &out), E_NOINTERFACE);
        EXPECT_EQ(out, nullptr);
    }
}

TEST(Server, MakesInstruments) {
    const Component component;
    const auto sampler = component.make<IGrooveSampler>(CLSID_Marnoth, IID_IGrooveSampler);
    std::int32_t files = -1;
    EXPECT_EQ(sampler->GetBinFileCount(&files), S_OK);
    EXPECT_EQ(files, 0);
    RefPtr<IPersist> filter;
    ASSERT_EQ(sampler->QueryInterface(IID_IPersist, filter.putVoid()), S_OK);
    CLSID id{};
    EXPECT_EQ(filter->GetClassID(&id), S_OK);
    EXPECT_TRUE(id == CLSID_Marnoth);
}

/// An object of which an instrument is a part.
class Outer final : public CUnknown {
public:
    Outer() : CUnknown(nullptr) {}
    RefPtr<IUnknown> part;

private:
    IUnknown* FindInterface(REFIID) override { return nullptr; }
};

TEST(Server, MakesPartsOfOtherObjectsThatAskForTheirIdentity) {
    const Component component;
    const auto factory = component.factory(CLSID_Marnoth);
    auto* const outer = new Outer;
    const auto owner = RefPtr<IUnknown>::adopt(outer->Inner());
    void* out = &out;
    EXPECT_EQ(factory->CreateInstance(owner.get(), IID_IBaseFilter, &out), E_NOINTERFACE);
    EXPECT_EQ(out, nullptr);
    ASSERT_EQ(factory->CreateInstance(owner.get(), IID_IUnknown, outer->part.putVoid()), S_OK);
    RefPtr<IBaseFilter> filter;
    ASSERT_EQ(outer->part->QueryInterface(IID_IBaseFilter, filter.putVoid()), S_OK);
    RefPtr<IUnknown> identity;
    EXPECT_EQ(filter->QueryInterface(IID_IUnknown, identity.putVoid()), S_OK);
    EXPECT_EQ(identity.get(), owner.get());
    EXPECT_EQ(factory->CreateInstance(nullptr, IID_IUnknown, nullptr), E_POINTER);
    EXPECT_EQ(factory->CreateInstance(nullptr, kForeign, &out), E_NOINTERFACE);
}

void lock(const Component& component, BOOL on) {
    EXPECT_EQ(component.factory(CLSID_Marnoth)->LockServer(on), S_OK);
}

TEST(Server, StaysWhileItIsLockedThoughNothingIsHeld) {
    const Component component;
    lock(component, TRUE);
    lock(component, TRUE);
    lock(component, FALSE);
    EXPECT_EQ(component.canUnloadNow(), S_FALSE);
    lock(component, FALSE);
    EXPECT_EQ(component.canUnloadNow(), S_OK);
}

TEST(Server, UnlockedMoreOftenThanLockedMayGo) {
    const Component component;
    lock(component, FALSE);
    EXPECT_EQ(component.canUnloadNow(), S_OK);
    lock(component, TRUE);
    EXPECT_EQ(component.canUnloadNow(), S_OK);
}

TEST(Server, MayGoWhenNothingIsHeld) {
    const Component component;
    EXPECT_EQ(component.canUnloadNow(), S_OK);
    { const auto factory = component.factory(CLSID_Marnoth); }
    { const auto filter = component.make<IBaseFilter>(CLSID_Marnoth, IID_IBaseFilter); }
    EXPECT_EQ(component.canUnloadNow(), S_OK);
}

/// Whether one thing that a host keeps of an instrument that has gone keeps the module.
template <class Take>
void expectKept(Take take) {
    const Component component;
    {
        RefPtr<IUnknown> kept(take(component).get());
        EXPECT_EQ(component.canUnloadNow(), S_FALSE);
    }
    EXPECT_EQ(component.canUnloadNow(), S_OK);
}

RefPtr<IBaseFilter> filterOf(const Component& component) {
    return component.make<IBaseFilter>(CLSID_Marnoth, IID_IBaseFilter);
}

RefPtr<IPin> pinOf(const Component& component, LPCWSTR name) {
    RefPtr<IPin> pin;
    EXPECT_EQ(filterOf(component)->FindPin(name, pin.put()), S_OK);
    return pin;
}

TEST(Server, StaysForAFactory) {
    expectKept([](const Component& component) { return component.factory(CLSID_Marnoth); });
}

TEST(Server, StaysForAnInstrument) {
    expectKept([](const Component& component) { return filterOf(component); });
}

TEST(Server, StaysForAPin) {
    expectKept([](const Component& component) { return pinOf(component, L"Mix Output"); });
    expectKept([](const Component& component) { return pinOf(component, L"Input"); });
}

TEST(Server, StaysForAnEnumerator) {
    expectKept([](const Component& component) {
        RefPtr<IEnumPins> pins;
        EXPECT_EQ(filterOf(component)->EnumPins(pins.put()), S_OK);
        return pins;
    });
}

RefPtr<IMemAllocator> allocatorOf(const Component& component) {
    RefPtr<IMemInputPin> input;
    EXPECT_EQ(pinOf(component, L"Input")->QueryInterface(IID_IMemInputPin, input.putVoid()), S_OK);
    RefPtr<IMemAllocator> allocator;
    EXPECT_EQ(input->GetAllocator(allocator.put()), S_OK);
    return allocator;
}

RefPtr<IKvxInstrument> namesOf(const Component& component) {
    RefPtr<IKvxSoftSynth> synth;
    EXPECT_EQ(filterOf(component)->QueryInterface(IID_IKvxSoftSynth, synth.putVoid()), S_OK);
    RefPtr<IKvxInstrument> names;
    EXPECT_EQ(synth->GetInstrument(0, names.put()), S_OK);
    return names;
}

TEST(Server, StaysForAnEnumeratorOfTypes) {
    expectKept([](const Component& component) {
        RefPtr<IEnumMediaTypes> types;
        EXPECT_EQ(pinOf(component, L"Input")->EnumMediaTypes(types.put()), S_OK);
        return types;
    });
}

TEST(Server, StaysForAnAllocator) {
    expectKept([](const Component& component) { return allocatorOf(component); });
}

TEST(Server, StaysForASample) {
    expectKept([](const Component& component) {
        const auto allocator = allocatorOf(component);
        ALLOCATOR_PROPERTIES request{1, 64, 1, 0};
        ALLOCATOR_PROPERTIES actual{};
        EXPECT_EQ(allocator->SetProperties(&request, &actual), S_OK);
        EXPECT_EQ(allocator->Commit(), S_OK);
        RefPtr<IMediaSample> sample;
        EXPECT_EQ(allocator->GetBuffer(sample.put(), nullptr, nullptr, 0), S_OK);
        return sample;
    });
}

TEST(Server, StaysForTheWayUpstreamOfAPin) {
    CoInitialize(nullptr);
    expectKept([](const Component& component) {
        RefPtr<IMediaSeeking> seeking;
        EXPECT_EQ(pinOf(component, L"Chan 2")->QueryInterface(IID_IMediaSeeking, seeking.putVoid()), S_OK);
        return seeking;
    });
    CoUninitialize();
}

TEST(Server, StaysForTheInstrumentsNames) {
    expectKept([](const Component& component) { return namesOf(component); });
}

TEST(Server, StaysForAListOfNames) {
    expectKept([](const Component& component) {
        RefPtr<IKvxNameList> list;
        EXPECT_EQ(namesOf(component)->GetPatchList(0, list.put()), S_OK);
        return list;
    });
}

TEST(Server, GoesAndComesAgain) {
    for (int round = 0; round < 3; ++round) {
        std::filesystem::path file;
        {
            const Component component;
            file = component.path();
            EXPECT_TRUE(filterOf(component));
        }
        EXPECT_EQ(GetModuleHandleW(file.c_str()), nullptr);
    }
}

TEST(Server, HasTheNameThatMeansNothing) {
    EXPECT_EQ(Component().callMain(), 0);
}

}  // namespace
}  // namespace marnoth::test::server_test
