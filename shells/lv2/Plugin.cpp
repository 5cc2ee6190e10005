#include "shells/lv2/Plugin.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>

#include "host/CreateInstance.h"
#include "hostkit/LiveRate.h"

namespace marnoth {

namespace {

/// Longer blocks come in pieces of this length, which nobody hears.
constexpr std::int32_t kMostFrames = 1024;

std::uint32_t wholeRate(double rate) {
    constexpr double kMost = std::numeric_limits<std::uint32_t>::max();
    return rate >= 1.0 && rate <= kMost ? static_cast<std::uint32_t>(std::llround(rate)) : 0;
}

}  // namespace

Plugin::Plugin(double rate, std::span<const int> outputs, const LV2_URID_Map& map,
               const LV2_Feature* const* features)
    : urids_(map),
      log_(features, urids_.logError),
      host_(createInstrument),
      parameters_(host_.sampler(), map),
      noteNames_(host_.sampler(), features),
      outputs_(outputs),
      rate_(rate) {
    LV2_URID_Map own = map;
    lv2_atom_forge_init(&forge_, &own);
    // Hosts restore a state before they activate, and it is loaded at the rate of the connection.
    if (!prepare()) throw std::runtime_error("the instrument can't be connected at this rate");
}

void Plugin::connect(std::uint32_t port, void* data) {
    if (port == kEventsIn) eventsIn_ = static_cast<const LV2_Atom_Sequence*>(data);
    if (port == kEventsOut) eventsOut_ = static_cast<LV2_Atom_Sequence*>(data);
    const std::size_t audio = std::size_t{port} - kFirstAudioOut;
    if (port >= kFirstAudioOut && audio < 2 * outputs_.size()) audio_[audio] = static_cast<float*>(data);
}

bool Plugin::prepare() {
    const StateChanges::OfHost own(changes_);
    const std::uint32_t rate = wholeRate(rate_);
    if (FAILED(connectWithProject(host_, {rate, kMostFrames, outputs_}, connectedRate_))) return false;
    connectedRate_ = rate;
    position_.setRate(rate);
    listening_.prepare(rate);
    return true;
}

void Plugin::activate() {
    if (!prepare()) log_.error("the instrument can't be connected anew");
}

LV2_State_Status Plugin::save(LV2_State_Store_Function store, LV2_State_Handle handle,
                              const LV2_Feature* const* features) {
    return state_.save(store, handle, features);
}

LV2_State_Status Plugin::restore(LV2_State_Retrieve_Function retrieve, LV2_State_Handle handle,
                                 const LV2_Feature* const* features) {
    const StateChanges::OfHost own(changes_);
    return state_.restore(retrieve, handle, features);
}

void Plugin::run(std::uint32_t frames) {
    done_ = 0;
    recentNotes_.beginBlock();
    const auto count = static_cast<std::int32_t>(std::min<std::uint32_t>(frames, INT32_MAX));
    takeEvents(count);
    renderTo(count);
    listening_.add(count, std::span(audio_).first(2), 1.0f);
    pages_.automated = parameters_.changes();
    writeEvents();
    noteNames_.advance(frames, rate_);
}

void Plugin::takeEvents(std::int32_t frames) {
    if (!eventsIn_) return;
    forEachEvent(*eventsIn_, urids_, [&](std::int64_t frame, const AtomView& event) {
        // One at or behind the end would wait for a block that it isn't meant for.
        const std::int64_t last = std::max(done_, frames - 1);
        take(static_cast<std::int32_t>(std::clamp<std::int64_t>(frame, done_, last)), event);
    });
}

void Plugin::take(std::int32_t frame, const AtomView& event) {
    if (event.type == urids_.midiEvent && !event.body.empty()) {
        takeMidi(frame, event.body);
    } else if (const LV2_URID type = objectType(event, urids_)) {
        takeObject(frame, type, event);
    }
}

void Plugin::takeMidi(std::int32_t frame, std::span<const std::uint8_t> bytes) {
    constexpr std::uint8_t kController = 0xB0;
    const auto byte = [bytes](std::size_t at) { return at < bytes.size() ? bytes[at] : std::uint8_t{0}; };
    const std::uint8_t status = byte(0);
    if ((status & 0xF0) == kController && PadParameters::isController(byte(1))) {
        renderTo(frame);
        parameters_.setByController(status & 0x0F, byte(1), byte(2));
    } else {
        host_.addMessage(frame - done_, status, byte(1), byte(2));
        recentNotes_.take(status, byte(1), byte(2));
    }
}

void Plugin::takePosition(std::int32_t frame, const AtomView& object) {
    renderTo(frame);
    const bool jumps = position_.take(positionIn(object, urids_));
    if (!jumps || frame != 0) return;
    // The jump may have been within the last block.
    for (const RecentNotes::Note& note : recentNotes_.notes())
        host_.addMessage(0, note.status, note.key, note.velocity);
}

void Plugin::takeObject(std::int32_t frame, LV2_URID type, const AtomView& object) {
    if (type == urids_.timePosition) {
        takePosition(frame, object);
    } else if (type == urids_.patchSet) {
        const auto property = propertyOf(object, urids_.patchProperty);
        const auto value = propertyOf(object, urids_.patchValue);
        if (property && value) setParameter(frame, uridIn(*property, urids_), *value);
    } else if (type == urids_.patchPut) {
        const auto body = propertyOf(object, urids_.patchBody);
        if (!body || objectType(*body, urids_) == 0) return;
        forEachProperty(*body, [&](LV2_URID key, const AtomView& value) { setParameter(frame, key, value); });
    } else if (type == urids_.patchGet) {
        askedFor(object);
    }
}

void Plugin::setParameter(std::int32_t frame, LV2_URID property, const AtomView& value) {
    const auto index = parameters_.find(property);
    const auto number = numberIn(value, urids_);
    if (!index || !number) return;
    renderTo(frame);
    parameters_.set(*index, *number);
}

void Plugin::askedFor(const AtomView& get) {
    const auto property = propertyOf(get, urids_.patchProperty);
    if (!property) return parameters_.tellAll();
    if (const auto index = parameters_.find(uridIn(*property, urids_))) parameters_.tellAgain(*index);
}

void Plugin::renderTo(std::int32_t frame) {
    std::array<float*, SeparateOutputs::kPointers> piece{};
    std::ranges::transform(audio_, piece.begin(),
                           [this](float* output) { return output ? output + done_ : nullptr; });
    host_.process(frame - done_, position_.next(), piece);
    position_.advance(frame - done_);
    done_ = frame;
}

void Plugin::writeEvents() {
    if (!eventsOut_ || eventsOut_->atom.size < sizeof(LV2_Atom_Sequence_Body)) return;
    LV2_Atom_Forge_Frame sequence;
    lv2_atom_forge_set_buffer(&forge_, reinterpret_cast<std::uint8_t*>(eventsOut_),
                              sizeof(LV2_Atom) + eventsOut_->atom.size);
    lv2_atom_forge_sequence_head(&forge_, &sequence, 0);
    parameters_.tellChanges([this](std::size_t index, float value) { return writeParameter(index, value); });
    writeStateChanged();
    lv2_atom_forge_pop(&forge_, &sequence);
}

/// False where there is no room for it.
bool Plugin::writeParameter(std::size_t index, float value) {
    constexpr std::uint32_t kMostBytes = 128;
    if (!hasRoomFor(kMostBytes)) return false;
    LV2_Atom_Forge_Frame object;
    lv2_atom_forge_frame_time(&forge_, 0);
    lv2_atom_forge_object(&forge_, &object, 0, urids_.patchSet);
    lv2_atom_forge_key(&forge_, urids_.patchProperty);
    lv2_atom_forge_urid(&forge_, parameters_.property(index));
    lv2_atom_forge_key(&forge_, urids_.patchValue);
    if (PadParameters::isSwitch(index)) {
        lv2_atom_forge_bool(&forge_, value != 0.0f);
    } else {
        lv2_atom_forge_float(&forge_, value);
    }
    lv2_atom_forge_pop(&forge_, &object);
    return true;
}

void Plugin::writeStateChanged() {
    constexpr std::uint32_t kBytes = sizeof(LV2_Atom_Event) + sizeof(LV2_Atom_Object_Body);
    owesStateChanged_ = changes_.byOthers(parameters_.changes()) || owesStateChanged_;
    if (!owesStateChanged_ || !hasRoomFor(kBytes)) return;
    LV2_Atom_Forge_Frame object;
    lv2_atom_forge_frame_time(&forge_, 0);
    lv2_atom_forge_object(&forge_, &object, 0, urids_.stateChanged);
    lv2_atom_forge_pop(&forge_, &object);
    owesStateChanged_ = false;
}

}  // namespace marnoth
