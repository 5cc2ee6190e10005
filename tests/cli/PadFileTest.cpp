#include <gtest/gtest.h>

#include <cmath>

#include "cli/Studio.h"
#include "shellkit/files/Failure.h"
#include "shells/cli/PadFile.h"

namespace marnoth::test::pad_file_test {
namespace {

std::string failureOf(const std::string& text) {
    try {
        readPadFile(text);
        return {};
    } catch (const WrongUse& wrong) {
        return wrong.what();
    }
}

TEST(PadFile, HasAFileAndSettingsBehindCommas) {
    const PadFile pad = readPadFile("2=bass.wav,volume=-6,pan=20L,transpose=-2,output=3,mute=on,mode=gate");
    EXPECT_EQ(pad.pad, 1);
    EXPECT_EQ(pad.file, "bass.wav");
    EXPECT_FLOAT_EQ(*pad.settings.volume, std::pow(10.0f, -0.3f));
    EXPECT_FLOAT_EQ(*pad.settings.pan, 0.4f);
    EXPECT_EQ(pad.settings.transpose, -2);
    EXPECT_EQ(pad.settings.output, 3u);
    EXPECT_EQ(pad.settings.mute, 1u);
    EXPECT_EQ(pad.settings.oneShot, 0u);
    EXPECT_FALSE(pad.settings.solo || pad.settings.root || pad.settings.notes);
}

TEST(PadFile, ANameMayHoldCommasAndEqualsSigns) {
    EXPECT_EQ(readPadFile("1=Drums, 120 bpm.wav").file, "Drums, 120 bpm.wav");
    EXPECT_EQ(readPadFile("1=a=b.wav").file, "a=b.wav");
    EXPECT_EQ(readPadFile("1=a,,b,.wav,mute=on").file, "a,,b,.wav");
    EXPECT_EQ(readPadFile("1=/tmp/a,b/c.wav,pan=C").file, "/tmp/a,b/c.wav");
}

TEST(PadFile, ANameInQuotesMayLookLikeASetting) {
    const PadFile pad = readPadFile("1=\"one,volume=3.wav\",volume=0");
    EXPECT_EQ(pad.file, "one,volume=3.wav");
    EXPECT_EQ(pad.settings.volume, 1.0f);
    EXPECT_NE(failureOf("1=\"a.wav"), "");
    EXPECT_NE(failureOf("1=\"a.wav\"b"), "");
}

TEST(PadFile, WithoutAFileItIsThePadOfAProject) {
    const PadFile pad = readPadFile("16=,solo=on");
    EXPECT_EQ(pad.pad, 15);
    EXPECT_EQ(pad.file, "");
    EXPECT_EQ(pad.settings.solo, 1u);
}

TEST(PadFile, ValuesAreReadInTheirOwnWords) {
    // Percent to the left and right; C is 0.5.
    EXPECT_FLOAT_EQ(*readPadFile("1=a,pan=100R").settings.pan, 1.0f);
    EXPECT_FLOAT_EQ(*readPadFile("1=a,pan=-50").settings.pan, 0.25f);
    EXPECT_EQ(readPadFile("1=a,pan=C").settings.pan, 0.5f);
    EXPECT_EQ(readPadFile("1=a,volume=-inf").settings.volume, 0.0f);
    EXPECT_EQ(readPadFile("1=a,output=mix").settings.output, 0u);
    EXPECT_EQ(readPadFile("1=a,channel=any").settings.channel, -1);
    EXPECT_EQ(readPadFile("1=a,channel=16").settings.channel, 15);
    // Number 6 of a loop's root is C, and 3 is A.
    EXPECT_EQ(readPadFile("1=a,root=C").settings.root, 6);
    EXPECT_EQ(readPadFile("1=a,root=A").settings.root, 3);
    EXPECT_EQ(readPadFile("1=a,root=none").settings.root, -1);
    // C5 is 60.
    EXPECT_EQ(readPadFile("1=a,notes=C5-B5").settings.notes->low, 60);
    EXPECT_EQ(readPadFile("1=a,notes=C5-B5").settings.notes->high, 71);
    EXPECT_EQ(readPadFile("1=a,notes=64").settings.notes->high, 64);
    EXPECT_EQ(readPadFile("1=a,velocities=64-127").settings.velocities->low, 64);
}

TEST(PadFile, WhatIsWrongIsToldWithItsValueAndItsRange) {
    struct Case {
        const char* text;
        const char* told;
    };
    for (const auto& [text, told] :
         {Case{"1=a,volume=6.1", "volume \"6.1\": write decibels from -75 to 6, or -inf"},
          Case{"1=a,volume=nan", "volume \"nan\""},
          Case{"1=a,volume=", "volume \"\""},
          Case{"1=a,volume=3dB", "volume \"3dB\""},
          Case{"1=a,pan=101L", "pan \"101L\": write C, 0L to 100L"},
          Case{"1=a,pan=-5L", "pan \"-5L\""},
          Case{"1=a,pan=L", "pan \"L\""},
          Case{"1=a,transpose=25", "transpose \"25\": write semitones from -24 to 24"},
          Case{"1=a,transpose=99999999999", "transpose \"99999999999\""},
          Case{"1=a,output=17", "output \"17\": write mix or 1 to 16"},
          Case{"1=a,output=0", "output \"0\""},
          Case{"1=a,channel=0", "channel \"0\""},
          Case{"1=a,mute=yes", "mute \"yes\": write on or off"},
          Case{"1=a,mode=loop", "mode \"loop\": write one-shot or gate"},
          Case{"1=a,root=H", "root \"H\""},
          Case{"1=a,notes=C5-B4", "notes \"C5-B4\""},
          Case{"1=a,notes=128", "notes \"128\""},
          Case{"1=a,velocities=0-128", "velocities \"0-128\""},
          Case{"1=a,vloume=3", "a pad has no \"vloume\" (did you mean volume?)"},
          Case{"1=a,xyz=3", "there are volume, pan"},
          Case{"1=a,mute=on,mute=off", "mute is given twice"},
          Case{"1=a,mute=on,", "a pad has no \"\""},
          Case{"1=a,mute=on,b.wav", "a pad has no \"b.wav\""},
          Case{"0=a", "a pad N from 1 to 16"},
          Case{"17=a", "a pad N from 1 to 16"},
          Case{"1=", "write N=FILE.wav"},
          Case{"a.wav", "write N=FILE.wav"},
          Case{"", "write N=FILE.wav"}}) {
        const std::string failure = failureOf(text);
        EXPECT_TRUE(failure.starts_with("--pad \"" + std::string(text) + "\": ")) << failure;
        EXPECT_NE(failure.find(told), std::string::npos) << failure;
    }
}

/// Of the first frame, left and right.
std::pair<float, float> firstFrame(const Studio& studio, const std::string& settings) {
    const CliRun run = studio.render({"--pad", studio.pad(1, "a.wav") + settings, "--beats", "2", "--tempo",
                                      "120", "-o", studio.name("out.wav")});
    EXPECT_EQ(run.status, 0) << run.err;
    const WaveFrames audio = studio.audio("out.wav");
    // Behind the fade with which a pad begins.
    return {audio.samples[20000], audio.samples[20001]};
}

TEST(PadFile, SettingsAreHeard) {
    const Studio studio;
    const auto [left, right] = firstFrame(studio, "");
    EXPECT_GT(left, 0.0f);
    const auto [softLeft, softRight] = firstFrame(studio, ",volume=-6");
    // 10 to the power -6/20.
    EXPECT_NEAR(softLeft / left, 0.501187, 1e-5);
    EXPECT_NEAR(softRight / right, 0.501187, 1e-5);
    EXPECT_EQ(firstFrame(studio, ",mute=on"), (std::pair{0.0f, 0.0f}));
    EXPECT_EQ(firstFrame(studio, ",pan=100L").second, 0.0f);
    EXPECT_EQ(firstFrame(studio, ",output=1"), (std::pair{left, right})) << "the mix has every pad";
}

TEST(PadFile, SettingsAreSavedWithTheProject) {
    const Studio studio;
    const CliRun run =
        studio.render({"--pad",
                       studio.pad(2, "a.wav") +
                           ",volume=-inf,pan=20L,transpose=2,output=1,mode=gate,root=C,solo=on,tail=on,"
                           "notes=36-47,center=40,velocities=1-100,channel=10",
                       "-o", studio.name("out.wav"), "--save", studio.name("p.mrn")});
    ASSERT_EQ(run.status, 0) << run.err;
    const std::string info = marnoth({"info", studio.name("p.mrn")}).out;
    for (const char* told : {"\n   2      8 grains", ", solo, tail, follow key",
                             "volume 0.000, pan 0.400, output 1, channel 10, root note C",
                             "\n   2      C3 to B3, root E3, velocities 1 to 100\n"})
        EXPECT_NE(info.find(told), std::string::npos) << told << "\n" << info;
    EXPECT_NE(studio.script("connect 44100 2 mix\nLoadProject p.mrn\nGetGrainTranspose 1 7\n")
                  .find("GetGrainTranspose 1 7 -> 00000000 2\n"),
              std::string::npos);
    EXPECT_EQ(info.find("one-shot"), std::string::npos) << info;
}

TEST(PadFile, ALengthIsThatOfARoundOfTheLoop) {
    const Studio studio;
    const CliRun run = studio.render({"--pad", studio.pad(1, "a.wav") + ",length=0.5", "-o",
                                      studio.name("out.wav"), "--save", studio.name("p.mrn")});
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_NE(marnoth({"info", studio.name("p.mrn")}).out.find("   1      8 grains, 0.5000 beats"),
              std::string::npos);
    EXPECT_NE(failureOf("1=a,length=0"), "");
    EXPECT_NE(failureOf("1=a,length=1001").find("length \"1001\": write beats from 0.01 to 1000"),
              std::string::npos);
}

TEST(PadFile, APadsOwnModeStandsAgainstGate) {
    const Studio studio;
    const CliRun run =
        studio.render({"--gate", "--pad", studio.pad(1, "a.wav") + ",mode=one-shot", "--pad",
                       studio.pad(2, "b.wav"), "-o", studio.name("out.wav"), "--save", studio.name("p.mrn")});
    ASSERT_EQ(run.status, 0) << run.err;
    const std::string info = marnoth({"info", studio.name("p.mrn"), "--json"}).out;
    const std::size_t first = info.find("\"oneShot\": true");
    EXPECT_NE(first, std::string::npos);
    EXPECT_LT(first, info.find("\"oneShot\": false"));
}

TEST(PadFile, PadsOfAProjectAreSetWithoutAFile) {
    const Studio studio;
    studio.save("p.mrn");
    const CliRun run = studio.play("p.mrn", "out.wav", {"--pad", "1=,mute=on", "--pad", "3=,mute=on"});
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_NE(run.out.find("silent"), std::string::npos) << run.out;
    EXPECT_EQ(studio.render({"--pad", "1=,mute=on", "-o", studio.name("x.wav")}).status, 2);
}

}  // namespace
}  // namespace marnoth::test::pad_file_test
