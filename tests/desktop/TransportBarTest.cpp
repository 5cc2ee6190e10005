#include <gtest/gtest.h>

#include "platform/drawing/HeadlessWindow.h"
#include "platform/drawing/PlatformFonts.h"
#include "shells/desktop/window/TransportBar.h"

namespace marnoth::test::transport_bar_test {
namespace {

using Lines = std::vector<std::string>;

/// A program that writes down what it is asked for.
class Program final : public TransportBarHost {
public:
    State look() override { return state; }
    void play() override { asked.push_back("play"); }
    void stop() override { asked.push_back("stop"); }
    void toStart() override { asked.push_back("to start"); }
    void record(bool on) override { asked.push_back(on ? "record" : "record no more"); }
    void setTempo(double tempo) override { asked.push_back("tempo " + std::to_string(tempo)); }
    void setLoop(int bars) override { asked.push_back("loop " + std::to_string(bars)); }
    void setMetronome(bool on) override { asked.push_back(on ? "click" : "no click"); }
    void setLevel(float gain) override { levels.push_back(gain); }
    void setKey(std::optional<int> key) override {
        asked.push_back("key " + (key ? std::to_string(*key) : "none"));
    }
    std::vector<MenuItem> files() override { return {{7, "Open", false}}; }
    void chooseFile(int id) override { asked.push_back("file " + std::to_string(id)); }
    void panic() override { asked.push_back("panic"); }
    std::vector<MenuItem> settings() override { return {{1, "One", true}, {2, "Two", false}}; }
    std::vector<MenuItem> chooseSetting(int id) override {
        asked.push_back("setting " + std::to_string(id));
        return std::exchange(behind, {});
    }
    Lines take() { return std::exchange(asked, {}); }

    State state;
    Lines asked;
    std::vector<float> levels;
    std::vector<MenuItem> behind;  ///< the next setting
};

class TransportBarTest : public testing::Test {
protected:
    TransportBarTest() {
        window.setFonts(*fonts);
        bar = std::make_unique<TransportBar>(window, program);
        window.setPage(bar.get());
        bar->open();
        window.settle();
    }
    void click(Point at) {
        window.press(at);
        window.release(at);
    }
    void type(Point at, const std::string& what) {
        click(at);
        window.type(what);
        window.key(kKeyReturn);
    }
    Color pixel(Point at) {
        window.settle();
        return window.screen().at(at.x, at.y);
    }

    static constexpr Point kPlay{72, 15};
    static constexpr Point kTempo{226, 15};
    static constexpr Point kTempoLabel{268, 15};
    static constexpr Point kLoop{326, 15};
    static constexpr Point kBars{350, 15};
    static constexpr Point kKey{406, 15};
    static constexpr Point kClipLight{518, 15};

    std::unique_ptr<FontSource> fonts = platformFonts();
    HeadlessWindow window;
    Program program;
    std::unique_ptr<TransportBar> bar;
};

TEST_F(TransportBarTest, ItsButtonsMoveTheTransport) {
    click({46, 15});
    click(kPlay);
    click({98, 15});
    click({124, 15});
    click({560, 15});
    EXPECT_EQ(program.take(), (Lines{"to start", "play", "stop", "record", "panic"}));
}

TEST_F(TransportBarTest, PlayStopsWhatPlays) {
    program.state.playing = true;
    window.tick();
    click(kPlay);
    EXPECT_EQ(program.take(), (Lines{"stop"}));
}

TEST_F(TransportBarTest, ATempoIsTyped) {
    type(kTempo, "97.5");
    EXPECT_EQ(program.take(), (Lines{"tempo 97.500000"}));
    EXPECT_FALSE(window.wantsFocus()) << "the keyboard is free again";
}

TEST_F(TransportBarTest, WhatIsNoTempoChangesNothing) {
    for (const char* const text : {"fast", "0", "1001", "-3", "nan", "inf", ""}) {
        click(kTempo);
        window.key(kKeyDelete);
        window.type(text);
        window.key(kKeyReturn);
    }
    EXPECT_EQ(program.take(), Lines{});
}

TEST_F(TransportBarTest, ATempoIsDraggedAndTurnedByWholeBeats) {
    window.press(kTempoLabel);
    window.move({268, 12});
    window.release({268, 12});
    EXPECT_EQ(program.take(), (Lines{"tempo 123.000000"}));
    window.wheel(kTempoLabel, WheelAxis::vertical, -1);
    EXPECT_EQ(program.take(), (Lines{"tempo 122.000000"}));
    window.move({268, 25});
    EXPECT_EQ(program.take(), Lines{}) << "behind the release";
}

TEST_F(TransportBarTest, ALoopHasTheBarsThatAreTyped) {
    click(kLoop);
    EXPECT_EQ(program.take(), (Lines{"loop 4"}));
    type(kBars, "8");
    EXPECT_EQ(program.take(), (Lines{"loop 8"}));
    type(kBars, "0");
    EXPECT_EQ(program.take(), (Lines{"loop 8"})) << "no bars are none";
    click(kLoop);
    EXPECT_EQ(program.take(), (Lines{"loop 0"}));
    type(kBars, "2");
    EXPECT_EQ(program.take(), Lines{}) << "the loop is off";
}

TEST_F(TransportBarTest, AKeyIsChosenFromItsMenu) {
    window.answer("4");
    click(kKey);
    EXPECT_EQ(program.take(), (Lines{"key 3"})) << "C, counted from A";
    EXPECT_EQ(window.takeLog().back(),
              "? menu 100:None:checked 1:A 2:A# 3:B 4:C 5:C# 6:D 7:D# 8:E 9:F 10:F# 11:G 12:G# -> 4");
    window.answer("100");
    click(kKey);
    EXPECT_EQ(program.take(), (Lines{"key none"}));
    window.answer("cancel");
    click(kKey);
    EXPECT_EQ(program.take(), Lines{});
}

TEST_F(TransportBarTest, SettingsAreTheProgramsOwn) {
    window.answer("2");
    click({584, 15});
    EXPECT_EQ(program.take(), (Lines{"setting 2"}));
}

TEST_F(TransportBarTest, BehindASettingMayBeAMenuOfItsOwn) {
    program.behind = {{1, "Three", false}};
    window.answer("2");
    window.answer("1");
    click({584, 15});
    EXPECT_EQ(program.take(), (Lines{"setting 2", "setting 1"}));
}

TEST_F(TransportBarTest, FilesAreTheProgramsOwn) {
    window.answer("7");
    click({16, 15});
    EXPECT_EQ(program.take(), (Lines{"file 7"}));
}

TEST_F(TransportBarTest, ItBeginsWithWhatWasKept) {
    bar->setUp(true, 1.0f, 8);
    click({380, 15});
    EXPECT_EQ(program.take(), (Lines{"no click"})) << "it was on";
    click(kLoop);
    EXPECT_EQ(program.take(), (Lines{"loop 8"}));
    // 0.25 is -12 dB: 36 of 54 dB from the lowest, where full level has 48.
    bar->setUp(false, 0.25f, 1);
    window.wheel({457, 14}, WheelAxis::vertical, 1);
    ASSERT_FALSE(program.levels.empty());
    EXPECT_GT(program.levels.back(), 0.25f);
    EXPECT_LT(program.levels.back(), 0.32f);
}

TEST_F(TransportBarTest, TheClipLightStaysUntilItIsPressed) {
    const Color dark = pixel(kClipLight);
    program.state.peakLeft = 1.01f;
    window.tick();
    const Color lit = pixel(kClipLight);
    EXPECT_NE(lit, dark);
    program.state.peakLeft = 0.1f;
    for (int i = 0; i < 100; ++i) window.tick();
    EXPECT_EQ(pixel(kClipLight), lit);
    click(kClipLight);
    EXPECT_EQ(pixel(kClipLight), dark);
}

TEST_F(TransportBarTest, FullLevelIsExactlyOne) {
    // The knob's own double click is full level.
    window.doubleClick({457, 14});
    ASSERT_FALSE(program.levels.empty());
    EXPECT_EQ(program.levels.back(), 1.0f);
}

TEST_F(TransportBarTest, AtItsLowestTheLevelIsSilence) {
    window.wheel({457, 14}, WheelAxis::vertical, -100);
    ASSERT_FALSE(program.levels.empty());
    EXPECT_EQ(program.levels.back(), 0.0f);
    window.wheel({457, 14}, WheelAxis::vertical, 100);
    EXPECT_NEAR(program.levels.back(), 1.9953, 1e-3) << "6 dB";
}

TEST_F(TransportBarTest, MetersFallSlowly) {
    program.state.peakLeft = 0.5f;
    window.tick();
    // -6 of 48 dB: seven eighths of 44 pixels.
    const Color dark = pixel({470 + 41, 11});
    const Color lit = pixel({470 + 35, 11});
    EXPECT_NE(lit, dark);
    program.state.peakLeft = 0.0f;
    window.tick();
    EXPECT_EQ(pixel({470 + 31, 11}), lit) << "a little lower";
    for (int i = 0; i < 60; ++i) window.tick();
    EXPECT_EQ(pixel({470 + 10, 11}), dark);
}

}  // namespace
}  // namespace marnoth::test::transport_bar_test
