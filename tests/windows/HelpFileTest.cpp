#include <ole2.h>

#include "shells/windows/HelpFile.h"
#include "shells/windows/PropertyPage.h"
#include "support/TestData.h"
#include "windows/PropertyFrame.h"
#include "windows/TestViewer.h"

namespace marnoth::test::help_file_test {
namespace {

constexpr const wchar_t* kInstalled = L"Software\\Harnwell Music Software\\Shared Pzi";
constexpr const wchar_t* kViewer = L"CLSID\\{ADB880A6-D8FF-11CF-9377-00AA003B7A11}\\InprocServer32";

/// A key of the test's own in place of the machine's, and one for the classes of all.
class InstalledHelp : public testing::Test {
protected:
    InstalledHelp() {
        RegDeleteTreeW(HKEY_CURRENT_USER, kTests);
        replace(HKEY_LOCAL_MACHINE, L"machine", machine_);
        replace(HKEY_CLASSES_ROOT, L"classes", classes_);
    }
    ~InstalledHelp() override {
        RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
        RegOverridePredefKey(HKEY_CLASSES_ROOT, nullptr);
        RegCloseKey(machine_);
        RegCloseKey(classes_);
        RegDeleteTreeW(HKEY_CURRENT_USER, kTests);
    }
    void install(const std::wstring& folder, DWORD type = REG_SZ) const {
        set(machine_, kInstalled, L"InstallDirectory", folder, type);
    }
    void registerViewer(const std::wstring& file) const { set(classes_, kViewer, nullptr, file, REG_SZ); }

private:
    static constexpr const wchar_t* kTests = L"Software\\Marnoth tests of the help";

    static void replace(HKEY root, const std::wstring& name, HKEY& key) {
        EXPECT_EQ(RegCreateKeyW(HKEY_CURRENT_USER, (kTests + (L"\\" + name)).c_str(), &key), ERROR_SUCCESS);
        EXPECT_EQ(RegOverridePredefKey(root, key), ERROR_SUCCESS);
    }
    static void set(HKEY key, const wchar_t* below, const wchar_t* name, const std::wstring& text,
                    DWORD type) {
        const auto bytes = static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t));
        ASSERT_EQ(RegSetKeyValueW(key, below, name, type, text.c_str(), bytes), ERROR_SUCCESS);
    }

    HKEY machine_ = nullptr;
    HKEY classes_ = nullptr;
};

TEST_F(InstalledHelp, LiesBeneathTheFolderThatTheRegistryTells) {
    install(L"C:\\Music \u97f3\\Shared");
    EXPECT_EQ(installedHelpFile().native(), L"C:\\Music \u97f3\\Shared\\Marnoth\\Marnoth.chm");
}

TEST_F(InstalledHelp, IsLookedForAtTheRootWithoutAFolder) {
    EXPECT_EQ(installedHelpFile().native(), L"\\Marnoth\\Marnoth.chm");
    install(L"C:\\Music", REG_EXPAND_SZ);
    EXPECT_EQ(installedHelpFile().native(), L"\\Marnoth\\Marnoth.chm");
}

/// A library as long as the test.
class Library {
public:
    explicit Library(const std::filesystem::path& file) : module_(LoadLibraryW(file.c_str())) {
        EXPECT_TRUE(module_) << GetLastError();
    }
    ~Library() { FreeLibrary(module_); }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;
    const ViewerCall& lastCall() const {
        auto* const last = reinterpret_cast<void*>(GetProcAddress(module_, "LastTestHelp"));
        return *reinterpret_cast<const ViewerCall* (*)()>(last)();
    }

private:
    HMODULE const module_;
};

TEST_F(InstalledHelp, IsShownByThePageForItsKeyAndForTheFramesButton) {
    const std::filesystem::path file = testData(MARNOTH_TEST_VIEWER).make_preferred();
    const Library viewer(file);
    registerViewer(file.native());
    install(L"C:\\Music");
    RefPtr<IPropertyPage> page;
    ASSERT_EQ(createPropertyPage(nullptr, IID_IPropertyPage, page.putVoid()), S_OK);
    install(L"C:\\elsewhere");  // the page has found its help when it was made
    PropertyFrame frame(page);
    EXPECT_EQ(page->Help(L"C:\\frames"), S_FALSE) << "there is no page to ask for it";
    const int before = viewer.lastCall().count;
    frame.show();
    EXPECT_EQ(page->Help(L"C:\\frames"), S_OK);
    EXPECT_EQ(viewer.lastCall().count, before + 1);
    EXPECT_STREQ(viewer.lastCall().file, L"C:\\Music\\Marnoth\\Marnoth.chm");
    EXPECT_EQ(viewer.lastCall().window, frame.pageWindow());
    // The key is the page's once a button has the keyboard.
    frame.press({504, 180});
    frame.release({504, 180});
    PostMessageW(frame.pageWindow(), WM_KEYDOWN, VK_F1, 1);
    PostMessageW(frame.pageWindow(), WM_KEYUP, VK_F1, static_cast<LPARAM>(0xC0000001));
    frame.settle();
    EXPECT_EQ(viewer.lastCall().count, before + 2) << "once";
}

}  // namespace
}  // namespace marnoth::test::help_file_test
