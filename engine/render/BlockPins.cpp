#include "engine/render/BlockPins.h"

#include <algorithm>
#include <cstring>

#include "dsp/MixKernels.h"
#include "platform/com/RefPtr.h"
#include "platform/graph/Graph.h"

namespace marnoth {
namespace {

void markSilent(PinBuffer& pin) {
    pin.silent = 1;
    if (!pin.sample) return;
    RefPtr<IKvxSampleSilence> silence;
    if (SUCCEEDED(pin.sample->QueryInterface(IID_IKvxSampleSilence, silence.putVoid())))
        silence->SetSilent(1);
}

PinBuffer* findPin(std::span<PinBuffer> pins, std::uint32_t id) {
    const auto found =
        std::find_if(pins.begin(), pins.end(), [id](const PinBuffer& pin) { return pin.pinId == id; });
    return found != pins.end() ? &*found : nullptr;
}

void addBlock(float* dest, const float* source, std::int32_t frames, std::uint32_t channels) {
    MixArgs args;
    args.dest = dest;
    args.src = source;
    args.count = frames;
    args.gainL = args.gainR = 1;
    args.sampleBytes = sizeof(float);
    GetMixKernel(32, channels, channels, 0, 0, 0)(&args);
}

}  // namespace

BlockPins::BlockPins(std::span<PinBuffer> pins, const PinIds& ids, const WAVEFORMATEX& format)
    : pins_(pins), ids_(ids), format_(format), mix_(findPin(pins, ids.mix)) {}

std::size_t BlockPins::bytesOf(std::int32_t frames) const {
    return frames > 0 ? std::size_t{format_.nBlockAlign} * static_cast<std::size_t>(frames) : 0;
}

void BlockPins::clearMix(std::int32_t frames) {
    if (!mix_) return;
    if (float* mix = GetBufferData(*mix_)) std::memset(mix, 0, bytesOf(frames));
}

void BlockPins::passInput(const float* input, std::int32_t frames) {
    for (PinBuffer& pin : pins_) {
        if (!input) {
            markSilent(pin);
        } else if (&pin != mix_) {
            if (float* data = GetBufferData(pin)) std::memcpy(data, input, bytesOf(frames));
        }
    }
}

PinBuffer* BlockPins::choose(std::uint32_t output) {
    const std::uint32_t channel = output - 1;
    if (channel >= ids_.channels.size() || ids_.channels[channel] == kNoPin) return mix_;
    PinBuffer* const own = findPin(pins_, ids_.channels[channel]);
    return own ? own : mix_;
}

void BlockPins::sumIntoMix(std::int32_t frames) {
    float* const mix = mix_ ? GetBufferData(*mix_) : nullptr;
    if (!mix) return;
    for (PinBuffer& pin : pins_) {
        if (&pin == mix_ || pin.silent) continue;
        if (const float* data = GetBufferData(pin)) addBlock(mix, data, frames, format_.nChannels);
    }
}

}  // namespace marnoth
