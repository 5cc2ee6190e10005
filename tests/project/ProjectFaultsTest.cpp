#include <cmath>
#include <filesystem>
#include <functional>
#include <limits>

#include "platform/text/Text.h"
#include "project/ProjectFile.h"
#include "project/ReadProject.h"

namespace marnoth::test::project_faults_test {
namespace {

using Kind = FaultKind;
using Quantity = FaultQuantity;

constexpr std::int64_t kLowest = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kHighest = std::numeric_limits<std::int64_t>::max();

/// The fault of two files and four pads after a change.
LoadFault faultAfter(const std::function<void(ProjectBytes&)>& change) {
    ProjectBytes project = twoFilesFourPads();
    change(project);
    return readFault(project);
}

TEST(ProjectFault, ASoundProjectHasNone) {
    EXPECT_EQ(readFault(twoFilesFourPads()), LoadFault{});
}

TEST(ProjectFault, TellsWhatIsNoProject) {
    EXPECT_EQ(faultAfter([](auto& p) { p.formType = "marm"; }).kind, Kind::notAProject);
    Project ignored;
    EXPECT_EQ(readFault(Bytes{}, ignored).kind, Kind::notAProject);
}

TEST(ProjectFault, TellsASaveThatWasNeverFinished) {
    EXPECT_EQ(faultAfter([](auto& p) { p.formBytes = 0; }).kind, Kind::neverFinished);
}

TEST(ProjectFault, CountsTheBytesThatAreMissing) {
    const Bytes bytes = twoFilesFourPads().bytes();
    // Any end behind the header of the form.
    for (const std::size_t missing : {std::size_t{1}, std::size_t{100}, bytes.size() - 12}) {
        Project ignored;
        const LoadFault fault =
            readFault(Bytes(bytes.begin(), bytes.end() - static_cast<std::ptrdiff_t>(missing)), ignored);
        EXPECT_EQ(fault.kind, Kind::cutShort);
        EXPECT_EQ(fault.value, FaultNumber(static_cast<std::int64_t>(missing)));
    }
}

TEST(ProjectFault, NamesAChunkThatIsMissing) {
    const auto placeWithout = [](const char(&id)[5]) {
        const LoadFault fault = faultAfter([&](auto& p) { p.leaveOut = id; });
        EXPECT_EQ(fault.kind, Kind::chunkMissing) << id;
        EXPECT_EQ(fault.place.chunk, fourCC(id));
        return fault.place.owner;
    };
    EXPECT_EQ(placeWithout("comn"), -1);
    EXPECT_EQ(placeWithout("keym"), -1);
    EXPECT_EQ(placeWithout("lbtr"), 0);
    EXPECT_EQ(placeWithout("RIFF"), 0);
    EXPECT_EQ(placeWithout("fmt "), 0);
    EXPECT_EQ(placeWithout("data"), 0);
    EXPECT_EQ(placeWithout("lbte"), 0);
    EXPECT_EQ(placeWithout("pdtr"), 0);
    EXPECT_EQ(placeWithout("pevt"), 0);
    // The third of two files.
    const LoadFault third = faultAfter([](auto& p) { p.binCount = 3; });
    EXPECT_EQ(third.kind, Kind::chunkMissing);
    EXPECT_EQ(third.place, (FaultPlace{fourCC("lbtr"), 2}));
}

TEST(ProjectFault, NamesAChunkThatIsTooSmallForWhatItHolds) {
    const LoadFault keys = faultAfter([](auto& p) { p.keys.resize(15), p.keyCount = 16; });
    EXPECT_EQ(keys.kind, Kind::chunkDamaged);
    EXPECT_EQ(keys.place, (FaultPlace{fourCC("keym"), -1, 15}));
    const LoadFault text = faultAfter([](auto& p) { p.files[1].pathLength = 250; });
    EXPECT_EQ(text.kind, Kind::chunkDamaged);
    EXPECT_EQ(text.place, (FaultPlace{fourCC("lbtr"), 1}));
    const LoadFault audio = faultAfter([](auto& p) { p.files[1].dataBytes = 0x7FFFFFF0; });
    EXPECT_EQ(audio.kind, Kind::chunkDamaged);
    EXPECT_EQ(audio.place, (FaultPlace{fourCC("data"), 1}));
}

struct BadValue {
    std::function<void(ProjectBytes&)> change;
    LoadFault fault;
};

TEST(ProjectFault, TellsAnIntegerThatIsOutOfItsRangeAndWhereItStands) {
    const FaultPlace header{fourCC("comn")};
    const FaultPlace secondKey{fourCC("keym"), -1, 1};
    const FaultPlace firstFile{fourCC("lbtr"), 0};
    const std::vector<BadValue> all{
        {[](auto& p) { p.version = 2; }, badValue(Quantity::version, 2, 1, 1, header)},
        {[](auto& p) { p.binCount = 17; }, badValue(Quantity::files, 17, 0, 16, header)},
        {[](auto& p) { p.binCount = -1; }, badValue(Quantity::files, -1, 0, 16, header)},
        {[](auto& p) { p.padCount = 15; }, badValue(Quantity::pads, 15, 16, 16, header)},
        {[](auto& p) { p.keyCount = 17; }, badValue(Quantity::keyRecords, 17, 0, 16, {fourCC("keym")})},
        {[](auto& p) { p.keys[1].pad = 16; }, badValue(Quantity::pad, 16, 0, 15, secondKey)},
        {[](auto& p) { p.keys[1].lowKey = -1; }, badValue(Quantity::lowKey, -1, 0, kHighest, secondKey)},
        {[](auto& p) { p.keys[1].highKey = 128; }, badValue(Quantity::highKey, 128, kLowest, 127, secondKey)},
        {[](auto& p) { p.keys[1].lowVelocity = -2; },
         badValue(Quantity::lowVelocity, -2, 0, kHighest, secondKey)},
        {[](auto& p) { p.keys[1].highVelocity = 200; },
         badValue(Quantity::highVelocity, 200, kLowest, 127, secondKey)},
        {[](auto& p) { p.files[0].index = 16; }, badValue(Quantity::fileIndex, 16, 0, 15, firstFile)},
        {[](auto& p) { p.files[0].name = std::string(260, 'x'); },
         badValue(Quantity::textBytes, 260, 0, 259, firstFile)},
        {[](auto& p) { p.files[0].settings.midiChannel = -2; },
         badValue(Quantity::midiChannel, -2, -1, 15, firstFile)},
        {[](auto& p) { p.files[1].channels = 3; },
         badValue(Quantity::channels, 3, 1, 2, {fourCC("fmt "), 1})},
        {[](auto& p) { p.files[1].rate = 96001; },
         badValue(Quantity::rate, 96001, 11025, 96000, {fourCC("fmt "), 1})},
        // 65 frames of mono floats are there, with the guard frame.
        {[](auto& p) { p.files[0].settings.lengthSamples = 66; },
         badValue(Quantity::loopFrames, 66, 0, 65, {fourCC("data"), 0})},
        {[](auto& p) { p.files[1].grains[1].binFile = 16; },
         badValue(Quantity::binFile, 16, std::numeric_limits<std::int32_t>::min(), 15,
                  {fourCC("lbte"), 1, 1})},
        {[](auto& p) { p.pads[3].settings.lengthSamples = 12288001; },
         badValue(Quantity::loopFrames, 12288001, 0, 12288000, {fourCC("pdtr"), 3})},
        {[](auto& p) { p.pads[5].grains[1].binFile = -1; },
         badValue(Quantity::binFile, -1, 0, 15, {fourCC("pevt"), 5, 1})},
        {[](auto& p) { p.pads[5].grainCount = 3; }, badValue(Quantity::grains, 3, 0, 2, {fourCC("pevt"), 5})},
    };
    for (const BadValue& bad : all) {
        const LoadFault fault = faultAfter(bad.change);
        EXPECT_EQ(fault, bad.fault) << static_cast<int>(bad.fault.quantity) << " "
                                    << static_cast<int>(fault.kind);
    }
}

TEST(ProjectFault, TellsARealNumberThatIsNone) {
    constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
    constexpr double kInf = std::numeric_limits<double>::infinity();
    const LoadFault volume = faultAfter([](auto& p) { p.pads[4].settings.volume = float(kInf); });
    EXPECT_EQ(volume.kind, Kind::badValue);
    EXPECT_EQ(volume.quantity, Quantity::volume);
    EXPECT_EQ(volume.value, FaultNumber(kInf));
    EXPECT_EQ(volume.place, (FaultPlace{fourCC("pdtr"), 4}));
    const LoadFault pitch = faultAfter([](auto& p) { p.pads[2].grains[3].pitchRatio = kNan; });
    EXPECT_EQ(pitch.quantity, Quantity::pitch);
    EXPECT_TRUE(std::isnan(std::get<double>(pitch.value)));
    EXPECT_EQ(pitch.place, (FaultPlace{fourCC("pevt"), 2, 3}));
    const LoadFault pan = faultAfter([](auto& p) { p.files[1].grains[0].pan = -kInf; });
    EXPECT_EQ(pan.quantity, Quantity::pan);
    EXPECT_EQ(pan.place, (FaultPlace{fourCC("lbte"), 1, 0}));
}

TEST(ProjectFault, TheFaultOfTheMomentIsTheFirstInTheOrderOfTheForm) {
    const LoadFault fault = faultAfter([](auto& p) {
        p.pads[5].grains[1].binFile = -1;
        p.files[1].channels = 3;
        p.leaveOut = "pevt";
    });
    EXPECT_EQ(fault.quantity, Quantity::channels);
}

/// A file of a name that is as asked, in a folder without a "." in its name.
class NamedFile {
public:
    NamedFile(const std::string& name, const Bytes& bytes) : path_(folder_.path() / name) {
        std::filesystem::create_directories(folder_.path());
        WaveFile::writeBytes(path_, bytes);
    }
    ~NamedFile() {
        std::error_code ignored;
        std::filesystem::remove_all(folder_.path(), ignored);
    }

    /// The fault of opening and reading it.
    LoadFault fault() const {
        RiffStream stream;
        Project ignored;
        if (const LoadFault fault = openProject(stream, wideFromPath(path_))) return fault;
        return readProject(stream, ignored);
    }

private:
    TempPath folder_;
    std::filesystem::path path_;
};

Bytes wrapped(const Bytes& form) {
    Bytes bytes(24, 'w');
    bytes.insert(bytes.end(), form.begin(), form.end());
    return bytes;
}

TEST(ProjectFile, MayHaveAWrapperWhereItsNameHasNoExtension) {
    const Bytes form = twoFilesFourPads().bytes();
    EXPECT_FALSE(NamedFile("project", form).fault());
    EXPECT_FALSE(NamedFile("project", wrapped(form)).fault());
    EXPECT_EQ(NamedFile("project", Bytes{'R', 'I'}).fault().kind, Kind::notAProject);
}

TEST(ProjectFile, HasNoWrapperWhereItsNameHasAPoint) {
    const Bytes form = twoFilesFourPads().bytes();
    for (const char* name : {"project.mrn", "project.bin", "pro.ject"}) {
        EXPECT_FALSE(NamedFile(name, form).fault()) << name;
        EXPECT_EQ(NamedFile(name, wrapped(form)).fault().kind, Kind::notAProject) << name;
    }
}

TEST(ProjectFile, TellsWhyItCannotBeOpened) {
    const auto faultOf = [](const std::wstring& name) {
        RiffStream stream;
        return openProject(stream, name);
    };
    EXPECT_EQ(faultOf(wideFromPath(TempPath(".mrn").path())).kind, Kind::noSuchFile);
    EXPECT_EQ(faultOf(wideFromPath(std::filesystem::temp_directory_path())).kind, Kind::notAFile);
    EXPECT_EQ(faultOf(std::wstring(300, L'x')), badValue(Quantity::pathCharacters, 300, 1, 259));
}

}  // namespace
}  // namespace marnoth::test::project_faults_test
