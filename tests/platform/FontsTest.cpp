#include <gtest/gtest.h>

#include <algorithm>
#ifndef _WIN32
#include <cstdlib>
#include <fstream>
#endif

#include "platform/drawing/FaceScale.h"
#include "platform/drawing/PlatformFonts.h"
#include "support/Canvas.h"
#include "support/TempPath.h"

namespace marnoth::test::fonts_test {
namespace {

/// The page's face at both of its heights, where the system has it. The fonts outlive their source.
class ArialFonts : public ::testing::Test {
protected:
    void SetUp() override {
        const auto source = platformFonts();
        std::string error;
        small = source->open("Arial", 12, error);
        large = source->open("Arial", 14, error);
#ifdef _WIN32
        if (!small || !large) GTEST_SKIP() << error;
#else
        ASSERT_TRUE(small && large) << error;
#endif
    }

    std::unique_ptr<Font> small;
    std::unique_ptr<Font> large;
};

// The face reaches 1854 units up and 434 down, of 2048 to the em: 9.96 and 2.33 pixels at 11 to the em, 10.86
// and 2.54 at 12, 11.77 and 2.75 (15 in all) at 13.
TEST_F(ArialFonts, LinesAreAsHighAsAskedFor) {
    EXPECT_EQ(small->lineHeight(), 12);
    EXPECT_EQ(large->lineHeight(), 14);
}

struct Advance {
    char32_t character;
    int units;  ///< of 2048 to the em, as the face's makers publish them
    int atEleven;
    int atTwelve;
};

TEST_F(ArialFonts, AdvancesAreTheFacesOwnInWholePixels) {
    for (const auto& [character, units, atEleven, atTwelve] : std::vector<Advance>{
             {U' ', 569, 3, 3},   {U'#', 1139, 6, 7}, {U'-', 682, 4, 4},  {U'.', 569, 3, 3},
             {U'0', 1139, 6, 7},  {U'1', 1139, 6, 7}, {U'9', 1139, 6, 7}, {U'C', 1479, 8, 9},
             {U'M', 1706, 9, 10}, {U'O', 1593, 9, 9}, {U'P', 1366, 7, 8}, {U'a', 1139, 6, 7},
             {U'd', 1139, 6, 7},  {U'h', 1139, 6, 7}, {U'i', 455, 2, 3},  {U'l', 455, 2, 3},
             {U'm', 1706, 9, 10}, {U'n', 1139, 6, 7}, {U'x', 1024, 6, 6}, {U'y', 1024, 6, 6}}) {
        EXPECT_EQ(small->glyph(character).advance, atEleven) << static_cast<int>(character) << ' ' << units;
        EXPECT_EQ(large->glyph(character).advance, atTwelve) << static_cast<int>(character) << ' ' << units;
    }
}

TEST_F(ArialFonts, TextsAreAsWideAsTheirAdvancesTogether) {
    EXPECT_EQ(small->widthOf("Pad 1"), 7 + 6 + 6 + 3 + 6);
    EXPECT_EQ(large->widthOf("Pad 1"), 8 + 7 + 7 + 3 + 7);
    EXPECT_EQ(small->widthOf("Mix Only"), 9 + 2 + 6 + 3 + 9 + 6 + 2 + 6);
    EXPECT_EQ(large->widthOf("Mix Only"), 10 + 3 + 6 + 3 + 9 + 7 + 3 + 6);
    EXPECT_EQ(small->widthOf("Ch. 16"), 8 + 6 + 3 + 3 + 6 + 6);
    EXPECT_EQ(large->widthOf("-3.5"), 4 + 7 + 3 + 7);
}

TEST_F(ArialFonts, LettersAndDigitsKeepToTheirLine) {
    const std::u32string text = U"0123456789ABCDEFGHIJKLMNOPRSTUVWXYZabcdefghijklmnopqrstuvwxyz#.-%";
    for (Font* font : {small.get(), large.get()})
        for (const char32_t character : text) {
            const Glyph& glyph = font->glyph(character);
            EXPECT_GE(glyph.top, 0) << static_cast<int>(character);
            EXPECT_LE(glyph.top + glyph.height, font->lineHeight()) << static_cast<int>(character);
            ASSERT_EQ(glyph.coverage.size(), static_cast<std::size_t>(glyph.width * glyph.height));
            EXPECT_FALSE(glyph.coverage.empty());
        }
    EXPECT_TRUE(small->glyph(U' ').coverage.empty());
}

// Cap height 1409 of 2048: 7.6 pixels at 11 to the em.
TEST_F(ArialFonts, CapitalsStandOnTheBaseLine) {
    const Glyph& capital = small->glyph(U'H');
    EXPECT_EQ(capital.top + capital.height, 10);
    EXPECT_EQ(capital.height, 8);
    const auto middleRow = capital.coverage.begin() + 4 * capital.width;
    EXPECT_GT(*std::max_element(middleRow, middleRow + capital.width), 120);
}

TEST_F(ArialFonts, WhatTheFaceLacksGivesItsBox) {
    const Glyph box = small->glyph(U'\x10FFFE');
    EXPECT_GT(box.advance, 0);
    EXPECT_FALSE(box.coverage.empty());
    EXPECT_EQ(small->glyph(U'\xE123').coverage, box.coverage);
    EXPECT_NE(small->glyph(U'é').coverage, box.coverage);
}

TEST_F(ArialFonts, ATextsGroundIsItsWidthByTheLine) {
    test::Canvas canvas(40, 14);
    canvas.surface.SelectFont(small.get());
    canvas.surface.SetTextColor(test::kGroundColor);
    canvas.surface.TextOut({2, 1}, "Pad 1");
    for (int y = 0; y < 14; ++y)
        EXPECT_EQ(
            canvas.rows()[static_cast<std::size_t>(y)],
            y == 0 || y == 13 ? std::string(40, '.') : ".." + std::string(28, '-') + std::string(10, '.'));
}

TEST(Fonts, AFaceThatIsNotThereIsNamed) {
    std::string error;
    EXPECT_EQ(platformFonts()->open("No Such Face 7351", 12, error), nullptr);
    EXPECT_NE(error.find("\"No Such Face 7351\" isn't installed"), std::string::npos) << error;
}

#ifndef _WIN32
TEST(Fonts, WithoutTheFaceForArialThePackageIsNamed) {
    const test::TempPath settings(".conf");
    std::ofstream(settings.path()) << "<fontconfig></fontconfig>";
    setenv("FONTCONFIG_FILE", settings.path().c_str(), 1);
    std::string error;
    EXPECT_EQ(platformFonts()->open("Arial", 12, error), nullptr);
    unsetenv("FONTCONFIG_FILE");
    EXPECT_EQ(
        error,
        "The font \"Liberation Sans\" isn't installed: it has Arial's measures and comes with the package "
        "fonts-liberation.");
}
#endif

TEST(FaceScale, IsTheLargestThatFits) {
    const FaceExtent face{1854, 434, 2048};
    EXPECT_EQ(scaleToHeight(face, 12).pixelsPerEm, 11);
    EXPECT_EQ(scaleToHeight(face, 13).pixelsPerEm, 11) << "12 to the em takes 14";
    EXPECT_EQ(scaleToHeight(face, 14).pixelsPerEm, 12);
    EXPECT_EQ(scaleToHeight(face, 14).ascent, 11);
    EXPECT_EQ(scaleToHeight(face, 14).descent, 3);
}

TEST(FaceScale, OfHeightsThatMakeNoSenseIsStillASize) {
    const FaceExtent face{1854, 434, 2048};
    EXPECT_EQ(scaleToHeight(face, 0).pixelsPerEm, 1);
    EXPECT_EQ(scaleToHeight(face, -2147483647).pixelsPerEm, 1);
    EXPECT_LE(scaleToHeight(face, 2147483647).lineHeight(), 1000);
}

}  // namespace
}  // namespace marnoth::test::fonts_test
