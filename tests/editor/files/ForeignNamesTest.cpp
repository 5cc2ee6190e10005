#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "editor/PageRig.h"
#include "editor/files/LoadMessages.h"
#include "platform/text/Text.h"
#include "support/TempPath.h"

#ifdef _WIN32
#include <windows.h>
#endif

/// Files whose names the system's code page lacks, as the page tells the engine of them.
namespace marnoth::test::foreign_names_test {
namespace {

namespace fs = std::filesystem;

class ForeignNames : public testing::Test {
protected:
    ForeignNames() {
        fs::create_directories(folder.path() / kName);
        rig.open();
    }
    ~ForeignNames() override { fs::remove_all(folder.path()); }

    void SetUp() override {
#ifdef _WIN32
        if (GetACP() != CP_UTF8) return;
#endif
        GTEST_SKIP() << "this program's code page has all names";
    }
    /// Asks for a file by the button of `id`; gives what the engine is told of it.
    Calls choose(int id, const fs::path& file) {
        rig.window.answer(utf8FromWide(wideFromPath(file)));
        rig.window.answer("ok");
        rig.calls();
        rig.click(rig.on(id));
        Calls calls = rig.changes();
        std::erase_if(calls, [](const std::string& call) { return call.starts_with("SetRefreshRequest"); });
        return calls;
    }
    fs::path made(const fs::path& name) const {
        std::ofstream(folder.path() / name) << "made";
        return folder.path() / name;
    }
    /// The path at the end of a call, which begins with `head`; it has no blanks.
    static fs::path toldPath(const std::string& call, const std::string& head) {
        EXPECT_TRUE(call.starts_with(head)) << call;
        return pathFromWide(wideFromSystem(call.substr(call.rfind(' ') + 1)));
    }

    const fs::path kName = pathFromWide(L"\u97f3\u4e50");
    TempPath folder;
    PageRig rig;
};

TEST_F(ForeignNames, AreToldInTheirShortForm) {
    const fs::path file = made(pathFromWide(L"\u97f3.wav"));
    const Calls calls = choose(kLoadToBin, file);
    ASSERT_EQ(calls.size(), 1u);
    const fs::path told = toldPath(calls[0], "LoadFileToBin ");
    EXPECT_TRUE(fs::equivalent(told, file)) << calls[0];
    EXPECT_TRUE(calls[0].starts_with("LoadFileToBin " + systemFromWide(wideFromPath(told.filename())) + " "));
    EXPECT_EQ(rig.window.takeLog().size(), 1u) << "the file dialog alone";
}

TEST_F(ForeignNames, OfAFolderLeaveAFileItsTitle) {
    const fs::path file = made(kName / "a-title-that-is-long.wave");
    const Calls calls = choose(kLoadToBin, file);
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_TRUE(fs::equivalent(toldPath(calls[0], "LoadFileToBin a-title-that-is-long.wave "), file));
}

TEST_F(ForeignNames, WithoutAShortFormAreAnErrorOfTheFile) {
    EXPECT_EQ(choose(kLoadToBin, folder.path() / pathFromWide(L"\u97f3.wav")), Calls{});
    const std::vector<std::string> asked = rig.window.takeLog();
    ASSERT_EQ(asked.size(), 2u);
    EXPECT_EQ(asked[1], kWrong);
}

TEST_F(ForeignNames, OfNewProjectsAreRefusedAndFoldersAreShort) {
    EXPECT_EQ(choose(kSaveProject, folder.path() / pathFromWide(L"\u97f3.mrn")), Calls{});
    const Calls calls = choose(kSaveProject, folder.path() / kName / "new-song.mrn");
    ASSERT_EQ(calls.size(), 1u);
    const fs::path told = toldPath(calls[0], "SaveProject 0 ");
    EXPECT_EQ(told.filename(), "new-song.mrn");
    EXPECT_TRUE(fs::equivalent(told.parent_path(), folder.path() / kName)) << calls[0];
}

}  // namespace
}  // namespace marnoth::test::foreign_names_test
