#include <gtest/gtest.h>

#include "shells/desktop/window/ProgramIcon.h"

namespace marnoth {
namespace {

std::uint32_t alpha(std::uint32_t pixel) {
    return pixel >> 24;
}

TEST(ProgramIcon, HasTheSizesThatWindowsShow) {
    const auto icons = programIcon();
    ASSERT_EQ(icons.size(), 3u);
    EXPECT_EQ(icons[0].size, 16u);
    EXPECT_EQ(icons[1].size, 32u);
    EXPECT_EQ(icons[2].size, 48u);
    for (const IconPicture& icon : icons) EXPECT_EQ(icon.pixels.size(), icon.size * icon.size);
}

TEST(ProgramIcon, IsClearOutsideTheCornersOfItsPad) {
    for (const IconPicture& icon : programIcon()) {
        EXPECT_LT(alpha(icon.pixels.front()), 16u) << icon.size;
        EXPECT_LT(alpha(icon.pixels.back()), 16u) << icon.size;
        EXPECT_EQ(alpha(icon.pixels[icon.size * icon.size / 2 + icon.size / 2]), 0xFFu) << icon.size;
    }
}

TEST(ProgramIcon, StandsUpright) {
    // At 32 pixels the third bar is drawn from column 16 on and in rows 9 to 22, lighter at its top.
    const IconPicture icon = programIcon().at(1);
    const auto green = [&](std::size_t y) { return icon.pixels[y * icon.size + 17] >> 8 & 0xFF; };
    EXPECT_GT(green(9), 2 * green(8));
    EXPECT_GT(green(22), 2 * green(23));
    EXPECT_GT(green(9), green(22));
}

}  // namespace
}  // namespace marnoth
