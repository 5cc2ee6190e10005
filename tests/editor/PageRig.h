#pragma once

#include <array>
#include <memory>
#include <string>
#include <vector>

#include "editor/GrooveSamplerPropPage.h"
#include "editor/PageLayout.h"
#include "editor/RecordingSampler.h"
#include "editor/TestPage.h"
#include "platform/drawing/HeadlessWindow.h"

namespace marnoth::test {

using Calls = std::vector<std::string>;

/// Every character six pixels wide: texts are drawn as nothing, so that no test depends on glyphs.
class FixedFonts final : public FontSource {
public:
    std::unique_ptr<Font> open(std::string_view, int, std::string&) override {
        return std::make_unique<FixedFont>();
    }
};

/// The page on an engine that writes down what it is told, in a window without a screen. Tests set up
/// `engine`, then `open()`, and are the user from then on; each event is followed by its paint.
class PageRig {
public:
    static constexpr std::int64_t kBeat = 62914560;

    RecordingSampler engine;
    HeadlessWindow window;
    FixedFonts fonts;
    std::unique_ptr<CGrooveSamplerPropPage> page;

    /// Makes the page, binds it, shows it and forgets the calls of that.
    void open() { open(fonts); }
    void open(FontSource& source) {
        window.setFonts(source);
        page = std::make_unique<CGrooveSamplerPropPage>(window);
        IUnknown* const object = &engine;
        page->bind({&object, 1});
        window.setPage(page.get());
        page->open();
        window.settle();
        engine.take();
    }
    ~PageRig() { window.setPage(nullptr); }

    /// `count` grains of `length` ticks one after the other, a loop as long as they are; sources count up
    /// from grain 0 of file 0.
    void fillPad(int pad, int count, std::int64_t length = kBeat) {
        ModelPad& model = engine.pads.at(static_cast<std::size_t>(pad));
        for (int grain = 0; grain < count; ++grain) {
            ModelGrain made{grain * length, (grain + 1) * length};
            made.source = grain;
            model.grains.push_back(made);
        }
        model.loopLength = count * length;
    }
    /// A file of `count` grains of a beat, each `width` pixels wide in the strip.
    void addFile(const std::string& name, int count, int width = 20) {
        ModelFile file{name, "/loops/" + name, {}};
        for (int grain = 0; grain < count; ++grain) {
            ModelGrain made{grain * kBeat, (grain + 1) * kBeat};
            made.width = width;
            file.grains.push_back(made);
        }
        engine.files.push_back(file);
    }

    // What the user does.
    void press(Point at) { window.press(at); }
    void move(Point to) { window.move(to); }
    void release(Point at) { window.release(at); }
    void click(Point at) {
        press(at);
        release(at);
    }
    void drag(Point from, Point to) {
        press(from);
        move(to);
        release(to);
    }

    /// A click on a grain, whose calls are forgotten.
    void select(int pad, int beat) {
        click(onBeat(pad, beat));
        calls();
    }
    void alsoSelect(int pad, int beat) {
        window.hold(kKeyShift);
        select(pad, beat);
        window.let(kKeyShift);
    }

    Control& control(int id) { return *page->controlOf(id); }
    /// The middle of a control.
    Point on(int id) {
        const Rect place = control(id).place();
        return {(place.left + place.right) / 2, (place.top + place.bottom) / 2};
    }
    std::string text(int id) { return control(id).shownText().value_or("(no text)"); }
    int state(int id) { return control(id).shownState().value_or(-99); }
    /// Puts the keyboard into an edit, types over its text and presses return.
    void enter(int id, const std::string& text) {
        page->focusControl(control(id));
        window.type(text);
        window.key(kKeyReturn);
    }

    // Where things are while nothing is scrolled and zoomed: 54 pixels to the beat, rows of 10 pixels.
    /// In a pad's row, so many pixels from the plot's left edge.
    static Point inRow(int pad, int x) { return {137 + x, 361 + 10 * pad + 5}; }
    /// In the middle of the grain that begins at a beat and is one beat long.
    static Point onBeat(int pad, int beat) { return inRow(pad, 54 * beat + 27); }
    static Point onName(int pad) { return {115, 361 + 10 * pad + 5}; }
    static Point onPadImage(int pad) { return {138 + 89 * (pad % 4) + 20, 43 + 57 * (pad / 4) - 20}; }
    static Point onBinRow(int file) { return {40, 69 + 15 * file + 7}; }
    /// In the strip, in a grain of `width` pixels of a file whose grains are all as wide.
    static Point onStripGrain(int grain, int width = 20) { return {37 + 8 + width * grain + width / 2, 300}; }

    Calls calls() { return engine.take(); }
    Calls changes() { return engine.takeChanges(); }
};

}  // namespace marnoth::test
