#include <gtest/gtest.h>

#include "shells/desktop/window/Notices.h"

namespace marnoth::test::notices_test {
namespace {

using namespace std::chrono_literals;

constexpr Notices::Time kStart{};

TEST(Notices, GoByThemselves) {
    Notices notices;
    EXPECT_EQ(notices.current(kStart).text, "");
    notices.tell("Saved a.mrn.");
    EXPECT_EQ(notices.current(kStart).text, "Saved a.mrn.");
    EXPECT_EQ(notices.current(kStart + 3s).text, "Saved a.mrn.");
    EXPECT_EQ(notices.current(kStart + 5s).text, "");
}

TEST(Notices, ComeOneBehindTheOtherAndEachIsSeen) {
    Notices notices;
    notices.tell("One.");
    notices.warn("Two.");
    EXPECT_EQ(notices.current(kStart).text, "One.");
    EXPECT_EQ(notices.current(kStart + 60s).text, "Two.");
    EXPECT_TRUE(notices.current(kStart + 61s).warns);
}

TEST(Notices, WarningsAreReadLongerAndLongerOnesToo) {
    Notices notices;
    notices.warn("The disk is full.");
    notices.current(kStart);
    EXPECT_EQ(notices.current(kStart + 14s).text, "The disk is full.");
    EXPECT_EQ(notices.current(kStart + 16s).text, "");
    const std::string longOne(200, 'a');
    notices.tell(longOne);
    notices.current(kStart);
    EXPECT_EQ(notices.current(kStart + 15s).text, longOne);
}

TEST(Notices, ThatWaitAlreadyArentToldTwice) {
    Notices notices;
    notices.tell("Lost.");
    notices.tell("Lost.");
    notices.tell("");
    notices.current(kStart);
    notices.dismiss();
    EXPECT_EQ(notices.current(kStart).text, "");
}

}  // namespace
}  // namespace marnoth::test::notices_test
