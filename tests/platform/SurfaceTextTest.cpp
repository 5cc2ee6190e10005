#include <gtest/gtest.h>

#include <limits>

#include "platform/drawing/RecordingSurface.h"
#include "support/Canvas.h"

namespace marnoth::test::surface_text_test {
namespace {

using test::Canvas;
using test::Rows;

/// Lines of four pixels. 'a' is two pixels, one below the other, the lower one half covered, one from the
/// left; 'j' begins one to the left of its place; 'é' is a full block of two by four; all else is blank and
/// two wide.
class BlockFont final : public Font {
public:
    int lineHeight() const override { return 4; }
    const Glyph& glyph(char32_t character) override {
        asked.push_back(character);
        glyph_ = {0, 0, 0, 0, 2, {}};
        if (character == U'a') glyph_ = {1, 1, 1, 2, 3, {255, 128}};
        if (character == U'j') glyph_ = {-1, 3, 2, 1, 2, {255, 255}};
        if (character == U'é') glyph_ = {0, 0, 2, 4, 2, std::vector<unsigned char>(8, 255)};
        return glyph_;
    }

    std::u32string asked;

private:
    Glyph glyph_;
};

class SurfaceText : public ::testing::Test {
protected:
    SurfaceText() {
        canvas.surface.SelectFont(&font);
        canvas.surface.SetTextColor(test::kPenColor);
    }

    BlockFont font;
    Canvas canvas{8, 6};
};

// Half covered: 128 of 255 parts of white on 40, 50, 60.
TEST_F(SurfaceText, FillsItsGroundOverTheLineAndBlendsTheGlyphs) {
    canvas.surface.TextOut({1, 1}, "a.");
    EXPECT_EQ(canvas.rows(), (Rows{"........",  //
                                   ".-----..",  //
                                   ".-#---..",  //
                                   ".-?---..",  //
                                   ".-----..",  //
                                   "........"}));
    EXPECT_EQ(canvas.bitmap.at(2, 3), (Color{148, 153, 158}));
}

TEST_F(SurfaceText, DrawsWhatReachesBeyondItsGroundOntoWhatIsThere) {
    canvas.surface.TextOut({3, 0}, "j");
    EXPECT_EQ(canvas.rows()[0], "...--...");
    EXPECT_EQ(canvas.rows()[3], "..##-...");
}

TEST_F(SurfaceText, GoesByCharactersOfUtf8) {
    canvas.surface.TextOut({0, 0}, "\xC3\xA9\xE2\x82\xAC\xFF");
    EXPECT_EQ(canvas.rows()[0], "##----..");
    EXPECT_EQ(font.asked, U"é€\xFFFDé€\xFFFD") << "once for the width and once for the glyphs";
    EXPECT_EQ(font.widthOf("a\xC3\xA9"), 5);
    EXPECT_EQ(font.widthOf(""), 0);
}

TEST_F(SurfaceText, IsHeldToTheClipArea) {
    canvas.surface.SelectClipRgn(Rect{1, 1, 3, 3});
    canvas.surface.TextOut({0, 0}, "\xC3\xA9 ");
    EXPECT_EQ(canvas.rows(), (Rows{"........", ".#-.....", ".#-.....", "........", "........", "........"}));
}

TEST_F(SurfaceText, PartlyOutsideShowsTheRest) {
    canvas.surface.TextOut({-1, -2}, "\xC3\xA9 ");
    canvas.surface.TextOut({7, 4}, " \xC3\xA9");
    EXPECT_EQ(canvas.rows(), (Rows{"#--.....", "#--.....", "........", "........", ".......-", ".......-"}));
}

TEST_F(SurfaceText, FarAwayOrWithoutAFontOrEmptyDrawsNothing) {
    constexpr int kLeast = std::numeric_limits<int>::min();
    constexpr int kMost = std::numeric_limits<int>::max();
    for (const int x : {kLeast, -100, 100, kMost})
        for (const int y : {kLeast, -100, 100, kMost}) canvas.surface.TextOut({x, y}, "aj\xC3\xA9");
    canvas.surface.TextOut({1, 1}, "");
    canvas.surface.SelectFont(nullptr);
    canvas.surface.TextOut({1, 1}, "a");
    EXPECT_EQ(canvas.rows(), Rows(6, "........"));
}

void callAll(Surface& surface, Font& font) {
    surface.SelectPen({{1, 2, 3}});
    surface.SelectPen({{255, 255, 255}, 2, true});
    surface.SelectBrush(Color{4, 5, 6});
    surface.SelectBrush({});
    surface.SelectFont(&font);
    surface.SetTextColor({7, 8, 9});
    surface.SetGroundColor({10, 11, 12});
    surface.SelectClipRgn(Rect{0, 0, 30, 20});
    surface.SelectClipRgn({});
    surface.Rectangle({1, 2, 3, 4});
    surface.RoundRect({-1, 2, 9, 8}, 5, 6);
    const std::vector<Point> points{{0, 0}, {4, 2}, {0, 4}};
    surface.Polygon(points);
    surface.Ellipse({2, 3, 8, 10});
    surface.MoveTo({5, 6});
    surface.LineTo({7, -8});
    surface.TextOut({3, 4}, "Pad a");
    surface.BitBlt({0, 0, 8, 8}, test::numbered(16, 9), {2, 0});
}

TEST(RecordingSurface, WritesDownEveryCall) {
    RecordingSurface surface;
    BlockFont font;
    callAll(surface, font);
    EXPECT_EQ(surface.calls(),
              (Rows{"SelectPen 1,2,3", "SelectPen 255,255,255 width 2 dotted", "SelectBrush 4,5,6",
                    "SelectBrush none", "SelectFont 4", "SetTextColor 7,8,9", "SetGroundColor 10,11,12",
                    "SelectClipRgn 0,0,30,20", "SelectClipRgn none", "Rectangle 1,2,3,4",
                    "RoundRect -1,2,9,8 corners 5,6", "Polygon 0,0 4,2 0,4", "Ellipse 2,3,8,10", "MoveTo 5,6",
                    "LineTo 7,-8", "TextOut 3,4 \"Pad a\"", "BitBlt 0,0,8,8 from 2,0 of 16x9"}));
    surface.clear();
    surface.SelectFont(nullptr);
    EXPECT_EQ(surface.calls(), Rows{"SelectFont none"});
}

TEST(RecordingSurface, DrawsOnTheSurfaceBeneath) {
    BlockFont font;
    Canvas direct(30, 20);
    Canvas beneath(30, 20);
    RecordingSurface recording(&beneath.surface);
    callAll(direct.surface, font);
    callAll(recording, font);
    EXPECT_EQ(beneath.bitmap, direct.bitmap);
    EXPECT_NE(beneath.bitmap, Bitmap(30, 20));
}

}  // namespace
}  // namespace marnoth::test::surface_text_test
