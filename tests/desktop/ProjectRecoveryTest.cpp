#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "platform/drawing/HeadlessWindow.h"
#include "shellkit/TempFolder.h"
#include "shells/desktop/projects/ProjectRecovery.h"

namespace marnoth::test::project_recovery_test {
namespace {

using namespace std::chrono_literals;

namespace fs = std::filesystem;

/// A program whose state folder is a test's.
class Program {
public:
    explicit Program(const fs::path& folder)
        : project(instrument.sampler()), recovery(instrument, project, window, notices, folder) {
        instrument.prepare(44100, 256);
        project.settle();
    }
    float volume() {
        float volume = 0;
        instrument.sampler().GetPadVolume(3, &volume);
        return volume;
    }
    void change() { instrument.sampler().SetPadVolume(3, 0.25f); }

    LiveInstrument instrument;
    OpenProject project;
    HeadlessWindow window;
    Notices notices;
    ProjectRecovery recovery;
};

fs::path copyIn(const fs::path& folder) {
    for (const auto& entry : fs::directory_iterator(folder))
        if (entry.path().extension() == ".state") return entry.path();
    return {};
}

/// Waits for what is written beside.
fs::path awaitCopy(const fs::path& folder) {
    for (int tries = 0; tries < 5000 && copyIn(folder).empty(); ++tries) std::this_thread::sleep_for(1ms);
    return copyIn(folder);
}

/// A program that has changed something and is ended by the system.
void endedByTheSystem(const fs::path& folder) {
    Program program(folder);
    program.change();
    program.recovery.keepChanges();
}

TEST(ProjectRecovery, CopiesWhatHasChangedSoonAfterTheStartAndTouchesNothingElse) {
    const TempFolder folder;
    const fs::path file = folder / "song.mrn";
    writeText(file, "as it was saved");
    writeText(folder / "song.mrn.bak", "before that");
    Program program(folder / "state");
    program.project.holds(file.string());
    const auto start = EventLoop::Time::clock::now();
    program.recovery.look(start + 61s);
    program.change();
    program.recovery.look(start + 9s);
    EXPECT_TRUE(copyIn(folder / "state").empty()) << "it isn't time yet, or nothing has changed";
    program.recovery.look(start + 11s);
    EXPECT_FALSE(awaitCopy(folder / "state").empty());
    EXPECT_EQ(program.project.path(), file.string());
    EXPECT_EQ(program.project.title(), "song.mrn * - Marnoth");
    EXPECT_EQ(readText(file), "as it was saved");
    EXPECT_EQ(readText(folder / "song.mrn.bak"), "before that");
}

TEST(ProjectRecovery, ThenCopiesEachMinuteInWhichSomethingChanges) {
    const TempFolder folder;
    Program program(folder / "state");
    const auto start = EventLoop::Time::clock::now();
    program.change();
    program.recovery.look(start + 100s);
    fs::remove(awaitCopy(folder / "state"));
    program.change();
    program.recovery.look(start + 159s);
    EXPECT_TRUE(copyIn(folder / "state").empty()) << "before the minute is over";
    // As often as the bar asks: the former copy's writer may not be done yet.
    for (int tries = 0; tries < 5000 && copyIn(folder / "state").empty(); ++tries) {
        program.recovery.look(start + 161s);
        std::this_thread::sleep_for(1ms);
    }
    EXPECT_FALSE(copyIn(folder / "state").empty());
}

TEST(ProjectRecovery, ChangesThatNobodyCouldSaveAreOfferedToTheNext) {
    const TempFolder folder;
    endedByTheSystem(folder / "state");
    Program next(folder / "state");
    EXPECT_TRUE(next.recovery.hasFound());
    next.window.answer("yes");
    bool isShown = false;
    next.recovery.offer([&] { isShown = true; });
    EXPECT_TRUE(isShown);
    EXPECT_EQ(next.volume(), 0.25f);
    EXPECT_TRUE(next.project.hasChanged()) << "it is in no file";
    EXPECT_EQ(next.project.name(), "Recovered");
}

TEST(ProjectRecovery, WhatTheUserDoesntWantGoes) {
    const TempFolder folder;
    endedByTheSystem(folder / "state");
    {
        Program next(folder / "state");
        next.window.answer("no");
        next.recovery.offer([] {});
        EXPECT_NE(next.volume(), 0.25f);
    }
    EXPECT_FALSE(Program(folder / "state").recovery.hasFound());
}

TEST(ProjectRecovery, WhatIsDamagedIsKeptAndToldAndCostsNothing) {
    const TempFolder folder;
    endedByTheSystem(folder / "state");
    const fs::path copy = copyIn(folder / "state");
    fs::resize_file(copy, fs::file_size(copy) / 2);
    Program next(folder / "state");
    next.change();
    next.window.answer("yes");
    next.recovery.offer([] { ADD_FAILURE() << "it can't be read"; });
    EXPECT_EQ(next.volume(), 0.25f) << "what is open stays";
    EXPECT_TRUE(fs::exists(folder / "state" / "unreadable-1.state"));
    EXPECT_NE(next.notices.current({}).text.find("unreadable-1.state"), std::string::npos);
}

TEST(ProjectRecovery, WhatIsPutOffIsThereTheNextTime) {
    const TempFolder folder;
    endedByTheSystem(folder / "state");
    {
        Program next(folder / "state");
        next.window.answer("cancel");
        next.recovery.offer([] {});
    }
    EXPECT_TRUE(Program(folder / "state").recovery.hasFound());
}

TEST(ProjectRecovery, WithoutChangesNothingIsKept) {
    const TempFolder folder;
    {
        Program program(folder / "state");
        program.recovery.keepChanges();
    }
    EXPECT_FALSE(Program(folder / "state").recovery.hasFound());
}

}  // namespace
}  // namespace marnoth::test::project_recovery_test
