#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "platform/drawing/PageWindow.h"
#include "shells/desktop/audio/DesktopAudio.h"

namespace marnoth {

/// The settings as menus: one of them all, each with what holds now, and behind an entry one of what it can
/// be. Devices and ports are looked up when their menu is asked for; a system that doesn't answer within some
/// moments lists none. The window's thread.
class SettingsMenu {
public:
    /// `audio` outlives it, and all changes go there. `resize` gives the window another scale, as
    /// `DesktopSettings` has it.
    SettingsMenu(DesktopAudio& audio, std::function<void(int)> resize)
        : audio_(audio), resize_(std::move(resize)) {}

    std::vector<MenuItem> all();
    /// Carries an entry of the last menu out. What it gives is the menu behind it, empty when there is none.
    std::vector<MenuItem> choose(int id);

private:
    struct Entry {
        std::string text;
        bool isPresent = false;
        std::function<void()> action;
    };

    /// An entry that changes one of the settings to `value`.
    template <class Value>
    void offer(std::string text, Value DesktopSettings::*setting, const Value& value);
    void offerSystems();
    void offerDevices(const std::shared_ptr<AudioSystem>& system);
    void offerPorts();
    void offerRates();
    void offerFrames();
    void offerTransport();
    void offerScales();
    void open(const std::string& audio);
    std::vector<MenuItem> items() const;

    DesktopAudio& audio_;
    const std::function<void(int)> resize_;
    std::vector<Entry> entries_;  ///< of the menu that was given last
};

}  // namespace marnoth
