#include "editor/gestures/MouseGestures.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "editor/BoundEngine.h"
#include "editor/PageLayout.h"
#include "editor/PageView.h"
#include "editor/loopbin/LoopBinPane.h"
#include "editor/pads/PadBlock.h"
#include "editor/strip/StripPane.h"

namespace marnoth {

MouseGestures::MouseGestures(PaneParent& page, PageWindow& window, const Panes& panes)
    : page_(page),
      window_(window),
      panes_(panes),
      pad_(page, panes.pads),
      length_(page, window, panes.editor),
      grains_(page, window, panes.editor),
      keyMap_(page, panes.strip, panes.panel),
      binGrain_(page, panes.strip, panes.editor),
      scroll_(page, {{&panes.editor.horizontal(), kPadView},
                     {&panes.editor.vertical(), kPadView},
                     {&panes.bin.vertical(), kBinList},
                     {&panes.bin.horizontal(), kBinList}}),
      binFile_(page, panes.bin, panes.pads, panes.editor) {}

bool MouseGestures::isDragOpen() const {
    return keyMap_.isOpen() || binFile_.isOpen() || binGrain_.isOpen() || grains_.isOpen();
}

void MouseGestures::press(Point at, Modifiers held) {
    buttonDown_ = true;
    pressByPlace(at, held);
    if (const auto row = panes_.editor.HitTestRow(at)) page_.SelectPad(row->pad);
    panes_.editor.lightRow(page_.view().currentPad);
}

void MouseGestures::pressByPlace(Point at, Modifiers held) {
    const std::array<Gesture*, 7> inTurn{&pad_,      &length_, &grains_, &keyMap_,
                                         &binGrain_, &scroll_, &binFile_};
    for (Gesture* gesture : inTurn)
        if (gesture->press(at, held)) return;
    pressElsewhere(at, held);
}

void MouseGestures::pressElsewhere(Point at, Modifiers held) {
    if (panes_.strip.HitTestViewTab(at)) return page_.invalidate(kStripPanel);
    if (!held.shift && kPadPlot.contains(at)) page_.view().selection.clear();
    panes_.editor.invalidateView();
}

void MouseGestures::move(Point at, Modifiers held) {
    const bool carries = binGrain_.isOpen() || binFile_.isOpen();
    if (carries || grains_.isOpen()) {
        if (const auto row = panes_.editor.HitTestRow(at)) panes_.editor.lightRow(row->pad);
        panes_.editor.invalidateView();
    }
    const auto open = std::ranges::find_if(drags_, &Gesture::isOpen);
    if (open != drags_.end()) (*open)->move(at, held);
    hover(at);
    scroll_.move(at, held);
    window_.setCursor(carries ? PageCursor::dragCopy : PageCursor::arrow);
}

void MouseGestures::hover(Point at) {
    const auto hit = panes_.editor.HitTestGrain(at);
    if (!hit) return panes_.editor.leaveHover();
    if (binGrain_.isOpen() && !panes_.editor.isHovered(*hit)) binGrain_.showReplaced(*hit);
    panes_.editor.hover(*hit);
}

bool MouseGestures::release(Point at, Modifiers held) {
    window_.confinePointer({});
    const int lit = panes_.editor.litRow();
    if (lit >= 0 && lit != page_.view().currentPad) panes_.editor.invalidateView();
    panes_.editor.lightRow(-1);
    if (!std::exchange(buttonDown_, false)) return false;
    try {
        finish(at, held);
    } catch (const std::invalid_argument&) {
        // A grain that it was about has gone: the rest of the release counts all the same.
    }
    scroll_.release(at, held);
    // The next move may be over a control, which leaves the cursor as it is.
    window_.setCursor(PageCursor::arrow);
    return true;
}

void MouseGestures::finish(Point at, Modifiers held) {
    pad_.forget();
    const auto open = std::ranges::find_if(drags_, &Gesture::isOpen);
    if (open != drags_.end())
        (*open)->release(at, held);
    else
        pad_.release(at, held);
}

void MouseGestures::doubleClick(Point at) {
    buttonDown_ = true;
    if (const auto pad = panes_.pads.imageAt(at)) {
        page_.engine().call(&IGrooveSampler::AuditionPad, *pad, -1);
        page_.SelectPad(*pad);
    } else if (const auto row = panes_.editor.HitTestRow(at)) {
        page_.SelectPad(row->pad);
        if (row->onLabel) selectAll(row->pad);
    }
    for (const Rect& area : kGrainPlaces) page_.invalidate(area);
}

void MouseGestures::selectAll(int pad) {
    CEventSelection& selection = page_.view().selection;
    selection.clear();
    const int count = page_.engine().grainCount(pad);
    for (int grain = 0; grain < count; ++grain) selection.add(pad, grain);
}

void MouseGestures::drop() {
    window_.confinePointer({});
    pad_.drop();
    panes_.editor.lightRow(-1);
    buttonDown_ = false;
    for (Gesture* drag : drags_) drag->drop();
    scroll_.drop();
    window_.setCursor(PageCursor::arrow);
}

GesturePicture MouseGestures::picture(Modifiers held) const {
    GesturePicture picture;
    picture.movesGrains = grains_.isOpen();
    picture.keepsGrains = held.control;
    if (grains_.isOpen()) picture.offset = grains_.offset();
    if (length_.isOpen()) {
        picture.markedPad = length_.pad();
        picture.markOffset = length_.offset();
    }
    return picture;
}

}  // namespace marnoth
