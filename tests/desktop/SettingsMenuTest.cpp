#include <gtest/gtest.h>

#include "desktop/AudioStudio.h"
#include "shells/desktop/settings/SettingsMenu.h"

namespace marnoth::test::settings_menu_test {
namespace {

using Lines = std::vector<std::string>;

/// Takes what comes.
class Listener final : public AudioClient {
public:
    bool prepare(std::uint32_t, std::int32_t) override { return true; }
    void midi(std::int32_t, std::uint8_t, std::uint8_t, std::uint8_t) override {}
    void render(std::int32_t, OutputPointers) override {}
    void dropout() override {}
};

class SettingsMenuTest : public testing::Test {
protected:
    /// The entries of the menu behind the one that begins with `text`, the present one with a star.
    Lines behind(const std::string& text) { return press(menu.all(), text); }
    Lines press(const std::vector<MenuItem>& items, const std::string& text) {
        for (const MenuItem& item : items)
            if (item.text.starts_with(text)) return lines(last = menu.choose(item.id));
        ADD_FAILURE() << "there is no " << text;
        return {};
    }
    static Lines lines(const std::vector<MenuItem>& items) {
        Lines lines;
        for (const MenuItem& item : items) lines.push_back((item.checked ? "*" : "") + item.text);
        return lines;
    }

    Studio<Listener> studio;
    std::vector<int> scales;
    SettingsMenu menu{studio.open(), [this](int scale) { scales.push_back(scale); }};
    std::vector<MenuItem> last;
};

TEST_F(SettingsMenuTest, TellsWhatHolds) {
    EXPECT_EQ(lines(menu.all()),
              (Lines{"Sound: One", "MIDI: from all ports", "Rate: the device's own",
                     "Block: the device's own", "Transport: its own", "Window: by the screen"}));
}

TEST_F(SettingsMenuTest, ASystemWithOneDeviceIsOpenedAtOnce) {
    EXPECT_EQ(behind("Sound"), (Lines{"*The best there is", "*One", "Two", "No sound"}));
    EXPECT_EQ(press(last, "Two"), Lines{});
    ASSERT_TRUE(studio.untilOpen("Two"));
    EXPECT_EQ(behind("Sound"), (Lines{"The best there is", "One", "*Two", "No sound"}));
}

TEST_F(SettingsMenuTest, DevicesAreThoseThatAreThereNow) {
    studio.two->set(&Device::listed,
                    std::vector<AudioDevice>{{"Left", 0, {}, true}, {"Right", 0, {22050, 44100}, false}});
    behind("Sound");
    EXPECT_EQ(press(last, "Two"), (Lines{"What it plays on by itself", "Left", "Right"}));
    EXPECT_EQ(press(last, "Right"), Lines{});
    ASSERT_TRUE(studio.untilOpen("Two"));
    EXPECT_EQ(studio.two->get(&Device::wish).device, "Right");
    EXPECT_EQ(studio.audio->settings().audio, "Two:Right");
    EXPECT_EQ(behind("Rate"), (Lines{"*The device's own", "22050 Hz", "44100 Hz"}));
    studio.two->set(&Device::listed, std::vector<AudioDevice>{{"Left", 0, {}, true}, {"New", 0, {}, false}});
    behind("Sound");
    EXPECT_EQ(press(last, "Two"), (Lines{"What it plays on by itself", "Left", "New"}));
}

TEST_F(SettingsMenuTest, RateBlockAndPortOpenTheDeviceAnew) {
    EXPECT_EQ(behind("Rate"), (Lines{"*The device's own", "44100 Hz", "48000 Hz", "88200 Hz", "96000 Hz"}));
    press(last, "48000");
    ASSERT_TRUE(studio.untilOpen("One"));
    EXPECT_EQ(behind("Block").size(), 8u);
    press(last, "64 frames");
    ASSERT_TRUE(studio.untilOpen("One"));
    studio.one->set(&Device::ports, Lines{"keys", "pads"});
    EXPECT_EQ(behind("MIDI"), (Lines{"*From all ports", "keys", "pads"}));
    press(last, "pads");
    ASSERT_TRUE(studio.untilOpen("One"));
    const AudioWish wish = studio.one->get(&Device::wish);
    EXPECT_EQ(wish.rate, 48000u);
    EXPECT_EQ(wish.frames, 64);
    EXPECT_EQ(wish.midiPort, "pads");
    EXPECT_EQ(lines(menu.all()), (Lines{"Sound: One", "MIDI: from pads", "Rate: 48000 Hz", "Block: 64 frames",
                                        "Transport: its own", "Window: by the screen"}));
    behind("Sound");
    press(last, "Two");
    ASSERT_TRUE(studio.untilOpen("Two"));
    EXPECT_EQ(studio.two->get(&Device::wish).frames, 0) << "another device has its own";
    EXPECT_EQ(studio.two->get(&Device::wish).midiPort, "pads");
}

TEST_F(SettingsMenuTest, TransportAndScaleTouchNoDevice) {
    EXPECT_EQ(behind("Transport"), (Lines{"*Transport its own", "Transport with JACK's",
                                          "Transport with JACK's, which has our tempo"}));
    press(last, "Transport with JACK's, which");
    EXPECT_EQ(studio.audio->settings().transport, TransportRole::leads);
    behind("Window");
    press(last, "200 %");
    EXPECT_EQ(studio.audio->settings().scale, 2);
    EXPECT_EQ(scales, std::vector<int>{2});
    EXPECT_EQ(studio.one->get(&Device::attempts), 1);
}

}  // namespace
}  // namespace marnoth::test::settings_menu_test
