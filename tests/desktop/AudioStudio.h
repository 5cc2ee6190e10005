#pragma once

#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <mutex>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "shells/desktop/audio/DesktopAudio.h"
#include "shells/desktop/audio/NullSystem.h"

namespace marnoth::test {

/// What a device of a test does, and what is done with it; shared with the threads that open it.
struct Device {
    std::mutex mutex;
    std::string refusal;  ///< with which it refuses to open; empty opens
    std::string trouble;
    std::uint32_t rate = 48000;
    int attempts = 0;
    bool isOpen = false;
    bool hangs = false;  ///< does not answer
    AudioClient* client = nullptr;
    AudioWish wish;
    std::vector<AudioDevice> listed;  ///< one without a name of its own where it is empty
    std::vector<std::string> ports;

    template <class Value>
    Value get(Value Device::*member) {
        const std::lock_guard lock(mutex);
        return this->*member;
    }
    template <class Value, class New>
    void set(Value Device::*member, New value) {
        const std::lock_guard lock(mutex);
        this->*member = value;
    }
    /// What it makes heard: the left of the mix.
    std::vector<float> play(std::int32_t frames) {
        std::vector<float> left(static_cast<std::size_t>(frames), 9.0f);
        std::vector<float> right = left;
        const std::array<float*, 2> outputs{left.data(), right.data()};
        get(&Device::client)->render(frames, outputs);
        return left;
    }
};

class DeviceDriver final : public AudioDriver {
public:
    DeviceDriver(std::shared_ptr<Device> device, std::string name)
        : device_(std::move(device)), name_(std::move(name)) {
        device_->set(&Device::isOpen, true);
    }
    ~DeviceDriver() override {
        device_->set(&Device::isOpen, false);
        device_->set(&Device::client, nullptr);
    }
    std::string name() const override { return name_; }
    std::uint32_t rate() const override { return device_->get(&Device::rate); }
    std::int32_t frames() const override { return 256; }
    std::string trouble() const override { return device_->get(&Device::trouble); }

private:
    std::shared_ptr<Device> device_;
    std::string name_;
};

class DeviceSystem final : public AudioSystem {
public:
    DeviceSystem(std::string name, std::shared_ptr<Device> device)
        : name_(std::move(name)), device_(std::move(device)) {}
    std::string name() const override { return name_; }
    std::vector<AudioDevice> devices() override {
        auto listed = device_->get(&Device::listed);
        return listed.empty() ? std::vector<AudioDevice>{{name_ + " speakers", 0, {}, true}} : listed;
    }
    std::vector<std::string> midiPorts() override { return device_->get(&Device::ports); }
    std::unique_ptr<AudioDriver> open(const AudioWish& wish, AudioClient& client) override {
        while (device_->get(&Device::hangs)) std::this_thread::sleep_for(std::chrono::milliseconds(1));
        device_->set(&Device::attempts, device_->get(&Device::attempts) + 1);
        device_->set(&Device::wish, wish);
        if (auto refusal = device_->get(&Device::refusal); !refusal.empty())
            throw std::runtime_error(refusal);
        EXPECT_FALSE(device_->get(&Device::isOpen)) << "of a device there is one driver";
        if (!client.prepare(device_->get(&Device::rate), 256)) throw std::runtime_error("No.");
        device_->set(&Device::client, &client);
        return std::make_unique<DeviceDriver>(device_, name_);
    }

private:
    std::string name_;
    std::shared_ptr<Device> device_;
};

/// Two systems before none, and a clock that goes when it is told.
template <class ItsClient>
class Studio {
public:
    DesktopAudio& open(const std::string& name = "", bool insists = false) {
        DesktopSettings settings;
        settings.audio = name;
        AudioSystems systems{std::make_shared<DeviceSystem>("One", one),
                             std::make_shared<DeviceSystem>("Two", two), std::make_shared<NullSystem>()};
        audio = std::make_unique<DesktopAudio>(
            std::move(systems), settings, insists, client,
            [this](const std::string& what) { told.push_back(what); }, errors);
        now = DesktopAudio::Time::clock::now();
        return *audio;
    }
    /// Looks, at one and the same time, until something is so.
    template <class So>
    bool until(So so) {
        for (int i = 0; i < 3000 && !so(); ++i) {
            audio->look(now);
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        return so();
    }
    bool untilOpen(const std::string& name) {
        return until([&] { return audio->choice() && audio->driver()->name() == name; });
    }
    bool untilNone() {
        return until([&] { return !audio->choice() && audio->driver(); });
    }
    void wish(const std::string& name) {
        DesktopSettings settings = audio->settings();
        settings.audio = name;
        audio->change(settings);
    }

    std::shared_ptr<Device> one = std::make_shared<Device>();
    std::shared_ptr<Device> two = std::make_shared<Device>();
    ItsClient client;
    std::vector<std::string> told;
    std::ostringstream errors;
    DesktopAudio::Time now;
    std::unique_ptr<DesktopAudio> audio;
};

}  // namespace marnoth::test
