#include <filesystem>

#include "platform/windows/HelpViewer.h"
#include "support/TempPath.h"
#include "support/TestData.h"
#include "windows/TestViewer.h"
#include "windows/WindowRig.h"

namespace marnoth::test::help_viewer_test {
namespace {

namespace fs = std::filesystem;

constexpr const wchar_t* kFile = L"C:\\Music\\Marnoth\\Marnoth.chm";
constexpr const wchar_t* kName = L"hhctrl.ocx";

/// Classes of our own in place of the system's, and a viewer that remembers.
class HelpViewers : public WindowRig {
protected:
    HelpViewers() {
        EXPECT_EQ(RegCreateKeyW(HKEY_CURRENT_USER, kClasses, &classes), ERROR_SUCCESS);
        EXPECT_EQ(RegOverridePredefKey(HKEY_CLASSES_ROOT, classes), ERROR_SUCCESS);
    }
    ~HelpViewers() override {
        RegOverridePredefKey(HKEY_CLASSES_ROOT, nullptr);
        RegCloseKey(classes);
        RegDeleteTreeW(HKEY_CURRENT_USER, kClasses);
        FreeLibrary(viewer);
    }

    static HMODULE load(const fs::path& file) {
        HMODULE const module = LoadLibraryW(file.c_str());
        EXPECT_TRUE(module) << GetLastError();
        return module;
    }
    static bool remembersCalls(HMODULE module) { return GetProcAddress(module, "LastTestHelp") != nullptr; }
    static const ViewerCall& callOf(HMODULE module) {
        auto* const last = reinterpret_cast<void*>(GetProcAddress(module, "LastTestHelp"));
        return *reinterpret_cast<const ViewerCall* (*)()>(last)();
    }
    static void registerViewer(const fs::path& file) {
        const auto bytes = static_cast<DWORD>((file.native().size() + 1) * sizeof(wchar_t));
        EXPECT_EQ(RegSetKeyValueW(HKEY_CLASSES_ROOT,
                                  L"CLSID\\{ADB880A6-D8FF-11CF-9377-00AA003B7A11}\\InprocServer32", nullptr,
                                  REG_SZ, file.c_str(), bytes),
                  ERROR_SUCCESS);
    }
    int calls() const { return callOf(viewer).count; }

    static constexpr const wchar_t* kClasses = L"Software\\Marnoth tests of help";
    const fs::path file = testData(MARNOTH_TEST_VIEWER).make_preferred();
    HMODULE const viewer = load(file);
    HKEY classes = nullptr;
};

TEST_F(HelpViewers, TheRegisteredOneIsAskedToShowTheFile) {
    registerViewer(file);
    const int before = calls();
    HelpViewer help(kFile);
    EXPECT_EQ(calls(), before) << "not before help is wanted";
    help.show(handle());
    const ViewerCall& asked = callOf(viewer);
    EXPECT_EQ(asked.count, before + 1);
    EXPECT_EQ(asked.window, handle());
    EXPECT_STREQ(asked.file, kFile);
    EXPECT_EQ(asked.command, 0u) << "as a topic";
    EXPECT_EQ(asked.data, 0u);
    help.show(handle());
    EXPECT_EQ(asked.count, before + 2);
}

TEST_F(HelpViewers, TheWindowAsksForItself) {
    registerViewer(file);
    Win32Window other(frame.handle(), kPlace, fonts, {}, kFile);
    other.showHelp();
    EXPECT_EQ(callOf(viewer).window, other.handle());
    EXPECT_STREQ(callOf(viewer).file, kFile);
}

TEST_F(HelpViewers, WithoutARegisteredOneItIsLookedForByName) {
    const TempPath folder;
    fs::create_directories(folder.path());
    fs::copy_file(file, folder.path() / kName);
    ASSERT_TRUE(SetDllDirectoryW(folder.path().c_str()));
    for (const wchar_t* registered : {L"", L"C:\\isn't there\\viewer.ocx"}) {
        registerViewer(registered);
        ASSERT_FALSE(GetModuleHandleW(kName));
        HelpViewer help(kFile);
        help.show(handle());
        HMODULE const named = GetModuleHandleW(kName);
        ASSERT_TRUE(named);
        // Wine has one of its own, which comes before any other of that name.
        if (remembersCalls(named)) {
            EXPECT_EQ(callOf(named).window, handle());
            EXPECT_STREQ(callOf(named).file, kFile);
        }
        FreeLibrary(named);
    }
    SetDllDirectoryW(nullptr);
    fs::remove_all(folder.path());
}

TEST_F(HelpViewers, OneWithoutTheEntryIsNeverAskedNorLookedForAgain) {
    registerViewer(testData(MARNOTH_NO_VIEWER).make_preferred());
    const int before = calls();
    HelpViewer help(kFile);
    help.show(handle());
    registerViewer(file);
    help.show(handle());
    EXPECT_EQ(calls(), before);
    HelpViewer other(kFile);
    other.show(handle());
    EXPECT_EQ(calls(), before + 1);
}

TEST_F(HelpViewers, ABareNameIsThatOfAFileBesideTheModule) {
    registerViewer(file);
    wchar_t path[1024]{};
    GetModuleFileNameW(GetModuleHandleW(nullptr), path, 1024);
    HelpViewer help(L"Marnoth.chm");
    help.show(handle());
    EXPECT_EQ(callOf(viewer).file, fs::path(path).parent_path() / L"Marnoth.chm");
    HelpViewer rooted(L"\\Marnoth\\Marnoth.chm");
    rooted.show(handle());
    EXPECT_STREQ(callOf(viewer).file, L"\\Marnoth\\Marnoth.chm");
}

TEST_F(HelpViewers, WithoutAFileOrAWindowThereIsNoHelp) {
    registerViewer(file);
    const int before = calls();
    HelpViewer none(fs::path{});
    none.show(handle());
    HelpViewer help(kFile);
    help.show(nullptr);
    EXPECT_EQ(calls(), before);
}

}  // namespace
}  // namespace marnoth::test::help_viewer_test
