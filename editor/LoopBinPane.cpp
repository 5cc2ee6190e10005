/// The list of audio files, its buttons, and files dragged out of it.

#include <algorithm>

#include "editor/GrooveSamplerPropPage.h"
#include "editor/PageLayout.h"
#include "editor/PageTexts.h"

namespace marnoth {

bool CGrooveSamplerPropPage::HitTestBinRow(Point at, int* index) const {
    *index = -1;
    if (!kBinList.contains(at)) return false;
    const int row = (at.y + m_binVertical.position() - kBinList.top) / kBinRowHeight;
    if (row < get(&IGrooveSampler::GetBinFileCount, std::int32_t{0})) *index = row;
    return true;
}

bool CGrooveSamplerPropPage::pressBinRow(Point at) {
    int file = -1;
    if (!HitTestBinRow(at, &file) || file < 0) return false;
    m_currentBinFile = file;
    m_draggingBinFile = true;
    invalidate(kBinList);
    invalidate(kStripPanel);
    if (m_controls.toggle(kBinPlay).isDown()) {
        call(&IGrooveSampler::StopBinAudition, -1);
        call(&IGrooveSampler::AuditionBinFile, file, -1);
    }
    m_binSelection.clear();
    return true;
}

void CGrooveSamplerPropPage::releaseBinFile(Point at) {
    m_draggingBinFile = false;
    invalidateView();
    int pad = -1;
    bool onLabel = false;
    const auto hit = HitTestPad(at);
    if (hit && hit->onImage)
        pad = hit->pad;
    else if (!scale().HitTestRow(at, &pad, &onLabel))
        return;
    call(&IGrooveSampler::PushUndoState);
    if (FAILED(call(&IGrooveSampler::LoadPadFromBin, pad, m_currentBinFile))) {
        call(&IGrooveSampler::Undo);
        return;
    }
    SelectPad(pad);
    requestRefresh();
}

void CGrooveSamplerPropPage::loadToBinCommand() {
    RunFileCommand(FileMode::loopBin, false, [this] {
        m_controls.toggle(kLoadToBin).setDown(false);
        requestRefresh();
    });
}

void CGrooveSamplerPropPage::deleteBinFile() {
    if (m_currentBinFile < 0)
        return askMessage(kSelectFileFirst, MessageKind::note,
                          [this](PageAnswer) { m_controls.toggle(kDeleteFromBin).setDown(false); });
    askMessage(kAskDeleteFile, MessageKind::yesNo, [this](PageAnswer answer) {
        if (answer == PageAnswer::yes) removeCurrentFile();
        m_controls.toggle(kDeleteFromBin).setDown(false);
        requestRefresh();
    });
}

void CGrooveSamplerPropPage::removeCurrentFile() {
    clearSelections();
    call(&IGrooveSampler::RemoveBinFile, m_currentBinFile);
    // Nothing is current any more when the page was bound anew behind the question.
    m_currentBinFile = std::max(m_currentBinFile - 1, -1);
}

void CGrooveSamplerPropPage::playCommand() {
    if (!m_controls.toggle(kBinPlay).isDown()) return stopAuditions();
    if (m_currentBinFile >= 0) call(&IGrooveSampler::AuditionBinFile, m_currentBinFile, -1);
}

void CGrooveSamplerPropPage::stopAuditions() {
    call(&IGrooveSampler::StopBinAudition, -1);
    call(&IGrooveSampler::StopPad, -1);
    call(&IGrooveSampler::SetRefreshRequest, 2);
}

}  // namespace marnoth
