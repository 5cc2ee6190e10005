#include <gtest/gtest.h>

#include <cmath>

#include "desktop/AudioStudio.h"
#include "shellkit/TempFolder.h"
#include "shellkit/files/LoopFiles.h"
#include "shells/desktop/playing/LiveInstrument.h"
#include "support/WaveFile.h"

namespace marnoth::test::desktop_audio_test {
namespace {

using namespace std::chrono_literals;
using Lines = std::vector<std::string>;

/// Counts what it is asked for.
class Client final : public AudioClient {
public:
    bool prepare(std::uint32_t rate, std::int32_t) override {
        this->rate = rate;
        return true;
    }
    void midi(std::int32_t, std::uint8_t status, std::uint8_t data1, std::uint8_t) override {
        messages.push_back(std::to_string(status) + " " + std::to_string(data1));
    }
    void render(std::int32_t frames, OutputPointers outputs) override {
        ++blocks;
        for (float* const output : outputs)
            if (output) std::fill_n(output, frames, 1.0f);
    }
    void dropout() override { ++dropouts; }

    std::atomic<std::uint32_t> rate = 0;
    std::atomic<int> blocks = 0;
    std::atomic<int> dropouts = 0;
    Lines messages;
};

const std::string kSilent = "The program plays without sound.";

using PlainStudio = Studio<Client>;

TEST(DesktopAudio, WithoutANameTheBestThatOpensPlays) {
    PlainStudio studio;
    studio.one->refusal = "One isn't there.";
    studio.open();
    EXPECT_EQ(studio.audio->driver()->name(), "Two");
    EXPECT_EQ(studio.told, Lines{}) << "nobody asked for another";
    EXPECT_EQ(studio.errors.str(),
              "One isn't there. Plays through Two, 48000 frames per second, blocks of 256.\n");
    EXPECT_EQ(studio.two->play(10), std::vector<float>(10, 1.0f));
}

TEST(DesktopAudio, WithoutAnythingTheProgramGoesOnAtThePaceOfTheClockAndSaysSo) {
    PlainStudio studio;
    studio.one->refusal = "One isn't there.";
    studio.two->refusal = "Two is busy.";
    studio.open();
    EXPECT_EQ(studio.told, Lines{kSilent + " One isn't there. Two is busy."});
    EXPECT_TRUE(studio.until([&] { return studio.client.blocks > 2; }));
    EXPECT_EQ(studio.told.size(), 1u);
}

TEST(DesktopAudio, WhatSeveralSystemsLackIsToldOnce) {
    PlainStudio studio;
    studio.one->refusal = studio.two->refusal = "The module isn't installed.";
    studio.open();
    EXPECT_EQ(studio.told, Lines{kSilent + " The module isn't installed."});
}

TEST(DesktopAudio, WhatWasAskedForByNameAndIsntThereEndsTheProgram) {
    const auto failure = [](const std::string& name) -> std::string {
        PlainStudio studio;
        studio.two->refusal = "Two is busy.";
        try {
            studio.open(name, true);
            return "";
        } catch (const std::runtime_error& error) {
            return error.what();
        }
    };
    EXPECT_EQ(failure("two"), "Two is busy.");
    EXPECT_EQ(failure("three"), "There is no audio system or device three.");
    EXPECT_EQ(failure("one sp"), "");
}

TEST(DesktopAudio, WhatIsOnlyRememberedAndIsntThereGivesWayToTheBest) {
    PlainStudio studio;
    studio.two->refusal = "Two is busy.";
    studio.open("two");
    EXPECT_EQ(studio.audio->driver()->name(), "One");
    EXPECT_EQ(studio.told, Lines{"Two is busy. The program plays through One."});
    EXPECT_EQ(studio.audio->settings().audio, "two") << "and stays wished";
}

TEST(DesktopAudio, ADeviceThatGoesIsToldTriedAgainQuietlyAndItsReturnIsTold) {
    PlainStudio studio;
    studio.open();
    studio.one->set(&Device::refusal, std::string("One isn't there."));
    studio.one->set(&Device::trouble, std::string("One has gone."));
    ASSERT_TRUE(studio.until([&] { return !studio.told.empty(); }));
    EXPECT_EQ(studio.told, Lines{kSilent + " One has gone. One isn't there."});
    const int blocks = studio.client.blocks;
    EXPECT_TRUE(studio.until([&] { return studio.client.blocks > blocks + 2; })) << "it goes on";
    EXPECT_EQ(studio.one->get(&Device::attempts), 2) << "not before some seconds";
    EXPECT_EQ(studio.two->get(&Device::attempts), 0) << "it is the same device that is tried";

    studio.now += DesktopAudio::kRetryPeriod;
    EXPECT_TRUE(studio.until([&] { return studio.one->get(&Device::attempts) == 3; }));
    EXPECT_EQ(studio.told.size(), 1u);
    studio.one->set(&Device::refusal, std::string());
    studio.one->set(&Device::trouble, std::string());
    ASSERT_TRUE(studio.until([&] {
        studio.now += DesktopAudio::kRetryPeriod;
        return studio.audio->choice().has_value();
    }));
    EXPECT_EQ(studio.told.back(), "One is there again.");
    EXPECT_EQ(studio.one->play(1), std::vector<float>{1.0f});
}

TEST(DesktopAudio, AnotherDeviceIsOpenedWhileItPlays) {
    PlainStudio studio;
    studio.open();
    studio.two->set(&Device::rate, 44100u);
    studio.wish("Two");
    ASSERT_TRUE(studio.untilOpen("Two"));
    EXPECT_EQ(studio.client.rate, 44100u);
    EXPECT_FALSE(studio.one->get(&Device::isOpen));
    EXPECT_EQ(studio.told, Lines{});
    studio.wish("none");
    ASSERT_TRUE(studio.untilOpen("No sound"));
    EXPECT_FALSE(studio.two->get(&Device::isOpen));
    EXPECT_EQ(studio.client.rate, 44100u) << "silence is no reason for another rate";
}

TEST(DesktopAudio, OneThatCantBeHadIsToldAndTheFormerOpensAgain) {
    PlainStudio studio;
    studio.open("One");
    studio.two->set(&Device::refusal, std::string("Two is busy."));
    studio.wish("Two");
    ASSERT_TRUE(studio.until([&] { return !studio.told.empty(); }));
    ASSERT_TRUE(studio.untilOpen("One"));
    EXPECT_EQ(studio.told, Lines{"Two is busy."});
    EXPECT_EQ(studio.audio->settings().audio, "One");
    studio.wish("Three");
    EXPECT_EQ(studio.told.back(), "There is no audio system or device Three.");
    EXPECT_TRUE(studio.audio->choice());
}

TEST(DesktopAudio, WhatNeedsNoOtherDriverOpensNone) {
    PlainStudio studio;
    studio.open();
    DesktopSettings settings = studio.audio->settings();
    settings.level = 0.5f;
    studio.audio->change(settings);
    EXPECT_EQ(studio.audio->settings().level, 0.5f);
    settings.frames = 64;
    settings.rate = 48000;
    settings.midiPort = "keys";
    studio.audio->change(settings);
    ASSERT_TRUE(studio.untilOpen("One"));
    EXPECT_EQ(studio.one->attempts, 2);
    EXPECT_EQ(studio.one->wish.frames, 64);
    EXPECT_EQ(studio.one->wish.rate, 48000u);
    EXPECT_EQ(studio.one->wish.midiPort, "keys");
}

TEST(DesktopAudio, ASystemThatHangsHoldsUpNobody) {
    PlainStudio studio;
    studio.open();
    studio.one->set(&Device::hangs, true);
    studio.one->set(&Device::trouble, std::string("One has gone."));
    ASSERT_TRUE(studio.untilNone());
    const int blocks = studio.client.blocks;
    EXPECT_TRUE(studio.until([&] { return studio.client.blocks > blocks + 2; }));
    studio.wish("Two");
    EXPECT_TRUE(studio.untilOpen("Two"));
    studio.wish("One");
    ASSERT_TRUE(studio.untilNone());
    studio.audio.reset();
    studio.one->set(&Device::trouble, std::string());
    studio.one->set(&Device::hangs, false);
    // What opens too late is closed by itself, and reaches nobody.
    for (int i = 0; i < 3000 && studio.one->get(&Device::attempts) < 3; ++i) std::this_thread::sleep_for(1ms);
    for (int i = 0; i < 3000 && studio.one->get(&Device::isOpen); ++i) std::this_thread::sleep_for(1ms);
    EXPECT_FALSE(studio.one->get(&Device::isOpen));
}

TEST(DesktopAudio, ADeviceThatComesBackAtAnotherRateFindsTheInstrumentAsItWas) {
    const TempFolder folder;
    WaveFile()
        .floats()
        .channels(1)
        .rate(44100)
        .frames(44100, [](auto i, int) { return 0.3 * std::sin(0.01 * i); })
        .acid({.beats = 2})
        .write(folder / "a.wav");
    Studio<LiveInstrument> studio;
    studio.open();
    loadLoopFile(studio.client.sampler(), 0, folder.name("a.wav"));
    auto song = std::make_unique<Song>();
    song->notes.push_back({0, 960 * 100, 0, 60, 100});
    song->tempos.push_back({0, 120.0});
    studio.client.setSong(std::move(song));
    studio.client.play();
    studio.one->play(24000);
    EXPECT_EQ(studio.client.tick(), 960.0);

    studio.one->set(&Device::rate, 44100u);
    studio.one->set(&Device::refusal, std::string("One isn't there."));
    studio.one->set(&Device::trouble, std::string("One has gone."));
    ASSERT_TRUE(studio.until([&] { return !studio.told.empty(); }));
    ASSERT_TRUE(studio.until([&] { return studio.client.tick() > 970.0; })) << "the transport goes on";
    studio.one->set(&Device::refusal, std::string());
    studio.one->set(&Device::trouble, std::string());
    ASSERT_TRUE(studio.until([&] {
        studio.now += DesktopAudio::kRetryPeriod;
        return studio.audio->choice().has_value();
    }));

    EXPECT_EQ(studio.client.rate(), 44100u);
    const double tick = studio.client.tick();
    const std::vector<float> heard = studio.one->play(22050);
    EXPECT_NEAR(studio.client.tick(), tick + 960.0, 1e-6);
    EXPECT_GT(*std::ranges::max_element(heard), 0.1f) << "the song's note sounds on";
    std::int32_t files = 0;
    studio.client.sampler().GetBinFileCount(&files);
    EXPECT_EQ(files, 1);
}

TEST(AudioSwitch, WhoIsntLetThroughIsSilent) {
    Client client;
    AudioSwitch audioSwitch(client);
    const int one = 1;
    const int two = 2;
    const auto heard = [&](const int& who) {
        float left = 9.0f;
        float* const outputs[] = {nullptr, &left};
        audioSwitch.render(&who, 1, outputs);
        return left;
    };
    EXPECT_EQ(heard(one), 0.0f);
    EXPECT_TRUE(audioSwitch.give(&one, [](AudioClient& it) { return it.prepare(8000, 1); }));
    EXPECT_EQ(heard(one), 1.0f);
    EXPECT_EQ(heard(two), 0.0f);
    EXPECT_FALSE(audioSwitch.give(&two, [](AudioClient&) { return false; }));
    EXPECT_EQ(heard(one), 0.0f);
    EXPECT_EQ(heard(two), 0.0f);
    EXPECT_EQ(client.blocks, 1);
}

TEST(AudioSwitch, NotesThatAreHeldEndWithTheirDriver) {
    Client client;
    AudioSwitch audioSwitch(client);
    const int one = 1;
    audioSwitch.give(&one, [](AudioClient&) { return true; });
    audioSwitch.midi(&one, 0, 0x90, 60, 100);
    audioSwitch.midi(&one, 0, 0x9F, 127, 100);
    audioSwitch.midi(&one, 0, 0x91, 61, 100);
    audioSwitch.midi(&one, 0, 0x91, 61, 0);
    audioSwitch.midi(&one, 0, 0x92, 62, 100);
    audioSwitch.midi(&one, 0, 0x82, 62, 0);
    client.messages.clear();
    audioSwitch.close();
    EXPECT_EQ(client.messages, (Lines{"128 60", "143 127"}));
}

TEST(AudioSwitch, DropoutsOfWhoIsLetThroughAreToldWithItsNextBlock) {
    Client client;
    AudioSwitch audioSwitch(client);
    const int one = 1;
    const int two = 2;
    audioSwitch.give(&one, [](AudioClient&) { return true; });
    audioSwitch.dropout(&one);
    audioSwitch.dropout(&two);
    audioSwitch.dropout(&one);
    EXPECT_EQ(client.dropouts, 0);
    audioSwitch.render(&one, 1, {});
    EXPECT_EQ(client.dropouts, 2);
}

}  // namespace
}  // namespace marnoth::test::desktop_audio_test
