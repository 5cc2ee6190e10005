#include <gtest/gtest.h>

#include <filesystem>

#include "platform/drawing/HeadlessWindow.h"
#include "platform/drawing/PlatformFonts.h"
#include "shellkit/TempFolder.h"
#include "shells/desktop/playing/LiveInstrument.h"
#include "shells/desktop/projects/FileMenu.h"

namespace marnoth::test::project_commands_test {
namespace {

namespace fs = std::filesystem;

using Lines = std::vector<std::string>;

/// One note of a bar in 4/4 at 96 beats per minute.
const std::string kSong(
    "MThd\0\0\0\6\0\0\0\1\0\x60"
    "MTrk\0\0\0\x13\0\xff\x51\3\x09\x89\x68\0\x90\x3c\x64\x60\x80\x3c\0\0\xff\x2f\0",
    41);

/// The program's files without its window.
class ProjectCommandsTest : public testing::Test {
protected:
    ProjectCommandsTest() {
        window.setFonts(*fonts);
        page = std::make_unique<CGrooveSamplerPropPage>(window);
        window.setPage(page.get());
        instrument.prepare(44100, 256);
        const std::array<IUnknown*, 1> objects{&instrument.sampler()};
        page->bind(objects);
        page->open();
        fs::create_directories(folder / "demo");
        saveWith(0.125f, demo.project);
        writeText(demo.song, kSong);
        projects = std::make_unique<ProjectCommands>(instrument.sampler(), window, *page, notices);
        menu = std::make_unique<FileMenu>(window, *projects, song, settings, notices, demo);
        projects->onChange(
            [this](ProjectChange change, const std::string& path) { menu->projectChanged(change, path); });
    }
    float volume() {
        float volume = 0;
        instrument.sampler().GetPadVolume(3, &volume);
        return volume;
    }
    void change(float to) { instrument.sampler().SetPadVolume(3, to); }
    void saveWith(float volume, const std::string& file) {
        change(volume);
        instrument.sampler().SaveProject(0, file.c_str());
    }
    /// Two projects, of which the first is open and has been changed.
    void openChanged() {
        saveWith(0.5f, file("other.mrn"));
        saveWith(0.25f, file("song.mrn"));
        projects->project().settle();
        menu->open(file("song.mrn"));
        change(0.75f);
        window.takeLog();
    }
    std::string file(const std::string& name) { return folder.name(name); }
    std::string title() { return projects->project().title(); }
    std::string notice() {
        const std::string text = notices.current({}).text;
        notices.dismiss();
        return text;
    }

    const TempFolder folder;
    const DemoFiles demo{folder.name("demo/groove.mrn"), folder.name("demo/groove.mid"), folder.name("demo")};
    std::unique_ptr<FontSource> fonts = platformFonts();
    HeadlessWindow window;
    LiveInstrument instrument;
    Notices notices;
    DesktopSettings settings;
    SongCommands song{instrument};
    std::unique_ptr<CGrooveSamplerPropPage> page;
    std::unique_ptr<ProjectCommands> projects;
    std::unique_ptr<FileMenu> menu;
};

const std::string kAsksForChanges = "? message \"Save the changes to song.mrn?\" -> ";

TEST_F(ProjectCommandsTest, OpeningAsksAboutChangesAndCancelLeavesAllAsItIs) {
    openChanged();
    window.answer("cancel");
    menu->open(file("other.mrn"));
    EXPECT_EQ(window.takeLog(), (Lines{kAsksForChanges + "cancel"}));
    EXPECT_EQ(volume(), 0.75f);
    EXPECT_EQ(title(), "song.mrn * - Marnoth");
}

TEST_F(ProjectCommandsTest, ChangesThatNobodyWantsGo) {
    openChanged();
    window.answer("no");
    menu->open(file("other.mrn"));
    EXPECT_EQ(volume(), 0.5f);
    EXPECT_EQ(title(), "other.mrn - Marnoth");
    window.answer("yes");
    menu->open(file("song.mrn"));
    EXPECT_EQ(volume(), 0.25f) << "as it was";
}

TEST_F(ProjectCommandsTest, ChangesAreSavedBeforeTheNextIsOpened) {
    openChanged();
    window.answer("yes");
    menu->open(file("other.mrn"));
    EXPECT_EQ(volume(), 0.5f);
    menu->open(file("song.mrn"));
    EXPECT_EQ(volume(), 0.75f);
}

TEST_F(ProjectCommandsTest, ThePagesOwnButtonAsksToo) {
    openChanged();
    window.answer(file("other.mrn"));
    window.answer("cancel");
    page->focusControl(*page->controlOf(kOpenProject));
    window.press({16 + 1, 36});
    window.release({16 + 1, 36});
    EXPECT_EQ(volume(), 0.75f);
    ASSERT_EQ(window.takeLog().back(), kAsksForChanges + "cancel");
}

TEST_F(ProjectCommandsTest, ADamagedProjectIsToldAndCostsNothing) {
    openChanged();
    writeText(folder / "broken.mrn", readText(folder / "other.mrn").substr(0, 200));
    window.answer("ok");
    menu->open(file("broken.mrn"));
    EXPECT_EQ(volume(), 0.75f);
    EXPECT_EQ(title(), "song.mrn * - Marnoth");
    EXPECT_NE(window.takeLog().at(0).find("broken.mrn isn't loaded"), std::string::npos);
}

TEST_F(ProjectCommandsTest, SavingTellsAndAsksForANameWhereThereIsNone) {
    change(0.3f);
    window.answer(file("new"));
    projects->save();
    EXPECT_TRUE(fs::exists(folder / "new.mrn"));
    EXPECT_EQ(title(), "new.mrn - Marnoth");
    EXPECT_EQ(notice(), "Saved new.mrn.");
    change(0.4f);
    window.takeLog();
    projects->save();
    EXPECT_EQ(window.takeLog(), Lines{}) << "it has a name now";
    EXPECT_FALSE(projects->project().hasChanged());
}

TEST_F(ProjectCommandsTest, ANameThatGetsItsEndingAsksBeforeItWritesOver) {
    saveWith(0.5f, file("other.mrn"));
    change(0.6f);
    window.answer(file("other"));
    window.answer("no");
    projects->saveAs();
    EXPECT_EQ(window.takeLog().back(), "? message \"other.mrn is there already. Write over it?\" -> no");
    EXPECT_TRUE(projects->project().hasChanged());
    menu->open(file("other.mrn"));
}

TEST_F(ProjectCommandsTest, WhatCantBeSavedIsToldAndStaysChanged) {
    change(0.3f);
    window.answer(file("no/such/folder.mrn"));
    projects->save();
    EXPECT_NE(notice().find("saving failed"), std::string::npos);
    EXPECT_TRUE(projects->project().hasChanged());
    bool hasLeft = false;
    window.answer("yes");
    window.answer("cancel");
    projects->leave([&] { hasLeft = true; });
    EXPECT_FALSE(hasLeft) << "no name was chosen";
}

TEST_F(ProjectCommandsTest, ABackupIsOpenedAsACopy) {
    saveWith(0.5f, file("song.mrn"));
    fs::rename(folder / "song.mrn", folder / "song.mrn.bak");
    projects->project().settle();
    menu->open(file("song.mrn.bak"));
    EXPECT_EQ(title(), "song.mrn.bak - Marnoth");
    EXPECT_EQ(projects->project().path(), "") << "saving asks for a name";
}

TEST_F(ProjectCommandsTest, ANewProjectIsEmptyAndPlaysNothing) {
    openChanged();
    writeText(folder / "beat.mid", kSong);
    menu->open(file("beat.mid"));
    window.answer("no");
    menu->useKey('N', {.shift = false, .control = true});
    EXPECT_EQ(title(), "Untitled - Marnoth");
    EXPECT_FALSE(song.isOpen());
}

TEST_F(ProjectCommandsTest, TheDemoComesWithItsMusicAndIsNeverWrittenOver) {
    projects->project().settle();
    menu->openDemo();
    EXPECT_EQ(volume(), 0.125f);
    EXPECT_EQ(title(), "Demo - Marnoth");
    EXPECT_EQ(song.name(), "groove.mid");
    EXPECT_TRUE(song.repeats());
    EXPECT_TRUE(settings.recent.empty());
    change(0.9f);
    window.answer(file("mine.mrn"));
    projects->save();
    EXPECT_EQ(title(), "mine.mrn - Marnoth");
    EXPECT_TRUE(song.isOpen()) << "it goes on";
    menu->openDemo();
    EXPECT_EQ(volume(), 0.125f);
}

TEST_F(ProjectCommandsTest, TheMusicOfTheDemoGoesWithIt) {
    saveWith(0.5f, file("other.mrn"));
    projects->project().settle();
    menu->openDemo();
    menu->open(file("other.mrn"));
    EXPECT_FALSE(song.isOpen());
    writeText(folder / "beat.mid", kSong);
    menu->open(file("beat.mid"));
    menu->open(file("other.mrn"));
    EXPECT_TRUE(song.isOpen()) << "the user has chosen it";
}

TEST_F(ProjectCommandsTest, FilesUsedLastAreOfferedTheLastOneFirst) {
    openChanged();
    writeText(folder / "beat.mid", kSong);
    menu->open(file("beat.mid"));
    window.answer("no");
    menu->open(file("song.mrn"));
    EXPECT_EQ(settings.recent, (Lines{file("song.mrn"), file("beat.mid")}));
    const std::vector<MenuItem> items = menu->items();
    EXPECT_EQ(items.back().text.substr(0, 8), "beat.mid");
    fs::remove(folder / "beat.mid");
    menu->choose(items.back().id);
    EXPECT_EQ(notice(), file("beat.mid") + " isn't there any more.");
    EXPECT_EQ(settings.recent, (Lines{file("song.mrn")}));
}

TEST_F(ProjectCommandsTest, AMidiFileThatCantBePlayedIsToldAndTheFormerStays) {
    writeText(folder / "beat.mid", kSong);
    writeText(folder / "broken.mid", kSong.substr(0, 30));
    menu->open(file("beat.mid"));
    menu->open(file("broken.mid"));
    EXPECT_EQ(song.name(), "beat.mid");
    EXPECT_NE(notice().find("broken.mid"), std::string::npos);
}

TEST_F(ProjectCommandsTest, OfFilesThatAreDroppedProjectsAndMidiFilesAreOpenedAsByTheMenu) {
    openChanged();
    writeText(folder / "beat.mid", kSong);
    writeText(folder / "loop.wav", "x");
    EXPECT_FALSE(menu->take(Lines{file("loop.wav")})) << "loops are the page's";
    window.answer("cancel");
    EXPECT_TRUE(menu->take(Lines{file("other.mrn"), file("beat.mid")}));
    EXPECT_EQ(song.name(), "beat.mid");
    EXPECT_EQ(window.takeLog(), (Lines{kAsksForChanges + "cancel"}));
    EXPECT_EQ(volume(), 0.75f);
    window.answer("no");
    EXPECT_TRUE(menu->take(Lines{file("other.mrn")}));
    EXPECT_EQ(title(), "other.mrn - Marnoth");
    EXPECT_EQ(settings.recent, (Lines{file("other.mrn"), file("beat.mid"), file("song.mrn")}));
    writeText(folder / "broken.mid", "x");
    EXPECT_TRUE(menu->take(Lines{file("broken.mid")}));
    EXPECT_NE(notice().find("broken.mid"), std::string::npos);
    EXPECT_EQ(song.name(), "beat.mid");
}

TEST_F(ProjectCommandsTest, WhatIsDroppedWithAProjectOrAMidiFileIsLeftOutAndThatIsTold) {
    writeText(folder / "beat.mid", kSong);
    EXPECT_TRUE(menu->take(Lines{file("beat.mid")}));
    EXPECT_EQ(notice(), "");
    writeText(folder / "loop.wav", "x");
    EXPECT_TRUE(menu->take(Lines{file("loop.wav"), file("beat.mid")}));
    EXPECT_EQ(notice(), "At once only a project and a MIDI file are opened; drop loops by themselves.");
    EXPECT_EQ(song.name(), "beat.mid");
}

TEST_F(ProjectCommandsTest, HowMidiFilesPlayIsKept) {
    const auto idOf = [&](const std::string& text) {
        for (const MenuItem& item : menu->items())
            if (item.text == text) return item.id;
        return 0;
    };
    menu->choose(idOf("MIDI files play in their own tempo"));
    menu->choose(idOf("MIDI files repeat"));
    EXPECT_FALSE(settings.songTempo);
    EXPECT_TRUE(settings.songRepeats);
    EXPECT_FALSE(song.followsTempo());
    EXPECT_TRUE(song.repeats());
}

TEST(IsSong, GoesByTheNameInAnyLetters) {
    EXPECT_TRUE(isSong("a.mid"));
    EXPECT_TRUE(isSong("/x/A.MIDI"));
    EXPECT_FALSE(isSong("a.mid.mrn"));
    EXPECT_FALSE(isSong("mid"));
}

TEST(DemoFiles, AreFoundBesideAnInstalledProgramAndInABuildTree) {
    const TempFolder folder;
    for (const char* const place : {"usr/share/marnoth/demo", "build/shells/desktop/demo"}) {
        fs::create_directories(folder / place);
        writeText(folder / place / "groove.mrn", "x");
        writeText(folder / place / "groove.mid", "x");
    }
    for (const char* const place : {"usr/bin", "build/shells/program", "elsewhere/bin"})
        fs::create_directories(folder / place);
    EXPECT_EQ(findDemo(folder / "usr/bin")->project, folder.name("usr/share/marnoth/demo/groove.mrn"));
    EXPECT_EQ(findDemo(folder / "build/shells/program")->song,
              folder.name("build/shells/desktop/demo/groove.mid"));
    EXPECT_FALSE(findDemo(folder / "elsewhere/bin"));
}

}  // namespace
}  // namespace marnoth::test::project_commands_test
