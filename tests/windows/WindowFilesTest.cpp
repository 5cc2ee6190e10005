#include <dlgs.h>

#include <filesystem>
#include <fstream>

#include "platform/text/Text.h"
#include "support/TempPath.h"
#include "windows/AtQuestion.h"
#include "windows/WindowRig.h"

namespace marnoth::test::window_files_test {
namespace {

namespace fs = std::filesystem;

constexpr const char* kProjects = "Mrn Files (*.mrn)|*.mrn||";
constexpr const char* kWaves = "Wave Files (*.wav)|*.wav||";

class WindowFiles : public WindowRig {
protected:
    WindowFiles() { fs::create_directories(folder.path()); }
    ~WindowFiles() override { fs::remove_all(folder.path()); }

    /// What a dialog leads to to which, and to what it asks, somebody does `acts`; "(no answer)" when it
    /// isn't answered.
    std::optional<std::string> ask(FileKind kind, const char* filter, std::vector<AtQuestion::Act> acts) {
        std::optional<std::string> got = "(no answer)";
        const AtQuestion user(std::move(acts));
        window.askFile(filter, kind, [&](std::optional<std::string> path) { got = std::move(path); });
        return got;
    }
    /// Types `name` and confirms.
    static AtQuestion::Act type(const fs::path& name) {
        return [name](HWND dialog) {
            EXPECT_TRUE(SetDlgItemTextW(dialog, cmb13, name.c_str()));
            PostMessageW(dialog, WM_COMMAND, IDOK, 0);
        };
    }
    fs::path fileHere(const fs::path& name) const {
        std::ofstream(folder.path() / name) << "x";
        return folder.path() / name;
    }
    static std::string utf8(const fs::path& path) { return utf8FromWide(path.native()); }

    const TempPath folder;
};

TEST_F(WindowFiles, GivesTheFullPathOfTheFileThatIsChosen) {
    const fs::path file = fileHere(L"loop.wav");
    EXPECT_EQ(ask(FileKind::open, kWaves, {type(file)}), utf8(file));
    EXPECT_EQ(ask(FileKind::save, kProjects, {type(folder.path() / L"new.mrn")}),
              utf8(folder.path() / L"new.mrn"));
}

TEST_F(WindowFiles, ANameWithoutAnExtensionGetsThatOfItsKind) {
    EXPECT_EQ(ask(FileKind::save, kProjects, {type(folder.path() / L"song")}),
              utf8(folder.path() / L"song.mrn"));
    EXPECT_EQ(ask(FileKind::save, kProjects, {type(folder.path() / L"song.bak")}),
              utf8(folder.path() / L"song.bak"));
}

TEST_F(WindowFiles, GivesNothingWhenTheUserCancels) {
    const auto cancel = [](HWND dialog) { PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0); };
    EXPECT_EQ(ask(FileKind::open, kWaves, {cancel}), std::nullopt);
    EXPECT_EQ(ask(FileKind::save, kProjects, {cancel}), std::nullopt);
}

TEST_F(WindowFiles, ADialogThatIsTakenBackIsNotAnswered) {
    const auto takeBack = [&](HWND) { window.cancelQuestion(); };
    EXPECT_EQ(ask(FileKind::open, kWaves, {takeBack}), "(no answer)");
    EXPECT_EQ(ask(FileKind::save, kProjects, {[&](HWND) { window.close(); }}), "(no answer)");
    EXPECT_EQ(openQuestion(), nullptr);
    EXPECT_TRUE(IsWindowEnabled(frame.handle()));
}

TEST_F(WindowFiles, AsksBeforeAFileIsReplaced) {
    const fs::path file = fileHere(L"song.mrn");
    const auto click = [](int button) {
        return [button](HWND box) { SendDlgItemMessageW(box, button, BM_CLICK, 0, 0); };
    };
    EXPECT_EQ(ask(FileKind::save, kProjects, {type(file), click(IDYES)}), utf8(file));
}

TEST_F(WindowFiles, ADialogThatAsksItselfIsTakenBackWithItsQuestion) {
    const fs::path file = fileHere(L"song.mrn");
    EXPECT_EQ(ask(FileKind::save, kProjects, {type(file), [&](HWND) { window.cancelQuestion(); }}),
              "(no answer)");
    EXPECT_EQ(openQuestion(), nullptr);
}

TEST_F(WindowFiles, ShowsFilesOfTheKindAndNoBoxForReadOnly) {
    const auto look = [](HWND dialog) {
        HWND const kinds = GetDlgItem(dialog, cmb1);
        EXPECT_EQ(SendMessageW(kinds, CB_GETCOUNT, 0, 0), 1);
        wchar_t text[64]{};
        SendMessageW(kinds, CB_GETLBTEXT, 0, reinterpret_cast<LPARAM>(text));
        EXPECT_STREQ(text, L"Mrn Files (*.mrn)");
        EXPECT_FALSE(IsWindowVisible(GetDlgItem(dialog, chx1)));
        PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
    };
    ask(FileKind::open, kProjects, {look});
}

TEST_F(WindowFiles, LeavesTheFolderInWhichTheProcessStands) {
    const fs::path before = fs::current_path();
    ask(FileKind::save, kProjects, {type(folder.path() / L"new.mrn")});
    EXPECT_EQ(fs::current_path(), before);
}

TEST_F(WindowFiles, NamesAreWholeWhateverTheyHold) {
    const fs::path file = fileHere(L"\u97f3\u4e50 \u0101.wav");
    EXPECT_EQ(ask(FileKind::open, kWaves, {type(file)}), utf8(file));
}

/// Wine's own dialog ends the process at a path of more than 260 characters.
TEST_F(WindowFiles, PathsMayBeLong) {
    fs::path deep = folder.path();
    while (deep.native().size() < 180) deep /= L"a folder with a name";
    fs::create_directories(deep);
    const fs::path file = deep / (std::wstring(60, L'n') + L".mrn");
    EXPECT_EQ(ask(FileKind::save, kProjects, {type(file)}), utf8(file));
}

}  // namespace
}  // namespace marnoth::test::window_files_test
