#include "seam/Pzi.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "platform/com/RefPtr.h"
#include "platform/graph/Graph.h"

namespace marnoth {
namespace {

bool clearsItself(IMediaSample& sample) {
    RefPtr<IKvxSampleSilence> silence;
    return SUCCEEDED(sample.QueryInterface(IID_IKvxSampleSilence, silence.putVoid()));
}

float* openPiece(PinBuffer& piece) {
    PinBuffer& whole = *piece.whole;
    const bool wasSilent = whole.silent != 0;
    float* const memory = GetBufferData(whole);
    if (!memory) return nullptr;
    if (wasSilent) std::fill_n(memory, piece.wholeValues, 0.0f);
    whole.data = memory;
    piece.silent = 0;
    return memory + piece.wholeFrom;
}

}  // namespace

float* GetBufferData(PinBuffer& buffer) {
    if (buffer.whole) return openPiece(buffer);
    if (buffer.data) {
        buffer.silent = 0;
        return buffer.data;
    }
    if (buffer.source) std::exchange(buffer.source, nullptr)->bring(buffer);
    BYTE* memory = nullptr;
    if (!buffer.sample || FAILED(buffer.sample->GetPointer(&memory)) || !memory) return nullptr;
    // The clearing counts one value to the frame, whatever the channels.
    if (buffer.silent && buffer.frames > 0 && !clearsItself(*buffer.sample)) {
        std::memset(memory, 0, static_cast<std::size_t>(buffer.frames) * sizeof(float));
    }
    buffer.silent = 0;
    return reinterpret_cast<float*>(memory);
}

}  // namespace marnoth
