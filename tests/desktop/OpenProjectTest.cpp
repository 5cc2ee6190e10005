#include <gtest/gtest.h>

#include "shells/desktop/playing/LiveInstrument.h"
#include "shells/desktop/projects/OpenProject.h"

namespace marnoth::test::open_project_test {
namespace {

TEST(OpenProject, BeginsWithoutANameAndUnchanged) {
    LiveInstrument instrument;
    const OpenProject project(instrument.sampler());
    EXPECT_FALSE(project.hasChanged());
    EXPECT_EQ(project.title(), "Untitled - Marnoth");
}

TEST(OpenProject, ItsTitleShowsFileAndChanges) {
    LiveInstrument instrument;
    OpenProject project(instrument.sampler());
    project.holds("/home/me/groove.mrn");
    EXPECT_EQ(project.title(), "groove.mrn - Marnoth");
    instrument.sampler().SetPadVolume(0, 0.5f);
    EXPECT_TRUE(project.hasChanged());
    EXPECT_EQ(project.title(), "groove.mrn * - Marnoth");
    project.holds("/home/me/other.mrn");
    EXPECT_FALSE(project.hasChanged());
    EXPECT_EQ(project.name(), "other.mrn");
}

TEST(LiveInstrument, AStateComesBackWholeAndADamagedOneIsRefused) {
    LiveInstrument instrument;
    ASSERT_TRUE(instrument.prepare(44100, 256));
    instrument.sampler().SetPadVolume(3, 0.25f);
    auto state = instrument.saveState();
    ASSERT_TRUE(state);
    LiveInstrument other;
    ASSERT_TRUE(other.prepare(44100, 256));
    EXPECT_TRUE(other.loadState(*state));
    float volume = 0;
    other.sampler().GetPadVolume(3, &volume);
    EXPECT_EQ(volume, 0.25f);
    state->resize(state->size() / 2);
    EXPECT_FALSE(other.loadState(*state));
    EXPECT_FALSE(other.loadState({}));
}

}  // namespace
}  // namespace marnoth::test::open_project_test
