#include <algorithm>
#include <array>
#include <string>
#include <utility>

#include "seam/ClassIds.h"
#include "windows/Component.h"
#include "windows/RegistryView.h"

namespace marnoth::test::registration_test {
namespace {

namespace fs = std::filesystem;

const std::wstring kInstances = L"CLSID\\{083863F1-70DE-11D0-BD40-00A0C911CE86}\\Instance";
const std::wstring kSynths = L"KvxSoftSynths";

std::wstring classKey() {
    return L"CLSID\\" + idText(CLSID_Marnoth);
}
std::wstring pageKey() {
    return L"CLSID\\" + idText(CLSID_MarnothProperties);
}
std::wstring synthKey() {
    return kSynths + L"\\" + idText(CLSID_Marnoth);
}
std::wstring filterKey() {
    return kInstances + L"\\" + idText(CLSID_Marnoth);
}

/// All keys that there are where classes, filters and soft synths are entered.
std::set<std::wstring> keysOfAll() {
    std::set<std::wstring> keys;
    for (const std::wstring& place : {std::wstring(L"CLSID"), kInstances, kSynths, std::wstring()})
        keys.merge(keysBeneath(place));
    return keys;
}

/// COM for a test, and nothing of the component in the registry before and behind it.
class Registration : public testing::Test {
protected:
    Registration() {
        CoInitialize(nullptr);
        makeKey(kSynths);
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
        EXPECT_EQ(valuesBeneath(filterKey()), (Values{{L"|CLSID", idText(CLSID_Marnoth)},
                                                      {L"|FilterData", L"type 3"},
                                                      {L"|FriendlyName", L"Marnoth"}}));
        EXPECT_TRUE(isFilterListed());
        EXPECT_EQ(valuesBeneath(pageKey()), (Values{{L"|", L"Marnoth Properties"},
                                                    {L"\\InprocServer32|", registered.path().wstring()},
                                                    {L"\\InprocServer32|ThreadingModel", L"Both"}}));
        EXPECT_FALSE(isThere(L"KvxSoftSynths\\" + idText(CLSID_MarnothProperties)));
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

TEST_F(Registration, TellsTheMeritAndTheTwoPinsOfTheFilter) {
    EXPECT_EQ(component.registerServer(), S_OK);
    // Merit and number of pins stand behind the version of the form.
    std::array<DWORD, 3> data{};
    std::array<BYTE, 4096> bytes{};
    DWORD size = sizeof bytes;
    ASSERT_EQ(RegGetValueW(HKEY_CLASSES_ROOT, filterKey().c_str(), L"FilterData", RRF_RT_REG_BINARY, nullptr,
                           bytes.data(), &size),
              ERROR_SUCCESS);
    ASSERT_GE(size, sizeof data);
    std::copy_n(bytes.data(), sizeof data, reinterpret_cast<BYTE*>(data.data()));
    EXPECT_EQ(data[1], 0x200000u);
    EXPECT_EQ(data[2], 2u);
}

TEST_F(Registration, MakesFourKeysAndTakesTheFourAway) {
    const auto before = keysOfAll();
    EXPECT_EQ(component.registerServer(), S_OK);
    auto expected = before;
    expected.insert({classKey(), pageKey(), filterKey(), synthKey()});
    EXPECT_EQ(keysOfAll(), expected);
    EXPECT_EQ(component.unregisterServer(), S_OK);
    EXPECT_EQ(keysOfAll(), before);
}

TEST_F(Registration, TwiceIsAsOnce) {
    EXPECT_EQ(component.registerServer(), S_OK);
    EXPECT_EQ(component.registerServer(), S_OK);
    expectRegistered(component);
}

TEST_F(Registration, WritesOverWhatStoodThere) {
    makeKey(classKey() + L"\\InprocServer32");
    const wchar_t other[] = L"C:\\elsewhere\\Marnoth.dll";
    RegSetKeyValueW(HKEY_CLASSES_ROOT, (classKey() + L"\\InprocServer32").c_str(), nullptr, REG_SZ, other,
                    sizeof other);
    EXPECT_EQ(component.registerServer(), S_OK);
    expectRegistered(component);
}

TEST_F(Registration, IsTakenBackWhole) {
    EXPECT_EQ(component.registerServer(), S_OK);
    EXPECT_EQ(component.unregisterServer(), S_OK);
    EXPECT_FALSE(isThere(classKey()));
    EXPECT_FALSE(isThere(pageKey()));
    EXPECT_FALSE(isThere(synthKey()));
    EXPECT_FALSE(isFilterListed());
    EXPECT_EQ(component.unregisterServer(), S_OK) << "and there is nothing left to take";
}

TEST_F(Registration, TakesWhatOthersPutBeneathItsKeys) {
    const std::wstring longest(255, L'k');
    EXPECT_EQ(component.registerServer(), S_OK);
    for (const std::wstring& key : {synthKey(), classKey()})
        for (const std::wstring& below : {std::wstring(L"one\\two"), std::wstring(L"one\\three"), longest})
            makeKey(key + L"\\" + below);
    EXPECT_EQ(component.unregisterServer(), S_OK);
    EXPECT_FALSE(isThere(classKey()));
    EXPECT_FALSE(isThere(synthKey()));
}

TEST_F(Registration, EntersNoPageAmongTheSoftSynths) {
    EXPECT_EQ(component.registerServer(), S_OK);
    EXPECT_FALSE(isThere(kSynths + L"\\" + idText(CLSID_MarnothProperties)));
}

TEST_F(Registration, TakesAPageFromAmongTheSoftSynthsWhoeverEnteredIt) {
    const std::wstring ofPage = kSynths + L"\\" + idText(CLSID_MarnothProperties);
    makeKey(ofPage + L"\\below");
    EXPECT_EQ(component.unregisterServer(), S_OK);
    EXPECT_FALSE(isThere(ofPage));
}

TEST_F(Registration, LeavesTheKeysOfOtherSoftSynths) {
    const std::wstring other = kSynths + L"\\{0F1E2D3C-1111-2222-0102-030405060708}";
    makeKey(other);
    EXPECT_EQ(component.registerServer(), S_OK);
    EXPECT_EQ(component.unregisterServer(), S_OK);
    EXPECT_TRUE(isThere(other));
    RegDeleteKeyW(HKEY_CLASSES_ROOT, other.c_str());
}

/// The component's file once more in a folder that goes with it.
class Copy {
public:
    explicit Copy(fs::path folder) : folder_(std::move(folder)) {
        fs::create_directories(folder_);
        fs::copy_file(Component::builtFile(), file(), fs::copy_options::overwrite_existing);
    }
    ~Copy() { fs::remove_all(folder_); }
    Copy(const Copy&) = delete;
    Copy& operator=(const Copy&) = delete;

    fs::path file() const { return folder_ / "Marnoth.dll"; }

private:
    fs::path folder_;
};

TEST_F(Registration, NamesItsFileWhateverItIsCalled) {
    const Copy copy(fs::temp_directory_path() / L"M\u00e4r n\u014dth \u97f3\u4e50");
    const Component elsewhere(copy.file());
    EXPECT_EQ(elsewhere.path().parent_path().filename(), copy.file().parent_path().filename());
    EXPECT_EQ(elsewhere.registerServer(), S_OK);
    expectRegistered(elsewhere);
}

/// A folder with a file "Marnoth.dll" whose path has `length` characters, in the form for long paths.
fs::path folderFor(std::size_t length) {
    const std::wstring begin = L"\\\\?\\" + fs::temp_directory_path().wstring();
    const std::wstring end = L"\\Marnoth.dll";
    return begin + std::wstring(length + 4 - begin.size() - end.size(), L'm');
}

TEST_F(Registration, NamesAFileOf260CharactersAndNoneThatIsLonger) {
    std::set<std::size_t> seen;
    // Some systems count the form in which the file was loaded, and some don't.
    for (const std::size_t length : {256, 257, 260, 261}) {
        const Copy copy(folderFor(length));
        const Component elsewhere(copy.file());
        const std::size_t told = elsewhere.path().wstring().size();
        seen.insert(told);
        EXPECT_EQ(elsewhere.registerServer(), told <= 260 ? S_OK : static_cast<HRESULT>(0x800700CE));
        EXPECT_EQ(isThere(classKey()), told <= 260);
        if (told <= 260) expectRegistered(elsewhere);
        EXPECT_EQ(component.unregisterServer(), S_OK);
    }
    EXPECT_TRUE(seen.contains(260) && seen.contains(261));
}

/// The classes are looked for in a key that has been taken away, for a scope.
class RefusingRegistry {
public:
    RefusingRegistry() {
        const wchar_t* const name = L"Software\\Marnoth tests of classes";
        EXPECT_EQ(RegCreateKeyW(HKEY_CURRENT_USER, name, &gone_), ERROR_SUCCESS);
        EXPECT_EQ(RegDeleteKeyW(HKEY_CURRENT_USER, name), ERROR_SUCCESS);
        EXPECT_EQ(RegOverridePredefKey(HKEY_CLASSES_ROOT, gone_), ERROR_SUCCESS);
    }
    ~RefusingRegistry() {
        RegOverridePredefKey(HKEY_CLASSES_ROOT, nullptr);
        RegCloseKey(gone_);
    }
    RefusingRegistry(const RefusingRegistry&) = delete;
    RefusingRegistry& operator=(const RefusingRegistry&) = delete;

private:
    HKEY gone_ = nullptr;
};

TEST_F(Registration, GivesTheFailureOfTheRegistry) {
    {
        const RefusingRegistry refusing;
        EXPECT_EQ(component.registerServer(), static_cast<HRESULT>(0x800703FA));
    }
    EXPECT_FALSE(isThere(synthKey()));
    EXPECT_EQ(component.registerServer(), S_OK);
    {
        const RefusingRegistry refusing;
        EXPECT_TRUE(FAILED(component.unregisterServer()));
    }
    expectRegistered(component);
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

/// Has the system make an instrument of the registered class, and gives its pin.
RefPtr<IPin> pinOfRegistered() {
    RefPtr<IBaseFilter> filter;
    EXPECT_EQ(
        CoCreateInstance(CLSID_Marnoth, nullptr, CLSCTX_INPROC_SERVER, IID_IBaseFilter, filter.putVoid()),
        S_OK);
    RefPtr<IPin> pin;
    EXPECT_EQ(filter->FindPin(L"Chan 1", pin.put()), S_OK);
    return pin;
}

void dropUnused() {
    // Once to find what isn't used, and once for what has been found long enough ago.
    for (int i = 0; i < 2; ++i) CoFreeUnusedLibrariesEx(0, 0);
}

TEST_F(Registration, LetsTheSystemDropTheModuleOnceNothingIsHeld) {
    const Copy copy(fs::temp_directory_path() / "Marnoth that is dropped");
    std::wstring path;
    {
        const Component elsewhere(copy.file());
        path = elsewhere.path();
        EXPECT_EQ(elsewhere.registerServer(), S_OK);
    }
    EXPECT_FALSE(GetModuleHandleW(path.c_str()));
    for (int round = 0; round < 2; ++round) {
        auto pin = pinOfRegistered();
        dropUnused();
        EXPECT_TRUE(GetModuleHandleW(path.c_str())) << "for the pin";
        pin.reset();
        dropUnused();
        EXPECT_FALSE(GetModuleHandleW(path.c_str()));
    }
}

}  // namespace
}  // namespace marnoth::test::registration_test
