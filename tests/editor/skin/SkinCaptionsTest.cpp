#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>

#include "editor/PageLayout.h"
#include "editor/skin/Skin.h"

/// What is written on the skin: whether it can be read, and whether it keeps its distance from what is beside
/// it.
namespace marnoth::test::skin_captions_test {
namespace {

constexpr Color kPlate{58, 66, 80};  ///< the one colour around every control
constexpr double kReadable = 4.5;

struct Caption {
    const char* words;
    Rect place;  ///< holds the words and the even ground around them
};

/// Of the page's background.
const std::vector<Caption> kCaptions = {
    {"Output", Rect::at(500, 22, 30, 12)},      {"Channel", Rect::at(500, 40, 31, 11)},
    {"Root", Rect::at(500, 58, 30, 11)},        {"Velocity", Rect::at(500, 83, 30, 13)},
    {"low", Rect::at(534, 83, 17, 11)},         {"high", Rect::at(534, 100, 17, 12)},
    {"Keys", Rect::at(500, 122, 30, 12)},       {"root", Rect::at(534, 122, 17, 11)},
    {"low", Rect::at(534, 139, 17, 11)},        {"high", Rect::at(534, 156, 17, 12)},
    {"Tail", Rect::at(511, 176, 20, 10)},       {"One shot", Rect::at(559, 176, 35, 10)},
    {"Key follow", Rect::at(511, 190, 40, 10)}, {"Volume", Rect::at(503, 206, 40, 8)},
    {"Pan", Rect::at(553, 206, 25, 8)},         {"Selected grain", Rect::at(14, 367, 66, 12)},
    {"Transpose", Rect::at(14, 384, 66, 12)},   {"st", Rect::at(77, 400, 14, 11)},
    {"Volume", Rect::at(14, 423, 66, 11)},      {"dB", Rect::at(77, 439, 14, 11)},
    {"Pan", Rect::at(14, 462, 66, 11)},         {"Snap", Rect::at(20, 502, 40, 10)},
    {"Keys", Rect::at(10, 256, 13, 28)},
};

double linear(int channel) {
    const double share = channel / 255.0;
    return share <= 0.04045 ? share / 12.92 : std::pow((share + 0.055) / 1.055, 2.4);
}

/// Relative luminance, as WCAG 2 has it.
double luminance(Color color) {
    return 0.2126 * linear(color.red) + 0.7152 * linear(color.green) + 0.0722 * linear(color.blue);
}

double contrast(Color one, Color other) {
    const auto [low, high] = std::minmax({luminance(one), luminance(other)});
    return (high + 0.05) / (low + 0.05);
}

/// The ground of words covers most of their rectangle: it is the middle one of the pixels.
Color groundOf(const Bitmap& picture, const Rect& place) {
    std::vector<Color> pixels;
    for (int y = place.top; y < place.bottom; ++y)
        for (int x = place.left; x < place.right; ++x) pixels.push_back(picture.at(x, y));
    const auto middle = pixels.begin() + static_cast<std::ptrdiff_t>(pixels.size() / 2);
    std::nth_element(pixels.begin(), middle, pixels.end(),
                     [](Color a, Color b) { return luminance(a) < luminance(b); });
    return *middle;
}

bool isInk(Color pixel, Color ground) {
    return contrast(pixel, ground) > 1.3;
}

/// Of the cores of the strokes: the mean of the strongest quarter of what is drawn. Small letters have
/// strokes of less than a pixel, whose edges say nothing of how well they are read.
double contrastOfWords(const Bitmap& picture, const Rect& place) {
    const Color ground = groundOf(picture, place);
    std::vector<double> ink;
    for (int y = place.top; y < place.bottom; ++y)
        for (int x = place.left; x < place.right; ++x)
            if (isInk(picture.at(x, y), ground)) ink.push_back(contrast(picture.at(x, y), ground));
    std::ranges::sort(ink, std::greater());
    ink.resize((ink.size() + 3) / 4);
    return ink.empty() ? 1.0 : std::accumulate(ink.begin(), ink.end(), 0.0) / static_cast<double>(ink.size());
}

/// What is drawn within `place`.
Rect inkOf(const Bitmap& picture, const Rect& place) {
    const Color ground = groundOf(picture, place);
    Rect ink{place.right, place.bottom, place.left, place.top};
    for (int y = place.top; y < place.bottom; ++y)
        for (int x = place.left; x < place.right; ++x)
            if (isInk(picture.at(x, y), ground))
                ink = {std::min(ink.left, x), std::min(ink.top, y), std::max(ink.right, x + 1),
                       std::max(ink.bottom, y + 1)};
    return ink;
}

bool isPlate(const Bitmap& picture, const Rect& area) {
    for (int y = area.top; y < area.bottom; ++y)
        for (int x = area.left; x < area.right; ++x)
            if (picture.at(x, y) != kPlate) return false;
    return true;
}

TEST(SkinCaptions, CanBeRead) {
    for (const Caption& caption : kCaptions)
        EXPECT_GE(contrastOfWords(skinBitmap(201), caption.place), kReadable) << caption.words;
    for (int pad = 0; pad < kPads; ++pad) {
        const Point cell = padCell(pad);
        EXPECT_GE(contrastOfWords(skinBitmap(201), Rect::at(cell.x + 65, cell.y - 34, 19, 11)), kReadable)
            << "Vol of pad " << pad;
        EXPECT_GE(contrastOfWords(skinBitmap(201), Rect::at(cell.x + 45, cell.y - 13, 19, 11)), kReadable)
            << "Pan of pad " << pad;
    }
}

TEST(SkinCaptions, TheNumbersOfPadsCanBeReadPlayingOrNot) {
    for (int number = 240; number <= 271; ++number)
        EXPECT_GE(contrastOfWords(skinBitmap(number), Rect::at(5, 21, 16, 12)), kReadable) << number;
}

TEST(SkinCaptions, TheStripsHeadingsAndItsHintCanBeRead) {
    for (const int strip : {227, 228})
        EXPECT_GE(contrastOfWords(skinBitmap(strip), Rect::at(35, 4, 55, 10)), kReadable) << strip;
    EXPECT_GE(contrastOfWords(skinBitmap(226), skinBitmap(226).bounds()), kReadable);
}

TEST(SkinCaptions, AreAllEquallyWide) {
    // The same word on its side, on the tab, and upright, in the pad's panel.
    const Rect onTab = inkOf(skinBitmap(201), Rect::at(10, 256, 13, 28));
    const Rect inPanel = inkOf(skinBitmap(201), Rect::at(500, 122, 30, 12));
    EXPECT_NEAR(onTab.height(), inPanel.width(), 1);
    // And one beside the pads, in the Pad Editor and on the read-outs.
    const Rect besidePad = inkOf(skinBitmap(201), Rect::at(183, 30, 19, 11));
    EXPECT_NEAR(inkOf(skinBitmap(201), Rect::at(14, 462, 66, 11)).width(), besidePad.width(), 1);
    EXPECT_NEAR(inkOf(skinBitmap(201), Rect::at(553, 206, 25, 8)).width(), besidePad.width(), 1);
}

TEST(SkinCaptions, ChannelKeepsAwayFromItsCombo) {
    // The edge of the combo's well begins two pixels left of it.
    EXPECT_TRUE(isPlate(skinBitmap(201), {530, 40, 532, 52}));
}

TEST(SkinCaptions, TheStripsHeadingHasAirAboveAndBelow) {
    // The plate's edge is row 2 of the strip's picture, that of the well begins in row 14.
    EXPECT_TRUE(isPlate(skinBitmap(228), {35, 3, 55, 5})) << "the f alone is higher than the capital";
    EXPECT_TRUE(isPlate(skinBitmap(228), {35, 3, 95, 4}));
    EXPECT_TRUE(isPlate(skinBitmap(228), {35, 12, 95, 14}));
    EXPECT_TRUE(isPlate(skinBitmap(227), {35, 3, 95, 5}));
    EXPECT_FALSE(isPlate(skinBitmap(228), {35, 5, 95, 12})) << "there is no heading";
}

TEST(SkinCaptions, TheMagnifierIsPartOfThePlateAndNoButton) {
    const Bitmap& page = skinBitmap(201);
    const Rect corner{581, 533, 595, 548};
    EXPECT_FALSE(isPlate(page, corner)) << "there is none";
    for (int y = corner.top; y < corner.bottom; ++y)
        for (int x = corner.left; x < corner.right; ++x)
            EXPECT_LT(contrast(page.at(x, y), kPlate), 1.9) << x << ", " << y;
}

TEST(SkinCaptions, TheSpeakerKeepsItsDistanceFromThePlatesEdge) {
    // The plate ends with the column left of 135, the button's rectangle with the one left of 134.
    for (const int state : {218, 219}) EXPECT_TRUE(isPlate(skinBitmap(state), {19, 0, 21, 19})) << state;
}

}  // namespace
}  // namespace marnoth::test::skin_captions_test
