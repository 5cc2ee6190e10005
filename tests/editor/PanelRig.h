#pragma once

#include <gtest/gtest.h>

#include <algorithm>

#include "editor/PageRig.h"

namespace marnoth::test {

inline bool holds(const Calls& calls, const std::string& call) {
    return std::ranges::find(calls, call) != calls.end();
}

/// What drawing the pads reads. They are drawn with the strip, whose first rows lie under their block.
inline Calls padBlockDrawn() {
    Calls calls;
    for (int pad = 0; pad < 16; ++pad) calls.push_back(callText("GetPadPlaying", pad));
    return calls;
}

/// The page for tests of its controls: each gesture returns the calls that changed something in the engine.
class PanelRig : public testing::Test {
protected:
    void open() { rig.open(); }
    void choosePad(int pad) {
        rig.click(PageRig::onPadImage(pad));
        rig.calls();
    }
    Calls clicked(int id) {
        rig.click(rig.on(id));
        return rig.changes();
    }
    Calls shiftClicked(int id) {
        rig.window.hold(kKeyShift);
        const Calls calls = clicked(id);
        rig.window.let(kKeyShift);
        return calls;
    }
    /// Of a press on a knob, a move by so many pixels and the release.
    Calls turned(int id, int up) {
        const Point at = rig.on(id);
        rig.drag(at, {at.x, at.y - up});
        return rig.changes();
    }
    /// Of the keyboard's going where a release on the page takes it.
    Calls left() {
        rig.page->focusControl(rig.control(kBinPlay));
        return rig.changes();
    }
    /// Of typing a text and pressing return. The keyboard has left the edit afterwards; `shown` is the text
    /// that stood in it before.
    Calls typed(int id, const std::string& text) {
        rig.enter(id, text);
        const Calls calls = rig.changes();
        shown = rig.text(id);
        left();
        return calls;
    }
    Calls texts(std::initializer_list<int> ids) {
        Calls found;
        for (const int id : ids) found.push_back(rig.text(id));
        return found;
    }
    ModelPad& pad(int number) { return rig.engine.pads.at(static_cast<std::size_t>(number)); }

    PageRig rig;
    std::string shown;
};

}  // namespace marnoth::test
