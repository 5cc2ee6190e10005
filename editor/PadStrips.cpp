/// The settings of the current pad and of the first selected grain, in texts and on knobs. One operation for
/// each works both ways: from the user to the engine, and from the engine to the page.

#include <algorithm>
#include <string>

#include "editor/GrooveSamplerPropPage.h"
#include "editor/PageLayout.h"
#include "editor/TextForms.h"
#include "editor/Truncate.h"

namespace marnoth {

namespace {

constexpr int kMostSemitones = 24;
constexpr float kLoudest = 2.0f;

int heldToMidi(int value) {
    return std::clamp(value, 0, 127);
}

bool isBetween(int id, int first, int count) {
    return id >= first && id < first + count;
}

}  // namespace

void CGrooveSamplerPropPage::SetPadVolumeText(int pad, float value, bool notify) {
    if (pad > 15) return;
    value = std::clamp(value, 0.0f, kLoudest);
    if (notify) call(&IGrooveSampler::SetPadVolume, pad, value);
    m_controls.knob(kFirstVolumeKnob + pad).SetValue(value / 2.0);
    m_controls.readOut(kPadVolumeText).setText(volumeText(value));
}

void CGrooveSamplerPropPage::SetPadPanText(int pad, float value, bool notify) {
    if (pad > 15) return;
    value = std::clamp(value, 0.0f, 1.0f);
    if (notify) call(&IGrooveSampler::SetPadPan, pad, value);
    m_controls.knob(kFirstPanKnob + pad).SetValue(value);
    m_controls.readOut(kPadPanText).setText(panText(value));
}

void CGrooveSamplerPropPage::SetGrainTransposeText(int value, bool notify) {
    std::string text = "0";
    if (m_selection.size() == 1) {
        value = std::clamp(value, -kMostSemitones, kMostSemitones);
        const auto [pad, grain] = m_selection.first();
        if (notify) call(&IGrooveSampler::SetGrainTranspose, pad, grain, value);
        text = std::to_string(value);
    }
    m_shown.transpose = value;
    m_controls.edit(kGrainTranspose).setText(text);
    m_controls.knob(kTransposeKnob).SetValue((static_cast<double>(value) + kMostSemitones) * 0.020833334);
}

void CGrooveSamplerPropPage::SetGrainVolumeText(float value, bool notify) {
    std::string text = "0";
    if (m_selection.size() == 1) {
        value = std::clamp(value, 0.0f, kLoudest);
        const auto [pad, grain] = m_selection.first();
        if (notify) call(&IGrooveSampler::SetGrainVolume, pad, grain, value);
        text = volumeText(value);
    }
    m_shown.volume = value;
    m_controls.edit(kGrainVolume).setText(text);
    m_controls.knob(kVolumeKnob).SetValue(value / 2.0);
}

void CGrooveSamplerPropPage::SetGrainPanText(float value, bool notify) {
    std::string text = "C";
    if (m_selection.size() == 1) {
        value = std::clamp(value, 0.0f, 1.0f);
        const auto [pad, grain] = m_selection.first();
        if (notify) call(&IGrooveSampler::SetGrainPan, pad, grain, value);
        text = panText(value);
    }
    m_shown.pan = value;
    m_controls.edit(kGrainPan).setText(text);
    m_controls.knob(kPanKnob).SetValue(value);
}

void CGrooveSamplerPropPage::SetLowKey(int value, bool notify) {
    KeyMapRecord entry = keyMapEntry();
    entry.lowKey = heldToMidi(value);
    entry.highKey = std::max(entry.highKey, entry.lowKey);
    if (notify) call(&IGrooveSampler::SetKeyMapEntry, &entry);
    showKey(kLowKey, entry.lowKey);
    showKey(kHighKey, entry.highKey);
}

void CGrooveSamplerPropPage::SetHighKey(int value, bool notify) {
    KeyMapRecord entry = keyMapEntry();
    entry.highKey = heldToMidi(value);
    entry.lowKey = std::min(entry.lowKey, entry.highKey);
    if (notify) call(&IGrooveSampler::SetKeyMapEntry, &entry);
    showKey(kHighKey, entry.highKey);
    showKey(kLowKey, entry.lowKey);
}

void CGrooveSamplerPropPage::SetRootKey(int value, bool notify) {
    value = heldToMidi(value);
    if (notify) {
        KeyMapRecord entry = keyMapEntry();
        entry.rootKey = value;
        call(&IGrooveSampler::SetKeyMapEntry, &entry);
    }
    showKey(kRootKey, value);
}

void CGrooveSamplerPropPage::SetLowVelocity(int value, bool notify) {
    value = heldToMidi(value);
    if (!notify) return showVelocity(kLowVelocity, value);
    KeyMapRecord entry = keyMapEntry();
    entry.lowVelocity = value;
    entry.highVelocity = std::max(entry.highVelocity, value);
    call(&IGrooveSampler::SetKeyMapEntry, &entry);
    showVelocity(kLowVelocity, entry.lowVelocity);
    showVelocity(kHighVelocity, entry.highVelocity);
}

void CGrooveSamplerPropPage::SetHighVelocity(int value, bool notify) {
    value = heldToMidi(value);
    if (!notify) return showVelocity(kHighVelocity, value);
    KeyMapRecord entry = keyMapEntry();
    entry.highVelocity = value;
    entry.lowVelocity = std::min(entry.lowVelocity, value);
    call(&IGrooveSampler::SetKeyMapEntry, &entry);
    showVelocity(kHighVelocity, entry.highVelocity);
    showVelocity(kLowVelocity, entry.lowVelocity);
}

void CGrooveSamplerPropPage::showKeyMapEntry(const KeyMapRecord& entry) {
    SetLowKey(entry.lowKey, false);
    SetHighKey(entry.highKey, false);
    SetRootKey(entry.rootKey, false);
    SetLowVelocity(entry.lowVelocity, false);
    SetHighVelocity(entry.highVelocity, false);
}

void CGrooveSamplerPropPage::showKey(int id, int key) {
    m_shown.keyMap[id] = key;
    m_controls.edit(id).setText(FormatNoteName(key, true));
    invalidate(kStripPanel);
}

void CGrooveSamplerPropPage::showVelocity(int id, int velocity) {
    m_shown.keyMap[id] = velocity;
    m_controls.edit(id).setText(std::to_string(velocity));
}

void CGrooveSamplerPropPage::applyEdit(int id) {
    switch (id) {
        case kLowKey:
        case kHighKey:
        case kRootKey:
            return applyNoteName(id);
        case kLowVelocity:
        case kHighVelocity:
            return applyVelocity(id);
        default:
            applyGrainEdit(id);
    }
}

void CGrooveSamplerPropPage::applyNoteName(int id) {
    int key = m_shown.keyMap[id];
    ParseNoteName(m_controls.edit(id).text(), &key, true);
    if (id == kLowKey) return SetLowKey(key, true);
    if (id == kHighKey) return SetHighKey(key, true);
    SetRootKey(key, true);
}

void CGrooveSamplerPropPage::applyVelocity(int id) {
    const int velocity = parseInteger(m_controls.edit(id).text()).value_or(m_shown.keyMap[id]);
    if (id == kLowVelocity) return SetLowVelocity(velocity, true);
    SetHighVelocity(velocity, true);
}

void CGrooveSamplerPropPage::applyGrainEdit(int id) {
    const std::string& text = m_controls.edit(id).text();
    if (id == kGrainTranspose)
        return SetGrainTransposeText(parseInteger(text).value_or(m_shown.transpose), true);
    if (id == kGrainVolume) return SetGrainVolumeText(parseVolume(text).value_or(m_shown.volume), true);
    SetGrainPanText(parsePan(text).value_or(m_shown.pan), true);
}

void CGrooveSamplerPropPage::scrolled(Control& control) {
    const int id = control.id();
    const int position = m_controls.knob(id).position();
    const double portion = position * 0.01;
    if (isBetween(id, kFirstVolumeKnob, 16)) {
        const int pad = id - kFirstVolumeKnob;
        if (pad != m_currentPad) SelectPad(pad);
        SetPadVolumeText(pad, static_cast<float>(portion * 2.0), true);
    } else if (isBetween(id, kFirstPanKnob, 16)) {
        const int pad = id - kFirstPanKnob;
        if (pad != m_currentPad) SelectPad(pad);
        SetPadPanText(pad, static_cast<float>(portion), true);
    } else if (id == kTransposeKnob) {
        SetGrainTransposeText(truncateToPixel(portion * 48.0 + 0.5) - kMostSemitones, true);
    } else if (id == kVolumeKnob) {
        SetGrainVolumeText(static_cast<float>(portion * 2.0), true);
    } else if (id == kPanKnob) {
        SetGrainPanText(static_cast<float>(portion), true);
    }
}

}  // namespace marnoth
