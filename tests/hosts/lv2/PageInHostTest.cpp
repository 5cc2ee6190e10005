#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <cstdlib>
#include <filesystem>

#include "hosts/lv2/PageHost.h"

namespace marnoth::test {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

const std::string kUri = "urn:marnoth:instrument";

// Where things are on the page.
constexpr Point kFirstPad{160, 25};
constexpr Point kMuteOfFirst{164, 51};
constexpr Point kRingOfFirst{137, 20};
constexpr Point kRingOfSixth{226, 80};
constexpr Point kSixthPad{250, 80};
constexpr Point kLowVelocity{580, 88};
constexpr Point kTextOfLowVelocity{557, 84};
constexpr Point kOpenProject{18, 37};
constexpr Point kClearProject{60, 36};
constexpr Point kQuestion{350, 291};  ///< on a button of one, or of a dialog of files

class PageInHost : public testing::Test {
protected:
    PageInHost() : plugin(plugins, kUri, 48000), descriptor(pageOf(plugins, kUri)) { plugin.activate(); }

    std::unique_ptr<PageHost> open(const PageHost::Offer& offer = {}) {
        auto page = std::make_unique<PageHost>(descriptor, plugin, offer);
        if (page->isOpen()) runFor(*page, 50ms);
        return page;
    }
    /// Lets pages idle, as hosts do, until `done`, or for some seconds; whether it was done.
    template <class Done>
    static bool run(std::initializer_list<PageHost*> pages, Done done, Clock::duration most = 5s) {
        const auto end = Clock::now() + most;
        while (Clock::now() < end) {
            for (PageHost* page : pages) page->idle();
            if (done()) return true;
            std::this_thread::sleep_for(5ms);
        }
        return false;
    }
    static void runFor(PageHost& page, Clock::duration time) {
        run(
            {&page}, [] { return false; }, time);
    }
    static unsigned long at(const PageHost& page, Point place) { return page.pixel(place.x, place.y); }
    /// Clicks, and waits until it is seen somewhere.
    static bool showsIn(PageHost& page, Point clicked, Point seen) {
        const unsigned long before = at(page, seen);
        page.click(clicked.x, clicked.y);
        return run({&page}, [&] { return at(page, seen) != before; });
    }
    static std::ptrdiff_t openFiles() {
        using Files = std::filesystem::directory_iterator;
        return std::distance(Files("/proc/self/fd"), Files());
    }

    Plugins plugins;
    LilvHost plugin;
    const LV2UI_Descriptor& descriptor;
};

TEST_F(PageInHost, RefusesAHostThatGivesNoInstanceOrNoWindowAndSaysSo) {
    EXPECT_FALSE(open({.instance = false})->isOpen());
    EXPECT_NE(plugin.world.log.find("instance-access"), std::string::npos) << plugin.world.log;
    plugin.world.log.clear();
    EXPECT_FALSE(open({.window = false})->isOpen());
    EXPECT_NE(plugin.world.log.find("ui:parent"), std::string::npos) << plugin.world.log;
}

TEST_F(PageInHost, SaysWhereThereIsNoDisplay) {
    const std::string display = std::getenv("DISPLAY");
    OtherProgram keepsTheDisplay;
    LV2_Feature instance{LV2_INSTANCE_ACCESS_URI, plugin.handle()};
    LV2_Feature parent{LV2_UI__parent, reinterpret_cast<void*>(keepsTheDisplay.window())};
    const std::array<const LV2_Feature*, 4> features{plugin.world.features()[0], &instance, &parent, nullptr};
    unsetenv("DISPLAY");
    LV2UI_Widget widget = nullptr;
    testing::internal::CaptureStderr();
    EXPECT_EQ(
        descriptor.instantiate(&descriptor, kUri.c_str(), "", nullptr, nullptr, &widget, features.data()),
        nullptr);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "marnoth: There is no display: the environment names none in DISPLAY.\n");
    setenv("DISPLAY", display.c_str(), 1);
}

TEST_F(PageInHost, IsAsLargeAsTheHostsScaleFactorAsks) {
    for (const auto& [factor, scale] : {std::pair(0.0f, 1), {1.5f, 1}, {1.75f, 2}, {2.0f, 2}, {-3.0f, 1}}) {
        const auto page = open({.scaleFactor = factor});
        ASSERT_TRUE(page->isOpen());
        EXPECT_EQ(page->asked, (Point{600 * scale, 553 * scale})) << factor;
        EXPECT_EQ(page->size(), page->asked);
    }
    const auto page = open({.scaleFactor = 2});
    page->setScaleFactor(1);
    EXPECT_EQ(page->asked, (Point{600, 553}));
    EXPECT_TRUE(run({page.get()}, [&] { return page->size() == Point{600, 553}; }));
}

TEST_F(PageInHost, IsOpenedAndClosedFiftyTimes) {
    open()->close();
    const std::ptrdiff_t files = openFiles();
    for (int i = 0; i < 50; ++i) {
        const auto page = open();
        ASSERT_TRUE(page->isOpen()) << plugin.world.log;
        ASSERT_TRUE(run({page.get()}, [&] { return at(*page, kRingOfFirst) != 0; })) << i;
    }
    EXPECT_EQ(openFiles(), files);
}

TEST_F(PageInHost, TwoPagesOfOneInstanceShowWhatEachOtherChanges) {
    const auto one = open();
    const auto other = open();
    const unsigned long before = at(*other, kMuteOfFirst);
    one->user.show();
    XRaiseWindow(one->user.display(), one->user.window());
    one->click(kMuteOfFirst.x, kMuteOfFirst.y);
    ASSERT_TRUE(run({one.get(), other.get()}, [&] { return at(*one, kMuteOfFirst) != before; }));
    XRaiseWindow(other->user.display(), other->user.window());
    XSync(other->user.display(), kXFalse);
    EXPECT_TRUE(run({one.get(), other.get()}, [&] { return at(*other, kMuteOfFirst) != before; }));
}

TEST_F(PageInHost, ShowsAutomationButNotInTheMiddleOfWhatIsTyped) {
    const auto page = open();
    const unsigned long before = at(*page, kMuteOfFirst);
    const auto mute = [&](float on) {
        plugin.automate("urn:marnoth:pad1:mute", on);
        plugin.block(64);
    };
    const auto isMuted = [&] { return at(*page, kMuteOfFirst) != before; };
    mute(1);
    EXPECT_TRUE(run({page.get()}, isMuted));
    mute(0);
    ASSERT_TRUE(run({page.get()}, [&] { return !isMuted(); }));
    ASSERT_TRUE(showsIn(*page, kLowVelocity, kTextOfLowVelocity)) << "all of it is selected";
    page->user.focus(page->window);
    page->user.type(XK_3);
    runFor(*page, 50ms);
    const unsigned long typed = at(*page, kTextOfLowVelocity);
    mute(1);
    EXPECT_FALSE(run({page.get()}, isMuted, 600ms));
    EXPECT_EQ(at(*page, kTextOfLowVelocity), typed);
    page->user.type(XK_Return);
    EXPECT_TRUE(run({page.get()}, isMuted));
}

TEST_F(PageInHost, IsClosedUnderItsQuestions) {
    for (const Point asks : {kClearProject, kOpenProject}) {
        const auto page = open();
        ASSERT_TRUE(showsIn(*page, asks, kQuestion)) << asks.x;
        page->close();
    }
    const auto page = open();
    EXPECT_TRUE(showsIn(*page, kSixthPad, kRingOfSixth)) << "the next one works";
}

TEST_F(PageInHost, OutlivesTheHostsWindow) {
    for (const Point asks : {kFirstPad, kClearProject, kOpenProject}) {
        const auto page = open();
        page->click(asks.x, asks.y);
        runFor(*page, 50ms);
        page->user.destroyWindow();
        EXPECT_TRUE(run({page.get()}, [&] { return page->idle() != 0; })) << "the host is told";
        EXPECT_NE(page->idle(), 0);
        page->setScaleFactor(2);
    }
}

TEST_F(PageInHost, ShowsWhatItsUserLeft) {
    auto page = open();
    ASSERT_TRUE(showsIn(*page, kSixthPad, kRingOfSixth));
    const unsigned long ring = at(*page, kRingOfSixth);
    page->close();
    page = open();
    EXPECT_TRUE(run({page.get()}, [&] { return at(*page, kRingOfSixth) == ring; }));
    const LilvStateOwner state = plugin.state({});
    LilvHost other(plugins, kUri, 48000);
    PageHost shown(descriptor, other, {});
    EXPECT_NE(at(shown, kRingOfSixth), ring);
    other.restore(*state);
    EXPECT_TRUE(run({&shown}, [&] { return at(shown, kRingOfSixth) == ring; })) << "while it is open";
}

}  // namespace
}  // namespace marnoth::test
