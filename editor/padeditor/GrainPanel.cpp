#include "editor/padeditor/GrainPanel.h"

#include <algorithm>
#include <stdexcept>
#include <string>

#include "editor/BoundEngine.h"
#include "editor/PageLayout.h"
#include "editor/PageView.h"
#include "editor/Truncate.h"
#include "editor/ValueRanges.h"
#include "editor/controls/PageControls.h"
#include "editor/texts/TextForms.h"

namespace marnoth {

namespace {

/// Of the knob's way, which has 48 semitones: a 48th, in nine decimals.
constexpr double kKnobOfSemitone = 0.020833334;

}  // namespace

void GrainPanel::refresh() {
    const BoundEngine& engine = page_.engine();
    const CEventSelection& selection = page_.view().selection;
    std::int32_t transpose = 0;
    float volume = 1.0f;
    float pan = 0.5f;
    if (!selection.isEmpty()) {
        const auto [pad, grain] = selection.first();
        try {
            transpose = engine.get(&IGrooveSampler::GetGrainTranspose, transpose, pad, grain);
            volume = engine.get(&IGrooveSampler::GetGrainVolume, volume, pad, grain);
            pan = engine.get(&IGrooveSampler::GetGrainPan, pan, pad, grain);
        } catch (const std::invalid_argument&) {
            // Its pad was changed behind the page and the grain is gone: the rest must be shown all the same.
        }
    }
    SetGrainTransposeText(transpose, false);
    SetGrainVolumeText(volume, false);
    SetGrainPanText(pan, false);
}

void GrainPanel::SetGrainTransposeText(int value, bool notify) {
    const CEventSelection& selection = page_.view().selection;
    std::string text = "0";
    if (selection.size() == 1) {
        value = std::clamp(value, -kMostSemitones, kMostSemitones);
        const auto [pad, grain] = selection.first();
        if (notify) page_.engine().call(&IGrooveSampler::SetGrainTranspose, pad, grain, value);
        text = std::to_string(value);
    }
    transpose_ = value;
    controls_.edit(kGrainTranspose).setText(text);
    controls_.knob(kTransposeKnob).SetValue((static_cast<double>(value) + kMostSemitones) * kKnobOfSemitone);
}

void GrainPanel::SetGrainVolumeText(float value, bool notify) {
    const CEventSelection& selection = page_.view().selection;
    std::string text = "0";
    if (selection.size() == 1) {
        value = std::clamp(value, 0.0f, kLoudest);
        const auto [pad, grain] = selection.first();
        if (notify) page_.engine().call(&IGrooveSampler::SetGrainVolume, pad, grain, value);
        text = volumeText(value);
    }
    volume_ = value;
    controls_.edit(kGrainVolume).setText(text);
    controls_.knob(kVolumeKnob).SetValue(value / 2.0);
}

void GrainPanel::SetGrainPanText(float value, bool notify) {
    const CEventSelection& selection = page_.view().selection;
    std::string text = "C";
    if (selection.size() == 1) {
        value = std::clamp(value, 0.0f, 1.0f);
        const auto [pad, grain] = selection.first();
        if (notify) page_.engine().call(&IGrooveSampler::SetGrainPan, pad, grain, value);
        text = panText(value);
    }
    pan_ = value;
    controls_.edit(kGrainPan).setText(text);
    controls_.knob(kPanKnob).SetValue(value);
}

bool GrainPanel::applyEdit(int id) {
    if (id != kGrainTranspose && id != kGrainVolume && id != kGrainPan) return false;
    const std::string& text = controls_.edit(id).text();
    if (id == kGrainTranspose)
        SetGrainTransposeText(parseInteger(text).value_or(transpose_), true);
    else if (id == kGrainVolume)
        SetGrainVolumeText(parseVolume(text).value_or(volume_), true);
    else
        SetGrainPanText(parsePan(text).value_or(pan_), true);
    return true;
}

bool GrainPanel::hasKnob(int id) {
    return id == kTransposeKnob || id == kVolumeKnob || id == kPanKnob;
}

bool GrainPanel::knobTurned(int id) {
    if (!hasKnob(id)) return false;
    const double portion = controls_.knob(id).portion();
    if (id == kTransposeKnob)
        SetGrainTransposeText(truncateToPixel(portion * (2.0 * kMostSemitones) + 0.5) - kMostSemitones, true);
    else if (id == kVolumeKnob)
        SetGrainVolumeText(static_cast<float>(portion * 2.0), true);
    else
        SetGrainPanText(static_cast<float>(portion), true);
    return true;
}

}  // namespace marnoth
