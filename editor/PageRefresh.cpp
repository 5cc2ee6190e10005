/// What the page shows of the engine's state, and when it reads it again.

#include <array>
#include <stdexcept>

#include "editor/GrooveSamplerPropPage.h"
#include "editor/PageLayout.h"
#include "platform/text/Text.h"

namespace marnoth {

namespace {

/// With the width of its pen.
Rect selectionRing(int pad) {
    const Point cell = padCell(pad);
    return {cell.x - 3, cell.y - 41, cell.x + 91, cell.y + 21};
}

}  // namespace

std::int64_t CGrooveSamplerPropPage::loopLength(int pad) const {
    return get(&IGrooveSampler::GetLoopLength, std::int64_t{0}, kPadLoop, pad);
}

int CGrooveSamplerPropPage::grainCount(int pad) const {
    return get(&IGrooveSampler::GetGrainCount, std::int32_t{0}, kPadLoop, pad);
}

KeyMapRecord CGrooveSamplerPropPage::keyMapEntry() const {
    return get(&IGrooveSampler::GetKeyMapEntry, KeyMapRecord{m_currentPad, 0, 0, 0, 0, 0});
}

std::string CGrooveSamplerPropPage::binFileName(int bin, bool wantPath) const {
    std::array<char, 260> text{};
    call(&IGrooveSampler::GetBinFileName, bin, wantPath ? 1 : 0, text.data());
    text.back() = '\0';
    return utf8FromWide(wideFromSystem(text.data()));
}

void CGrooveSamplerPropPage::clearSelections() {
    m_selection.clear();
    m_binSelection.clear();
}

void CGrooveSamplerPropPage::SelectPad(int pad) {
    invalidate(selectionRing(m_currentPad));
    m_currentPad = pad;
    invalidate(selectionRing(m_currentPad));
    RefreshPadControls();
    RefreshGrainReadouts();
    invalidateGrainPlaces();
}

void CGrooveSamplerPropPage::RefreshAll() {
    if (!m_isOpen || !m_pGrooveSampler) return;
    m_controls.toggle(kAudition).setDown(get(&IGrooveSampler::GetAuditionEnabled, std::uint32_t{0}) != 0);
    m_controls.toggle(kOneShot).setDown(isOn(&IGrooveSampler::GetPadOneShot, m_currentPad));
    m_controls.toggle(kPadTail).setDown(isOn(&IGrooveSampler::GetPadTail, m_currentPad));
    m_controls.toggle(kFollowKey).setDown(isOn(&IGrooveSampler::GetPadFollowKey, m_currentPad));
    RefreshPadControls();
    RefreshGrainReadouts();
    invalidatePadImages();
    for (int pad = 0; pad < 16; ++pad) refreshPad(pad);
    invalidateGrainPlaces();
    invalidateTracks();
}

void CGrooveSamplerPropPage::refreshPad(int pad) {
    m_controls.toggle(muteId(pad)).setDown(isOn(&IGrooveSampler::GetPadMute, pad));
    m_controls.toggle(kFirstSolo + pad).setDown(isOn(&IGrooveSampler::GetPadSolo, pad));
    const bool synced = isOn(&IGrooveSampler::GetPadSynced, pad);
    const bool looping = isOn(&IGrooveSampler::GetPadLooping, pad);
    showLoopToggles(pad, looping, synced);
    // The read-outs stand at the last pad when all are done: only choosing a pad shows its own.
    SetPadVolumeText(pad, get(&IGrooveSampler::GetPadVolume, 1.0f, pad), false);
    SetPadPanText(pad, get(&IGrooveSampler::GetPadPan, 0.5f, pad), false);
}

void CGrooveSamplerPropPage::SyncLoopToggles(int pad) {
    const bool looping = isOn(&IGrooveSampler::GetPadLooping, pad);
    const bool synced = isOn(&IGrooveSampler::GetPadSynced, pad);
    showLoopToggles(pad, looping, synced);
}

void CGrooveSamplerPropPage::showLoopToggles(int pad, bool looping, bool synced) {
    // Looping is shown last: what the engine says of it counts.
    m_controls.toggle(kFirstSynced + pad).setDown(synced && looping);
    m_controls.toggle(kFirstLooping + pad).setDown(looping);
}

void CGrooveSamplerPropPage::RefreshPadControls() {
    if (!m_pGrooveSampler) return;
    const int pad = m_currentPad;
    showKeyMapEntry(keyMapEntry());
    m_controls.combo(kOutput).select(
        static_cast<int>(get(&IGrooveSampler::GetPadOutput, std::uint32_t{0}, pad)));
    m_controls.combo(kRootNote).select(get(&IGrooveSampler::GetPadRootNote, std::int32_t{-1}, pad) + 1);
    m_controls.combo(kMidiChannel).select(get(&IGrooveSampler::GetPadChannel, std::int32_t{-1}, pad) + 1);
    m_controls.toggle(kFollowKey).setDown(isOn(&IGrooveSampler::GetPadFollowKey, pad));
    m_controls.toggle(kPadTail).setDown(isOn(&IGrooveSampler::GetPadTail, pad));
    m_controls.toggle(kOneShot).setDown(isOn(&IGrooveSampler::GetPadOneShot, pad));
    SetPadVolumeText(pad, get(&IGrooveSampler::GetPadVolume, 1.0f, pad), false);
    SetPadPanText(pad, get(&IGrooveSampler::GetPadPan, 0.5f, pad), false);
    if (m_timeScale.snapIndex > 7) m_timeScale.snapIndex = 0;
    m_controls.combo(kSnap).select(m_timeScale.snapIndex);
}

void CGrooveSamplerPropPage::RefreshGrainReadouts() {
    if (!m_pGrooveSampler) return;
    std::int32_t transpose = 0;
    float volume = 1.0f;
    float pan = 0.5f;
    if (!m_selection.isEmpty()) {
        const auto [pad, grain] = m_selection.first();
        try {
            transpose = get(&IGrooveSampler::GetGrainTranspose, transpose, pad, grain);
            volume = get(&IGrooveSampler::GetGrainVolume, volume, pad, grain);
            pan = get(&IGrooveSampler::GetGrainPan, pan, pad, grain);
        } catch (const std::invalid_argument&) {
            // Its pad was changed behind the page and the grain is gone: the rest must be shown all the same.
        }
    }
    SetGrainTransposeText(transpose, false);
    SetGrainVolumeText(volume, false);
    SetGrainPanText(pan, false);
}

void CGrooveSamplerPropPage::invalidateGrainPlaces() {
    invalidateView();
    invalidate(kBinList);
    invalidate(kStripPanel);
}

void CGrooveSamplerPropPage::invalidateTracks() {
    for (const CGrooveScroller* scroller :
         {&m_padHorizontal, &m_padVertical, &m_binVertical, &m_binHorizontal})
        invalidate(scroller->track());
}

void CGrooveSamplerPropPage::invalidatePadImages() {
    for (int pad = 0; pad < 16; ++pad) invalidate(padImage(pad));
}

void CGrooveSamplerPropPage::invalidateRow(int pad) {
    const int top = scale().topOf(pad);
    invalidate(intersection(kPadView, {kPadView.left, top, kPadView.right, top + m_timeScale.rowHeight}));
}

}  // namespace marnoth
