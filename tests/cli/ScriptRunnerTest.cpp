#include <gtest/gtest.h>

#include "cli/CliRun.h"
#include "shellkit/media/WaveFrames.h"
#include "support/WaveFile.h"

namespace marnoth::test::script_runner_test {
namespace {

/// The reason that a run ended with, without the file's name; its status must be 2.
std::string errorOf(const std::string& script) {
    const TempFolder folder;
    const CliRun run = runScriptText(folder, script);
    EXPECT_EQ(run.status, 2) << script;
    const std::string place = folder.name("test.mrs") + ":";
    EXPECT_TRUE(run.err.starts_with(place)) << run.err;
    EXPECT_EQ(run.err.find('\n'), run.err.size() - 1) << run.err;
    return run.err.substr(std::min(place.size(), run.err.size()));
}

TEST(ScriptRunner, PrintsALineForEachCommand) {
    const TempFolder folder;
    const CliRun run =
        runScriptText(folder, "# a comment\n\nGetBinFileCount\n  SetPadMute 0   1 # mute\nGetPadMute 0\n");
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out,
              "GetBinFileCount -> 00000000 0\nSetPadMute 0 1 -> 00000000\nGetPadMute 0 -> 00000000 1\n");
    EXPECT_EQ(run.err, "");
}

TEST(ScriptRunner, SwitchesTheSteadyMode) {
    const TempFolder folder;
    EXPECT_EQ(runScriptText(folder, "steady on\nsteady off\n").out,
              "steady on -> 00000000\nsteady off -> 00000000\n");
    EXPECT_EQ(errorOf("steady maybe"), "1: \"maybe\" is neither on nor off\n");
}

TEST(ScriptRunner, ToleratesWindowsLineEndsAByteOrderMarkAndAMissingLastOne) {
    const TempFolder folder;
    const CliRun run = runScriptText(folder, "\xEF\xBB\xBFGetBinFileCount\r\n\r\nGetPadSolo 1");
    EXPECT_EQ(run.out, "GetBinFileCount -> 00000000 0\nGetPadSolo 1 -> 00000000 0\n");
}

TEST(ScriptRunner, NamesFileAndLineOfALineThatItDoesNotUnderstand) {
    EXPECT_EQ(errorOf("GetBinFileCount\n\nGetNothing 1\n"), "3: unknown command \"GetNothing\"\n");
    EXPECT_EQ(errorOf("getbinfilecount"), "1: unknown command \"getbinfilecount\"\n");
    EXPECT_EQ(errorOf("SetPadMute 0"), "1: too few arguments: SetPadMute PAD VALUE\n");
    EXPECT_EQ(errorOf("SetPadMute 0 1 2"), "1: too many arguments: SetPadMute PAD VALUE\n");
    EXPECT_EQ(errorOf("Undo 1"), "1: too many arguments: Undo\n");
    EXPECT_EQ(errorOf("SetPadVolume 0 loud"), "1: VALUE: \"loud\" isn't a number\n");
}

TEST(ScriptRunner, RefusesALineOfMoreThan65536Bytes) {
    const TempFolder folder;
    const std::string longest = "#" + std::string(65535, '-');
    for (const std::string end : {"\n", "\r\n"})
        EXPECT_EQ(runScriptText(folder, longest + end + "GetPadSolo 1" + end).out,
                  "GetPadSolo 1 -> 00000000 0\n");
    const std::string tooLong = "GetPadSolo 1\n" + longest + "-\nGetPadSolo 1\n";
    EXPECT_EQ(errorOf(tooLong), "2: the line is longer than 65536 bytes\n");
    EXPECT_EQ(runScriptText(folder, tooLong).out, "GetPadSolo 1 -> 00000000 0\n");
}

#ifndef _WIN32

TEST(ScriptRunner, EndsWithAFileThatNeverDoes) {
    const TempFolder folder;
    const CliRun run = marnoth({"script", "/dev/zero", "--out", folder.name("out")});
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.err, "/dev/zero:1: the line is longer than 65536 bytes\n");
}

#endif

TEST(ScriptRunner, KeepsTheTranscriptUpToAnError) {
    const TempFolder folder;
    const CliRun run = runScriptText(folder, "GetBinFileCount\nnonsense\nGetBinFileCount\n");
    EXPECT_EQ(run.out, "GetBinFileCount -> 00000000 0\n");
    EXPECT_EQ(run.status, 2);
}

TEST(ScriptRunner, RefusesArgumentsThatMakeNoSense) {
    for (const char* line : {"connect 0 2 mix",
                             "connect 44100 3 mix",
                             "connect 44100 2 17",
                             "connect 44100 2 0",
                             "connect 44100 2 left",
                             "attach 0",
                             "attach -1",
                             "attach 120 key=12",
                             "attach 120 converter=on",
                             "attach 120 rate=0",
                             "attach 1e300",
                             "attach 120 rate=1e300",
                             "discontinuity 1e300",
                             "attach 120 key",
                             "block 0",
                             "block -1",
                             "block 99999999999",
                             "silence-flag maybe",
                             "input",
                             "render -1",
                             "render 1.5",
                             "render 99999999999999999999",
                             "discontinuity soon",
                             "tempo 960 120",
                             "QueueEvents 0 0:0:60:100",
                             "QueueEvents 0 0:0:60:100:1:1",
                             "QueueEvents 0 0:0:256:100:1",
                             "QueueEvents 0 0:0:60:100:close",
                             "QueueRawInput 0 0:0x90:62",
                             "Notify 1 0 256 1",
                             "StartPlayback 4294967296"}) {
        EXPECT_NE(errorOf(line), "") << line;
    }
}

TEST(ScriptRunner, SurvivesHostileText) {
    EXPECT_EQ(errorOf(std::string("Undo\0", 5)), "1: the line holds a zero byte\n");
    EXPECT_NE(errorOf("LoadFileToBin \"a"), "");
    EXPECT_NE(errorOf(std::string(1 << 20, 'x')), "");
    EXPECT_NE(errorOf(std::string(1 << 20, '"')), "");
    EXPECT_NE(errorOf("QueueEvents 0 " + std::string(1 << 20, ':')), "");
    EXPECT_NE(errorOf("\xFF\xFE"), "");
}

TEST(ScriptRunner, TempiMustRise) {
    const TempFolder folder;
    EXPECT_EQ(runScriptText(folder, "attach 120\ntempo 960 100\ntempo 1920 90\n").status, 0);
    EXPECT_NE(errorOf("attach 120\ntempo 960 100\ntempo 960 90\n"), "");
}

TEST(ScriptRunner, AMissingLoopIsAResultAndAMissingInputAnError) {
    const TempFolder folder;
    const CliRun run = runScriptText(folder, "LoadFileToBin \"a b\" none.wav\n");
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out, "LoadFileToBin \"a b\" none.wav -> 80070057 0 0\n");
    EXPECT_NE(errorOf("connect 44100 2 mix\ninput none.wav\n"), "");
}

TEST(ScriptRunner, AGrainThatIsNotThereRaisesTheException) {
    const TempFolder folder;
    EXPECT_EQ(runScriptText(folder, "GetGrainVolume 0 0\nMoveGrain 0 5 1 0 1\n").out,
              "GetGrainVolume 0 0 -> exception 0\nMoveGrain 0 5 1 0 1 -> exception 0\n");
}

TEST(ScriptRunner, InputMustBeOfTheFormatOfThePin) {
    const TempFolder folder;
    WaveFile().floats().channels(1).frames(10).write(folder / "mono.wav");
    WaveFile().frames(10).write(folder / "integers.wav");
    writeText(folder / "text.wav", "no wave at all");
    EXPECT_EQ(runScriptText(folder, "connect 44100 1 mix\ninput mono.wav\n").status, 0);
    for (const char* line : {"input mono.wav", "input integers.wav", "input text.wav"})
        EXPECT_EQ(runScriptText(folder, std::string("connect 44100 2 mix\n") + line).status, 2) << line;
    EXPECT_EQ(
        runScriptText(folder, "connect 44100 1 mix\ninput mono.wav\nconnect 48000 1 mix\nrender 1").status,
        2);
}

TEST(ScriptRunner, WritesTheAudioOfEachConnectedPin) {
    const TempFolder folder;
    const CliRun run = runScriptText(folder, "connect 48000 1 mix 3 16\nrender 1000\nrender 500\n");
    EXPECT_EQ(run.status, 0) << run.err;
    for (const char* name : {"mix.wav", "chan03.wav", "chan16.wav"}) {
        const WaveFrames wave = readWaveFrames(folder / "out" / name);
        EXPECT_EQ(wave.rate, 48000u) << name;
        EXPECT_EQ(wave.channels, 1u) << name;
        EXPECT_EQ(wave.samples, std::vector<float>(1500, 0.0f)) << name;
    }
    EXPECT_FALSE(std::filesystem::exists(folder / "out" / "chan01.wav"));
}

TEST(ScriptRunner, WritesNothingWithoutARender) {
    const TempFolder folder;
    runScriptText(folder, "connect 44100 2 all\n");
    EXPECT_TRUE(std::filesystem::is_empty(folder / "out"));
}

TEST(ScriptRunner, WritesWhatWasRenderedBeforeAnError) {
    const TempFolder folder;
    const CliRun run = runScriptText(folder, "connect 44100 2 mix\nrender 700\nnonsense\n");
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(readWaveFrames(folder / "out" / "mix.wav").samples.size(), 1400u);
}

TEST(ScriptRunner, AnotherFormatGoesOnInAnotherFile) {
    const TempFolder folder;
    runScriptText(folder, "connect 44100 2 mix\nrender 100\nconnect 48000 1 mix\nrender 50\n");
    EXPECT_EQ(readWaveFrames(folder / "out" / "mix.wav").samples.size(), 200u);
    EXPECT_EQ(readWaveFrames(folder / "out" / "mix-2.wav").samples.size(), 50u);
}

TEST(ScriptRunner, AFolderThatCannotBeMadeIsAFailure) {
    const TempFolder folder;
    writeText(folder / "out", "a file is in the way");
    EXPECT_EQ(runScriptText(folder, "Undo\n").status, 1);
}

TEST(ScriptRunner, AFileThatCannotBeWrittenIsAFailure) {
    const TempFolder folder;
    std::filesystem::create_directories(folder / "out" / "mix.wav" / "in the way");
    EXPECT_EQ(runScriptText(folder, "connect 44100 2 mix\nrender 10\n").status, 1);
}

TEST(ScriptRunner, FindsFilesBesideTheScript) {
    const TempFolder folder;
    std::filesystem::create_directories(folder / "my sounds");
    WaveFile().frames(4410).write(folder / "my sounds" / "a.wav");
    const CliRun run = runScriptText(folder,
                                     "connect 44100 2 mix\nLoadFileToPad 15 a \"my sounds/a.wav\"\n"
                                     "GetBinFileName 0 0\n");
    EXPECT_EQ(run.out,
              "connect 44100 2 mix -> 00000000\n"
              "LoadFileToPad 15 a \"my sounds/a.wav\" -> 00000000 0 0\n"
              "GetBinFileName 0 0 -> 00000000 \"a\"\n");
}

TEST(ScriptRunner, LoadsWithoutAFormatByTakingItsOwn) {
    const TempFolder folder;
    WaveFile().frames(4410).write(folder / "a.wav");
    EXPECT_EQ(runScriptText(folder, "LoadFileToBin a a.wav\n").out,
              "LoadFileToBin a a.wav -> 00000001 0 2\n");
}

}  // namespace
}  // namespace marnoth::test::script_runner_test
