#include <algorithm>
#include <span>

#include "host/BlockBuffers.h"
#include "platform/system/Overflow.h"

namespace marnoth {

namespace {

constexpr std::int64_t kTimeUnitsPerSecond = 10000000;

/// Frames before `time` at `rate`, truncated, without the product: that may be too large for 64 bits.
std::int64_t framesAt(REFERENCE_TIME time, std::int64_t rate) {
    const std::int64_t seconds = time / kTimeUnitsPerSecond;
    const std::int64_t rest = time % kTimeUnitsPerSecond;
    return wrappingSum(wrappingProduct(seconds, rate), rest * rate / kTimeUnitsPerSecond);
}

std::optional<REFERENCE_TIME> startTimeOf(IMediaSample& sample) {
    REFERENCE_TIME start = 0;
    REFERENCE_TIME end = 0;
    const HRESULT hr = sample.GetTime(&start, &end);
    if (hr != S_OK && hr != VFW_S_NO_STOP_TIME) return std::nullopt;
    return start;
}

PinBuffer describeInput(IMediaSample& in, std::int32_t frames) {
    PinBuffer input;
    input.frames = frames;
    input.sample = &in;
    if (const auto silence = silenceOf(in)) {
        input.silent = silence->GetSilent();
        silence->SetSilent(input.silent);
    }
    return input;
}

/// What stayed silent and can't say so is cleared as whoever asks for the audio of a silent pin finds it.
void clearUnmarkedSilence(std::span<PinBuffer> buffers) {
    for (PinBuffer& buffer : buffers)
        if (buffer.silent && buffer.sample && !silenceOf(*buffer.sample)) GetBufferData(buffer);
}

}  // namespace

HRESULT CFilter::Receive(IMediaSample* in) {
    if (!in) return E_POINTER;
    const CAutoLock stream(m_streamLock);
    BlockScope scope(*this);
    BlockBuffers& block = scope.block;
    SampleFlags flags;
    PinBuffer input;
    input.sample = in;
    if (const HRESULT hr = beginBlock(block, input, flags); FAILED(hr)) return hr;
    LateBuffers late(*this, block, flags);
    HRESULT hr = S_OK;
    if (block.sparse) {
        late.describe(input);
    } else {
        hr = prepareBuffers(block, flags);
    }
    if (SUCCEEDED(hr)) hr = renderReceived(block, input);
    if (block.rendered) deliverBlock(block);
    return SUCCEEDED(hr) && FAILED(late.result()) ? late.result() : hr;
}

/// What the sample says of the block, where that stands in the stream, and to whom it goes.
HRESULT CFilter::beginBlock(BlockBuffers& block, PinBuffer& input, SampleFlags& flags) {
    const CAutoLock lock(pzi());
    if (inputFormat.nBlockAlign == 0) return VFW_E_NOT_CONNECTED;
    IMediaSample& in = *input.sample;
    flags.sync = in.IsSyncPoint() == S_OK;
    flags.discontinuity = in.IsDiscontinuity() == S_OK;
    flags.preroll = in.IsPreroll() == S_OK;
    if (flags.discontinuity) flags.time = startTimeOf(in);
    if (flags.time) m_streamPosition = framesAt(*flags.time, inputFormat.nSamplesPerSec);
    input = describeInput(in, std::max<LONG>(in.GetActualDataLength(), 0) / inputFormat.nBlockAlign);
    takeOutlets(block);
    return S_OK;
}

/// A failure of the render itself costs the block and is no failure here.
HRESULT CFilter::renderReceived(BlockBuffers& block, PinBuffer& input) {
    const CAutoLock lock(pzi());
    // While buffers were waited for, the graph may have been stopped and connected in other formats.
    if (!isAsItCame(block)) return VFW_E_WRONG_STATE;
    const LONG bytes = input.sample->GetActualDataLength();
    if (const HRESULT hr = fitBuffers(block, input.frames, bytes); FAILED(hr)) return hr;
    return IsSteady() ? renderPieces(block, input) : renderWhole(block, input);
}

HRESULT CFilter::renderWhole(BlockBuffers& block, PinBuffer& input) {
    if (const HRESULT hr = DrainEvents(position(), input.frames); FAILED(hr)) return hr;
    block.rendered = processBlock(block, &input);
    advance(input.frames);
    return RetireEvents(position(), 0);
}

/// Each piece begins with the events of its first frame and ends where the next one comes.
HRESULT CFilter::renderPieces(BlockBuffers& block, PinBuffer& input) {
    if (!input.silent) input.data = GetBufferData(input);
    for (std::int64_t from = 0, to = 0; from < input.frames; from = to) {
        if (const HRESULT hr = DrainEvents(position(), 1); FAILED(hr)) return hr;
        const std::int64_t next = nextEventTime(position() + 1, position() + (input.frames - from));
        to = from + std::clamp<std::int64_t>(next - position(), 1, input.frames - from);
        PinBuffer piece = pieceOf(input, from, to);
        piece.data = input.silent ? nullptr : input.data + piece.wholeFrom;
        piece.silent = input.silent;
        block.pieces.clear();
        for (PinBuffer& buffer : block.buffers) block.pieces.push_back(pieceOf(buffer, from, to));
        ProcessBlock(m_streamPosition, &piece, block.pieces.data(),
                     static_cast<std::int32_t>(block.pieces.size()), position(), &eventQueue());
        advance(piece.frames);
        if (const HRESULT hr = RetireEvents(position(), 0); FAILED(hr)) return hr;
    }
    clearUnmarkedSilence(block.buffers);
    block.rendered = S_OK;
    return S_OK;
}

PinBuffer CFilter::pieceOf(PinBuffer& whole, std::int64_t from, std::int64_t to) const {
    PinBuffer piece;
    piece.frames = static_cast<std::int32_t>(to - from);
    piece.pinId = whole.pinId;
    piece.silent = 1;
    piece.whole = &whole;
    piece.wholeFrom = from * inputFormat.nChannels;
    piece.wholeValues = std::int64_t{whole.frames} * inputFormat.nChannels;
    return piece;
}

HRESULT CFilter::processBlock(BlockBuffers& block, PinBuffer* input) {
    const HRESULT rendered =
        ProcessBlock(m_streamPosition, input, block.buffers.data(),
                     static_cast<std::int32_t>(block.buffers.size()), position(), &eventQueue());
    if (rendered == S_OK) clearUnmarkedSilence(block.buffers);
    return rendered;
}

/// Without the instrument's lock: a renderer may keep a block for as long as the graph is paused.
void CFilter::deliverBlock(BlockBuffers& block) {
    for (std::size_t i = 0; i < block.buffers.size(); ++i) {
        if (*block.rendered == S_OK && block.buffers[i].sample) deliverBuffer(block, i);
        if (*block.rendered == S_FALSE) block.outlets[i].to->endOfStream();
        releaseSample(block.buffers[i]);
    }
}

HRESULT CFilter::deliverBuffer(const BlockBuffers& block, std::size_t index) {
    const PinBuffer& buffer = block.buffers[index];
    const HRESULT hr = buffer.sample->SetActualDataLength(block.output.nBlockAlign * buffer.frames);
    return FAILED(hr) ? hr : block.outlets[index].to->deliver(buffer.sample);
}

HRESULT CFilter::EndOfStream() {
    const CAutoLock stream(m_streamLock);
    BlockScope scope(*this);
    BlockBuffers& block = scope.block;
    takeOutlets(block);
    HRESULT hr = prepareBuffers(block, {});
    if (SUCCEEDED(hr) && block.buffers.empty()) return S_OK;
    const std::int32_t frames = block.buffers.empty() ? 0 : block.buffers.front().frames;
    for (PinBuffer& buffer : block.buffers) {
        if (buffer.frames > frames && SUCCEEDED(hr)) hr = E_FAIL;
        buffer.frames = frames;
    }
    if (SUCCEEDED(hr)) hr = drainRest(frames);
    if (SUCCEEDED(hr)) return renderRest(block, frames);
    for (PinBuffer& buffer : block.buffers) releaseSample(buffer);
    return hr;
}

HRESULT CFilter::drainRest(std::int32_t frames) {
    const CAutoLock lock(pzi());
    return DrainEvents(position(), frames);
}

/// Blocks without input, over and over in the same samples, until the engine has nothing more.
HRESULT CFilter::renderRest(BlockBuffers& block, std::int32_t frames) {
    for (;;) {
        HRESULT rendered;
        {
            const CAutoLock lock(pzi());
            rendered = isAsItCame(block) ? processBlock(block, nullptr) : VFW_E_WRONG_STATE;
        }
        const HRESULT delivered = deliverRest(block, rendered);
        if (rendered != S_OK || FAILED(delivered)) {
            const HRESULT ended = endAllStreams(block);
            if (FAILED(rendered)) return rendered;
            return FAILED(delivered) ? delivered : ended;
        }
        const CAutoLock lock(pzi());
        advance(frames);
        RetireEvents(position(), 0);
        DrainEvents(position(), frames);
    }
}

/// The result of the last delivery. Ends of the stream don't count.
HRESULT CFilter::deliverRest(BlockBuffers& block, HRESULT rendered) {
    HRESULT last = S_OK;
    for (std::size_t i = 0; i < block.buffers.size(); ++i) {
        if (rendered == S_OK) last = deliverBuffer(block, i);
        if (rendered == S_FALSE) block.outlets[i].to->endOfStream();
    }
    return last;
}

HRESULT CFilter::endAllStreams(BlockBuffers& block) {
    HRESULT last = S_OK;
    for (std::size_t i = 0; i < block.buffers.size(); ++i) {
        last = block.outlets[i].to->endOfStream();
        releaseSample(block.buffers[i]);
    }
    return last;
}

void CFilter::advance(std::int32_t frames) {
    m_streamPosition = wrappingSum(m_streamPosition, frames);
    advancePosition(frames);
}

void CFilter::releaseAbandonedSamples() {
    m_abandonedSamples.clear();
}

}  // namespace marnoth
