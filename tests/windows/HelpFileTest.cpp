#include <gtest/gtest.h>
#include <windows.h>

#include "shells/windows/HelpFile.h"

namespace marnoth::test::help_file_test {
namespace {

constexpr const wchar_t* kMachine = L"Software\\Marnoth tests of the help";
constexpr const wchar_t* kInstalled = L"Software\\Harnwell Music Software\\Shared Pzi";

/// A key of the test's own in place of the machine's.
class InstalledHelp : public testing::Test {
protected:
    InstalledHelp() {
        RegDeleteTreeW(HKEY_CURRENT_USER, kMachine);
        EXPECT_EQ(RegCreateKeyW(HKEY_CURRENT_USER, kMachine, &machine_), ERROR_SUCCESS);
        EXPECT_EQ(RegOverridePredefKey(HKEY_LOCAL_MACHINE, machine_), ERROR_SUCCESS);
    }
    ~InstalledHelp() override {
        RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
        RegCloseKey(machine_);
        RegDeleteTreeW(HKEY_CURRENT_USER, kMachine);
    }
    void install(DWORD type, const wchar_t* folder, DWORD bytes) const {
        ASSERT_EQ(RegSetKeyValueW(machine_, kInstalled, L"InstallDirectory", type, folder, bytes),
                  ERROR_SUCCESS);
    }

private:
    HKEY machine_ = nullptr;
};

TEST_F(InstalledHelp, LiesBeneathTheFolderThatTheRegistryTells) {
    const wchar_t folder[] = L"C:\\Music \u97f3\\Shared";
    install(REG_SZ, folder, sizeof folder);
    EXPECT_EQ(installedHelpFile().native(), L"C:\\Music \u97f3\\Shared\\Marnoth\\Marnoth.chm");
}

TEST_F(InstalledHelp, IsLookedForAtTheRootWithoutAFolder) {
    EXPECT_EQ(installedHelpFile().native(), L"\\Marnoth\\Marnoth.chm");
    install(REG_EXPAND_SZ, L"C:\\Music", sizeof L"C:\\Music");
    EXPECT_EQ(installedHelpFile().native(), L"\\Marnoth\\Marnoth.chm");
}

}  // namespace
}  // namespace marnoth::test::help_file_test
