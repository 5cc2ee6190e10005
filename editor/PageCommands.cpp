/// What buttons, toggles and combos do.

#include <array>
#include <numeric>
#include <optional>

#include "editor/GrooveSamplerPropPage.h"
#include "editor/PageLayout.h"

namespace marnoth {

namespace {

const std::array<int, 16>& allPads() {
    static const std::array<int, 16> pads = [] {
        std::array<int, 16> numbers{};
        std::iota(numbers.begin(), numbers.end(), 0);
        return numbers;
    }();
    return pads;
}

/// The pad whose control of a row `id` is.
std::optional<int> padInRow(int id, int first) {
    if (id < first || id >= first + 16) return {};
    return id - first;
}

std::optional<int> padOfMute(int id) {
    for (int pad = 0; pad < 16; ++pad)
        if (id == muteId(pad)) return pad;
    return {};
}

}  // namespace

void CGrooveSamplerPropPage::command(int id) {
    switch (id) {
        case kClearProject:
            return clearProject();
        case kOpenProject:
        case kSaveProject:
            return projectCommand(id == kSaveProject);
        case kLoadToBin:
            return loadToBinCommand();
        case kDeleteFromBin:
            return deleteBinFile();
        case kBinPlay:
            return playCommand();
        case kBinStop:
            stopAuditions();
            return m_controls.toggle(kBinPlay).setDown(false);
        case kAudition:
            call(&IGrooveSampler::SetAuditionEnabled, m_controls.toggle(kAudition).isDown() ? 1 : 0);
            return;
        case kPadTail:
        case kFollowKey:
        case kOneShot:
            return padPanelCommand(id);
        case kZoomIn:
        case kZoomOut:
        case kRowsHigher:
        case kRowsLower:
            return zoomCommand(id);
        case kHelpCommand:
            return showHelp();
        case kOpenAudioCommand:
        case kLoopingCommand:
        case kSyncedCommand:
        case kClearPadCommand:
            return padMenuCommand(id);
        default:
            padToggleCommand(id);
    }
}

void CGrooveSamplerPropPage::padToggleCommand(int id) {
    const auto isDown = [&] { return m_controls.toggle(id).isDown() ? 1 : 0; };
    if (const auto muted = padOfMute(id)) {
        SelectPad(*muted);
        call(&IGrooveSampler::SetPadMute, *muted, isDown());
    } else if (const auto soloed = padInRow(id, kFirstSolo)) {
        SelectPad(*soloed);
        call(&IGrooveSampler::SetPadSolo, *soloed, isDown());
    } else if (const auto synced = padInRow(id, kFirstSynced)) {
        SelectPad(*synced);
        const bool on = isDown() != 0;
        for (const int pad : padsMeant(*synced)) switchSynced(pad, on);
    } else if (const auto looping = padInRow(id, kFirstLooping)) {
        SelectPad(*looping);
        const bool on = isDown() != 0;
        for (const int pad : padsMeant(*looping)) switchLooping(pad, on);
    } else if (const auto opened = padInRow(id, kFirstOpen)) {
        SelectPad(*opened);
        RunFileCommand(FileMode::pad, false, [this, id] {
            m_controls.toggle(id).setDown(false);
            requestRefresh();
        });
    }
}

std::span<const int> CGrooveSamplerPropPage::padsMeant(const int& pad) {
    if (held().shift) return allPads();
    return {&pad, 1};
}

void CGrooveSamplerPropPage::switchSynced(int pad, bool on) {
    call(&IGrooveSampler::SetPadSynced, pad, on ? 1 : 0);
    m_controls.toggle(kFirstSynced + pad).setDown(on);
    if (!on) return;
    call(&IGrooveSampler::SetPadLooping, pad, 1);
    m_controls.toggle(kFirstLooping + pad).setDown(true);
}

void CGrooveSamplerPropPage::switchLooping(int pad, bool on) {
    if (!on) call(&IGrooveSampler::SetPadSynced, pad, 0);
    call(&IGrooveSampler::SetPadLooping, pad, on ? 1 : 0);
    m_controls.toggle(kFirstLooping + pad).setDown(on);
    if (!on) m_controls.toggle(kFirstSynced + pad).setDown(false);
}

void CGrooveSamplerPropPage::padPanelCommand(int id) {
    const auto set = id == kPadTail     ? &IGrooveSampler::SetPadTail
                     : id == kFollowKey ? &IGrooveSampler::SetPadFollowKey
                                        : &IGrooveSampler::SetPadOneShot;
    const int on = m_controls.toggle(id).isDown() ? 1 : 0;
    for (const int pad : padsMeant(m_currentPad)) call(set, pad, on);
    // Grains change their shape with their tails.
    if (id == kPadTail) invalidateView();
}

void CGrooveSamplerPropPage::applyCombo(int id) {
    CFxComboBox& combo = m_controls.combo(id);
    const int selection = combo.selection();
    if (selection < 0) return;
    if (id == kOutput)
        call(&IGrooveSampler::SetPadOutput, m_currentPad, selection);
    else if (id == kMidiChannel)
        call(&IGrooveSampler::SetPadChannel, m_currentPad, selection - 1);
    else if (id == kRootNote)
        call(&IGrooveSampler::SetPadRootNote, m_currentPad, selection - 1);
    else
        m_timeScale.snapIndex = selection;
    combo.select(selection);
}

}  // namespace marnoth
