#include <gtest/gtest.h>

#include "shellkit/TempFolder.h"
#include "shellkit/files/Failure.h"
#include "shellkit/files/ProjectFiles.h"
#include "shellkit/text/InstrumentText.h"
#include "support/ProjectBytes.h"

namespace marnoth::test::kit_project_files_test {
namespace {

/// A folder with `bytes` under a name.
struct Placed {
    Placed(const std::string& file, const Bytes& bytes) : name(folder.name(file)) {
        WaveFile::writeBytes(folder / file, bytes);
    }
    /// What reading it as a project fails with, without the name in front.
    std::string failure() const {
        try {
            readProjectFile(name);
            return {};
        } catch (const FileFailure& failure) {
            return std::string(failure.what()).substr(name.size());
        }
    }

    TempFolder folder;
    std::string name;
};

Bytes wrapped(const Bytes& form) {
    Bytes bytes(24, 'w');
    bytes.insert(bytes.end(), form.begin(), form.end());
    return bytes;
}

TEST(ProjectFiles, AProjectIsKnownByWhatItHoldsWhateverItsName) {
    const Bytes form = ProjectBytes().bytes();
    for (const char* name : {"p.mrn", "p.wav", "p", "p.x"}) {
        const Placed file(name, form);
        EXPECT_TRUE(isProject(file.name)) << name;
        EXPECT_EQ(file.failure(), "") << name;
    }
    EXPECT_TRUE(isProject(Placed("p", wrapped(form)).name));
    EXPECT_EQ(Placed("p", wrapped(form)).failure(), "");
}

TEST(ProjectFiles, AWaveIsNoneWhateverItsName) {
    EXPECT_FALSE(isProject(Placed("a.mrn", WaveFile().frames(10).bytes()).name));
}

TEST(ProjectFiles, WhatIsNeitherGoesByItsName) {
    const Bytes nonsense(100, 'x');
    EXPECT_TRUE(isProject(Placed("p.MRN", nonsense).name));
    EXPECT_FALSE(isProject(Placed("p.wav", nonsense).name));
    EXPECT_TRUE(isProject(Placed("p.mrn", wrapped(ProjectBytes().bytes())).name));
    EXPECT_EQ(Placed("p.mrn", wrapped(ProjectBytes().bytes())).failure(), ": it isn't a project");
    const TempFolder empty;
    EXPECT_TRUE(isProject(empty.name("none.mrn")));
    EXPECT_FALSE(isProject(empty.name("none.wav")));
}

TEST(ProjectFiles, AGrainBelowZeroIsRefusedAsAnInstrumentDoes) {
    ProjectBytes project;
    project.files.push_back(projectFile(16));
    project.pads[2] = padOf(project.files[0]);
    project.pads[2].grains[0].binGrain = -1;
    EXPECT_EQ(
        Placed("p.mrn", project.bytes()).failure(),
        ": it is damaged: a value in it is none that a project has (grain of the Loop Bin of grain 1 of "
        "pad 3: -1)");
}

TEST(ProjectFiles, ANameLongerThan259CharactersIsRefused) {
    EXPECT_THROW(readProjectFile(std::string(260, 'x')), FileFailure);
    EXPECT_THROW(checkSavePlace(std::string(256, 'x')), FileFailure);
}

TEST(ProjectFiles, ASaveGetsTheExtensionOnce) {
    EXPECT_EQ(savedName("groove"), "groove.mrn");
    EXPECT_EQ(savedName("groove.wav"), "groove.wav.mrn");
    EXPECT_EQ(savedName("groove.MRN"), "groove.MRN");
}

TEST(ProjectFiles, AShellHasNothingToSayBeforehandOfAWholeProject) {
    EXPECT_FALSE(adviceBeforeLoad(Placed("p.mrn", ProjectBytes().bytes()).name));
}

TEST(ProjectFiles, BeforehandItTellsWhatTheLoadOfADamagedProjectWouldFailWith) {
    Bytes cut = ProjectBytes().bytes();
    cut.resize(cut.size() - 1);
    const Placed file("p.mrn", cut);
    const std::optional<LoadAdvice> advice = adviceBeforeLoad(file.name);
    ASSERT_TRUE(advice);
    EXPECT_EQ(advice->text, "p.mrn isn't loaded" + file.failure() + ".");
    EXPECT_EQ(advice->instead, "");
}

TEST(ProjectFiles, BeforehandItAsksForWhatAnEndedSaveLeft) {
    const Placed file("p.mrn", Bytes(100, 'x'));
    WaveFile::writeBytes(file.folder / "p.mrn.bak", ProjectBytes().bytes());
    const std::optional<LoadAdvice> advice = adviceBeforeLoad(file.name);
    ASSERT_TRUE(advice);
    EXPECT_EQ(advice->instead, file.folder.name("p.mrn.bak"));
    EXPECT_TRUE(advice->text.ends_with("; what was saved before is in p.mrn.bak.  Load that?"))
        << advice->text;
}

TEST(ProjectFiles, BeforehandANameOutsideTheCodePageIsAsGoodAsAnother) {
    const TempFolder folder;
    const std::filesystem::path path = folder / pathFromUtf8("\u97f3\u4e50.mrn");
    WaveFile::writeBytes(path, ProjectBytes().bytes());
    EXPECT_FALSE(adviceBeforeLoad(utf8FromPath(path)));
    WaveFile::writeBytes(path, Bytes(100, 'x'));
    ASSERT_TRUE(adviceBeforeLoad(utf8FromPath(path)));
    EXPECT_EQ(adviceBeforeLoad(utf8FromPath(path))->text.find("rename"), std::string::npos);
}

}  // namespace
}  // namespace marnoth::test::kit_project_files_test
