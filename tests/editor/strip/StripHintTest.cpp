#include <gtest/gtest.h>

#include "editor/PageRig.h"
#include "editor/skin/Skin.h"

/// The line in the strip's heading row that tells a newcomer how to begin.
namespace marnoth::test::strip_hint_test {
namespace {

constexpr Rect kHintPlace = Rect::at(98, 236, 400, 10);
constexpr Point kOnKeyTab{16, 260};

class StripHint : public testing::Test {
protected:
    bool shows(int number, Point corner) const {
        const Bitmap& picture = skinBitmap(number);
        for (int y = kHintPlace.top; y < kHintPlace.bottom; ++y)
            for (int x = kHintPlace.left; x < kHintPlace.right; ++x)
                if (rig.window.screen().at(x, y) != picture.at(x - corner.x, y - corner.y)) return false;
        return true;
    }
    bool isThere() const { return shows(226, {kHintPlace.left, kHintPlace.top}); }
    /// The ground of the strip's view shows in its place.
    bool isGone() const { return shows(rig.page->showsKeyMap() ? 227 : 228, {1, 232}); }

    PageRig rig;
};

TEST_F(StripHint, AnEmptyPageTellsHowToBeginInBothViewsOfTheStrip) {
    rig.open();
    EXPECT_TRUE(isThere());
    rig.click(kOnKeyTab);
    ASSERT_TRUE(rig.page->showsKeyMap());
    EXPECT_TRUE(isThere());
}

TEST_F(StripHint, GoesWithTheFirstFileAndComesBackWithAClearedProject) {
    rig.open();
    rig.addFile("loop.wav", 2);
    rig.engine.SetRefreshRequest(1);
    rig.window.tick();
    EXPECT_TRUE(isGone());
    rig.click(kOnKeyTab);
    EXPECT_TRUE(isGone());
    rig.engine.files.clear();
    rig.engine.SetRefreshRequest(1);
    rig.window.tick();
    EXPECT_TRUE(isThere());
}

TEST_F(StripHint, APageWithoutAnInstrumentHasNothingToTell) {
    rig.window.setFonts(rig.fonts);
    rig.page = std::make_unique<CGrooveSamplerPropPage>(rig.window);
    rig.window.setPage(rig.page.get());
    rig.page->open();
    rig.window.settle();
    EXPECT_TRUE(isGone());
}

}  // namespace
}  // namespace marnoth::test::strip_hint_test
