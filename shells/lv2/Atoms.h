#pragma once

#include <lv2/atom/atom.h>

#include <cstdint>
#include <cstring>
#include <optional>
#include <span>

#include "shells/lv2/HostPosition.h"
#include "shells/lv2/Urids.h"

namespace marnoth {

/// An atom as it lies in a host's buffer: its bytes are there, whatever they are.
struct AtomView {
    LV2_URID type = 0;
    std::span<const std::uint8_t> body;
};

/// Takes `T` from the front of bytes; nothing, and nothing taken, where they are too few.
template <class T>
std::optional<T> takeFront(std::span<const std::uint8_t>& bytes) {
    if (bytes.size() < sizeof(T)) return {};
    T value;
    std::memcpy(&value, bytes.data(), sizeof value);
    bytes = bytes.subspan(sizeof value);
    return value;
}

/// Takes the body of an atom of this header, and what fills it up to the next; nothing where it isn't whole.
inline std::optional<AtomView> takeBody(const LV2_Atom& atom, std::span<const std::uint8_t>& bytes) {
    if (atom.size > bytes.size()) return {};
    const AtomView view{atom.type, bytes.first(atom.size)};
    const std::size_t padded = (std::size_t{atom.size} + 7) & ~std::size_t{7};
    bytes = bytes.subspan(padded < bytes.size() ? padded : bytes.size());
    return view;
}

/// Calls `take(frame, atom)` with the events of a host's sequence, in their order; events in beats come at
/// frame 0. Ends where one isn't whole.
template <class Take>
void forEachEvent(const LV2_Atom_Sequence& sequence, const Urids& urids, Take take) {
    std::span bytes(reinterpret_cast<const std::uint8_t*>(&sequence.body), sequence.atom.size);
    const auto head = takeFront<LV2_Atom_Sequence_Body>(bytes);
    if (!head || sequence.atom.type != urids.atomSequence) return;
    const bool isInFrames = head->unit != urids.atomBeatTime;
    while (const auto event = takeFront<LV2_Atom_Event>(bytes)) {
        const auto atom = takeBody(event->body, bytes);
        if (!atom) return;
        take(isInFrames ? event->time.frames : std::int64_t{0}, *atom);
    }
}

/// The type of an object, 0 for any other atom.
LV2_URID objectType(const AtomView& atom, const Urids& urids);

/// Calls `take(key, value)` with the properties of an object. Ends where one isn't whole.
template <class Take>
void forEachProperty(const AtomView& object, Take take) {
    std::span<const std::uint8_t> bytes = object.body;
    if (!takeFront<LV2_Atom_Object_Body>(bytes)) return;
    while (const auto property = takeFront<LV2_Atom_Property_Body>(bytes)) {
        const auto value = takeBody(property->value, bytes);
        if (!value) return;
        take(property->key, *value);
    }
}

/// A number of whatever type, true 1 and false 0.
std::optional<double> numberIn(const AtomView& atom, const Urids& urids);

/// The name in an atom, 0 where it isn't one.
LV2_URID uridIn(const AtomView& atom, const Urids& urids);

/// The value of a property of an object; of several the last one.
std::optional<AtomView> propertyOf(const AtomView& object, LV2_URID key);

/// What a `time:Position` tells.
ToldPosition positionIn(const AtomView& object, const Urids& urids);

}  // namespace marnoth
