#include <ctime>

#include "engine/EditRig.h"
#include "support/AllocationMeter.h"

namespace marnoth::test::damaged_load_test {
namespace {

constexpr std::size_t kMostForARefusal = 1 << 20;

struct Attempt {
    HRESULT result;
    std::size_t peakBytes;
    double seconds;  ///< of the processor
};

Attempt attempt(EditRig& rig, const TempPath& file, const Bytes& content) {
    WaveFile::writeBytes(file.path(), content);
    const AllocationMeter meter;
    const std::clock_t start = std::clock();
    const HRESULT result = rig.load(file).result;
    return {result, meter.peakBytes(), static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC};
}

/// Plays the only file of the bin for a moment, whole and grain by grain, and takes it out again.
void playAndRemove(EditRig& rig) {
    rig.engine.LoadPadFromBin(0, 0);
    rig.engine.SetPadTail(0, 1);
    rig.engine.AuditionBinFile(0, -1);
    rig.engine.AuditionPad(0, -1);
    for (std::int32_t grain = 0; grain < std::min(rig.count(kBinLoop, 0), 4); ++grain) {
        rig.engine.AuditionPad(0, grain);
        for (const float value : rig.render(256)) ASSERT_TRUE(std::isfinite(value));
    }
    rig.engine.RemoveBinFile(0);
}

TEST(DamagedLoad, EveryByteAtEveryExtremeIsPlayedOrRefused) {
    EditRig rig(48000);
    rig.engine.SetAuditionEnabled(1);
    const TempPath file(".wav");
    WaveFile loop;
    loop.channels(2).frames(400, sine).acid({.flags = 2, .beats = 2}).strc(4, {{100}, {200, 2}, {300}});
    const Bytes sound = loop.bytes();
    const std::size_t audio = loop.offsetOf("data") + 8;
    int refused = 0;
    for (std::size_t at = 0; at < sound.size(); ++at) {
        if (at == audio) at = loop.offsetOf("acid");
        for (const std::uint8_t value : {0x00, 0x7F, 0x80, 0xFF}) {
            Bytes damaged = sound;
            damaged[at] = value;
            const Attempt now = attempt(rig, file, damaged);
            ASSERT_LT(now.seconds, 1.0) << at << ' ' << int{value};
            ASSERT_EQ(rig.binFiles(), now.result == S_OK ? 1 : 0) << at << ' ' << int{value};
            if (now.result == S_OK) {
                playAndRemove(rig);
            } else {
                ++refused;
                ASSERT_LT(now.peakBytes, kMostForARefusal) << at << ' ' << int{value};
            }
        }
    }
    EXPECT_GT(refused, 50);
}

TEST(DamagedLoad, LoopOfWhichNothingFitsIsRefusedBeforeItIsRead) {
    // 128 frames at 1 Hz would come to 45 MB at the engine's rate.
    EditRig rig;
    WaveFile loop;
    loop.rate(1).channels(2).frames(128, sine).acid({.beats = 4}).strc(4, {{.position = 129}});
    const Attempt now = attempt(rig, TempPath(".wav"), loop.bytes());
    EXPECT_EQ(now.result, E_UNEXPECTED);
    EXPECT_LT(now.peakBytes, kMostForARefusal);
}

TEST(DamagedLoad, SegmentThatRunsPastTheEndByLessThanAFrameAtTheNewRateFits) {
    // 1000 frames at 44100 Hz are 250 at 11025 Hz, and so are 1001.
    EditRig rig(11025);
    WaveFile loop;
    loop.frames(1000, sine).acid({.beats = 1}).strc(2, {{.position = 1001}});
    EXPECT_EQ(rig.load(loop).result, S_OK);
    EXPECT_EQ(rig.length(kBinLoop, 0), kBeat);
}

}  // namespace
}  // namespace marnoth::test::damaged_load_test
