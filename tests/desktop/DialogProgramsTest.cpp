#include <gtest/gtest.h>

#include "shellkit/TempFolder.h"
#include "shells/desktop/dialogs/DialogPrograms.h"

namespace marnoth::test::dialog_programs_test {
namespace {

using Words = std::vector<std::string>;

void makeProgram(const TempFolder& folder, const std::string& name) {
    writeText(folder / name, "#!/bin/sh\n");
    std::filesystem::permissions(folder / name, std::filesystem::perms::owner_all);
}

TEST(DialogPrograms, ZenityGetsTheFilterAndTheWindow) {
    EXPECT_EQ(dialogCommand("/usr/bin/zenity", {"Wave Files (*.wav)|*.wav||", FileKind::open, {}}, 77),
              (Words{"zenity", "--file-selection", "--title=Open: Wave Files (*.wav)", "--modal",
                     "--attach=77", "--file-filter=Wave Files (*.wav) | *.wav", "--file-filter=* | *"}));
}

TEST(DialogPrograms, SavingAsksBeforeItReplaces) {
    const Words words = dialogCommand("zenity", {"Mrn Files (*.mrn)|*.mrn||", FileKind::save, {}}, 1);
    EXPECT_EQ((Words{words.end() - 2, words.end()}), (Words{"--save", "--confirm-overwrite"}));
    EXPECT_EQ(words[2], "--title=Save: Mrn Files (*.mrn)");
}

TEST(DialogPrograms, KdialogTakesSeveralPatternsWithBlanks) {
    EXPECT_EQ(dialogCommand("/bin/kdialog", {"Music|*.mid;*.midi||", FileKind::open, {}}, 5),
              (Words{"kdialog", "--title", "Open: Music", "--attach", "5", "--getopenfilename", ".",
                     "Music (*.mid *.midi)"}));
    EXPECT_EQ(dialogCommand("/bin/kdialog", {"A|*.a||", FileKind::save, {}}, 5)[5], "--getsavefilename");
}

TEST(DialogPrograms, BothBeginInTheFolderThatIsTold) {
    const FileQuestion question{"A|*.a||", FileKind::open, "/my music"};
    EXPECT_EQ(dialogCommand("zenity", question, 5).back(), "--filename=/my music/");
    EXPECT_EQ(dialogCommand("kdialog", question, 5)[6], "/my music/");
}

TEST(DialogPrograms, OthersHaveNoCommand) {
    EXPECT_EQ(dialogCommand("/bin/other", {"A|*.a||", FileKind::open, {}}, 5), Words{});
}

TEST(DialogPrograms, TheFirstOfBothInTheSearchPathIsTaken) {
    const TempFolder one;
    const TempFolder two;
    const std::string path = one.name("") + ":" + two.name("");
    EXPECT_EQ(findDialogProgram(path), "");
    makeProgram(one, "kdialog");
    EXPECT_EQ(findDialogProgram(path), one.name("") + "/kdialog");
    makeProgram(two, "zenity");
    EXPECT_EQ(findDialogProgram(path), two.name("") + "/zenity");
}

TEST(DialogPrograms, AFileThatIsNoProgramIsPassedOver) {
    const TempFolder folder;
    writeText(folder / "zenity", "text");
    EXPECT_EQ(findDialogProgram(folder.name("")), "");
}

}  // namespace
}  // namespace marnoth::test::dialog_programs_test
