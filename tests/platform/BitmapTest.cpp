#include <gtest/gtest.h>

#include "platform/drawing/Bitmap.h"
#include "support/Canvas.h"

namespace marnoth::test::bitmap_test {
namespace {

using Bytes = std::vector<std::byte>;

Bytes bytesOf(std::initializer_list<int> numbers) {
    Bytes bytes;
    for (const int number : numbers) bytes.push_back(static_cast<std::byte>(number));
    return bytes;
}

// Two by two, 1-2-3 and 4-5-6 above 7-8-9 and 10-11-12; rows of six bytes and two of padding, blue first, the
// lower row first.
const Bytes kSmall = bytesOf({'B', 'M', 70, 0,  0,  0,  0, 0, 0,    0,    54, 0, 0,    0,            //
                              40,  0,   0,  0,  2,  0,  0, 0, 2,    0,    0,  0, 1,    0,    24, 0,  //
                              0,   0,   0,  0,  16, 0,  0, 0, 0x13, 0x0B, 0,  0, 0x13, 0x0B, 0,  0,  //
                              0,   0,   0,  0,  0,  0,  0, 0,                                        //
                              9,   8,   7,  12, 11, 10, 0, 0,                                        //
                              3,   2,   1,  6,  5,  4,  0, 0});

Bitmap small() {
    Bitmap bitmap(2, 2);
    bitmap.at(0, 0) = {1, 2, 3};
    bitmap.at(1, 0) = {4, 5, 6};
    bitmap.at(0, 1) = {7, 8, 9};
    bitmap.at(1, 1) = {10, 11, 12};
    return bitmap;
}

Bytes with(Bytes file, std::size_t at, std::initializer_list<int> numbers) {
    for (const int number : numbers) file[at++] = static_cast<std::byte>(number);
    return file;
}

TEST(BitmapFile, IsReadFromTheBottomUp) {
    EXPECT_EQ(readBmp(kSmall), small());
}

TEST(BitmapFile, IsReadFromTheTopDownWhenItsHeightIsNegative) {
    Bitmap turned(2, 2);
    turned.at(0, 0) = {7, 8, 9};
    turned.at(1, 0) = {10, 11, 12};
    turned.at(0, 1) = {1, 2, 3};
    turned.at(1, 1) = {4, 5, 6};
    EXPECT_EQ(readBmp(with(kSmall, 22, {0xFE, 0xFF, 0xFF, 0xFF})), turned);
}

TEST(BitmapFile, IsWrittenByteForByte) {
    EXPECT_EQ(writeBmp(small()), kSmall);
}

TEST(BitmapFile, ComesBackAsItWasForEveryPadding) {
    for (int width = 1; width <= 9; ++width) {
        const Bitmap bitmap = test::numbered(width, 5);
        EXPECT_EQ(readBmp(writeBmp(bitmap)), bitmap) << width;
    }
}

TEST(BitmapFile, MayHaveALongerHeaderAndAGapBeforeThePixels) {
    Bytes file = with(kSmall, 10, {54 + 13});
    file = with(file, 14, {50});
    file.insert(file.begin() + 54, 13, std::byte{77});
    EXPECT_EQ(readBmp(file), small());
}

TEST(BitmapFile, IsRefusedWhenAnyByteIsMissing) {
    for (std::size_t bytes = 0; bytes < kSmall.size(); ++bytes)
        EXPECT_EQ(readBmp(std::span(kSmall).first(bytes)), std::nullopt) << bytes;
}

TEST(BitmapFile, IsRefusedWhenItIsOfAnotherKind) {
    EXPECT_EQ(readBmp(with(kSmall, 0, {'P'})), std::nullopt);
    EXPECT_EQ(readBmp(with(kSmall, 14, {12})), std::nullopt) << "a header of the old kind";
    EXPECT_EQ(readBmp(with(kSmall, 26, {2})), std::nullopt) << "two planes";
    EXPECT_EQ(readBmp(with(kSmall, 28, {8})), std::nullopt) << "eight bits";
    EXPECT_EQ(readBmp(with(kSmall, 28, {32})), std::nullopt) << "thirty-two bits";
    EXPECT_EQ(readBmp(with(kSmall, 30, {1})), std::nullopt) << "compressed";
    EXPECT_EQ(readBmp(with(kSmall, 10, {53})), std::nullopt) << "pixels inside the header";
    EXPECT_EQ(readBmp(with(kSmall, 10, {0xFF, 0xFF, 0xFF, 0xFF})), std::nullopt) << "pixels behind the file";
    EXPECT_EQ(readBmp(with(kSmall, 14, {0xFF, 0xFF, 0xFF, 0xFF})), std::nullopt) << "a header of 4 GB";
}

TEST(BitmapFile, IsRefusedWhenItClaimsMorePixelsThanItHas) {
    EXPECT_EQ(readBmp(with(kSmall, 18, {3})), std::nullopt);
    EXPECT_EQ(readBmp(with(kSmall, 22, {3})), std::nullopt);
    EXPECT_EQ(readBmp(with(kSmall, 18, {0xFF, 0xFF, 0xFF, 0x7F, 0xFF, 0xFF, 0xFF, 0x7F})), std::nullopt);
    EXPECT_EQ(readBmp(with(kSmall, 18, {0xFF, 0xFF, 0xFF, 0x7F, 0x01, 0x00, 0x00, 0x80})), std::nullopt);
}

TEST(BitmapFile, IsRefusedWithoutWidthOrHeightOrWithOneThatHasNoOpposite) {
    EXPECT_EQ(readBmp(with(kSmall, 18, {0})), std::nullopt);
    EXPECT_EQ(readBmp(with(kSmall, 22, {0})), std::nullopt);
    EXPECT_EQ(readBmp(with(kSmall, 18, {0xFE, 0xFF, 0xFF, 0xFF})), std::nullopt);
    EXPECT_EQ(readBmp(with(kSmall, 22, {0x00, 0x00, 0x00, 0x80})), std::nullopt);
    EXPECT_EQ(readBmp(writeBmp(Bitmap())), std::nullopt);
}

TEST(BitmapFile, OneChangedByteNeverHurts) {
    for (std::size_t at = 0; at < 54; ++at)
        for (int value = 0; value < 256; ++value) {
            const auto bitmap = readBmp(with(kSmall, at, {value}));
            // Sixteen bytes of pixels can be no more than this.
            EXPECT_LE(bitmap ? bitmap->width() * bitmap->height() : 0, 5) << at << ' ' << value;
        }
}

}  // namespace
}  // namespace marnoth::test::bitmap_test
