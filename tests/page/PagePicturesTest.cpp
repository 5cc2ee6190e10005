#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <memory>

#include "editor/GrooveSamplerPropPage.h"
#include "editor/PageLayout.h"
#include "editor/skin/Palette.h"
#include "editor/skin/Skin.h"
#include "host/CreateInstance.h"
#include "hostkit/HostRig.h"
#include "page/Groove.h"
#include "page/PagePlaces.h"
#include "page/StoredPicture.h"
#include "platform/drawing/HeadlessWindow.h"
#include "platform/drawing/PlatformFonts.h"

namespace marnoth::test {
namespace {

constexpr int kPads = 16;

constexpr Point kOnZoomOut{560, 540};
constexpr Point kOnRowsLower{588, 512};
constexpr Point kOnDelete{105, 58};

/// An instrument and its page, as a host has them, and a user before it. Each test takes the page into one
/// state: what is on the screen is compared with the stored picture, and a few facts are checked that the
/// pictures of texts, which are the system's own, have no part in.
class PagePictures : public testing::Test {
protected:
    PagePictures() {
        const std::array<int, 1> mix{0};
        EXPECT_EQ(rig.connect(44100, 2, mix), S_OK);
        EXPECT_EQ(rig.attach({}), S_OK);
    }

    void open() {
        fonts = platformFonts();
        window.setFonts(*fonts);
        page = std::make_unique<CGrooveSamplerPropPage>(window);
        window.setPage(page.get());
        const std::array<IUnknown*, 1> objects{&rig.sampler()};
        page->bind(objects);
        page->open();
        window.settle();
        window.tick();
    }
    void openGroove() {
        const Groove groove(rig.sampler());
        open();
    }

    void click(Point at, int times = 1) {
        for (int i = 0; i < times; ++i) {
            window.press(at);
            window.release(at);
        }
    }
    /// To where the button is still held, by way of the middle.
    void drag(Point from, Point to) {
        window.press(from);
        window.move({(from.x + to.x) / 2, (from.y + to.y) / 2});
        window.move(to);
    }

    void expectStored([[maybe_unused]] const std::string& name) const {
#ifndef _WIN32
        expectPicture(window.screen(), name);
#endif
    }
    void expectColor(Point at, Color color) const {
        EXPECT_TRUE(window.screen().at(at.x, at.y) == color) << "at " << at.x << ", " << at.y;
    }
    void expectColor(Point at, int paletteEntry) const {
        expectColor(at, kPalette[paletteEntry]);
    }
    /// That pads glow as `playing` has it. The ring runs over the edges of an image.
    void expectPlaying(const std::vector<int>& playing) const {
        for (int pad = 0; pad < kPads; ++pad) {
            const bool glows = std::count(playing.begin(), playing.end(), pad) > 0;
            EXPECT_TRUE(showsPicture(padImage(pad), 241 + 2 * pad - glows, 4)) << "pad " << pad;
        }
    }
    bool showsPicture(const Rect& at, int resource, int inset) const {
        const Bitmap& picture = skinBitmap(resource);
        for (int y = inset; y < picture.height() - inset; ++y)
            for (int x = inset; x < picture.width() - inset; ++x)
                if (window.screen().at(at.left + x, at.top + y) != picture.at(x, y)) return false;
        return true;
    }

    SoundFolder sounds;
    HostRig rig{createInstrument};
    HeadlessWindow window;
    std::unique_ptr<FontSource> fonts;
    std::unique_ptr<CGrooveSamplerPropPage> page;
};

TEST_F(PagePictures, EmptyProject) {
    open();
    expectStored("empty");
    expectPlaying({});
    expectColor({137, 30}, 8);        // the ring of pad 1
    expectColor({132, 364}, 4);       // its lit row, right of the name
    expectColor({132, 374}, 1);       // and one that isn't
    expectColor({137 + 54, 400}, 5);  // beat 2
    expectColor({140, 541}, 4);       // nothing to scroll
    expectColor({550, 541}, 4);
}

TEST_F(PagePictures, GrooveWithAPadThatPlays) {
    openGroove();
    click(onBinRow(0));
    window.press(onImage(1));
    EXPECT_EQ(rig.render(2048), S_OK);
    window.tick();
    expectStored("groove");
    expectPlaying({1});
    expectColor({137 + 89, 30}, 8);
    expectColor(onRow(0, 3), 6);
}

TEST_F(PagePictures, WaveformWithSelectedGrains) {
    openGroove();
    click(onBinRow(1));
    click({60, 290});
    window.hold(kKeyShift);
    click({120, 290});
    expectStored("waveform");
    EXPECT_EQ(page->binSelection().size(), 2u);
    expectColor({100, 262}, 4);
    expectColor({150, 262}, 4);
}

TEST_F(PagePictures, KeyMapWhoseHighKeyIsDragged) {
    openGroove();
    click(onImage(2));
    click(kOnKeyTab);
    click(onSolo(2));
    drag({390, 264}, {475, 264});
    expectStored("key-map");
    EXPECT_TRUE(page->showsKeyMap());
    expectColor({309, 300}, Color{200, 200, 150});  // the root key
    expectColor({320, 300}, Color{124, 144, 173});  // in the range
    expectColor({460, 300}, Color{124, 144, 173});
    expectColor({300, 300}, Color{160, 172, 191});  // outside of it
}

TEST_F(PagePictures, AGrainSelectedThatIsTransposed) {
    openGroove();
    click(onRow(2, 3));
    expectStored("selection");
    EXPECT_EQ(page->currentBinFile(), 2);
    expectColor(onRow(2, 3), 7);
    expectColor(onRow(2, 4), 6);
}

TEST_F(PagePictures, Hover) {
    openGroove();
    window.move(onRow(3, 1));
    expectStored("hover");
    expectColor(onRow(3, 1), 8);
    expectColor(onRow(3, 0), 6);
}

TEST_F(PagePictures, DragWithGhosts) {
    openGroove();
    click(onImage(3));
    click(kOnTail);
    click(onRow(2, 1));
    window.hold(kKeyShift);
    click(onRow(2, 2));
    click(onRow(3, 3));
    window.let(kKeyShift);
    drag(onRow(2, 1), onRow(9, 4.25));
    expectStored("drag");
    expectColor(onRow(2, 1), 1);
    expectColor(onRow(9, 4.25), 7);
    expectColor(onRow(9, 5.25), 7);
    expectColor(onRow(10, 6.25), 5);  // a tail's
    expectColor({132, 452}, 4);       // the row under the pointer is lit, above its name
}

TEST_F(PagePictures, Tails) {
    openGroove();
    click(onRow(0, 2));
    click(kOnTail);
    click(onImage(2));
    click(kOnTail);
    window.move(onRow(2, 1));
    expectStored("tails");
    expectColor(onRow(0, 2), 5);
    expectColor(onRow(0, 3), 3);
    expectColor(onRow(2, 1), 4);
    expectColor(onRow(3, 0), 6);
}

TEST_F(PagePictures, LargestZoomScrolledAlong) {
    openGroove();
    click(kOnZoomIn, 5);
    click(kOnRowsHigher, 5);
    drag({120, 541}, {170, 541});
    window.release({170, 541});
    expectStored("largest");
    EXPECT_EQ(page->scale().pixelsPerBeat, 200);
    EXPECT_EQ(page->scale().rowHeight, 30);
    expectColor({140, 541}, 3);  // the track left of the thumb
}

TEST_F(PagePictures, SmallestZoom) {
    openGroove();
    click(kOnRowsHigher, 2);
    click(kOnZoomOut, 4);
    click(kOnRowsLower, 3);
    expectStored("smallest");
    EXPECT_EQ(page->scale().pixelsPerBeat, 20);
    EXPECT_EQ(page->scale().rowHeight, 10);
    expectColor({137 + 20 * 12, 436}, 5);
}

TEST_F(PagePictures, OpenList) {
    openGroove();
    click(onImage(2));
    click(kOnOutput);
    expectStored("list");
    expectColor({585, 77}, 4);  // the row of the pad's output
    expectColor({585, 65}, 1);
}

TEST_F(PagePictures, AMessageBoxOpen) {
    openGroove();
    click(onBinRow(1));
    int asked = 0;
    window.setWatcher([&] {
        ++asked;
        window.settle();
        expectStored("message");
        EXPECT_TRUE(showsPicture({98, 52, 113, 66}, 279, 0));
    });
    click(kOnDelete);
    EXPECT_EQ(asked, 1);
}

}  // namespace
}  // namespace marnoth::test
