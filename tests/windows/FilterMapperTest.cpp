/// What the system's list of filters is told, by way of lists of the test's own that stand in for it.

#include <string>
#include <vector>

#include "seam/ClassIds.h"
#include "support/TestObject.h"
#include "windows/Component.h"
#include "windows/RegistryView.h"

namespace marnoth::test::filter_mapper_test {
namespace {

constexpr HRESULT kMissing = static_cast<HRESULT>(0x80070002);
constexpr HRESULT kRefused = static_cast<HRESULT>(0x80070005);

using Calls = std::vector<std::wstring>;

std::wstring told(const REGFILTERPINS& pin) {
    std::wstring text = pin.strName;
    text += pin.bOutput ? L" out" : L" in";
    if (pin.bRendered || pin.bZero || pin.bMany) text += L" flagged";
    text += L" to " + std::wstring(pin.strConnectsToPin);
    if (*pin.clsConnectsToFilter == GUID_NULL) text += L" of any";
    for (UINT i = 0; i < pin.nMediaTypes; ++i)
        text += *pin.lpMediaType[i].clsMajorType == GUID_NULL && *pin.lpMediaType[i].clsMinorType == GUID_NULL
                    ? L", any type"
                    : L", a type";
    return text;
}

/// The present form of the list.
class Mapper2 : public TestObject<IFilterMapper2> {
public:
    Calls calls;
    HRESULT unregistered = S_OK, registered = S_OK;

    HRESULT CreateCategory(REFCLSID, DWORD, LPCWSTR) override { return E_NOTIMPL; }
    HRESULT UnregisterFilter(const CLSID* category, LPCOLESTR instance, REFCLSID filter) override {
        calls.push_back(!category && !instance && filter == CLSID_Marnoth ? L"unregister" : L"wrong");
        return unregistered;
    }
    HRESULT RegisterFilter(REFCLSID filter, LPCWSTR name, IMoniker** moniker, const CLSID* category,
                           LPCOLESTR instance, const REGFILTER2* form) override {
        calls.push_back(!moniker && !category && !instance && filter == CLSID_Marnoth ? L"register"
                                                                                      : L"wrong");
        calls.push_back(std::wstring(name) + L" " + std::to_wstring(form->dwVersion) + L" " +
                        std::to_wstring(form->dwMerit));
        for (ULONG i = 0; i < form->cPins; ++i) calls.push_back(told(form->rgPins[i]));
        return registered;
    }
    HRESULT EnumMatchingFilters(IEnumMoniker**, DWORD, BOOL, DWORD, BOOL, DWORD, const GUID*,
                                const REGPINMEDIUM*, const CLSID*, BOOL, BOOL, DWORD, const GUID*,
                                const REGPINMEDIUM*, const CLSID*) override {
        return E_NOTIMPL;
    }

protected:
    void* find(REFIID iid) override {
        return iid == IID_IUnknown || iid == IID_IFilterMapper2 ? this : nullptr;
    }
};

/// Its first form, which takes pins and types one by one.
class Mapper1 : public TestObject<IFilterMapper> {
public:
    Calls calls;
    HRESULT registered = S_OK, registeredPin = S_OK;

    HRESULT RegisterFilter(CLSID filter, LPCWSTR name, DWORD merit) override {
        calls.push_back(std::wstring(filter == CLSID_Marnoth ? L"register " : L"wrong ") + name + L" " +
                        std::to_wstring(merit));
        return registered;
    }
    HRESULT RegisterFilterInstance(CLSID, LPCWSTR, CLSID*) override { return E_NOTIMPL; }
    HRESULT RegisterPin(CLSID filter, LPCWSTR name, BOOL rendered, BOOL output, BOOL zero, BOOL many,
                        CLSID peerFilter, LPCWSTR peer) override {
        const REGFILTERPINS pin{const_cast<LPWSTR>(name), rendered, output, zero, many, &peerFilter,
                                const_cast<LPWSTR>(peer), 0,        nullptr};
        calls.push_back((filter == CLSID_Marnoth ? L"" : L"wrong ") + told(pin));
        return registeredPin;
    }
    HRESULT RegisterPinType(CLSID filter, LPCWSTR pin, CLSID major, CLSID minor) override {
        calls.push_back(std::wstring(pin) +
                        (major == GUID_NULL && minor == GUID_NULL ? L", any type" : L", a type"));
        return filter == CLSID_Marnoth ? S_OK : E_FAIL;
    }
    HRESULT UnregisterFilter(CLSID filter) override {
        calls.push_back(filter == CLSID_Marnoth ? L"unregister" : L"wrong");
        return kMissing;
    }
    HRESULT UnregisterFilterInstance(CLSID) override { return E_NOTIMPL; }
    HRESULT UnregisterPin(CLSID, LPCWSTR) override { return E_NOTIMPL; }
    HRESULT EnumMatchingFilters(IEnumRegFilters**, DWORD, BOOL, CLSID, CLSID, BOOL, BOOL, CLSID,
                                CLSID) override {
        return E_NOTIMPL;
    }

protected:
    void* find(REFIID iid) override {
        return iid == IID_IUnknown || iid == IID_IFilterMapper ? this : nullptr;
    }
};

/// Gives `mapper` to whoever has the system make one of class `id`, for a scope; a failure without it.
class StandIn : public TestObject<IClassFactory> {
public:
    StandIn(REFCLSID id, IUnknown* mapper) : mapper_(mapper) {
        EXPECT_EQ(CoRegisterClassObject(id, this, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &cookie_), S_OK);
    }
    ~StandIn() { CoRevokeClassObject(cookie_); }
    StandIn(const StandIn&) = delete;
    StandIn& operator=(const StandIn&) = delete;

    HRESULT CreateInstance(IUnknown*, REFIID iid, void** out) override {
        *out = nullptr;
        return mapper_ ? mapper_->QueryInterface(iid, out) : kRefused;
    }
    HRESULT LockServer(BOOL) override { return S_OK; }

protected:
    void* find(REFIID iid) override {
        return iid == IID_IUnknown || iid == IID_IClassFactory ? this : nullptr;
    }

private:
    IUnknown* const mapper_;
    DWORD cookie_ = 0;
};

class FilterMappers : public testing::Test {
protected:
    FilterMappers() {
        CoInitialize(nullptr);
        EXPECT_EQ(component.unregisterServer(), S_OK);
    }
    ~FilterMappers() override {
        EXPECT_EQ(component.unregisterServer(), S_OK);
        CoUninitialize();
    }

    static bool isClassThere() { return isThere(L"CLSID\\" + idText(CLSID_Marnoth)); }
    static bool isSynthThere() { return isThere(L"KvxSoftSynths\\" + idText(CLSID_Marnoth)); }

    Component component;
    Mapper2 second;
    Mapper1 first;
};

TEST_F(FilterMappers, AreToldTheFilterAnewWithItsMeritAndPins) {
    const StandIn system(CLSID_FilterMapper2, &second);
    EXPECT_EQ(component.registerServer(), S_OK);
    EXPECT_EQ(second.calls,
              (Calls{L"unregister", L"register", L"Marnoth 1 2097152", L"Input in to Output of any, any type",
                     L"Output out to Input of any, any type"}));
    EXPECT_EQ(second.references, 0u);
    second.calls.clear();
    EXPECT_EQ(component.unregisterServer(), S_OK);
    EXPECT_EQ(second.calls, Calls{L"unregister"});
}

TEST_F(FilterMappers, OfTheFirstFormTakeOver) {
    const StandIn present(CLSID_FilterMapper2, nullptr);
    const StandIn former(CLSID_FilterMapper, &first);
    EXPECT_EQ(component.registerServer(), S_OK);
    EXPECT_EQ(first.calls, (Calls{L"unregister", L"register Marnoth 2097152", L"Input in to Output of any",
                                  L"Input, any type", L"Output out to Input of any", L"Output, any type"}));
    EXPECT_EQ(first.references, 0u);
    EXPECT_TRUE(isSynthThere());
    EXPECT_EQ(component.unregisterServer(), S_OK) << "a filter that isn't there is no failure";
    EXPECT_FALSE(isClassThere());
}

TEST_F(FilterMappers, OfTheFirstFormGiveTheirFailures) {
    const StandIn present(CLSID_FilterMapper2, nullptr);
    const StandIn former(CLSID_FilterMapper, &first);
    first.registeredPin = kRefused;
    EXPECT_EQ(component.registerServer(), kRefused);
    EXPECT_EQ(first.calls.back(), L"Input in to Output of any") << "nothing is told behind a failure";
    EXPECT_FALSE(isSynthThere());
}

TEST_F(FilterMappers, ThatAreMissingAreAFailureThatLeavesTheClass) {
    const StandIn present(CLSID_FilterMapper2, nullptr);
    const StandIn former(CLSID_FilterMapper, nullptr);
    EXPECT_EQ(component.registerServer(), kRefused);
    EXPECT_TRUE(isClassThere());
    EXPECT_FALSE(isSynthThere());
    EXPECT_EQ(component.unregisterServer(), kRefused);
    EXPECT_TRUE(isClassThere());
}

TEST_F(FilterMappers, MayFindNoFile) {
    const StandIn system(CLSID_FilterMapper2, &second);
    second.unregistered = second.registered = kMissing;
    EXPECT_EQ(component.registerServer(), S_OK);
    EXPECT_TRUE(isSynthThere());
    EXPECT_EQ(component.unregisterServer(), S_OK);
    EXPECT_FALSE(isSynthThere());
}

TEST_F(FilterMappers, ThatRefuseToForgetAreToldNothingMore) {
    const StandIn system(CLSID_FilterMapper2, &second);
    second.unregistered = kRefused;
    EXPECT_EQ(component.registerServer(), kRefused);
    EXPECT_EQ(second.calls, Calls{L"unregister"});
    EXPECT_TRUE(isClassThere()) << "what was written stays";
    EXPECT_EQ(component.unregisterServer(), kRefused);
    EXPECT_TRUE(isClassThere());
}

TEST_F(FilterMappers, ThatRefuseTheFilterEndTheRegistration) {
    const StandIn system(CLSID_FilterMapper2, &second);
    second.registered = kRefused;
    EXPECT_EQ(component.registerServer(), kRefused);
    EXPECT_TRUE(isClassThere());
    EXPECT_FALSE(isSynthThere());
}

}  // namespace
}  // namespace marnoth::test::filter_mapper_test
