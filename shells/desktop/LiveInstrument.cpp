#include "shells/desktop/LiveInstrument.h"

#include <array>
#include <numeric>

#include "host/CreateInstance.h"
#include "hostkit/MakeObject.h"
#include "hostkit/MemoryStream.h"

namespace marnoth {

namespace {

constexpr std::array<int, kOutputPins> allOutputs() {
    std::array<int, kOutputPins> outputs{};
    std::iota(outputs.begin(), outputs.end(), 0);
    return outputs;
}

}  // namespace

LiveInstrument::LiveInstrument() : host_(createInstrument) {}

bool LiveInstrument::prepare(std::uint32_t rate, std::int32_t mostFrames) {
    static constexpr auto kAll = allOutputs();
    const bool isOtherRate = rate_ != 0 && rate_ != rate;
    const RefPtr<MemoryStream> project = makeObject<MemoryStream>();
    if (isOtherRate && FAILED(host_.save(*project))) return false;
    if (FAILED(host_.connect({rate, mostFrames, kAll}))) return false;
    rate_ = rate;
    if (!isOtherRate) return true;
    project->Seek({}, STREAM_SEEK_SET, nullptr);
    return SUCCEEDED(host_.load(*project));
}

void LiveInstrument::midi(std::int32_t frame, std::uint8_t status, std::uint8_t data1, std::uint8_t data2) {
    host_.addMessage(frame, status, data1, data2);
}

void LiveInstrument::render(std::int32_t frames, OutputPointers outputs) {
    host_.process(frames, outputs);
}

}  // namespace marnoth
