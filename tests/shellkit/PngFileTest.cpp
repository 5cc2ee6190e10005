#include <gtest/gtest.h>

#include <algorithm>

#include "shellkit/PngPicture.h"
#include "shellkit/files/Failure.h"
#include "shellkit/media/PngFile.h"

namespace marnoth::test::png_file_test {
namespace {

TEST(PngFile, HasTheSizeAndTheFormatOfThePicture) {
    const TempFolder folder;
    writePng(folder / "a.png", Bitmap(31, 7, {1, 2, 3}));
    const auto header = pngHeader(folder / "a.png");
    ASSERT_TRUE(header);
    EXPECT_EQ(header->width, 31u);
    EXPECT_EQ(header->height, 7u);
    EXPECT_EQ(header->bitDepth, 8);
    EXPECT_EQ(header->colorType, 2);
}

TEST(PngFile, HoldsNoTimeAndEndsAsItMust) {
    const TempFolder folder;
    writePng(folder / "a.png", Bitmap(3, 2));
    const std::vector<std::string> chunks = pngChunks(folder / "a.png");
    ASSERT_FALSE(chunks.empty());
    EXPECT_EQ(chunks.front(), "IHDR");
    EXPECT_EQ(chunks.back(), "IEND");
    EXPECT_EQ(std::count(chunks.begin(), chunks.end(), "tIME"), 0);
    EXPECT_GE(std::count(chunks.begin(), chunks.end(), "IDAT"), 1);
}

TEST(PngFile, TakesThePlaceOfAnOlderOne) {
    const TempFolder folder;
    writePng(folder / "a.png", Bitmap(3, 2));
    writePng(folder / "a.png", Bitmap(4, 5));
    EXPECT_EQ(pngHeader(folder / "a.png")->width, 4u);
}

TEST(PngFile, ThatCannotBeWrittenLeavesNothing) {
    const TempFolder folder;
    std::filesystem::create_directories(folder / "a.png" / "in the way");
    EXPECT_THROW(writePng(folder / "a.png", Bitmap(3, 2)), FileFailure);
    EXPECT_FALSE(std::filesystem::exists(folder / "a.png.part"));
    EXPECT_THROW(writePng(folder / "missing" / "b.png", Bitmap(3, 2)), FileFailure);
}

#ifndef _WIN32

TEST(PngFile, ComesBackAsItWas) {
    Bitmap picture(40, 30);
    for (int y = 0; y < 30; ++y)
        for (int x = 0; x < 40; ++x)
            picture.at(x, y) = {static_cast<std::uint8_t>(6 * x), static_cast<std::uint8_t>(8 * y),
                                static_cast<std::uint8_t>(x * y)};
    const TempFolder folder;
    writePng(folder / "a.png", picture);
    EXPECT_TRUE(readPng(folder / "a.png") == picture);
}

#endif

}  // namespace
}  // namespace marnoth::test::png_file_test
