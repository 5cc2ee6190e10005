#include <cstring>

#include "dsp/MixKernels.h"
#include "engine/GrooveSampler.h"
#include "platform/com/RefPtr.h"
#include "platform/graph/Graph.h"
#include "platform/system/Overflow.h"
#include "seam/Limits.h"

namespace marnoth {
namespace {

void markSilent(PinBuffer& pin) {
    pin.silent = 1;
    if (!pin.sample) return;
    RefPtr<IKvxSampleSilence> silence;
    if (SUCCEEDED(pin.sample->QueryInterface(IID_IKvxSampleSilence, silence.putVoid())))
        silence->SetSilent(1);
}

std::int32_t findPin(const PinBuffer* pins, std::int32_t count, std::uint32_t id) {
    for (std::int32_t i = 0; i < count; ++i) {
        if (pins[i].pinId == id) return i;
    }
    return -1;
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

HRESULT CGrooveSampler::ProcessBlock(std::int64_t position, PinBuffer* input, PinBuffer* pins,
                                     std::int32_t pinCount, std::int64_t, NoteQueue* notes) {
    if (!input) return S_FALSE;
    const float* inputData = input->silent ? nullptr : GetBufferData(*input);
    const std::int32_t frames = input->frames;
    placeBlock(position, frames);
    const BlockContext block = describeBlock(frames, pins, pinCount);
    clearMix(block, frames);
    passInput(block, inputData, frames);

    padNoteSounded = {};
    if (notes) RenderNotes(*notes, block);
    RenderPadAuditions(block);
    RenderBinAuditions(block);
    RenderGrainAudition(block);
    for (std::int32_t i = 0; i < kPads; ++i) padSounded[i] = padAuditionSounded[i] | padNoteSounded[i];

    sumIntoMix(block, frames);
    runningPosition = plus(runningPosition, frames);
    return S_OK;
}

void CGrooveSampler::placeBlock(std::int64_t position, std::int32_t frames) {
    if (runningPosition == -1) runningPosition = position;
    // The graph's position may jump while the transport runs; music doesn't.
    blockStart = context().IsTransportRunning() ? runningPosition : position;
    const std::int64_t middle = context().SamplesToTicks(plus(position, frames / 2));
    projectKey = static_cast<std::int32_t>(context().GetKeyAtTime(middle));
    const std::int64_t ahead =
        minus(context().SamplesToTicks(blockStart), context().SamplesToTicks(position));
    positionSkew = ahead > 0 ? ahead : 0;
}

CGrooveSampler::BlockContext CGrooveSampler::describeBlock(std::int32_t frames, PinBuffer* pins,
                                                           std::int32_t pinCount) const {
    BlockContext block{};
    block.startTicks = context().SamplesToTicks(blockStart);
    block.lengthTicks = minus(context().SamplesToTicks(plus(blockStart, frames)), block.startTicks);
    for (const std::uint32_t sounded : padSounded) block.activePads += sounded != 0;
    block.pins = pins;
    block.pinCount = pinCount;
    block.mixIndex = findPin(pins, pinCount, mixPinId);
    return block;
}

std::size_t CGrooveSampler::bytesOf(std::int32_t frames) const {
    return frames > 0 ? std::size_t{inputFormat.nBlockAlign} * static_cast<std::size_t>(frames) : 0;
}

void CGrooveSampler::clearMix(const BlockContext& block, std::int32_t frames) {
    if (block.mixIndex < 0) return;
    if (float* mix = GetBufferData(block.pins[block.mixIndex])) std::memset(mix, 0, bytesOf(frames));
}

void CGrooveSampler::passInput(const BlockContext& block, const float* input, std::int32_t frames) {
    for (std::int32_t i = 0; i < block.pinCount; ++i) {
        if (!input) {
            markSilent(block.pins[i]);
        } else if (i != block.mixIndex) {
            if (float* data = GetBufferData(block.pins[i])) std::memcpy(data, input, bytesOf(frames));
        }
    }
}

void CGrooveSampler::sumIntoMix(const BlockContext& block, std::int32_t frames) {
    if (block.mixIndex < 0) return;
    float* mix = GetBufferData(block.pins[block.mixIndex]);
    for (std::int32_t i = 0; mix && i < block.pinCount; ++i) {
        if (i == block.mixIndex || block.pins[i].silent) continue;
        if (const float* data = GetBufferData(block.pins[i]))
            addBlock(mix, data, frames, inputFormat.nChannels);
    }
}

}  // namespace marnoth
