#include "editor/controls/PageControls.h"

#include <string>
#include <utility>

#include "editor/skin/Skin.h"

namespace marnoth {

namespace {

constexpr int kKnobStrip = 237;
constexpr int kKnobSize = 17;
constexpr float kKnobMiddle = 0.5f;
constexpr int kLineHeight = 12;

/// `first`, then "`name`1" to "`name`" with `last`.
std::vector<std::string> numbered(const std::string& first, const std::string& name, int last) {
    std::vector<std::string> items{first};
    for (int number = 1; number <= last; ++number) items.push_back(name + std::to_string(number));
    return items;
}

}  // namespace

PageControls::PageControls(ControlParent& parent, CPlugInFilterCallback& callback, Font& font)
    : parent_(parent), callback_(callback), font_(font) {
    makeFileControls();
    for (int pad = 0; pad < kPads; ++pad) makePad(pad);
    makePadPanel();
    makeGrainPanel();
    makeZooms();
}

template <class Map>
auto& PageControls::make(Map& controls, int id, Point corner) {
    auto& control = controls.try_emplace(id, parent_, id).first->second;
    control.setPlace(Rect::at(corner.x, corner.y, 0, 0));
    all_.push_back(&control);
    return control;
}

template <class Map>
auto& PageControls::makeOfBitmaps(Map& controls, int id, Point corner) {
    auto& control = make(controls, id, corner);
    control.m_pCallback = &callback_;
    return control;
}

void PageControls::makeToggle(int id, Point corner, int up, int down) {
    makeOfBitmaps(toggles_, id, corner)
        .LoadToggleBitmaps(skinBitmap(up), skinBitmap(down), nullptr, nullptr, false, true);
}

void PageControls::makeButton(int id, Point corner, int up, int down) {
    makeOfBitmaps(buttons_, id, corner).LoadBitmaps(skinBitmap(up), skinBitmap(down));
}

void PageControls::makeZoom(int id, Point corner, int up, int down) {
    makeOfBitmaps(zooms_, id, corner).LoadBitmaps(skinBitmap(up), skinBitmap(down));
}

void PageControls::makeKnob(int id, Point corner) {
    makeOfBitmaps(knobs_, id, corner)
        .LoadKnobBitmap(skinBitmap(kKnobStrip), kKnobSize, kKnobSize, kKnobMiddle, false, {});
}

void PageControls::makeEdit(int id, Point corner, int width) {
    auto& edit = make(edits_, id, corner);
    edit.setPlace(Rect::at(corner.x, corner.y, width, kLineHeight));
    edit.setFont(&font_);
}

void PageControls::makeCombo(int id, Point corner, std::vector<std::string> items) {
    constexpr int kWidth = 60;
    auto& combo = make(combos_, id, corner);
    combo.setPlace(Rect::at(corner.x, corner.y, kWidth, kLineHeight));
    combo.setFont(&font_);
    combo.setItems(std::move(items));
}

void PageControls::makeReadOut(int id, Point corner) {
    constexpr int kWidth = 34;
    StaticText& readOut = make(readOuts_, id, corner);
    readOut.setPlace(Rect::at(corner.x, corner.y, kWidth, kLineHeight));
    readOut.setFont(&font_);
}

void PageControls::makeFileControls() {
    makeButton(kClearProject, {50, 27}, 288, 289);
    makeToggle(kOpenProject, {10, 29}, 212, 213);
    makeToggle(kSaveProject, {31, 29}, 286, 287);
    makeToggle(kBinPlay, {71, 27}, 273, 272);
    makeButton(kBinStop, {92, 27}, 274, 274);
    makeToggle(kAudition, {113, 27}, 218, 219);
    makeToggle(kLoadToBin, {115, 52}, 214, 215);
    makeToggle(kDeleteFromBin, {98, 52}, 280, 279);
}

void PageControls::makePad(int pad) {
    const Point cell = padCell(pad);
    makeToggle(muteId(pad), {cell.x + 19, cell.y + 1}, 205, 206);
    makeToggle(kFirstSolo + pad, {cell.x + 36, cell.y + 1}, 281, 282);
    makeToggle(kFirstSynced + pad, {cell.x + 53, cell.y + 1}, 208, 209);
    makeToggle(kFirstLooping + pad, {cell.x + 70, cell.y + 1}, 210, 211);
    makeToggle(kFirstOpen + pad, {cell.x + 2, cell.y + 1}, 216, 217);
    makeKnob(kFirstVolumeKnob + pad, {cell.x + 47, cell.y - 37});
    makeKnob(kFirstPanKnob + pad, {cell.x + 65, cell.y - 17});
}

void PageControls::makePadPanel() {
    constexpr int kWidth = 34;
    makeToggle(kPadTail, {500, 176}, 276, 277);
    makeToggle(kFollowKey, {500, 190}, 276, 277);
    makeToggle(kOneShot, {548, 176}, 276, 277);
    makeEdit(kLowVelocity, {554, 82}, kWidth);
    makeEdit(kHighVelocity, {554, 99}, kWidth);
    makeEdit(kRootKey, {554, 121}, kWidth);
    makeEdit(kLowKey, {554, 138}, kWidth);
    makeEdit(kHighKey, {554, 155}, kWidth);
    makeCombo(kOutput, {534, 22}, numbered("Mix Only", "Chan ", kChannelPins));
    makeCombo(kMidiChannel, {534, 40}, numbered("Omni", "Ch. ", kMidiChannels));
    makeCombo(kRootNote, {534, 58},
              {"None", "A", "A#", "B", "C", "C#", "D", "D#", "E", "F", "F#", "G", "G#"});
    makeReadOut(kPadVolumeText, {504, 216});
    makeReadOut(kPadPanText, {554, 216});
}

void PageControls::makeGrainPanel() {
    constexpr int kWidth = 30;
    makeEdit(kGrainTranspose, {43, 399}, kWidth);
    makeEdit(kGrainVolume, {43, 438}, kWidth);
    makeEdit(kGrainPan, {43, 477}, kWidth);
    makeKnob(kTransposeKnob, {15, 397});
    makeKnob(kVolumeKnob, {15, 435});
    makeKnob(kPanKnob, {15, 474});
    makeCombo(kSnap, {21, 515}, {"None", "1 Per Beat", "2", "3", "4", "8", "12", "16"});
}

void PageControls::makeZooms() {
    makeZoom(kZoomIn, {567, 535}, 229, 230);
    makeZoom(kZoomOut, {556, 535}, 231, 232);
    makeZoom(kRowsHigher, {583, 519}, 233, 234);
    makeZoom(kRowsLower, {583, 508}, 235, 236);
}

}  // namespace marnoth
