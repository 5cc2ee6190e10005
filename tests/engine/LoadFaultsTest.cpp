#include <string>
#include <thread>

#include "engine/ProjectRig.h"

namespace marnoth::test::load_faults_test {
namespace {

using Kind = FaultKind;
using Quantity = FaultQuantity;

LoadFault faultOf(IMarnothFaults& instrument) {
    LoadFault fault{.kind = Kind::cannotRead};
    EXPECT_EQ(instrument.GetLoadFault(&fault), S_OK);
    return fault;
}

/// Of loading a file into the Loop Bin, whose code is `result`.
LoadFault faultOf(const WaveFile& file, HRESULT result) {
    EditRig rig;
    EXPECT_EQ(rig.load(file).result, result);
    return faultOf(rig.engine);
}

TEST(LoadFault, IsNoneBeforeAnyLoadAndAfterOneThatWorked) {
    EditRig rig;
    EXPECT_FALSE(faultOf(rig.engine));
    rig.load(TempPath(".wav"));
    EXPECT_TRUE(faultOf(rig.engine));
    EXPECT_EQ(rig.load(loopFile(2)).result, S_OK);
    EXPECT_FALSE(faultOf(rig.engine));
    EXPECT_EQ(rig.engine.GetLoadFault(nullptr), E_POINTER);
}

TEST(LoadFault, OfAFileThatTheReaderRefuses) {
    EXPECT_EQ(faultOf(plainFile(1).formType("AVI "), E_INVALIDARG).kind, Kind::notAWave);
}

TEST(LoadFault, OfAFileThatBreaksALimit) {
    EXPECT_EQ(faultOf(loopFile(65), E_UNEXPECTED), badValue(Quantity::beats, 65, 0, 64));
    EXPECT_EQ(faultOf(plainFile(31), E_UNEXPECTED), badReal(Quantity::shotSeconds, 31, 0, 30));
    EXPECT_EQ(faultOf(plainFile(129).acid({.beats = 8}), E_UNEXPECTED),
              badReal(Quantity::loopSeconds, 129, 0, 128));
    EXPECT_EQ(faultOf(plainFile(1).rate(0), E_UNEXPECTED), badValue(Quantity::rate, 0, 1, 0xFFFFFFFF));
}

TEST(LoadFault, OfALoopWhoseFirstGrainRunsPastItsEnd) {
    // The one marker of 100 frames lies behind the 50 frames that there are: the first segment is too long.
    EXPECT_EQ(faultOf(WaveFile().frames(50).acid({}).strc(4, {{100}}), E_UNEXPECTED).kind, Kind::noGrains);
}

TEST(LoadFault, OfAFormatThatIsNotTaken) {
    const LoadFault fault = faultOf(WaveFile().bits(8).frames(100), E_FAIL);
    EXPECT_EQ(fault.kind, Kind::formatNotTaken);
    EXPECT_EQ(fault.bits, 8);
    EXPECT_EQ(fault.formatTag, 1);
}

TEST(LoadFault, OfAFileForAPad) {
    EditRig rig;
    EXPECT_EQ(rig.lay(3, loopFile(65)).result, E_UNEXPECTED);
    EXPECT_EQ(faultOf(rig.engine).quantity, Quantity::beats);
    // A pad that there isn't is no load.
    EXPECT_EQ(rig.lay(16, loopFile(2)).result, E_INVALIDARG);
    EXPECT_EQ(faultOf(rig.engine).quantity, Quantity::beats);
}

TEST(LoadFault, OfAProjectInAFileAndInAStream) {
    ProjectRig rig;
    ProjectBytes project = twoFilesFourPads();
    project.padCount = 15;
    const LoadFault fault = badValue(Quantity::pads, 15, 16, 16, {fourCC("comn")});
    EXPECT_EQ(rig.loadProject(project), E_FAIL);
    EXPECT_EQ(faultOf(rig.engine), fault);
    EXPECT_EQ(rig.loadStream(Bytes{}), E_FAIL);
    EXPECT_EQ(faultOf(rig.engine).kind, Kind::notAProject);
    EXPECT_EQ(rig.loadStream(project.bytes()), E_FAIL);
    EXPECT_EQ(faultOf(rig.engine), fault);
    EXPECT_EQ(rig.loadProject(twoFilesFourPads()), S_OK);
    EXPECT_FALSE(faultOf(rig.engine));
}

TEST(LoadFault, OfAGrainBelowZeroStandsBesideTheException) {
    ProjectRig rig;
    ProjectBytes project = twoFilesFourPads();
    project.pads[5].grains[1].binGrain = -7;
    EXPECT_THROW(rig.loadProject(project), std::invalid_argument);
    const LoadFault fault = badValue(Quantity::binGrain, -7, 0, 0x7FFFFFFF, {fourCC("pevt"), 5, 1});
    EXPECT_EQ(faultOf(rig.engine), fault);
}

TEST(LoadFault, OfAStreamThatCannotTellItsPosition) {
    ProjectRig rig;
    FaultyStream stream(twoFilesFourPads().bytes());
    stream.failFromCall = 1;
    EXPECT_TRUE(FAILED(rig.engine.LoadState(&stream)));
    EXPECT_EQ(faultOf(rig.engine).kind, Kind::cannotRead);
}

std::uint32_t lenientFiles(IMarnothOptions& instrument) {
    std::uint32_t on = 99;
    EXPECT_EQ(instrument.GetLenientFiles(&on), S_OK);
    return on;
}

LoadFault damageOf(IMarnothFaults& instrument) {
    LoadFault damage{.kind = Kind::cannotRead};
    EXPECT_EQ(instrument.GetLoadDamage(&damage), S_OK);
    return damage;
}

TEST(LenientFiles, AreOffUntilTheyAreAskedForAndBelongToTheInstrument) {
    EditRig rig;
    EditRig other;
    EXPECT_EQ(lenientFiles(rig.engine), 0u);
    EXPECT_EQ(rig.engine.SetLenientFiles(7), S_OK);
    EXPECT_EQ(lenientFiles(rig.engine), 1u);
    EXPECT_EQ(lenientFiles(other.engine), 0u);
    rig.engine.SetLenientFiles(0);
    EXPECT_EQ(lenientFiles(rig.engine), 0u);
    EXPECT_EQ(rig.engine.GetLenientFiles(nullptr), E_POINTER);
}

TEST(LenientFiles, AreInNoProject) {
    ProjectRig rig;
    rig.engine.SetLenientFiles(1);
    EXPECT_EQ(rig.loadProject(twoFilesFourPads()), S_OK);
    EXPECT_EQ(lenientFiles(rig.engine), 1u);
    rig.engine.ClearProject();
    EXPECT_EQ(lenientFiles(rig.engine), 1u);
}

TEST(LenientFiles, AFileFromAPipeLoadsAndIsTold) {
    EditRig rig;
    const TempPath file = plainFile(1).claim("data", 0).claim("RIFF", 0).writeTemp();
    EXPECT_EQ(rig.load(file).result, E_INVALIDARG);
    EXPECT_FALSE(damageOf(rig.engine));
    rig.engine.SetLenientFiles(1);
    EXPECT_EQ(rig.lay(0, file).result, S_OK);
    EXPECT_EQ(damageOf(rig.engine).kind, Kind::lengthUnknown);
    EXPECT_FALSE(faultOf(rig.engine));
    // One second is two beats at 120.
    EXPECT_EQ(rig.length(kPadLoop, 0), 2 * kBeat);
    EXPECT_EQ(rig.load(loopFile(2)).result, S_OK);
    EXPECT_FALSE(damageOf(rig.engine));
    EXPECT_EQ(rig.engine.GetLoadDamage(nullptr), E_POINTER);
}

TEST(LenientFiles, ADamagedFileThatIsRefusedTellsItsFaultAlone) {
    EditRig rig;
    rig.engine.SetLenientFiles(1);
    EXPECT_EQ(rig.load(plainFile(31).claim("data", 0x7FFFFFFF)).result, E_UNEXPECTED);
    EXPECT_EQ(faultOf(rig.engine), badReal(Quantity::shotSeconds, 31, 0, 30));
    EXPECT_FALSE(damageOf(rig.engine));
}

TEST(LoadFault, BelongsToTheThreadThatLoaded) {
    EditRig rig;
    rig.load(loopFile(65));
    LoadFault theirs;
    std::thread([&] {
        EXPECT_FALSE(faultOf(rig.engine));
        rig.load(plainFile(31));
        theirs = faultOf(rig.engine);
    }).join();
    EXPECT_EQ(theirs.quantity, Quantity::shotSeconds);
    EXPECT_EQ(faultOf(rig.engine).quantity, Quantity::beats);
}

TEST(LoadFault, BelongsToTheInstrumentThatLoaded) {
    EditRig one;
    EditRig other;
    one.load(loopFile(65));
    EXPECT_FALSE(faultOf(other.engine));
    other.load(plainFile(31));
    EXPECT_EQ(faultOf(other.engine).quantity, Quantity::shotSeconds);
    EXPECT_FALSE(faultOf(one.engine));
}

}  // namespace
}  // namespace marnoth::test::load_faults_test
