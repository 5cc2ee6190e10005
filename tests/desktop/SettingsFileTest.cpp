#include <gtest/gtest.h>

#include <filesystem>

#include "shellkit/TempFolder.h"
#include "shells/desktop/settings/SettingsFile.h"
#include "shells/desktop/settings/SettingsText.h"

namespace marnoth::test::settings_file_test {
namespace {

namespace fs = std::filesystem;

DesktopSettings others() {
    DesktopSettings settings;
    settings.audio = "ALSA: my card = 2";
    settings.midiPort = "Keys";
    settings.rate = 96000;
    settings.frames = 128;
    settings.scale = 2;
    settings.transport = TransportRole::leads;
    settings.metronome = true;
    settings.level = 0.3f;
    settings.loopBars = 8;
    settings.songTempo = false;
    settings.songRepeats = true;
    settings.recent = {"/home/me/B\xc3\xa4ume = 3.mrn", "/tmp/a.mid"};
    settings.loopFolder = "/home/me/my loops";
    settings.projectFolder = "/home/me/B\xc3\xa4ume";
    return settings;
}

TEST(SettingsText, AllThatIsWrittenIsReadAgain) {
    const std::string text = withSettings("", {}, others());
    const ReadSettings read = readSettings(text);
    EXPECT_EQ(read.settings, others());
    EXPECT_TRUE(read.notUnderstood.empty());
}

TEST(SettingsText, IsWhatAUserWouldWrite) {
    const ReadSettings read = readSettings("# mine\nlevel=0.5\r\n  metronome =  yes  \n\nrate = 44100");
    EXPECT_EQ(read.settings.level, 0.5f);
    EXPECT_TRUE(read.settings.metronome);
    EXPECT_EQ(read.settings.rate, 44100u);
    EXPECT_TRUE(read.notUnderstood.empty());
}

TEST(SettingsText, WhatCantBeIsToldAndLeavesTheUsual) {
    const ReadSettings read =
        readSettings("rate = fast\nlevel = 100\nmetronome = perhaps\nscale = 2x\nblock = 64");
    EXPECT_EQ(read.notUnderstood,
              (std::vector<std::string>{"rate = fast", "level = 100", "metronome = perhaps", "scale = 2x"}));
    DesktopSettings expected;
    expected.frames = 64;
    EXPECT_EQ(read.settings, expected);
}

TEST(SettingsText, UnknownLinesAndCommentsStay) {
    DesktopSettings now;
    now.level = 0.5f;
    EXPECT_EQ(withSettings("# mine\nfuture = 7\nlevel = 1\nno sense", {}, now),
              "# mine\nfuture = 7\nlevel = 0.5\nno sense\n");
}

TEST(SettingsText, OnlyWhatHasChangedIsWritten) {
    DesktopSettings now = others();
    now.level = 2.0f;
    EXPECT_EQ(withSettings("audio = JACK\nlevel = 0.3\n", others(), now), "audio = JACK\nlevel = 2\n");
}

TEST(SettingsFile, TheFirstStartHasNoneAndTheNextHasThem) {
    const TempFolder folder;
    SettingsFile first(folder / "config");
    EXPECT_FALSE(first.wasThere());
    EXPECT_EQ(first.read(), DesktopSettings());
    EXPECT_EQ(first.write(others()), "");
    SettingsFile second(folder / "config");
    EXPECT_TRUE(second.wasThere());
    EXPECT_EQ(second.read(), others());
    EXPECT_TRUE(second.troubles().empty());
}

TEST(SettingsFile, IsThereAfterTheFirstStartThoughNothingWasChanged) {
    const TempFolder folder;
    SettingsFile(folder / "config").write({});
    EXPECT_TRUE(SettingsFile(folder / "config").wasThere());
}

TEST(SettingsFile, LeavesNothingBesideIt) {
    const TempFolder folder;
    SettingsFile(folder / "config").write(others());
    std::vector<fs::path> files;
    for (const auto& entry : fs::directory_iterator(folder / "config")) files.push_back(entry.path());
    EXPECT_EQ(files, (std::vector<fs::path>{folder / "config" / "settings"}));
}

TEST(SettingsFile, ADamagedOneIsKeptAsideAndTold) {
    const TempFolder folder;
    fs::create_directories(folder / "config");
    const std::string damaged("level = 0.5\n\0\0\x01", 15);
    writeText(folder / "config" / "settings", damaged);
    SettingsFile file(folder / "config");
    EXPECT_EQ(file.read(), DesktopSettings());
    ASSERT_EQ(file.troubles().size(), 1u);
    EXPECT_NE(file.troubles()[0].find("settings.damaged-1"), std::string::npos);
    EXPECT_EQ(readText(folder / "config" / "settings.damaged-1"), damaged);
    EXPECT_EQ(file.write(others()), "");
    EXPECT_EQ(SettingsFile(folder / "config").read(), others());
}

TEST(SettingsFile, ProgramsThatRunAtOnceKeepEachOthersChanges) {
    const TempFolder folder;
    SettingsFile(folder / "config").write({});
    SettingsFile one(folder / "config");
    SettingsFile other(folder / "config");
    DesktopSettings louder;
    louder.level = 2.0f;
    DesktopSettings clicking;
    clicking.metronome = true;
    EXPECT_EQ(one.write(louder), "");
    EXPECT_EQ(other.write(clicking), "");
    const DesktopSettings both = SettingsFile(folder / "config").read();
    EXPECT_EQ(both.level, 2.0f);
    EXPECT_TRUE(both.metronome);
}

TEST(SettingsFile, ALinkToOneElsewhereStaysALink) {
    const TempFolder folder;
    fs::create_directories(folder / "config");
    writeText(folder / "elsewhere", "level = 0.5\n");
    fs::create_symlink(folder / "elsewhere", folder / "config" / "settings");
    SettingsFile file(folder / "config");
    EXPECT_EQ(file.read().level, 0.5f);
    EXPECT_EQ(file.write({}), "");
    EXPECT_TRUE(fs::is_symlink(folder / "config" / "settings"));
    EXPECT_EQ(readText(folder / "elsewhere"), "level = 1\n");
}

TEST(SettingsFile, WhereItCantBeWrittenThatIsToldOnceAndNothingElseHappens) {
    SettingsFile file("/proc/no/such");
    EXPECT_FALSE(file.wasThere());
    EXPECT_EQ(file.write(others()), "Settings can't be kept in /proc/no/such.");
    EXPECT_EQ(file.write({}), "");
    SettingsFile without{fs::path()};
    EXPECT_EQ(without.write(others()), "");
}

TEST(SettingsFile, OneThatCantBeReadStaysAsItIs) {
    const TempFolder folder;
    fs::create_directories(folder / "config" / "settings");
    SettingsFile file(folder / "config");
    EXPECT_TRUE(file.wasThere());
    EXPECT_EQ(file.troubles().size(), 1u);
    EXPECT_EQ(file.write(others()), "");
    EXPECT_TRUE(fs::is_directory(folder / "config" / "settings"));
}

}  // namespace
}  // namespace marnoth::test::settings_file_test
