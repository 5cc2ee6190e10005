#include <gtest/gtest.h>

#include "shellkit/TempFolder.h"
#include "shellkit/files/Failure.h"
#include "shellkit/files/ProjectFiles.h"
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

}  // namespace
}  // namespace marnoth::test::kit_project_files_test
