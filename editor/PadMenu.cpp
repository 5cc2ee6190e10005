/// The menu of a pad.

#include <array>

#include "editor/GrooveSamplerPropPage.h"
#include "editor/PageLayout.h"

namespace marnoth {

void CGrooveSamplerPropPage::menuWanted(Point at) {
    const auto hit = HitTestPad(at);
    if (!hit) return;
    SelectPad(hit->pad);
    ShowPadMenu(at, hit->pad);
}

void CGrooveSamplerPropPage::ShowPadMenu(Point at, int pad) {
    const std::array<MenuItem, 4> items{
        {{kOpenAudioCommand, "Open Audio File"},
         {kLoopingCommand, "Looping", isOn(&IGrooveSampler::GetPadLooping, pad)},
         {kSyncedCommand, "Synced Playback", isOn(&IGrooveSampler::GetPadSynced, pad)},
         {kClearPadCommand, "Clear Pad"}}};
    askMenu(at, items, [this](int chosen) {
        if (chosen) postCommand(chosen);
    });
}

void CGrooveSamplerPropPage::padMenuCommand(int id) {
    if (id == kOpenAudioCommand) return RunFileCommand(FileMode::pad, false, [this] { requestRefresh(); });
    if (id == kLoopingCommand)
        switchLooping(m_currentPad, !isOn(&IGrooveSampler::GetPadLooping, m_currentPad));
    else if (id == kSyncedCommand)
        switchSynced(m_currentPad, !isOn(&IGrooveSampler::GetPadSynced, m_currentPad));
    else
        clearPad(m_currentPad);
    requestRefresh();
}

void CGrooveSamplerPropPage::clearPad(int pad) {
    m_selection.clear();
    m_currentBinFile = -1;
    const int count = grainCount(pad);
    call(&IGrooveSampler::PushUndoState);
    for (int grain = 0; grain < count; ++grain) call(&IGrooveSampler::DeleteGrain, pad, grain, 1);
    call(&IGrooveSampler::SetPadSynced, pad, 0);
    call(&IGrooveSampler::SetPadLooping, pad, 0);
    call(&IGrooveSampler::SetPadMute, pad, 0);
    call(&IGrooveSampler::SetPadSolo, pad, 0);
    for (const int toggle : {kFirstSynced + pad, kFirstLooping + pad, muteId(pad), kFirstSolo + pad})
        m_controls.toggle(toggle).setDown(false);
    call(&IGrooveSampler::CommitGrainEdits);
}

}  // namespace marnoth
