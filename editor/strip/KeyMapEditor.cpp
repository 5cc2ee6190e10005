#include "editor/strip/KeyMapEditor.h"

#include <algorithm>
#include <array>
#include <limits>
#include <string>

#include "editor/Truncate.h"
#include "platform/drawing/Surface.h"
#include "seam/Limits.h"

namespace marnoth {
namespace {

constexpr Color kBlack{0, 0, 0};
constexpr Color kInsideText{37, 43, 52};
constexpr Color kInside{124, 144, 173};
constexpr Color kOutside{160, 172, 191};
constexpr Color kEdge{91, 99, 120};
constexpr Color kRoot{200, 200, 150};

// The keyboard is measured in half units: 14 to an octave, two to a white key, and a black key between two
// white ones at an odd one. All of it is calculated in single precision, as the unit is.
constexpr int kHalfUnitsOfOctave = 14;
constexpr float kHalfUnitsOfNote = 1.1666666f;
constexpr float kNotesOfHalfUnit = 0.85714287f;
constexpr float kKeyboardUnits = 149.75f;

/// No black key stands between E and F and between B and C.
bool isGap(int halfUnit) {
    const int position = halfUnit % kHalfUnitsOfOctave;
    return position == 5 || position == 13;
}

bool isWhite(int halfUnit) {
    return halfUnit % 2 == 0;
}

int halfUnitOf(int note) {
    const int halfUnit = truncateToPixel(static_cast<float>(note) * kHalfUnitsOfNote + 0.001f);
    return halfUnit % kHalfUnitsOfOctave == 5 ? halfUnit + 1 : halfUnit;
}

int noteOf(int halfUnit) {
    const float note = static_cast<float>(halfUnit) * kNotesOfHalfUnit + 0.8f;
    return std::clamp(truncateToPixel(note), 0, kHighestKey);
}

int heldToInt(std::int64_t value) {
    return static_cast<int>(
        std::clamp<std::int64_t>(value, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
}

int moved(std::int32_t key, std::int64_t by) {
    return heldToInt(key + by);
}

bool isInside(int note, const KeyMapRecord& entry) {
    return entry.lowKey <= note && note <= entry.highKey;
}

struct WhiteKeyColors {
    Color pen;
    Color brush;
    Color text;
};

WhiteKeyColors whiteKeyColors(int note, const KeyMapRecord& entry) {
    if (note == entry.rootKey) return {kEdge, kRoot, kEdge};
    if (!isInside(note, entry)) return {kBlack, kOutside, kEdge};
    return {kEdge, kInside, kInsideText};
}

struct BlackKeyColors {
    Color pen;
    Color brush;
};

BlackKeyColors blackKeyColors(int note, const KeyMapRecord& entry) {
    if (note == entry.rootKey) return {kEdge, kRoot};
    if (!isInside(note, entry)) return {kBlack, kBlack};
    return {kEdge, kEdge};
}

}  // namespace

void CKeyMapEditor::setUp(const Rect& rect, int octaves) {
    rect_ = rect;
    octaves_ = octaves;
    scroll_ = 0;
    endDrag();
}

float CKeyMapEditor::unit() const {
    return static_cast<float>(rect_.width()) / static_cast<float>(kHalfUnitsOfOctave * octaves_ + 2);
}

float CKeyMapEditor::unitsAt(int x) const {
    return static_cast<float>(std::int64_t{scroll_} - rect_.left + x) / unit();
}

int CKeyMapEditor::NoteFromX(int x) const {
    const float units = unitsAt(x) - 0.5f;
    const int halfUnit = truncateToPixel(units);
    if (!isGap(halfUnit)) return noteOf(halfUnit);
    return noteOf(units - static_cast<float>(halfUnit) >= 0.5f ? halfUnit + 1 : halfUnit - 1);
}

int CKeyMapEditor::lowEdgeNote(int x) const {
    const float units = unitsAt(x) + 0.5f;
    const int halfUnit = truncateToPixel(units);
    if (!isGap(halfUnit)) return noteOf(halfUnit);
    return noteOf(units - static_cast<float>(halfUnit) >= 0.5f ? halfUnit + 1 : halfUnit - 1);
}

int CKeyMapEditor::highEdgeNote(int x) const {
    const float units = unitsAt(x) - 0.5f;
    const int behind = truncateToPixel(units);
    if (!isGap(behind - 1)) return noteOf(behind - 1);
    return noteOf(units - static_cast<float>(behind) >= 0.5f ? behind : behind - 2);
}

bool CKeyMapEditor::OnKeyMapPress(Point point, const KeyMapRecord& entry, int* note, bool* drag) {
    endDrag();
    pressX_ = point.x;
    *drag = false;
    if (rect_.contains(point)) {
        *note = NoteFromX(point.x);
        scrollAtPress_ = scroll_;
        holdKey(*note, entry);
        *drag = true;
    } else if (handleBand().contains(point)) {
        *drag = pressHandle(point.x, entry);
    }
    return *drag;
}

void CKeyMapEditor::holdKey(int note, const KeyMapRecord& entry) {
    draggingRoot_ = note == entry.rootKey;
    draggingHigh_ = !draggingRoot_ && note == entry.highKey;
    draggingLow_ = !draggingRoot_ && !draggingHigh_ && note == entry.lowKey;
    panning_ = !draggingRoot_ && !draggingHigh_ && !draggingLow_;
}

bool CKeyMapEditor::pressHandle(int x, const KeyMapRecord& entry) {
    handleDrag_ = true;
    draggingHigh_ = highEdgeNote(x) == entry.highKey;
    draggingLow_ = !draggingHigh_ && lowEdgeNote(x) == entry.lowKey;
    return draggingHigh_ || draggingLow_;
}

int CKeyMapEditor::heldNote(int x) const {
    if (!handleDrag_) return NoteFromX(x);
    return draggingHigh_ ? highEdgeNote(x) : lowEdgeNote(x);
}

void CKeyMapEditor::OnKeyMapDrag(Point point, bool shiftHeld, KeyMapRecord* entry) {
    const int note = heldNote(point.x);
    std::int32_t* held = nullptr;
    if (draggingRoot_) held = &entry->rootKey;
    if (draggingLow_) held = &entry->lowKey;
    if (draggingHigh_) held = &entry->highKey;

    if (held && shiftHeld) {
        const std::int64_t by = std::int64_t{note} - *held;
        for (std::int32_t* key : {&entry->lowKey, &entry->highKey, &entry->rootKey}) *key = moved(*key, by);
    } else if (held) {
        *held = note;
    } else if (panning_ && !shiftHeld) {
        scroll_ = heldToFarPixel(std::int64_t{scrollAtPress_} + pressX_ - point.x);
    }
}

void CKeyMapEditor::endDrag() {
    draggingRoot_ = draggingLow_ = draggingHigh_ = handleDrag_ = panning_ = false;
}

void CKeyMapEditor::holdScroll() {
    const int keyboard = truncateToPixel(unit() * kKeyboardUnits + 0.5f);
    scroll_ = std::clamp(scroll_, 0, std::max(0, keyboard - rect_.width()));
}

CKeyMapEditor::Notes CKeyMapEditor::drawnNotes() const {
    const int first = truncateToPixel(static_cast<float>(scroll_) / unit() + 0.5f) - 1;
    const int last = first + kHalfUnitsOfOctave * octaves_ + 4;
    return {noteOf(isGap(first) ? first - 1 : first), noteOf(isGap(last) ? last - 1 : last)};
}

int CKeyMapEditor::whiteKeyX(int index) const {
    return truncateToPixel(static_cast<float>(index) * (2.0f * unit()) + 0.5f);
}

Rect CKeyMapEditor::whiteKey(int halfUnit) const {
    const int index = halfUnit / 2;
    const int origin = rect_.left - scroll_;
    return {whiteKeyX(index) + origin, rect_.top, whiteKeyX(index + 1) + origin + 1, rect_.bottom};
}

Rect CKeyMapEditor::blackKey(int halfUnit) const {
    int width = std::max(truncateToPixel((2.0f * unit() + 1.0f) * 0.5f), 3);
    if (width % 2 == 0) ++width;
    const int left = whiteKeyX(halfUnit / 2 + 1) - scroll_ + rect_.left - width / 2;
    return {left, rect_.top, left + width, rect_.top + 3 * rect_.height() / 5};
}

void CKeyMapEditor::DrawKeyMap(Surface& surface, const Rect& clip, const KeyMapRecord& entry, Font& font) {
    holdScroll();
    surface.SelectClipRgn(Rect{rect_.left, rect_.top - 6, rect_.right, rect_.bottom});
    surface.SelectFont(&font);
    Handles handles;
    drawWhiteKeys(surface, entry, handles);
    drawBlackKeys(surface, entry, handles);
    surface.SelectPen({kOutside});
    surface.SelectBrush(kOutside);
    if (handles.low) drawHandle(surface, *handles.low);
    if (handles.high) drawHandle(surface, *handles.high);
    surface.SelectClipRgn(clip);
}

void CKeyMapEditor::drawWhiteKeys(Surface& surface, const KeyMapRecord& entry, Handles& handles) const {
    const Notes notes = drawnNotes();
    for (int note = notes.first; note <= notes.last; ++note) {
        const int halfUnit = halfUnitOf(note);
        if (!isWhite(halfUnit)) continue;
        const Rect key = whiteKey(halfUnit);
        const WhiteKeyColors colors = whiteKeyColors(note, entry);
        surface.SelectPen({colors.pen});
        surface.SelectBrush(colors.brush);
        surface.Rectangle(key);
        surface.SetGroundColor(colors.brush);
        surface.SetTextColor(colors.text);
        if (note % 12 == 0) drawOctave(surface, note / 12, key.left);
        if (note == entry.lowKey) handles.low = key.left;
        if (note == entry.highKey) handles.high = key.right;
    }
}

void CKeyMapEditor::drawOctave(Surface& surface, int octave, int keyLeft) const {
    // Two digits need more of the key.
    const int inset = octave >= 10 ? 1 : 3;
    surface.TextOut({keyLeft + inset, rect_.bottom - 13}, std::to_string(octave));
}

void CKeyMapEditor::drawBlackKeys(Surface& surface, const KeyMapRecord& entry, Handles& handles) const {
    const Notes notes = drawnNotes();
    for (int note = notes.first; note <= notes.last; ++note) {
        const int halfUnit = halfUnitOf(note);
        if (isWhite(halfUnit)) continue;
        const Rect key = blackKey(halfUnit);
        const BlackKeyColors colors = blackKeyColors(note, entry);
        surface.SelectPen({colors.pen});
        surface.SelectBrush(colors.brush);
        surface.Rectangle(key);
        if (note == entry.lowKey) handles.low = key.left;
        if (note == entry.highKey) handles.high = key.right;
    }
}

void CKeyMapEditor::drawHandle(Surface& surface, int x) const {
    surface.Polygon(
        std::array{Point{x, rect_.top - 1}, Point{x - 3, rect_.top - 6}, Point{x + 3, rect_.top - 6}});
}

}  // namespace marnoth
