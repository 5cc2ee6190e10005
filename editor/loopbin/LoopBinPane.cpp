#include "editor/loopbin/LoopBinPane.h"

#include <string_view>

#include "editor/PageLayout.h"
#include "editor/PageView.h"
#include "editor/controls/PageControls.h"
#include "editor/controls/WheelWay.h"
#include "editor/skin/Palette.h"
#include "editor/texts/PageTexts.h"
#include "platform/drawing/Surface.h"

namespace marnoth {

namespace {

constexpr int kEndingLength = 4;  ///< ".wav"

/// Without its last four characters, whatever they are. UTF-8.
std::string_view withoutEnding(std::string_view name) {
    for (int left = kEndingLength; left > 0 && !name.empty(); --left) {
        while (name.size() > 1 && (static_cast<unsigned char>(name.back()) & 0xC0u) == 0x80u)
            name.remove_suffix(1);
        name.remove_suffix(1);
    }
    return name;
}

}  // namespace

LoopBinPane::LoopBinPane(PaneParent& page, PageControls& controls, Font& font)
    : page_(page), controls_(controls), font_(font) {
    vertical_.setUp({124, 69, 132, 218}, CGrooveScroller::kVertical, kBinList.height(), 400);
    horizontal_.setUp({14, 220, 119, 228}, CGrooveScroller::kHorizontal, kBinList.width(), 200);
}

void LoopBinPane::paint(Surface& surface) {
    surface.SelectClipRgn(kBinList);
    surface.SelectPen({kPalette[1]});
    surface.SelectBrush(kPalette[1]);
    surface.SelectFont(&font_);
    surface.Rectangle(kBinList);
    const int count = page_.engine().binFileCount();
    vertical_.SetTrackPosition(kBinRowHeight * count, vertical_.position(), vertical_.page());
    for (int file = 0; file < count; ++file) {
        const bool current = file == page_.view().currentBinFile;
        surface.SetTextColor(kPalette[current ? 0 : 8]);
        surface.SetGroundColor(kPalette[current ? 8 : 1]);
        const Point at{kBinList.left - horizontal_.position() + 4,
                       kBinRowHeight * file - vertical_.position() + kBinList.top};
        surface.TextOut(at, withoutEnding(page_.engine().binFileName(file, false)));
    }
    surface.SelectClipRgn({});
    vertical_.paint(surface);
    horizontal_.paint(surface);
}

void LoopBinPane::scrollTo(Point position) {
    vertical_.SetTrackPosition(kBinRowHeight * page_.engine().binFileCount(), position.y, -1);
    horizontal_.SetTrackPosition(-1, position.x, -1);
}

bool LoopBinPane::HitTestBinRow(Point at, int* index) const {
    *index = -1;
    if (!kBinList.contains(at)) return false;
    const int row = (at.y + vertical_.position() - kBinList.top) / kBinRowHeight;
    if (row < page_.engine().binFileCount()) *index = row;
    return true;
}

bool LoopBinPane::pressRow(Point at) {
    int file = -1;
    if (!HitTestBinRow(at, &file) || file < 0) return false;
    page_.view().currentBinFile = file;
    page_.invalidate(kBinList);
    page_.invalidate(kStripPanel);
    if (controls_.toggle(kBinPlay).isDown()) {
        page_.engine().call(&IGrooveSampler::StopBinAudition, -1);
        page_.engine().call(&IGrooveSampler::AuditionBinFile, file, -1);
    }
    page_.view().binSelection.clear();
    return true;
}

bool LoopBinPane::wheel(Point at, WheelAxis axis, int steps, Modifiers held) {
    if (!kBinList.contains(at)) return false;
    const WheelWay way = wheelWay(axis, steps, held);
    CGrooveScroller& scroller = way.sideways ? horizontal_ : vertical_;
    scroller.scrollBy(way.steps * kBinRowHeight);
    page_.invalidate(kBinList);
    page_.invalidate(scroller.track());
    return true;
}

bool LoopBinPane::command(int id) {
    switch (id) {
        case kDeleteFromBin:
            askToDelete();
            return true;
        case kBinPlay:
            play();
            return true;
        case kBinStop:
            stop();
            controls_.toggle(kBinPlay).setDown(false);
            return true;
        case kAudition:
            page_.engine().call(&IGrooveSampler::SetAuditionEnabled,
                                controls_.toggle(kAudition).isDown() ? 1 : 0);
            return true;
        default:
            return false;
    }
}

void LoopBinPane::showAudition() {
    const auto on = page_.engine().get(&IGrooveSampler::GetAuditionEnabled, std::uint32_t{0});
    controls_.toggle(kAudition).setDown(on != 0);
}

void LoopBinPane::invalidateTracks() {
    page_.invalidate(vertical_.track());
    page_.invalidate(horizontal_.track());
}

void LoopBinPane::askToDelete() {
    if (page_.view().currentBinFile < 0)
        return page_.questions().askMessage(kSelectFileFirst, MessageKind::note, [this](PageAnswer) {
            controls_.toggle(kDeleteFromBin).setDown(false);
        });
    page_.questions().askMessage(kAskDeleteFile, MessageKind::yesNo, [this](PageAnswer answer) {
        if (answer == PageAnswer::yes) removeCurrentFile();
        controls_.toggle(kDeleteFromBin).setDown(false);
        page_.engine().requestRefresh();
    });
}

void LoopBinPane::removeCurrentFile() {
    PageView& view = page_.view();
    view.clearSelections();
    page_.engine().call(&IGrooveSampler::RemoveBinFile, view.currentBinFile);
    --view.currentBinFile;
}

void LoopBinPane::play() {
    if (!controls_.toggle(kBinPlay).isDown()) return stop();
    const int file = page_.view().currentBinFile;
    if (file >= 0) page_.engine().call(&IGrooveSampler::AuditionBinFile, file, -1);
}

void LoopBinPane::stop() {
    page_.engine().call(&IGrooveSampler::StopBinAudition, -1);
    page_.engine().call(&IGrooveSampler::StopPad, -1);
    page_.engine().call(&IGrooveSampler::SetRefreshRequest, 2);
}

}  // namespace marnoth
