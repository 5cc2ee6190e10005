/// Scripts reach the instrument by name where a type library of its interface is registered.

#include "host/FilterHost.h"
#include "seam/ClassIds.h"
#include "support/TypeLibrary.h"

namespace marnoth::test::filter_dispatch_test {
namespace {

void expectNoLibrary(IDispatch& instrument) {
    UINT count = 5;
    EXPECT_EQ(instrument.GetTypeInfoCount(&count), S_OK);
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(instrument.GetTypeInfoCount(nullptr), E_POINTER);
    ITypeInfo* info = reinterpret_cast<ITypeInfo*>(&count);
    EXPECT_EQ(instrument.GetTypeInfo(0, 0, &info), E_NOTIMPL);
    EXPECT_EQ(info, nullptr);
    EXPECT_EQ(instrument.GetTypeInfo(1, 0, &info), E_INVALIDARG);
    EXPECT_EQ(instrument.GetTypeInfo(0, 0, nullptr), E_POINTER);
    DISPID id = 0;
    EXPECT_EQ(instrument.GetIDsOfNames(IID_NULL, nullptr, 0, 0, &id), E_NOTIMPL);
    EXPECT_EQ(instrument.Invoke(1, IID_NULL, 0, 1, nullptr, nullptr, nullptr, nullptr), E_NOTIMPL);
    EXPECT_EQ(instrument.Invoke(1, IID_IPin, 0, 1, nullptr, nullptr, nullptr, nullptr),
              DISP_E_UNKNOWNINTERFACE);
}

#ifdef _WIN32

HRESULT callByName(IDispatch& instrument, std::wstring name) {
    LPOLESTR names[] = {name.data()};
    DISPID id = 0;
    const HRESULT hr = instrument.GetIDsOfNames(IID_NULL, names, 1, 0, &id);
    if (FAILED(hr)) return hr;
    DISPPARAMS none{};
    return instrument.Invoke(id, IID_NULL, 0, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr);
}

/// One test for both: what has been found once is there for as long as the module.
TEST(Dispatch, IsServedFromTheTypeLibraryOnceThereIsOne) {
    FilterHost host;
    IDispatch& instrument = static_cast<IGrooveSampler&>(*host.filter);
    expectNoLibrary(instrument);
    {
        const TypeLibrary library(LIBID_Marnoth, IID_IGrooveSampler, {L"PushUndoState", L"Undo"});
        UINT count = 0;
        EXPECT_EQ(instrument.GetTypeInfoCount(&count), S_OK);
        EXPECT_EQ(count, 1u);
    }
    RefPtr<ITypeInfo> info, again;
    ASSERT_EQ(instrument.GetTypeInfo(0, 0, info.put()), S_OK) << "kept though the library has gone";
    TYPEATTR* attributes = nullptr;
    ASSERT_EQ(info->GetTypeAttr(&attributes), S_OK);
    EXPECT_TRUE(attributes->guid == IID_IGrooveSampler);
    info->ReleaseTypeAttr(attributes);
    EXPECT_EQ(instrument.GetTypeInfo(1, 0, again.put()), E_INVALIDARG);

    EXPECT_EQ(host.filter->Undo(), S_FALSE);
    EXPECT_EQ(callByName(instrument, L"PushUndoState"), S_OK);
    EXPECT_EQ(host.filter->Undo(), S_OK) << "the script has pushed a state";
    EXPECT_EQ(callByName(instrument, L"Explode"), DISP_E_UNKNOWNNAME);
    EXPECT_EQ(instrument.Invoke(1, IID_IPin, 0, DISPATCH_METHOD, nullptr, nullptr, nullptr, nullptr),
              DISP_E_UNKNOWNINTERFACE);

    FilterHost other;
    EXPECT_EQ(static_cast<IGrooveSampler*>(other.filter)->GetTypeInfo(0, 0, again.put()), S_OK);
    EXPECT_TRUE(again == info) << "one for all instruments of the module";
}

#else

TEST(Dispatch, AnswersAsWithoutATypeLibrary) {
    FilterHost host;
    expectNoLibrary(static_cast<IGrooveSampler&>(*host.filter));
}

#endif

}  // namespace
}  // namespace marnoth::test::filter_dispatch_test
