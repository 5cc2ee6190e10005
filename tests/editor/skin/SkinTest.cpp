#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>

#include "editor/PageLayout.h"
#include "editor/skin/Palette.h"
#include "editor/skin/Skin.h"
#include "editor/skin/SkinFiles.h"

namespace marnoth::test::skin_test {
namespace {

struct PictureSize {
    int first;
    int last;
    int width;
    int height;
};

/// Every picture that the page asks for, by number.
const std::vector<PictureSize> kSizes = {
    {201, 201, 600, 553}, {226, 226, 400, 10}, {227, 228, 599, 108}, {290, 290, 360, 232}, {240, 271, 44, 38},
    {205, 206, 16, 15},   {281, 282, 16, 15},  {208, 211, 16, 15},   {212, 217, 15, 14},   {286, 287, 15, 14},
    {279, 280, 15, 14},   {288, 289, 20, 19},  {272, 274, 20, 19},   {218, 219, 21, 19},   {276, 277, 9, 9},
    {229, 232, 10, 12},   {233, 236, 12, 10},  {237, 237, 1088, 17},
};

Bitmap areaOf(const Bitmap& bitmap, const Rect& area) {
    Bitmap part(area.width(), area.height());
    for (int y = 0; y < area.height(); ++y)
        std::copy_n(bitmap.row(area.top + y).begin() + area.left, area.width(), part.row(y).begin());
    return part;
}

bool isFlat(const Bitmap& bitmap, const Rect& area, Color color) {
    return areaOf(bitmap, area) == Bitmap(area.width(), area.height(), color);
}

int brightness(const Bitmap& bitmap) {
    int sum = 0;
    for (int y = 0; y < bitmap.height(); ++y)
        for (const Color& color : bitmap.row(y)) sum += color.red + color.green + color.blue;
    return sum / (bitmap.width() * bitmap.height());
}

TEST(Skin, EveryPictureHasTheSizeThatThePageExpects) {
    int pictures = 0;
    for (const PictureSize& size : kSizes)
        for (int number = size.first; number <= size.last; ++number, ++pictures) {
            EXPECT_EQ(skinBitmap(number).width(), size.width) << number;
            EXPECT_EQ(skinBitmap(number).height(), size.height) << number;
        }
    EXPECT_EQ(pictures, 73);
}

TEST(Skin, HoldsNothingButThePicturesAndThreeCursors) {
    EXPECT_EQ(skinFiles().size(), 73u + 3u);
}

TEST(Skin, UnknownNumberIsRefused) {
    EXPECT_THROW(skinBitmap(200), std::out_of_range);
    EXPECT_THROW(skinBitmap(275), std::out_of_range);
}

TEST(Skin, APictureIsDecodedOnce) {
    EXPECT_EQ(&skinBitmap(201), &skinBitmap(201));
}

TEST(Skin, APlayingPadIsFarBrighterThanAnIdleOne) {
    for (int pad = 0; pad < 16; ++pad)
        EXPECT_GT(brightness(skinBitmap(240 + 2 * pad)), brightness(skinBitmap(241 + 2 * pad)) + 200) << pad;
}

TEST(Skin, EveryPadCanBeToldFromTheOthers) {
    for (int one = 0; one < 16; ++one)
        for (int other = 0; other < one; ++other) {
            EXPECT_NE(skinBitmap(240 + 2 * one), skinBitmap(240 + 2 * other));
            EXPECT_NE(skinBitmap(241 + 2 * one), skinBitmap(241 + 2 * other));
        }
}

TEST(Skin, ATogglesTwoStatesDiffer) {
    for (int up : {205, 281, 208, 210, 212, 214, 216, 286, 279, 288, 272, 218, 276, 229, 231, 233, 235})
        EXPECT_NE(skinBitmap(up), skinBitmap(up + 1)) << up;
}

TEST(Skin, OpeningAProjectLoadingIntoTheBinAndOntoAPadHaveSignsOfTheirOwn) {
    for (const int state : {0, 1}) {
        EXPECT_NE(skinBitmap(212 + state), skinBitmap(214 + state));
        EXPECT_NE(skinBitmap(212 + state), skinBitmap(216 + state));
        EXPECT_NE(skinBitmap(214 + state), skinBitmap(216 + state));
    }
}

TEST(Skin, AMutedPadsButtonIsDarkAndAllOthersShineWhenTheyAreDown) {
    EXPECT_LT(brightness(skinBitmap(206)), brightness(skinBitmap(205)) / 2);
    // In the corner of a face, where no sign reaches.
    const auto shine = [](int number) {
        return brightness(areaOf(skinBitmap(number), Rect::at(2, 2, 1, 1)));
    };
    EXPECT_LT(shine(206), shine(205));
    for (const int up : {281, 208, 210, 212, 214, 216, 286, 288, 218, 276})
        EXPECT_GT(shine(up + 1), shine(up)) << up;
}

TEST(Skin, NoTwoFramesOfTheKnobAreAlike) {
    for (int frame = 1; frame < 64; ++frame)
        EXPECT_NE(areaOf(skinBitmap(237), Rect::at(17 * frame, 0, 17, 17)),
                  areaOf(skinBitmap(237), Rect::at(17 * (frame - 1), 0, 17, 17)))
            << frame;
}

TEST(Skin, WhatThePagePaintsItselfIsLeftAsAnEvenWell) {
    const Color ground = kPalette[1];
    for (const Rect& well :
         {kBinList, kPadView, kStripPlot, Rect::at(534, 22, 60, 12), Rect::at(21, 515, 60, 12),
          Rect::at(43, 399, 30, 12), Rect::at(554, 155, 34, 12)})
        EXPECT_TRUE(isFlat(skinBitmap(201), well, ground)) << well.left << ", " << well.top;
    for (int strip : {227, 228})
        EXPECT_TRUE(isFlat(skinBitmap(strip), kStripPlot.movedBy(-1, -232), ground)) << strip;
}

TEST(Skin, PadBlockAndStripLieOnThePageWithoutASeam) {
    EXPECT_EQ(skinBitmap(290), areaOf(skinBitmap(201), Rect::at(135, 2, 360, 232)));
    EXPECT_EQ(skinBitmap(228), areaOf(skinBitmap(201), Rect::at(1, 232, 599, 108)));
    const Rect border = Rect::at(0, 0, 599, 3);
    EXPECT_EQ(areaOf(skinBitmap(227), border), areaOf(skinBitmap(228), border));
}

TEST(SkinCursor, PointsWithAPixelThatShows) {
    for (PageCursor name : {PageCursor::dragCopy, PageCursor::sizeHorizontal, PageCursor::sizeVertical}) {
        const CursorPicture& cursor = skinCursor(name);
        EXPECT_EQ(cursor.picture.bounds(), Rect::at(0, 0, 32, 32));
        EXPECT_EQ(cursor.mask.bounds(), cursor.picture.bounds());
        EXPECT_EQ(cursor.mask.at(cursor.hotSpot.x, cursor.hotSpot.y), kPalette[2]);
    }
}

TEST(SkinCursor, TheMaskIsBlackOrWhiteAndThePictureBlackOutsideIt) {
    for (PageCursor name : {PageCursor::dragCopy, PageCursor::sizeHorizontal, PageCursor::sizeVertical}) {
        const CursorPicture& cursor = skinCursor(name);
        for (int y = 0; y < 32; ++y)
            for (int x = 0; x < 32; ++x)
                EXPECT_TRUE(cursor.mask.at(x, y) == kPalette[2] ||
                            (cursor.mask.at(x, y) == kPalette[0] && cursor.picture.at(x, y) == kPalette[0]));
    }
}

TEST(SkinCursor, TheSystemsOwnHaveNoPicture) {
    EXPECT_THROW(skinCursor(PageCursor::arrow), std::out_of_range);
    EXPECT_THROW(skinCursor(PageCursor::none), std::out_of_range);
}

}  // namespace
}  // namespace marnoth::test::skin_test
