#include <gtest/gtest.h>

#include <algorithm>

#include "cli/Studio.h"
#include "editor/PageLayout.h"
#include "platform/drawing/RasterSurface.h"
#include "shellkit/PngPicture.h"

namespace marnoth::test::page_picture_test {
namespace {

/// A project of two loops, and pictures of it.
class Pictures {
public:
    Pictures() { studio.save("two.mrn"); }

    CliRun draw(const std::string& out, std::vector<std::string> more = {}) const {
        std::vector<std::string> words{"page", studio.name("two.mrn"), "--out", studio.name(out)};
        words.insert(words.end(), more.begin(), more.end());
        return marnoth(words);
    }
    std::optional<PngHeader> header(const std::string& name) const { return pngHeader(studio.folder / name); }

    Studio studio;
};

TEST(PagePicture, ScaleMultipliesTheSize) {
    const Pictures pictures;
    for (const unsigned scale : {1u, 2u, 3u}) {
        EXPECT_EQ(pictures.draw("a.png", {"--scale", std::to_string(scale)}).status, 0);
        EXPECT_EQ(pictures.header("a.png")->width, scale * 600);
        EXPECT_EQ(pictures.header("a.png")->height, scale * 553);
    }
}

TEST(PagePicture, SaysWhatItDrew) {
    const Pictures pictures;
    EXPECT_EQ(pictures.draw("a.png").out, pictures.studio.name("a.png") + ": 600 by 553 pixels\n");
}

TEST(PagePicture, NeedsNoProject) {
    const TempFolder folder;
    EXPECT_EQ(marnoth({"page", "--out", folder.name("a.png")}).status, 0);
    EXPECT_TRUE(pngHeader(folder / "a.png"));
}

TEST(PagePicture, AProjectThatCannotBeReadGetsTheReasonThatARenderGives) {
    const Studio studio;
    writeText(studio.folder / "text.mrn", "no project at all");
    for (const char* project : {"none.mrn", "text.mrn", "a.wav"}) {
        const CliRun run = marnoth({"page", studio.name(project), "--out", studio.name("a.png")});
        EXPECT_EQ(run.status, 1);
        EXPECT_EQ(run.err, studio.play(project, "a.out.wav").err);
        EXPECT_FALSE(studio.has("a.png"));
    }
}

TEST(PagePicture, APictureThatCannotBeWrittenIsAFailure) {
    const Pictures pictures;
    EXPECT_EQ(pictures.draw("missing/a.png").status, 1);
}

TEST(PagePicture, RefusesWhatMakesNoSense) {
    const Pictures pictures;
    for (const std::vector<std::string>& words : std::vector<std::vector<std::string>>{{"--pad", "0"},
                                                                                       {"--pad", "17"},
                                                                                       {"--pad", "1.5"},
                                                                                       {"--scale", "0"},
                                                                                       {"--scale", "4"},
                                                                                       {"--scale", "two"},
                                                                                       {"--open", "door"},
                                                                                       {"more.mrn"}})
        EXPECT_EQ(pictures.draw("a.png", words).status, 2) << words.back();
    EXPECT_EQ(marnoth({"page"}).status, 2);
}

#ifndef _WIN32

/// Where two pictures of the page differ.
class Difference {
public:
    Difference(const Bitmap& a, const Bitmap& b) : a_(a), b_(b) {}

    int count(const Rect& area) const {
        int different = 0;
        for (int y = area.top; y < area.bottom; ++y)
            for (int x = area.left; x < area.right; ++x) different += a_.at(x, y) != b_.at(x, y);
        return different;
    }
    int all() const { return count(a_.bounds()); }

private:
    const Bitmap& a_;
    const Bitmap& b_;
};

Bitmap pictureOf(const Pictures& pictures, std::vector<std::string> words) {
    EXPECT_EQ(pictures.draw("a.png", std::move(words)).status, 0);
    Bitmap picture = readPng(pictures.studio.folder / "a.png");
    return picture.width() < kPageWidth ? Bitmap(kPageWidth, kPageHeight) : picture;
}

TEST(PagePicture, ScalesByWholePixels) {
    const Pictures pictures;
    const Bitmap small = pictureOf(pictures, {});
    const Bitmap large = pictureOf(pictures, {"--scale", "3"});
    ASSERT_EQ(large.width(), 3 * small.width());
    int different = 0;
    for (int y = 0; y < large.height(); ++y)
        for (int x = 0; x < large.width(); ++x) different += large.at(x, y) != small.at(x / 3, y / 3);
    EXPECT_EQ(different, 0);
}

TEST(PagePicture, TheKeyMapTakesThePlaceOfTheWaveform) {
    const Pictures pictures;
    const Bitmap wave = pictureOf(pictures, {});
    const Bitmap keys = pictureOf(pictures, {"--key-map"});
    const Difference difference(wave, keys);
    EXPECT_GT(difference.count(kKeyMapRect), 1000);
    // The list shows which file the waveform is of; nothing else differs.
    EXPECT_EQ(difference.all(), difference.count(kStripPanel) + difference.count(kBinList));
    EXPECT_GT(difference.count(kBinList), 0);
}

TEST(PagePicture, APadIsSelectedWithItsRow) {
    const Pictures pictures;
    const Bitmap first = pictureOf(pictures, {});
    const Bitmap third = pictureOf(pictures, {"--pad", "3"});
    EXPECT_TRUE(pictureOf(pictures, {"--pad", "1"}) == first);
    const Difference difference(first, third);
    EXPECT_GT(difference.count(kPadBlock), 0);
    EXPECT_GT(difference.count(kPadView), 0);
    EXPECT_EQ(difference.count(kBinList), 0);
}

TEST(PagePicture, ShowsWhatIsOpen) {
    const Pictures pictures;
    const Bitmap closed = pictureOf(pictures, {"--pad", "3"});
    struct Case {
        const char* open;
        Rect place;  ///< within what lies over the page
    };
    for (const auto& [open, place] :
         {Case{"output", {534, 34, 594, 240}}, Case{"channel", {534, 52, 594, 250}},
          Case{"root", {534, 70, 594, 220}}, Case{"snap", {21, 420, 81, 515}},
          Case{"menu", {345, 30, 430, 80}}, Case{"clear", {121, 237, 479, 246}},
          Case{"delete", {121, 237, 479, 246}}, Case{"load", {121, 237, 479, 246}}}) {
        const Bitmap picture = pictureOf(pictures, {"--pad", "3", "--open", open});
        EXPECT_GT(2 * Difference(closed, picture).count(place), place.width() * place.height()) << open;
    }
}

/// What the combo of root notes shows of a pad with that number.
Bitmap comboOf(const Pictures& pictures, const std::string& commands, const std::string& how) {
    pictures.studio.script("LoadProject two.mrn\n" + commands + "SaveProject root\n");
    if (how == "page") {
        marnoth({"page", pictures.studio.name("root.mrn"), "--out", pictures.studio.name("out/a.png")});
    } else {
        pictures.studio.script("connect 44100 2 mix\nLoadProject root.mrn\npage open\ntick\nshot a.png\n");
    }
    const Bitmap page = readPng(pictures.studio.folder / "out" / "a.png");
    Bitmap combo(60, 12);
    RasterSurface(combo).BitBlt(combo.bounds(), page, {534, 58});
    return combo;
}

TEST(PagePicture, NamesRootNotesByTheScaleOfLoopsAndScriptsCountFromA) {
    const Pictures pictures;
    // Counted from A, 3 is the C that 6 is by the loops, and 6 the D# that they have as 9.
    EXPECT_EQ(comboOf(pictures, "SetPadRootNote 0 6\n", "page"),
              comboOf(pictures, "SetPadRootNote 0 3\n", "script"));
    EXPECT_EQ(comboOf(pictures, "SetPadRootNote 0 9\n", "page"),
              comboOf(pictures, "SetPadRootNote 0 6\n", "script"));
    EXPECT_NE(comboOf(pictures, "SetPadRootNote 0 6\n", "page"),
              comboOf(pictures, "SetPadRootNote 0 6\n", "script"));
    EXPECT_EQ(comboOf(pictures, "SetPadRootNote 0 40\n", "page"),
              comboOf(pictures, "SetPadRootNote 0 40\n", "script"));
}

#endif

}  // namespace
}  // namespace marnoth::test::page_picture_test
