#include "editor/pads/PadStrips.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <optional>

#include "editor/BoundEngine.h"
#include "editor/PageLayout.h"
#include "editor/PageView.h"
#include "editor/ValueRanges.h"
#include "editor/controls/PageControls.h"
#include "editor/texts/TextForms.h"
#include "seam/Limits.h"

namespace marnoth {

namespace {

/// The pad whose control of a row `id` is.
std::optional<int> padInRow(int id, int first) {
    if (id < first || id >= first + kPads) return {};
    return id - first;
}

std::optional<int> padOfMute(int id) {
    for (int pad = 0; pad < kPads; ++pad)
        if (id == muteId(pad)) return pad;
    return {};
}

}  // namespace

std::span<const int> padsMeant(const int& pad, Modifiers held) {
    static const std::array<int, kPads> all = [] {
        std::array<int, kPads> numbers{};
        std::iota(numbers.begin(), numbers.end(), 0);
        return numbers;
    }();
    if (held.shift) return all;
    return {&pad, 1};
}

void PadStrips::refresh(int pad) {
    const BoundEngine& engine = page_.engine();
    controls_.toggle(muteId(pad)).setDown(engine.isOn(&IGrooveSampler::GetPadMute, pad));
    controls_.toggle(kFirstSolo + pad).setDown(engine.isOn(&IGrooveSampler::GetPadSolo, pad));
    const bool synced = engine.isOn(&IGrooveSampler::GetPadSynced, pad);
    const bool looping = engine.isOn(&IGrooveSampler::GetPadLooping, pad);
    showLoopToggles(pad, looping, synced);
    // The read-outs stand at the last pad when all are done: only choosing a pad shows its own.
    showLevels(pad);
}

void PadStrips::showLevels(int pad) {
    SetPadVolumeText(pad, page_.engine().get(&IGrooveSampler::GetPadVolume, 1.0f, pad), false);
    SetPadPanText(pad, page_.engine().get(&IGrooveSampler::GetPadPan, 0.5f, pad), false);
}

void PadStrips::SyncLoopToggles(int pad) {
    const bool looping = page_.engine().isOn(&IGrooveSampler::GetPadLooping, pad);
    const bool synced = page_.engine().isOn(&IGrooveSampler::GetPadSynced, pad);
    showLoopToggles(pad, looping, synced);
}

void PadStrips::showLoopToggles(int pad, bool looping, bool synced) {
    // Looping is shown last: what the engine says of it counts.
    controls_.toggle(kFirstSynced + pad).setDown(synced && looping);
    controls_.toggle(kFirstLooping + pad).setDown(looping);
}

void PadStrips::SetPadVolumeText(int pad, float value, bool notify) {
    if (pad >= kPads) return;
    value = std::clamp(value, 0.0f, kLoudest);
    if (notify) page_.engine().call(&IGrooveSampler::SetPadVolume, pad, value);
    controls_.knob(kFirstVolumeKnob + pad).SetValue(value / 2.0);
    controls_.readOut(kPadVolumeText).setText(volumeText(value));
}

void PadStrips::SetPadPanText(int pad, float value, bool notify) {
    if (pad >= kPads) return;
    value = std::clamp(value, 0.0f, 1.0f);
    if (notify) page_.engine().call(&IGrooveSampler::SetPadPan, pad, value);
    controls_.knob(kFirstPanKnob + pad).SetValue(value);
    controls_.readOut(kPadPanText).setText(panText(value));
}

void PadStrips::switchSynced(int pad, bool on) {
    page_.engine().call(&IGrooveSampler::SetPadSynced, pad, on ? 1 : 0);
    controls_.toggle(kFirstSynced + pad).setDown(on);
    if (!on) return;
    page_.engine().call(&IGrooveSampler::SetPadLooping, pad, 1);
    controls_.toggle(kFirstLooping + pad).setDown(true);
}

void PadStrips::switchLooping(int pad, bool on) {
    if (!on) page_.engine().call(&IGrooveSampler::SetPadSynced, pad, 0);
    page_.engine().call(&IGrooveSampler::SetPadLooping, pad, on ? 1 : 0);
    controls_.toggle(kFirstLooping + pad).setDown(on);
    if (!on) controls_.toggle(kFirstSynced + pad).setDown(false);
}

void PadStrips::switchAllOff(int pad) {
    for (const auto set : {&IGrooveSampler::SetPadSynced, &IGrooveSampler::SetPadLooping,
                           &IGrooveSampler::SetPadMute, &IGrooveSampler::SetPadSolo})
        page_.engine().call(set, pad, 0);
    for (const int toggle : {kFirstSynced + pad, kFirstLooping + pad, muteId(pad), kFirstSolo + pad})
        controls_.toggle(toggle).setDown(false);
}

bool PadStrips::command(int id, Modifiers held) {
    const auto isDown = [&] { return controls_.toggle(id).isDown(); };
    if (const auto muted = padOfMute(id)) {
        page_.SelectPad(*muted);
        page_.engine().call(&IGrooveSampler::SetPadMute, *muted, isDown() ? 1 : 0);
    } else if (const auto soloed = padInRow(id, kFirstSolo)) {
        page_.SelectPad(*soloed);
        page_.engine().call(&IGrooveSampler::SetPadSolo, *soloed, isDown() ? 1 : 0);
    } else if (const auto synced = padInRow(id, kFirstSynced)) {
        page_.SelectPad(*synced);
        const bool on = isDown();
        for (const int pad : padsMeant(*synced, held)) switchSynced(pad, on);
    } else if (const auto looping = padInRow(id, kFirstLooping)) {
        page_.SelectPad(*looping);
        const bool on = isDown();
        for (const int pad : padsMeant(*looping, held)) switchLooping(pad, on);
    } else {
        return false;
    }
    return true;
}

bool PadStrips::knobTurned(int id) {
    const auto volume = padInRow(id, kFirstVolumeKnob);
    const auto pan = padInRow(id, kFirstPanKnob);
    if (!volume && !pan) return false;
    // Taken before the pad is chosen, which shows the engine's value.
    const double portion = controls_.knob(id).portion();
    const int pad = volume ? *volume : *pan;
    if (pad != page_.view().currentPad) page_.SelectPad(pad);
    if (volume)
        SetPadVolumeText(pad, static_cast<float>(portion * 2.0), true);
    else
        SetPadPanText(pad, static_cast<float>(portion), true);
    return true;
}

}  // namespace marnoth
