#include <gtest/gtest.h>

#include <future>
#include <stdexcept>

#include "shells/desktop/audio/AudioSystems.h"
#include "shells/desktop/audio/NullSystem.h"

namespace marnoth::test::audio_systems_test {
namespace {

class Listing final : public AudioSystem {
public:
    Listing(std::string name, std::vector<std::string> devices)
        : name_(std::move(name)), devices_(std::move(devices)) {}
    std::string name() const override { return name_; }
    std::vector<AudioDevice> devices() override {
        std::vector<AudioDevice> listed;
        for (const std::string& device : devices_) listed.push_back({device, 0, {}, false});
        return listed;
    }
    std::vector<std::string> midiPorts() override { return {}; }
    std::unique_ptr<AudioDriver> open(const AudioWish&, AudioClient&) override { return nullptr; }

private:
    std::string name_;
    std::vector<std::string> devices_;
};

AudioSystems someSystems() {
    AudioSystems systems;
    systems.push_back(std::make_shared<Listing>("JACK", std::vector<std::string>{"system"}));
    systems.push_back(std::make_shared<Listing>(
        "ALSA", std::vector<std::string>{"Onboard", "USB Audio: Front", "USB Mic"}));
    systems.push_back(std::make_shared<NullSystem>());
    return systems;
}

/// "system/device", or "-" where there is no such thing.
std::string found(const std::string& name) {
    const AudioSystems systems = someSystems();
    const auto choice = findAudio(systems, name);
    return choice ? choice->system->name() + "/" + choice->device : "-";
}

TEST(FindAudio, ASystemIsNamedInLargeOrSmallLetters) {
    EXPECT_EQ(found("jack"), "JACK/");
    EXPECT_EQ(found("ALSA"), "ALSA/");
    EXPECT_EQ(found("null"), "No sound/");
    EXPECT_EQ(found("None"), "No sound/");
    EXPECT_EQ(found("no sound"), "No sound/");
    EXPECT_EQ(found("als"), "ALSA/");
}

TEST(FindAudio, ADeviceIsNamedByAPartOfItsName) {
    EXPECT_EQ(found("usb"), "ALSA/USB Audio: Front");
    EXPECT_EQ(found("mic"), "ALSA/USB Mic");
    EXPECT_EQ(found("audio: f"), "ALSA/USB Audio: Front");
    EXPECT_EQ(found("Syst"), "JACK/system");
}

TEST(FindAudio, BehindASystemAndAColonStandsWhatItOpensAsItIs) {
    EXPECT_EQ(found("alsa:Whatever it calls: this"), "ALSA/Whatever it calls: this");
}

TEST(FindAudio, WhatIsNowhereIsntFound) {
    EXPECT_EQ(found("oss"), "-");
    EXPECT_EQ(found("oss:usb"), "-");
}

/// Tells its devices when the test is over.
class Hanging final : public AudioSystem {
public:
    explicit Hanging(std::shared_future<void> end) : end_(std::move(end)) {}
    std::string name() const override { return "PulseAudio"; }
    std::vector<AudioDevice> devices() override {
        end_.wait();
        return {};
    }
    std::vector<std::string> midiPorts() override { return {}; }
    std::unique_ptr<AudioDriver> open(const AudioWish&, AudioClient&) override { return nullptr; }

private:
    const std::shared_future<void> end_;
};

TEST(FindAudio, ASystemThatHangsIsPassedOverAndToldWhereNoOtherHasTheDevice) {
    constexpr std::chrono::milliseconds kPatience{20};
    std::promise<void> end;
    AudioSystems systems = someSystems();
    systems.insert(systems.begin(), std::make_shared<Hanging>(end.get_future().share()));
    EXPECT_EQ(findAudio(systems, "usb", kPatience)->system->name(), "ALSA");
    EXPECT_EQ(findAudio(systems, "pulse", kPatience)->system->name(), "PulseAudio");
    try {
        findAudio(systems, "headphones", kPatience);
        ADD_FAILURE() << "nobody knows";
    } catch (const std::runtime_error& error) {
        EXPECT_EQ(error.what(), std::string("PulseAudio doesn't answer."));
    }
    end.set_value();
}

TEST(FindAudio, ThisMachinesLastWayIsNone) {
    const AudioSystems systems = audioSystems();
    ASSERT_FALSE(systems.empty());
    EXPECT_EQ(systems.back()->name(), "No sound");
}

}  // namespace
}  // namespace marnoth::test::audio_systems_test
