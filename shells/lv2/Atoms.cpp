#include "shells/lv2/Atoms.h"

namespace marnoth {

namespace {

template <class T>
std::optional<double> valueOf(const AtomView& atom) {
    std::span<const std::uint8_t> bytes = atom.body;
    const auto value = takeFront<T>(bytes);
    return value ? std::optional(static_cast<double>(*value)) : std::nullopt;
}

/// Exact where it comes as a whole number.
std::optional<std::int64_t> frameIn(const AtomView& atom, const Urids& urids) {
    std::span<const std::uint8_t> bytes = atom.body;
    if (atom.type == urids.atomLong) return takeFront<std::int64_t>(bytes);
    constexpr double kFarthest = 0x1p62;
    const auto frame = numberIn(atom, urids);
    if (!frame || !(*frame >= -kFarthest && *frame <= kFarthest)) return {};
    return static_cast<std::int64_t>(*frame);
}

}  // namespace

LV2_URID objectType(const AtomView& atom, const Urids& urids) {
    const bool isObject =
        atom.type == urids.atomObject || atom.type == urids.atomBlank || atom.type == urids.atomResource;
    std::span<const std::uint8_t> bytes = atom.body;
    const auto head = takeFront<LV2_Atom_Object_Body>(bytes);
    return isObject && head ? head->otype : 0;
}

std::optional<double> numberIn(const AtomView& atom, const Urids& urids) {
    if (atom.type == urids.atomFloat) return valueOf<float>(atom);
    if (atom.type == urids.atomDouble) return valueOf<double>(atom);
    if (atom.type == urids.atomInt || atom.type == urids.atomBool) return valueOf<std::int32_t>(atom);
    if (atom.type == urids.atomLong) return valueOf<std::int64_t>(atom);
    return {};
}

LV2_URID uridIn(const AtomView& atom, const Urids& urids) {
    std::span<const std::uint8_t> bytes = atom.body;
    return atom.type == urids.atomUrid ? takeFront<LV2_URID>(bytes).value_or(0) : 0;
}

std::optional<AtomView> propertyOf(const AtomView& object, LV2_URID key) {
    std::optional<AtomView> found;
    forEachProperty(object, [&](LV2_URID name, const AtomView& value) {
        if (name == key) found = value;
    });
    return found;
}

ToldPosition positionIn(const AtomView& object, const Urids& urids) {
    ToldPosition told;
    forEachProperty(object, [&](LV2_URID key, const AtomView& value) {
        if (key == urids.timeFrame) told.frame = frameIn(value, urids);
        const auto tell = [&](LV2_URID name, std::optional<double>& field) {
            if (key == name) field = numberIn(value, urids);
        };
        tell(urids.timeSpeed, told.speed);
        tell(urids.timeBeatsPerMinute, told.tempo);
        tell(urids.timeBeat, told.beat);
        tell(urids.timeBar, told.bar);
        tell(urids.timeBarBeat, told.barBeat);
        tell(urids.timeBeatsPerBar, told.beatsPerBar);
        tell(urids.timeBeatUnit, told.beatUnit);
    });
    return told;
}

}  // namespace marnoth
