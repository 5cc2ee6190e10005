#include "editor/pads/PadPanel.h"

#include <algorithm>
#include <string>

#include "editor/BoundEngine.h"
#include "editor/PageLayout.h"
#include "editor/PageView.h"
#include "editor/controls/PageControls.h"
#include "editor/pads/PadStrips.h"
#include "editor/texts/TextForms.h"
#include "seam/Limits.h"

namespace marnoth {

namespace {

constexpr std::int32_t kNoRoot = -1;

int heldToKeys(int value) {
    return std::clamp(value, 0, kHighestKey);
}

int heldToVelocities(int value) {
    return std::clamp(value, 0, kHighestVelocity);
}

}  // namespace

KeyMapRecord PadPanel::keyMapEntry() const {
    return page_.engine().keyMapEntry(page_.view().currentPad);
}

void PadPanel::writeKeyMapEntry(const KeyMapRecord& entry) const {
    page_.engine().call(&IGrooveSampler::SetKeyMapEntry, &entry);
}

void PadPanel::refresh() {
    const BoundEngine& engine = page_.engine();
    const int pad = page_.view().currentPad;
    showKeyMapEntry(keyMapEntry());
    controls_.combo(kOutput).select(
        static_cast<int>(engine.get(&IGrooveSampler::GetPadOutput, std::uint32_t{0}, pad)));
    controls_.combo(kRootNote).select(itemOfRoot(engine.get(&IGrooveSampler::GetPadRootNote, kNoRoot, pad)));
    controls_.combo(kMidiChannel)
        .select(engine.get(&IGrooveSampler::GetPadChannel, std::int32_t{-1}, pad) + 1);
    controls_.toggle(kFollowKey).setDown(engine.isOn(&IGrooveSampler::GetPadFollowKey, pad));
    controls_.toggle(kPadTail).setDown(engine.isOn(&IGrooveSampler::GetPadTail, pad));
    controls_.toggle(kOneShot).setDown(engine.isOn(&IGrooveSampler::GetPadOneShot, pad));
}

void PadPanel::showToggles() {
    const BoundEngine& engine = page_.engine();
    const int pad = page_.view().currentPad;
    controls_.toggle(kOneShot).setDown(engine.isOn(&IGrooveSampler::GetPadOneShot, pad));
    controls_.toggle(kPadTail).setDown(engine.isOn(&IGrooveSampler::GetPadTail, pad));
    controls_.toggle(kFollowKey).setDown(engine.isOn(&IGrooveSampler::GetPadFollowKey, pad));
}

void PadPanel::SetLowKey(int value, bool notify) {
    KeyMapRecord entry = keyMapEntry();
    entry.lowKey = heldToKeys(value);
    entry.highKey = std::max(entry.highKey, entry.lowKey);
    if (notify) writeKeyMapEntry(entry);
    showKey(kLowKey, entry.lowKey);
    showKey(kHighKey, entry.highKey);
}

void PadPanel::SetHighKey(int value, bool notify) {
    KeyMapRecord entry = keyMapEntry();
    entry.highKey = heldToKeys(value);
    entry.lowKey = std::min(entry.lowKey, entry.highKey);
    if (notify) writeKeyMapEntry(entry);
    showKey(kHighKey, entry.highKey);
    showKey(kLowKey, entry.lowKey);
}

void PadPanel::SetRootKey(int value, bool notify) {
    value = heldToKeys(value);
    if (notify) {
        KeyMapRecord entry = keyMapEntry();
        entry.rootKey = value;
        writeKeyMapEntry(entry);
    }
    showKey(kRootKey, value);
}

void PadPanel::SetLowVelocity(int value, bool notify) {
    value = heldToVelocities(value);
    if (!notify) return showVelocity(kLowVelocity, value);
    KeyMapRecord entry = keyMapEntry();
    entry.lowVelocity = value;
    entry.highVelocity = std::max(entry.highVelocity, value);
    writeKeyMapEntry(entry);
    showVelocity(kLowVelocity, entry.lowVelocity);
    showVelocity(kHighVelocity, entry.highVelocity);
}

void PadPanel::SetHighVelocity(int value, bool notify) {
    value = heldToVelocities(value);
    if (!notify) return showVelocity(kHighVelocity, value);
    KeyMapRecord entry = keyMapEntry();
    entry.highVelocity = value;
    entry.lowVelocity = std::min(entry.lowVelocity, value);
    writeKeyMapEntry(entry);
    showVelocity(kHighVelocity, entry.highVelocity);
    showVelocity(kLowVelocity, entry.lowVelocity);
}

void PadPanel::showKeyMapEntry(const KeyMapRecord& entry) {
    SetLowKey(entry.lowKey, false);
    SetHighKey(entry.highKey, false);
    SetRootKey(entry.rootKey, false);
    SetLowVelocity(entry.lowVelocity, false);
    SetHighVelocity(entry.highVelocity, false);
}

void PadPanel::showKey(int id, int key) {
    shown_[id] = key;
    controls_.edit(id).setText(FormatNoteName(key, true));
    page_.invalidate(kStripPanel);
}

void PadPanel::showVelocity(int id, int velocity) {
    shown_[id] = velocity;
    controls_.edit(id).setText(std::to_string(velocity));
}

bool PadPanel::command(int id, Modifiers held) {
    if (id != kPadTail && id != kFollowKey && id != kOneShot) return false;
    const auto set = id == kPadTail     ? &IGrooveSampler::SetPadTail
                     : id == kFollowKey ? &IGrooveSampler::SetPadFollowKey
                                        : &IGrooveSampler::SetPadOneShot;
    const int on = controls_.toggle(id).isDown() ? 1 : 0;
    for (const int pad : padsMeant(page_.view().currentPad, held)) page_.engine().call(set, pad, on);
    // Grains change their shape with their tails.
    if (id == kPadTail) page_.invalidate(kPadView);
    return true;
}

bool PadPanel::applyEdit(int id) {
    switch (id) {
        case kLowKey:
        case kHighKey:
        case kRootKey:
            applyNoteName(id);
            return true;
        case kLowVelocity:
        case kHighVelocity:
            applyVelocity(id);
            return true;
        default:
            return false;
    }
}

void PadPanel::applyNoteName(int id) {
    int key = shown_[id];
    ParseNoteName(controls_.edit(id).text(), &key, true);
    if (id == kLowKey) return SetLowKey(key, true);
    if (id == kHighKey) return SetHighKey(key, true);
    SetRootKey(key, true);
}

void PadPanel::applyVelocity(int id) {
    const int velocity = parseInteger(controls_.edit(id).text()).value_or(shown_[id]);
    if (id == kLowVelocity) return SetLowVelocity(velocity, true);
    SetHighVelocity(velocity, true);
}

int PadPanel::itemOfRoot(int root) const {
    const bool isNote = root >= 0 && root < kRootNotes;
    return (isNote ? noteOfRoot(root, rootScale_) : root) + 1;
}

int PadPanel::rootOfItem(int item) const {
    return item == 0 ? kNoRoot : rootOfNote(item - 1, rootScale_);
}

bool PadPanel::applyCombo(int id) {
    if (id != kOutput && id != kMidiChannel && id != kRootNote) return false;
    CFxComboBox& combo = controls_.combo(id);
    const int selection = combo.selection();
    if (selection < 0) return true;
    const int pad = page_.view().currentPad;
    if (id == kOutput)
        page_.engine().call(&IGrooveSampler::SetPadOutput, pad, selection);
    else if (id == kMidiChannel)
        page_.engine().call(&IGrooveSampler::SetPadChannel, pad, selection - 1);
    else
        page_.engine().call(&IGrooveSampler::SetPadRootNote, pad, rootOfItem(selection));
    combo.select(selection);
    return true;
}

}  // namespace marnoth
