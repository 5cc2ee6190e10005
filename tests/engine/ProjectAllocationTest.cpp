#include <functional>

#include "engine/ProjectRig.h"
#include "support/AllocationMeter.h"

namespace marnoth::test::project_allocation_test {
namespace {

constexpr std::size_t kMostForARefusal = 1 << 20;

/// A stream that claims to be far larger than it is.
class BoastfulStream final : public FaultyStream {
public:
    using FaultyStream::FaultyStream;
    HRESULT Stat(STATSTG* out, DWORD flags) override {
        const HRESULT result = FaultyStream::Stat(out, flags);
        out->cbSize.QuadPart = 0x7FFFFFFFFFFF;
        return result;
    }
};

/// The most that is taken at a time while a broken project is refused.
template <class Stream = FaultyStream>
std::size_t peakOfRefusal(const std::function<void(ProjectBytes&)>& breakIt, bool knowsSize = true) {
    ProjectBytes project = twoFilesFourPads(16);
    breakIt(project);
    ProjectRig rig;
    Stream stream(project.bytes());
    stream.knowsSize = knowsSize;
    const AllocationMeter meter;
    EXPECT_EQ(rig.engine.LoadState(&stream), E_FAIL);
    return meter.peakBytes();
}

TEST(ProjectAllocation, NothingIsTakenForAudioThatIsNotThere) {
    const auto claimMuch = [](ProjectBytes& project) { project.files[1].dataBytes = 0xFFFFFFF0; };
    EXPECT_LT(peakOfRefusal(claimMuch), kMostForARefusal);
    EXPECT_LT(peakOfRefusal(claimMuch, false), kMostForARefusal);
    EXPECT_LT(peakOfRefusal<BoastfulStream>(claimMuch), kMostForARefusal);
    const auto claimLength = [](ProjectBytes& project) {
        project.files[1].settings.lengthSamples = 12288000;
        project.files[1].dataBytes = 2 * 4 * 12288001;
    };
    EXPECT_LT(peakOfRefusal(claimLength), kMostForARefusal);
    EXPECT_LT(peakOfRefusal(claimLength, false), kMostForARefusal);
    EXPECT_LT(peakOfRefusal<BoastfulStream>(claimLength), kMostForARefusal);
}

TEST(ProjectAllocation, NothingIsTakenForGrainsThatAreNotThere) {
    const auto claimMany = [](ProjectBytes& project) { project.pads[15].grainCount = 0x7FFFFFFF; };
    EXPECT_LT(peakOfRefusal(claimMany), kMostForARefusal);
    EXPECT_LT(peakOfRefusal<BoastfulStream>(claimMany), kMostForARefusal);
    EXPECT_LT(peakOfRefusal([](ProjectBytes& p) { p.files[0].grainCount = 0x01000000; }), kMostForARefusal);
}

TEST(ProjectAllocation, NothingIsTakenForTailsThatTheAudioDoesNotJustify) {
    const auto manyTails = [](ProjectBytes& project) {
        project.files[0] = projectFile(4000);
        project.pads[0].grains.clear();
        for (std::int64_t i = 0; i < 1000; ++i) {
            ProjectBytes::Grain grain;
            grain.lengthSamples = 4000 - i;
            project.pads[0].grains.push_back(grain);
        }
    };
    EXPECT_LT(peakOfRefusal(manyTails), 2 * kMostForARefusal);
}

TEST(ProjectAllocation, ALoadTakesWhatTheFileJustifies) {
    ProjectBytes project = twoFilesFourPads(200000);
    ProjectRig rig;
    FaultyStream stream(project.bytes());
    const AllocationMeter meter;
    EXPECT_EQ(rig.engine.LoadState(&stream), S_OK);
    // The audio, its tails of twice its length, and little more.
    EXPECT_LT(meter.peakBytes(), 3 * stream.bytes.size() + kMostForARefusal);
}

}  // namespace
}  // namespace marnoth::test::project_allocation_test
