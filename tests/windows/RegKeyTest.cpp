#include <gtest/gtest.h>

#include <vector>

#include "platform/windows/RegKey.h"

namespace marnoth::test::reg_key_test {
namespace {

constexpr const wchar_t* kPath = L"Software\\Marnoth tests of keys";

/// A key of the test's own, taken away with all that is in it.
class RegKeys : public testing::Test {
protected:
    RegKeys() { remove(); }
    ~RegKeys() override { remove(); }

    static void remove() { RegDeleteTreeW(HKEY_CURRENT_USER, kPath); }

    static CRegKey key(std::uint32_t mode, const wchar_t* subKey = nullptr) {
        return {kPath, subKey, mode, CRegKey::kCurrentUser, 1};
    }

    static void put(const wchar_t* name, DWORD type, const void* bytes, DWORD count) {
        ASSERT_EQ(RegSetKeyValueW(HKEY_CURRENT_USER, kPath, name, type, bytes, count), ERROR_SUCCESS);
    }

    static std::wstring read(const wchar_t* name) {
        std::wstring text = L"before";
        key(CRegKey::kOpen).QueryString(name, L"fallback", &text);
        return text;
    }
};

TEST_F(RegKeys, AreOpenedOrWhereAskedForMade) {
    EXPECT_FALSE(key(CRegKey::kOpen).isOpen());
    EXPECT_FALSE(key(7).isOpen());
    EXPECT_TRUE(key(CRegKey::kCreate).isOpen());
    EXPECT_TRUE(key(CRegKey::kOpen).isOpen());
    EXPECT_TRUE(key(CRegKey::kOpen, L"").isOpen());
    EXPECT_FALSE(key(CRegKey::kOpen, L"below").isOpen());
    EXPECT_TRUE(key(CRegKey::kCreate, L"below").isOpen());
    EXPECT_TRUE(key(CRegKey::kOpen, L"below").isOpen());
}

TEST_F(RegKeys, BeginAtThreePlaces) {
    EXPECT_TRUE(CRegKey(L"Software", nullptr, CRegKey::kOpen, -1, 0).isOpen());
    EXPECT_TRUE(CRegKey(L"Software", nullptr, CRegKey::kOpen, -2, 0).isOpen());
    EXPECT_TRUE(CRegKey(L"CLSID", nullptr, CRegKey::kOpen, -3, 0).isOpen());
    for (const std::int32_t hive : {0, 1, -4})
        EXPECT_FALSE(CRegKey(L"Software", nullptr, CRegKey::kOpen, hive, 0).isOpen());
}

TEST_F(RegKeys, GiveTheirStrings) {
    put(L"name", REG_SZ, L"C:\\a b\\\u97f3", sizeof L"C:\\a b\\\u97f3");
    EXPECT_EQ(read(L"name"), L"C:\\a b\\\u97f3");
    EXPECT_EQ(read(L"other"), L"fallback");
    // Written without its end; and no zero behind it that the system might take for it.
    const std::vector<wchar_t> endless(501, L'x');
    put(L"long", REG_SZ, endless.data(), 1000);
    EXPECT_EQ(read(L"long"), std::wstring(499, L'x')) << "the last unit ends a string, whatever it is";
}

TEST_F(RegKeys, GiveTheFallbackForWhatIsNoString) {
    const DWORD number = 7;
    put(L"number", REG_DWORD, &number, sizeof number);
    EXPECT_EQ(read(L"number"), L"fallback");
    put(L"expanded", REG_EXPAND_SZ, L"%PATH%", sizeof L"%PATH%");
    EXPECT_EQ(read(L"expanded"), L"fallback");
    put(L"nothing", REG_SZ, L"", 0);
    EXPECT_EQ(read(L"nothing"), L"fallback");
    EXPECT_EQ(read(L"missing"), L"fallback");
}

TEST_F(RegKeys, TakeOneZeroByteForTheEmptyString) {
    put(L"byte", REG_SZ, "", 1);
    EXPECT_EQ(read(L"byte"), L"");
    put(L"unit", REG_SZ, L"", 2);
    EXPECT_EQ(read(L"unit"), L"");
}

TEST_F(RegKeys, GiveTheFallbackWithoutAKeyAndNothingWithoutAPlaceForIt) {
    std::wstring text = L"before";
    key(CRegKey::kOpen).QueryString(L"name", L"fallback", &text);
    EXPECT_EQ(text, L"fallback");
    key(CRegKey::kOpen).QueryString(L"name", L"fallback", nullptr);
}

}  // namespace
}  // namespace marnoth::test::reg_key_test
