#include <gtest/gtest.h>

#include <fstream>

#include "platform/files/SystemName.h"
#include "platform/text/Text.h"
#include "support/TempPath.h"

#ifdef _WIN32
#include <windows.h>
#endif

namespace marnoth::test::system_name_test {
namespace {

namespace fs = std::filesystem;

constexpr const wchar_t* kMusic = L"\u97f3\u4e50";  // in no code page of the West

/// A folder of the test's own.
class Folder {
public:
    Folder() { fs::create_directory(path()); }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    ~Folder() { fs::remove_all(path()); }

    const fs::path& path() const { return place_.path(); }
    std::wstring wide(const fs::path& name) const { return wideFromPath(path() / name); }
    /// A file with its own name in it.
    std::wstring made(const std::wstring& name) const {
        std::ofstream(path() / pathFromWide(name), std::ios::binary) << utf8FromWide(name);
        return wide(pathFromWide(name));
    }

private:
    TempPath place_;
};

/// What stands in the file that a name in the code page leads to.
std::string contents(const std::string& name) {
    std::ifstream file(pathFromWide(wideFromSystem(name)), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST(SystemName, IsTheNameItselfWhereTheCodePageHasIt) {
    const Folder folder;
    const std::wstring plain = folder.wide("a loop of mine 01.wave");
    EXPECT_TRUE(isInSystem(plain));
    for (const NamedFile kind : {NamedFile::existing, NamedFile::fresh})
        EXPECT_EQ(wideFromSystem(systemName(plain, kind).value_or("")), plain);
}

TEST(SystemName, LeadsToTheFileWhateverItsNameHolds) {
    const Folder folder;
    const std::wstring name = std::wstring(kMusic) + L".wav";
    const std::optional<std::string> found = systemName(folder.made(name), NamedFile::existing);
    ASSERT_TRUE(found);
    EXPECT_EQ(contents(*found), utf8FromWide(name));
}

#ifdef _WIN32

/// A foreign host's code page is one of the West, or at least not that which has everything.
class ForeignName : public testing::Test {
protected:
    void SetUp() override {
        if (GetACP() == CP_UTF8) GTEST_SKIP() << "this program's code page has all names";
    }
    Folder folder;
};

TEST_F(ForeignName, OfWhatIsNotThereIsNone) {
    EXPECT_FALSE(systemName(folder.wide(fs::path(kMusic) / "a.wav"), NamedFile::existing));
    EXPECT_FALSE(systemName(folder.wide(fs::path(kMusic) / "a.wav"), NamedFile::fresh));
}

TEST_F(ForeignName, IsNeverThatOfALookalike) {
    folder.made(L"a.wav");
    const std::wstring name = L"\u0101.wav";  // the code page of the West has an a for it
    EXPECT_FALSE(isInSystem(name));
    const std::optional<std::string> found = systemName(folder.made(name), NamedFile::existing);
    ASSERT_TRUE(found);
    EXPECT_EQ(contents(*found), utf8FromWide(name));
}

TEST_F(ForeignName, OfAFileThatIsMadeAnewIsShortInItsFolderAlone) {
    fs::create_directory(folder.path() / kMusic);
    const std::wstring inside = folder.wide(fs::path(kMusic) / "my new song.mrn");
    const std::optional<std::string> found = systemName(inside, NamedFile::fresh);
    ASSERT_TRUE(found);
    EXPECT_TRUE(found->ends_with("\\my new song.mrn")) << *found;
    std::ofstream(pathFromWide(wideFromSystem(*found))) << "made";
    EXPECT_TRUE(fs::exists(inside));
    // By its short name it would lose the one that its user gave it.
    const std::wstring name = std::wstring(kMusic) + L".mrn";
    EXPECT_FALSE(systemName(folder.made(name), NamedFile::fresh));
}

#endif

}  // namespace
}  // namespace marnoth::test::system_name_test
