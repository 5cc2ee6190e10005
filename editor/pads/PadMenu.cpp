#include "editor/pads/PadMenu.h"

#include <array>

#include "editor/BoundEngine.h"
#include "editor/PageLayout.h"
#include "editor/PageView.h"
#include "editor/controls/Control.h"
#include "editor/files/FileCommands.h"
#include "editor/pads/PadStrips.h"

namespace marnoth {

void PadMenu::ShowPadMenu(Point at, int pad) {
    const BoundEngine& engine = page_.engine();
    const std::array<MenuItem, 4> items{
        {{kOpenAudioCommand, "Open Audio File"},
         {kLoopingCommand, "Looping", engine.isOn(&IGrooveSampler::GetPadLooping, pad)},
         {kSyncedCommand, "Synced Playback", engine.isOn(&IGrooveSampler::GetPadSynced, pad)},
         {kClearPadCommand, "Clear Pad"}}};
    page_.questions().askMenu(at, items, [this](int chosen) {
        if (chosen) commands_.postCommand(chosen);
    });
}

bool PadMenu::command(int id) {
    const BoundEngine& engine = page_.engine();
    const int pad = page_.view().currentPad;
    switch (id) {
        case kOpenAudioCommand:
            files_.RunFileCommand(FileTarget::pad, false, [&engine] { engine.requestRefresh(); });
            return true;
        case kLoopingCommand:
            strips_.switchLooping(pad, !engine.isOn(&IGrooveSampler::GetPadLooping, pad));
            break;
        case kSyncedCommand:
            strips_.switchSynced(pad, !engine.isOn(&IGrooveSampler::GetPadSynced, pad));
            break;
        case kClearPadCommand:
            clearPad(pad);
            break;
        default:
            return false;
    }
    engine.requestRefresh();
    return true;
}

void PadMenu::clearPad(int pad) {
    const BoundEngine& engine = page_.engine();
    page_.view().selection.clear();
    page_.view().currentBinFile = -1;
    const int count = engine.grainCount(pad);
    engine.call(&IGrooveSampler::PushUndoState);
    for (int grain = 0; grain < count; ++grain) engine.call(&IGrooveSampler::DeleteGrain, pad, grain, 1);
    strips_.switchAllOff(pad);
    engine.call(&IGrooveSampler::CommitGrainEdits);
}

}  // namespace marnoth
