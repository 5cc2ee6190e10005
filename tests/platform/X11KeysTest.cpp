#include <gtest/gtest.h>

#include "platform/drawing/PageWindow.h"
#include "platform/linux/X11Keys.h"

namespace marnoth::test::x11_keys_test {
namespace {

TEST(X11Keys, LettersOfBothCasesAreTheirCapitals) {
    EXPECT_EQ(pageKeyOf(XK_a), kKeyA);
    EXPECT_EQ(pageKeyOf(XK_Z), kKeyZ);
}

TEST(X11Keys, KeysOfThePagesGesturesHaveItsCodes) {
    EXPECT_EQ(pageKeyOf(XK_Delete), kKeyDelete);
    EXPECT_EQ(pageKeyOf(XK_Return), kKeyReturn);
    EXPECT_EQ(pageKeyOf(XK_Left), kKeyLeft);
    EXPECT_EQ(pageKeyOf(XK_F11), kKeyF11);
    EXPECT_EQ(pageKeyOf(XK_Control_R), kKeyControl);
}

TEST(X11Keys, TheKeypadHasItsOwnSignsAndWithoutNumLockArrows) {
    EXPECT_EQ(pageKeyOf(XK_KP_Add), kKeyAdd);
    EXPECT_EQ(pageKeyOf(XK_KP_Subtract), kKeySubtract);
    EXPECT_EQ(pageKeyOf(XK_KP_7), 96 + 7);
    EXPECT_EQ(pageKeyOf(XK_KP_Home), kKeyHome);
}

TEST(X11Keys, ASignIsTheKeyOfItsDigit) {
    EXPECT_EQ(pageKeyOf(XK_exclam), '1');
    EXPECT_EQ(pageKeyOf(XK_minus), 189);
}

TEST(X11Keys, OthersAreNone) {
    EXPECT_EQ(pageKeyOf(XK_Cyrillic_ya), 0);
    EXPECT_EQ(pageKeyOf(XK_Super_L), 0);
    EXPECT_EQ(pageKeyOf(0), 0);
}

}  // namespace
}  // namespace marnoth::test::x11_keys_test
