#include "shells/lv2/PadParameters.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>

#include "shells/lv2/Names.h"

namespace marnoth {

namespace {

constexpr float kSoftestDecibels = -75.0f;
constexpr float kLoudestDecibels = 6.0f;
constexpr std::uint8_t kLevelController = 7;
constexpr std::uint8_t kPanController = 10;
constexpr std::int32_t kAnyChannel = -1;

PadParameter kindOf(std::size_t index) {
    return static_cast<PadParameter>(index % kPadParameters);
}

std::int32_t padOf(std::size_t index) {
    return static_cast<std::int32_t>(index / kPadParameters);
}

float decibelsOf(float volume) {
    return volume > 0.0f ? std::clamp(20.0f * std::log10(volume), kSoftestDecibels, kLoudestDecibels)
                         : kSoftestDecibels;
}

float volumeOf(float decibels) {
    return decibels > kSoftestDecibels ? std::pow(10.0f, decibels / 20.0f) : 0.0f;
}

float heldToRange(PadParameter kind, double value) {
    if (kind == PadParameter::level)
        return static_cast<float>(std::clamp<double>(value, kSoftestDecibels, kLoudestDecibels));
    if (kind == PadParameter::pan) return static_cast<float>(std::clamp(value, -1.0, 1.0));
    return value > 0.0 ? 1.0f : 0.0f;
}

}  // namespace

PadParameters::PadParameters(IGrooveSampler& sampler, const LV2_URID_Map& map) : sampler_(sampler) {
    sampler.QueryInterface(IID_IMarnothOptions, options_.putVoid());
    for (std::size_t index = 0; index < kCount; ++index) {
        const std::string uri = kPadUri + std::to_string(padOf(index) + 1) + ":" +
                                kPadParameterNames[static_cast<std::size_t>(kindOf(index))];
        properties_[index] = map.map(map.handle, uri.c_str());
    }
}

std::optional<std::size_t> PadParameters::find(LV2_URID property) const {
    const auto found = std::find(properties_.begin(), properties_.end(), property);
    if (property == 0 || found == properties_.end()) return {};
    return static_cast<std::size_t>(found - properties_.begin());
}

bool PadParameters::isSwitch(std::size_t index) {
    return kindOf(index) == PadParameter::mute || kindOf(index) == PadParameter::solo;
}

void PadParameters::set(std::size_t index, double value) {
    if (std::isnan(value)) return;
    const Setting present{heldToRange(kindOf(index), value), read(index)};
    if (present.wanted != present.read && present != set_[index]) write(index, present.wanted);
    set_[index] = {present.wanted, read(index)};
    told_[index] = set_[index].read;
}

bool PadParameters::isController(std::uint8_t number) {
    return number == kLevelController || number == kPanController;
}

void PadParameters::setByController(std::uint8_t channel, std::uint8_t number, std::uint8_t value) {
    // As General MIDI recommends: 40 times the logarithm in decibels, and a pan whose middle is 64.
    const float level = static_cast<float>(value & 127) / 127.0f;
    const float pan = std::max(0.0f, static_cast<float>(value & 127) - 1.0f) / 126.0f;
    for (std::int32_t pad = 0; pad < kPads; ++pad) {
        std::int32_t answered = kAnyChannel;
        sampler_.GetPadChannel(pad, &answered);
        if (answered != kAnyChannel && answered != channel) continue;
        ++changes_;
        if (number == kLevelController) sampler_.SetPadVolume(pad, level * level);
        if (number == kPanController) sampler_.SetPadPan(pad, pan);
    }
}

void PadParameters::tellAll() {
    told_.fill(std::numeric_limits<float>::quiet_NaN());
    askAgain();
}

void PadParameters::tellAgain(std::size_t index) {
    told_[index] = std::numeric_limits<float>::quiet_NaN();
    askAgain();
}

bool PadParameters::look() {
    std::uint64_t changes = 0;
    if (!options_ || FAILED(options_->GetChanges(&changes)) || seen_ == changes) return false;
    seen_ = changes;
    return true;
}

float PadParameters::read(std::size_t index) const {
    float real = 0.0f;
    std::uint32_t on = 0;
    switch (kindOf(index)) {
        case PadParameter::level:
            sampler_.GetPadVolume(padOf(index), &real);
            return decibelsOf(real);
        case PadParameter::pan:
            sampler_.GetPadPan(padOf(index), &real);
            return 2.0f * real - 1.0f;
        case PadParameter::mute:
            sampler_.GetPadMute(padOf(index), &on);
            break;
        case PadParameter::solo:
            sampler_.GetPadSolo(padOf(index), &on);
            break;
    }
    return on != 0 ? 1.0f : 0.0f;
}

void PadParameters::write(std::size_t index, float value) {
    ++changes_;
    switch (kindOf(index)) {
        case PadParameter::level:
            sampler_.SetPadVolume(padOf(index), volumeOf(value));
            break;
        case PadParameter::pan:
            sampler_.SetPadPan(padOf(index), (value + 1.0f) / 2.0f);
            break;
        case PadParameter::mute:
            sampler_.SetPadMute(padOf(index), value != 0.0f);
            break;
        case PadParameter::solo:
            sampler_.SetPadSolo(padOf(index), value != 0.0f);
            break;
    }
}

}  // namespace marnoth
