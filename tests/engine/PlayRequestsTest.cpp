#include "engine/EditRig.h"

namespace marnoth::test::play_requests_test {
namespace {

using Sampler = IGrooveSampler;

/// Pad 0 with a loop of four beats at 120 beats per minute, and the file's audition.
struct PlayRequestsTest : testing::Test {
    void SetUp() override { ASSERT_EQ(rig.lay(0, loopFile(4)).result, S_OK); }

    float peak(std::int64_t frames, std::size_t pin = 0) {
        float highest = 0;
        for (const float value : rig.render(frames, 512, pin)) highest = std::max(highest, std::abs(value));
        return highest;
    }
    bool padPlays() { return rig.get(&Sampler::GetPadPlaying, 0) != 0; }
    bool filePlays() { return rig.get(&Sampler::GetBinPlaying, 0) != 0; }

    EditRig rig;
};

TEST_F(PlayRequestsTest, AuditioningAPadStartsItAtTheNextBlock) {
    EXPECT_EQ(rig.engine.AuditionPad(0, -1), S_OK);
    EXPECT_FALSE(padPlays());
    rig.block(512);
    EXPECT_TRUE(padPlays());
}

TEST_F(PlayRequestsTest, StoppingAOneShotPadDoesNothingAndStoppingAllStopsIt) {
    rig.engine.AuditionPad(0, -1);
    rig.block(512);
    EXPECT_EQ(rig.engine.StopPad(0), S_OK);
    EXPECT_GT(peak(22050), 0.1f);
    EXPECT_TRUE(padPlays());
    EXPECT_EQ(rig.engine.StopPad(-1), S_OK);
    rig.render(2048);
    EXPECT_EQ(peak(4096), 0.0f);
    EXPECT_FALSE(padPlays());
}

TEST_F(PlayRequestsTest, StoppingAPadThatIsNotOneShotStopsIt) {
    rig.engine.SetPadOneShot(0, 0);
    rig.engine.AuditionPad(0, -1);
    rig.block(512);
    rig.engine.StopPad(0);
    EXPECT_GT(peak(512), 0.0f) << "the fade-out";
    rig.render(2048);
    EXPECT_EQ(peak(4096), 0.0f);
}

TEST_F(PlayRequestsTest, AGrainIsAuditionedOnlyWithTheOptionOn) {
    EXPECT_EQ(rig.engine.AuditionPad(0, 3), S_OK);
    EXPECT_EQ(peak(4096), 0.0f);
    rig.engine.SetAuditionEnabled(1);
    EXPECT_EQ(rig.engine.AuditionPad(0, 3), S_OK);
    EXPECT_GT(peak(4096), 0.1f);
    EXPECT_FALSE(padPlays()) << "the grain plays, not the pad";
    rig.render(8192);
    EXPECT_EQ(peak(8192), 0.0f) << "a quarter of a beat and it is over";
}

TEST_F(PlayRequestsTest, ABadGrainWithTheOptionOnDoesNothing) {
    rig.engine.SetAuditionEnabled(1);
    for (const std::int32_t grain : {16, -2, INT32_MAX}) {
        EXPECT_EQ(rig.engine.AuditionPad(0, grain), S_OK);
        EXPECT_EQ(rig.engine.AuditionBinFile(0, grain), S_OK);
    }
    EXPECT_EQ(rig.engine.AuditionBinFile(1, 0), S_OK);
    EXPECT_EQ(peak(2048), 0.0f);
}

TEST_F(PlayRequestsTest, AnAuditionedGrainStartsAtOnceWhereverItLiesOnThePad) {
    rig.engine.SetAuditionEnabled(1);
    rig.engine.AuditionPad(0, 9);
    const std::vector<float> audio = rig.render(3000);
    // Grain 9 of 16 begins at frame 9 * 88200 / 16 of the file; behind the fade-in it plays unchanged.
    const std::int64_t first = 9 * 88200 / 16;
    for (std::int64_t i = 100; i < 3000; ++i) {
        const double value = std::round(sine(first + i, 0) * 32768) / 32768;
        ASSERT_NEAR(audio[static_cast<std::size_t>(i) * 2], value, 1e-6) << i;
    }
}

TEST_F(PlayRequestsTest, AnAuditionedGrainGoesToTheOutputOfItsPad) {
    rig.engine.SetAuditionEnabled(1);
    rig.engine.SetPadOutput(0, 5);
    rig.engine.AuditionPad(0, 0);
    rig.block(512);
    EXPECT_NE(rig.audio[5][200], 0.0f);
    rig.engine.SetPadOutput(0, 0);
    rig.engine.AuditionBinFile(0, 0);
    rig.block(512);
    EXPECT_NE(rig.audio[5][200], 0.0f) << "a file's grain goes where the last one went";
    rig.engine.AuditionPad(0, -1);
    rig.block(512);
    EXPECT_EQ(rig.audio[5][200], 0.0f) << "a whole pad takes the output along";
}

TEST_F(PlayRequestsTest, AFilesAuditionGoesOnUntilItIsStopped) {
    EXPECT_FALSE(filePlays());
    EXPECT_EQ(rig.engine.AuditionBinFile(0, -1), S_OK);
    EXPECT_TRUE(filePlays()) << "requested is going";
    rig.render(3 * 88200);
    EXPECT_GT(peak(4096), 0.1f);
    EXPECT_TRUE(filePlays());
    EXPECT_EQ(rig.engine.StopBinAudition(0), S_OK);
    EXPECT_FALSE(filePlays());
    EXPECT_EQ(peak(1024), 0.0f) << "it ends without a fade";
}

TEST_F(PlayRequestsTest, ASingleGrainFileLoopsInTheBinThoughNotOnAPad) {
    WaveFile file;
    file.frames(4410, sine);
    ASSERT_EQ(rig.lay(1, file).bin, 1);
    rig.engine.AuditionPad(1, -1);
    EXPECT_GT(peak(4096), 0.1f);
    rig.render(4096);
    EXPECT_EQ(peak(4096), 0.0f) << "the pad has played out";
    rig.engine.AuditionBinFile(1, -1);
    rig.render(10 * 4410);
    EXPECT_GT(peak(4096), 0.1f);
}

TEST_F(PlayRequestsTest, AllAuditionsStopAtOnce) {
    rig.load(loopFile(1));
    rig.engine.AuditionBinFile(0, -1);
    rig.engine.AuditionBinFile(1, -1);
    rig.block(512);
    EXPECT_EQ(rig.engine.StopBinAudition(-1), S_OK);
    EXPECT_EQ(rig.get(&Sampler::GetBinPlaying, 0), 0u);
    EXPECT_EQ(rig.get(&Sampler::GetBinPlaying, 1), 0u);
    EXPECT_EQ(peak(1024), 0.0f);
}

TEST_F(PlayRequestsTest, BadIndicesAreRefused) {
    std::uint32_t value = 55;
    for (const std::int32_t index : {-2, 16, INT32_MAX}) {
        EXPECT_EQ(rig.engine.StopPad(index), E_INVALIDARG);
        EXPECT_EQ(rig.engine.StopBinAudition(index), E_INVALIDARG);
    }
    for (const std::int32_t index : {-1, 16}) {
        EXPECT_EQ(rig.engine.AuditionPad(index, -1), E_INVALIDARG);
        EXPECT_EQ(rig.engine.AuditionBinFile(index, -1), E_INVALIDARG);
        EXPECT_EQ(rig.engine.GetPadPlaying(index, &value), E_INVALIDARG);
        EXPECT_EQ(rig.engine.GetBinPlaying(index, &value), E_INVALIDARG);
    }
    EXPECT_EQ(value, 55u);
    EXPECT_EQ(rig.engine.GetPadPlaying(0, nullptr), E_POINTER);
    EXPECT_EQ(rig.engine.GetBinPlaying(0, nullptr), E_POINTER);
}

}  // namespace
}  // namespace marnoth::test::play_requests_test
