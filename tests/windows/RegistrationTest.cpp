#include <map>
#include <string>
#include <vector>

#include "seam/ClassIds.h"
#include "windows/Component.h"

namespace marnoth::test::registration_test {
namespace {

using Values = std::map<std::wstring, std::wstring>;

std::wstring idText(REFCLSID id) {
    wchar_t text[40]{};
    StringFromGUID2(id, text, 40);
    return text;
}

std::wstring classKey() {
    return L"CLSID\\" + idText(CLSID_Marnoth);
}

std::wstring synthKey() {
    return L"KvxSoftSynths\\" + idText(CLSID_Marnoth);
}

/// All values beneath a key of `HKEY_CLASSES_ROOT`, each by its path; empty without the key. What isn't a
/// string is told by its type.
void collect(HKEY key, const std::wstring& path, Values& values) {
    wchar_t name[300]{};
    BYTE bytes[4096]{};
    DWORD nameUnits = 300, type = 0, size = sizeof bytes;
    for (DWORD i = 0; RegEnumValueW(key, i, name, &nameUnits, nullptr, &type, bytes, &size) == ERROR_SUCCESS;
         ++i, nameUnits = 300, size = sizeof bytes) {
        values[path + L"|" + name] =
            type == REG_SZ ? reinterpret_cast<const wchar_t*>(bytes) : L"type " + std::to_wstring(type);
    }
    for (DWORD i = 0; RegEnumKeyW(key, i, name, 300) == ERROR_SUCCESS; ++i) {
        HKEY below = nullptr;
        ASSERT_EQ(RegOpenKeyExW(key, name, 0, KEY_READ, &below), ERROR_SUCCESS);
        collect(below, path + L"\\" + name, values);
        RegCloseKey(below);
    }
}

Values valuesBeneath(const std::wstring& path) {
    Values values;
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_CLASSES_ROOT, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) return values;
    collect(key, L"", values);
    RegCloseKey(key);
    return values;
}

bool isThere(const std::wstring& path) {
    HKEY key = nullptr;
    const bool found = RegOpenKeyExW(HKEY_CLASSES_ROOT, path.c_str(), 0, KEY_READ, &key) == ERROR_SUCCESS;
    if (found) RegCloseKey(key);
    return found;
}

/// COM for a test, and nothing of the component in the registry before and behind it.
class Registration : public testing::Test {
protected:
    Registration() {
        CoInitialize(nullptr);
        EXPECT_EQ(component.unregisterServer(), S_OK);
    }
    ~Registration() override {
        EXPECT_EQ(component.unregisterServer(), S_OK);
        CoUninitialize();
    }

    void expectRegistered(const Component& registered) const {
        EXPECT_EQ(valuesBeneath(classKey()), (Values{{L"|", L"Marnoth"},
                                                     {L"\\InprocServer32|", registered.path().wstring()},
                                                     {L"\\InprocServer32|ThreadingModel", L"Both"}}));
        EXPECT_EQ(valuesBeneath(synthKey()), (Values{{L"|Description", L"Marnoth"}}));
        EXPECT_TRUE(isFilterListed());
    }

    /// Whether the system's list of filters names the instrument.
    static bool isFilterListed() {
        RefPtr<IFilterMapper2> mapper;
        EXPECT_EQ(CoCreateInstance(CLSID_FilterMapper2, nullptr, CLSCTX_INPROC_SERVER, IID_IFilterMapper2,
                                   mapper.putVoid()),
                  S_OK);
        RefPtr<IEnumMoniker> filters;
        mapper->EnumMatchingFilters(filters.put(), 0, FALSE, 0, FALSE, 0, nullptr, nullptr, nullptr, FALSE,
                                    FALSE, 0, nullptr, nullptr, nullptr);
        bool listed = false;
        RefPtr<IMoniker> one;
        while (filters && filters->Next(1, one.put(), nullptr) == S_OK) {
            LPOLESTR name = nullptr;
            if (FAILED(one->GetDisplayName(nullptr, nullptr, &name))) continue;
            listed |= std::wstring(name).find(idText(CLSID_Marnoth)) != std::wstring::npos;
            CoTaskMemFree(name);
        }
        return listed;
    }

    Component component;
};

TEST_F(Registration, WritesTheClassTheFilterAndTheSoftSynth) {
    EXPECT_EQ(component.registerServer(), S_OK);
    expectRegistered(component);
}

TEST_F(Registration, TwiceIsAsOnce) {
    EXPECT_EQ(component.registerServer(), S_OK);
    EXPECT_EQ(component.registerServer(), S_OK);
    expectRegistered(component);
}

TEST_F(Registration, IsTakenBackWhole) {
    EXPECT_EQ(component.registerServer(), S_OK);
    EXPECT_EQ(component.unregisterServer(), S_OK);
    EXPECT_FALSE(isThere(classKey()));
    EXPECT_FALSE(isThere(synthKey()));
    EXPECT_FALSE(isFilterListed());
    EXPECT_EQ(component.unregisterServer(), S_OK) << "and there is nothing left to take";
}

TEST_F(Registration, TakesWhatOthersPutBeneathItsKeys) {
    EXPECT_EQ(component.registerServer(), S_OK);
    for (const std::wstring& key : {synthKey(), classKey()}) {
        for (const wchar_t* below : {L"\\one\\two", L"\\one\\three", L"\\four"}) {
            HKEY made = nullptr;
            ASSERT_EQ(RegCreateKeyW(HKEY_CLASSES_ROOT, (key + below).c_str(), &made), ERROR_SUCCESS);
            RegCloseKey(made);
        }
    }
    EXPECT_EQ(component.unregisterServer(), S_OK);
    EXPECT_FALSE(isThere(classKey()));
    EXPECT_FALSE(isThere(synthKey()));
}

TEST_F(Registration, NamesItsFileWhateverItIsCalled) {
    namespace fs = std::filesystem;
    const fs::path folder = fs::temp_directory_path() / L"M\u00e4r n\u014dth \u97f3\u4e50";
    fs::create_directories(folder);
    fs::copy_file(Component::builtFile(), folder / "Marnoth.dll", fs::copy_options::overwrite_existing);
    {
        const Component elsewhere(folder / "Marnoth.dll");
        EXPECT_EQ(elsewhere.path().parent_path().filename(), folder.filename());
        EXPECT_EQ(elsewhere.registerServer(), S_OK);
        expectRegistered(elsewhere);
    }
    fs::remove_all(folder);
}

TEST_F(Registration, GivesTheFailureOfTheRegistry) {
    // A key that has been taken away, in place of the classes.
    HKEY gone = nullptr;
    const wchar_t* const name = L"Software\\Marnoth tests of classes";
    ASSERT_EQ(RegCreateKeyW(HKEY_CURRENT_USER, name, &gone), ERROR_SUCCESS);
    ASSERT_EQ(RegDeleteKeyW(HKEY_CURRENT_USER, name), ERROR_SUCCESS);
    ASSERT_EQ(RegOverridePredefKey(HKEY_CLASSES_ROOT, gone), ERROR_SUCCESS);
    const HRESULT result = component.registerServer();
    RegOverridePredefKey(HKEY_CLASSES_ROOT, nullptr);
    RegCloseKey(gone);
    EXPECT_EQ(result, static_cast<HRESULT>(0x800703FA));
    EXPECT_FALSE(isThere(synthKey()));
}

TEST_F(Registration, LetsHostsFindTheInstrumentByItsClass) {
    EXPECT_EQ(component.registerServer(), S_OK);
    RefPtr<IBaseFilter> filter;
    ASSERT_EQ(
        CoCreateInstance(CLSID_Marnoth, nullptr, CLSCTX_INPROC_SERVER, IID_IBaseFilter, filter.putVoid()),
        S_OK);
    RefPtr<IPin> pin;
    EXPECT_EQ(filter->FindPin(L"Chan 16", pin.put()), S_OK);
}

}  // namespace
}  // namespace marnoth::test::registration_test
