#include "shells/desktop/settings/SettingsMenu.h"

#include <algorithm>
#include <utility>

#include "shells/desktop/audio/NullSystem.h"
#include "shells/desktop/audio/Patience.h"

namespace marnoth {

namespace {

constexpr const char* kDevicesOwn = "The device's own";

/// What `list` gives; nothing where it can't be waited for.
template <class List>
auto listed(List list) {
    return within(kAudioListPatience, std::move(list)).value_or(decltype(list()){});
}

std::string orOwn(std::int64_t value, const std::string& unit) {
    return value == 0 ? "the device's own" : std::to_string(value) + unit;
}

std::string percent(int scale) {
    constexpr int kPercent = 100;
    return std::to_string(scale * kPercent) + " %";
}

std::string nameOf(TransportRole role) {
    switch (role) {
        case TransportRole::follows:
            return "with JACK's";
        case TransportRole::leads:
            return "with JACK's, which has our tempo";
        default:
            return "its own";
    }
}

}  // namespace

std::vector<MenuItem> SettingsMenu::items() const {
    std::vector<MenuItem> items;
    for (const Entry& entry : entries_)
        items.push_back({static_cast<int>(items.size()) + 1, entry.text, entry.isPresent});
    return items;
}

std::vector<MenuItem> SettingsMenu::all() {
    const DesktopSettings& now = audio_.settings();
    const AudioDriver* const driver = audio_.driver();
    const std::string audio = audio_.choice() ? audio_.choice()->system->name() : NullSystem::kName;
    const std::string device = driver && driver->name() != audio ? ", " + driver->name() : "";
    entries_.clear();
    entries_.push_back({"Sound: " + audio + device, false, [this] { offerSystems(); }});
    entries_.push_back({"MIDI: " + (now.midiPort.empty() ? "from all ports" : "from " + now.midiPort), false,
                        [this] { offerPorts(); }});
    entries_.push_back({"Rate: " + orOwn(now.rate, " Hz"), false, [this] { offerRates(); }});
    entries_.push_back({"Block: " + orOwn(now.frames, " frames"), false, [this] { offerFrames(); }});
    entries_.push_back({"Transport: " + nameOf(now.transport), false, [this] { offerTransport(); }});
    entries_.push_back({"Window: " + (now.scale == 0 ? "by the screen" : percent(now.scale)), false,
                        [this] { offerScales(); }});
    return items();
}

std::vector<MenuItem> SettingsMenu::choose(int id) {
    const std::vector<Entry> shown = std::exchange(entries_, {});
    const auto place = static_cast<std::size_t>(id) - 1;
    if (place < shown.size()) shown[place].action();
    return items();
}

template <class Value>
void SettingsMenu::offer(std::string text, Value DesktopSettings::*setting, const Value& value) {
    entries_.push_back({std::move(text), audio_.settings().*setting == value, [this, setting, value] {
                            DesktopSettings settings = audio_.settings();
                            settings.*setting = value;
                            audio_.change(settings);
                        }});
}

void SettingsMenu::offerSystems() {
    entries_.push_back({"The best there is", audio_.settings().audio.empty(), [this] { open({}); }});
    for (const auto& system : audio_.systems()) {
        if (system->needsDevice()) continue;
        const bool isOpen = audio_.choice() && audio_.choice()->system == system;
        entries_.push_back({system->name(), isOpen, [this, system] { offerDevices(system); }});
    }
}

/// With one device there is nothing to choose from.
void SettingsMenu::offerDevices(const std::shared_ptr<AudioSystem>& system) {
    const auto devices = listed([system] { return system->devices(); });
    if (devices.size() < 2) return open(system->name());
    const auto isOpen = [&](const std::string& device) {
        return audio_.choice() && audio_.choice()->system == system && audio_.choice()->device == device;
    };
    entries_.push_back({"What it plays on by itself", isOpen(""), [this, system] { open(system->name()); }});
    for (const AudioDevice& device : devices)
        entries_.push_back({device.name, isOpen(device.name),
                            [this, name = system->name() + ":" + device.name] { open(name); }});
}

/// Rate and length of a block belong to the device that they were chosen for.
void SettingsMenu::open(const std::string& audio) {
    DesktopSettings settings = audio_.settings();
    settings.audio = audio;
    settings.rate = 0;
    settings.frames = 0;
    audio_.change(settings);
}

void SettingsMenu::offerPorts() {
    offer<std::string>("From all ports", &DesktopSettings::midiPort, {});
    if (!audio_.choice()) return;
    const std::shared_ptr<AudioSystem> system = audio_.choice()->system;
    for (const std::string& port : listed([system] { return system->midiPorts(); }))
        offer(port, &DesktopSettings::midiPort, port);
}

void SettingsMenu::offerRates() {
    std::vector<std::uint32_t> rates;
    if (audio_.choice()) {
        const AudioChoice choice = *audio_.choice();
        for (const AudioDevice& device : listed([choice] { return choice.system->devices(); }))
            if (choice.device.empty() ? device.isDefault : device.name == choice.device) rates = device.rates;
    }
    if (rates.empty()) rates = {44100, 48000, 88200, 96000};
    offer(kDevicesOwn, &DesktopSettings::rate, std::uint32_t{0});
    for (const std::uint32_t rate : rates) offer(std::to_string(rate) + " Hz", &DesktopSettings::rate, rate);
}

void SettingsMenu::offerFrames() {
    constexpr std::int32_t kShortest = 32;
    constexpr std::int32_t kLongest = 2048;
    offer(kDevicesOwn, &DesktopSettings::frames, 0);
    for (std::int32_t frames = kShortest; frames <= kLongest; frames *= 2)
        offer(std::to_string(frames) + " frames", &DesktopSettings::frames, frames);
}

void SettingsMenu::offerTransport() {
    for (const TransportRole role : {TransportRole::own, TransportRole::follows, TransportRole::leads})
        offer("Transport " + nameOf(role), &DesktopSettings::transport, role);
}

void SettingsMenu::offerScales() {
    constexpr int kLargestOffered = 4;
    offer("By the screen", &DesktopSettings::scale, 0);
    for (int scale = 1; scale <= kLargestOffered; ++scale)
        offer(percent(scale), &DesktopSettings::scale, scale);
    for (Entry& entry : entries_)
        entry.action = [this, choose = std::move(entry.action)] {
            choose();
            resize_(audio_.settings().scale);
        };
}

}  // namespace marnoth
