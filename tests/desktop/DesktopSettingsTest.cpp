#include <gtest/gtest.h>

#include <limits>

#include "shells/desktop/settings/DesktopSettings.h"

namespace marnoth::test::desktop_settings_test {
namespace {

TEST(DesktopSettings, WhatCanBeStaysAsItIs) {
    const DesktopSettings settings{"ALSA:USB Audio",     "Tasten", 768000, 1 << 20, 8,
                                   TransportRole::leads, true,     0.0f,   999};
    EXPECT_EQ(usable(settings), settings);
    EXPECT_EQ(usable({}), DesktopSettings{});
}

TEST(DesktopSettings, WhatCantBeGivesWayToTheUsualAndNothingElse) {
    DesktopSettings settings{
        "a\nb", std::string(1001, 'x'),        999,  -1,
        9,      static_cast<TransportRole>(3), true, std::numeric_limits<float>::quiet_NaN(),
        0};
    DesktopSettings expected;
    expected.metronome = true;
    EXPECT_EQ(usable(settings), expected);
    settings.rate = 768001;
    settings.frames = (1 << 20) + 1;
    settings.scale = -1;
    settings.transport = static_cast<TransportRole>(-1);
    settings.level = -0.1f;
    settings.loopBars = 1000;
    EXPECT_EQ(usable(settings), expected);
}

}  // namespace
}  // namespace marnoth::test::desktop_settings_test
