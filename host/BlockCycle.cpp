#include <algorithm>
#include <utility>

#include "host/Filter.h"
#include "platform/system/Overflow.h"

namespace marnoth {

namespace {

constexpr std::int64_t kTimeUnitsPerSecond = 10000000;

RefPtr<IKvxSampleSilence> silenceOf(IMediaSample& sample) {
    RefPtr<IKvxSampleSilence> silence;
    if (FAILED(sample.QueryInterface(IID_IKvxSampleSilence, silence.putVoid()))) return nullptr;
    return silence;
}

/// Frames before `time` at `rate`, truncated, without the product: that may be too large for 64 bits.
std::int64_t framesAt(REFERENCE_TIME time, std::int64_t rate) {
    const std::int64_t seconds = time / kTimeUnitsPerSecond;
    const std::int64_t rest = time % kTimeUnitsPerSecond;
    return wrappingSum(wrappingProduct(seconds, rate), rest * rate / kTimeUnitsPerSecond);
}

/// The first start time in the sample's own time, if it has any.
bool startTimeOf(IMediaSample& sample, REFERENCE_TIME& start) {
    REFERENCE_TIME end = 0;
    const HRESULT hr = sample.GetTime(&start, &end);
    return hr == S_OK || hr == VFW_S_NO_STOP_TIME;
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

void releaseSample(PinBuffer& buffer) {
    RefPtr<IMediaSample>::adopt(std::exchange(buffer.sample, nullptr)).reset();
}

}  // namespace

/// What the samples of a block carry down besides audio.
struct CFilter::SampleFlags {
    bool sync = false;
    bool discontinuity = false;
    bool preroll = false;
    REFERENCE_TIME* time = nullptr;  ///< null: none is stamped
};

/// The storage for a block's descriptors, taken from the filter for a scope. A pin that comes or goes while
/// the block is under way doesn't touch it.
class CFilter::BlockScope {
public:
    explicit BlockScope(CFilter& filter) : block(std::move(filter.m_spareBuffers)), filter_(filter) {}
    ~BlockScope() {
        block.buffers.clear();
        block.pins.clear();
        block.pieces.clear();
        BlockBuffers& spare = filter_.m_spareBuffers;
        if (spare.buffers.capacity() < block.buffers.capacity()) spare = std::move(block);
    }
    BlockScope(const BlockScope&) = delete;
    BlockScope& operator=(const BlockScope&) = delete;

    BlockBuffers block;

private:
    CFilter& filter_;
};

HRESULT CFilter::Receive(IMediaSample* in) {
    if (!in) return E_POINTER;
    CAutoLock lock(pzi());
    if (inputFormat.nBlockAlign == 0) return VFW_E_NOT_CONNECTED;
    SampleFlags flags{in->IsSyncPoint() == S_OK, in->IsDiscontinuity() == S_OK, in->IsPreroll() == S_OK};
    REFERENCE_TIME start = 0;
    if (flags.discontinuity && startTimeOf(*in, start)) {
        m_streamPosition = framesAt(start, inputFormat.nSamplesPerSec);
        flags.time = &start;
    }
    const std::int32_t frames = std::max<LONG>(in->GetActualDataLength(), 0) / inputFormat.nBlockAlign;
    PinBuffer input = describeInput(*in, frames);
    BlockScope scope(*this);
    const HRESULT hr = renderReceived(scope.block, input, flags);
    // Whoever gave the buffers of a failed block doesn't get them back yet.
    if (FAILED(hr)) abandonSamples(scope.block);
    return hr;
}

/// A failure of the render itself costs the block and is no failure here.
HRESULT CFilter::renderReceived(BlockBuffers& block, PinBuffer& input, const SampleFlags& flags) {
    if (const HRESULT hr = prepareBuffers(block, flags); FAILED(hr)) return hr;
    const LONG bytes = input.sample->GetActualDataLength();
    if (const HRESULT hr = fitBuffers(block, input.frames, bytes); FAILED(hr)) return hr;
    return IsSteady() ? renderPieces(block, input) : renderWhole(block, input);
}

HRESULT CFilter::renderWhole(BlockBuffers& block, PinBuffer& input) {
    if (const HRESULT hr = DrainEvents(position(), input.frames); FAILED(hr)) return hr;
    const HRESULT rendered =
        ProcessBlock(m_streamPosition, &input, block.buffers.data(),
                     static_cast<std::int32_t>(block.buffers.size()), position(), &eventQueue());
    deliverBlock(block, rendered);
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
    deliverBlock(block, S_OK);
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

HRESULT CFilter::prepareBuffers(BlockBuffers& block, const SampleFlags& flags) {
    for (const auto& pin : m_outputPins) {
        if (!pin->IsConnected()) continue;
        PinBuffer buffer;
        const HRESULT hr = prepareBuffer(pin.get(), &buffer, flags);
        if (FAILED(hr)) return hr;
        block.buffers.push_back(buffer);
        block.pins.push_back(pin);
    }
    return S_OK;
}

HRESULT CFilter::prepareBuffer(CFilterOutputPin* pin, PinBuffer* buffer, const SampleFlags& flags) {
    if (!pin || !buffer) return E_POINTER;
    if (!pin->IsConnected() || outputFormat.nBlockAlign == 0) return E_UNEXPECTED;
    RefPtr<IMediaSample> sample;
    const HRESULT hr = pin->GetDeliveryBuffer(sample.put(), nullptr, nullptr, 0);
    if (FAILED(hr)) return hr;
    if (!sample) return E_UNEXPECTED;
    sample->SetTime(flags.time, nullptr);
    sample->SetSyncPoint(flags.sync);
    sample->SetDiscontinuity(flags.discontinuity);
    sample->SetPreroll(flags.preroll);
    buffer->frames = sample->GetSize() / outputFormat.nBlockAlign;
    buffer->pinId = pin->id();
    buffer->silent = 1;
    if (const auto silence = silenceOf(*sample)) silence->SetSilent(1);
    buffer->sample = sample.detach();
    return S_OK;
}

/// Makes every buffer one of `frames` frames; `bytes` is the length of the input, fraction of a frame and
/// all. The engine renders in the channels of the input, so the buffer has to hold those too.
HRESULT CFilter::fitBuffers(BlockBuffers& block, std::int32_t frames, LONG bytes) {
    const std::int64_t renderedBytes = std::int64_t{frames} * inputFormat.nBlockAlign;
    for (PinBuffer& buffer : block.buffers) {
        if (buffer.frames < frames || buffer.sample->GetSize() < renderedBytes) return E_FAIL;
        buffer.frames = frames;
        buffer.sample->SetActualDataLength(bytes);
    }
    return S_OK;
}

void CFilter::deliverBlock(BlockBuffers& block, HRESULT rendered) {
    for (std::size_t i = 0; i < block.buffers.size(); ++i) {
        if (rendered == S_OK) deliverBuffer(*block.pins[i], block.buffers[i]);
        if (rendered == S_FALSE) block.pins[i]->DeliverEndOfStream();
        releaseSample(block.buffers[i]);
    }
}

HRESULT CFilter::deliverBuffer(CFilterOutputPin& pin, PinBuffer& buffer) {
    // What can't be marked as silence has to be silent.
    if (buffer.silent && !silenceOf(*buffer.sample)) GetBufferData(buffer);
    const HRESULT hr = buffer.sample->SetActualDataLength(outputFormat.nBlockAlign * buffer.frames);
    return FAILED(hr) ? hr : pin.Deliver(buffer.sample);
}

HRESULT CFilter::EndOfStream() {
    CAutoLock lock(pzi());
    BlockScope scope(*this);
    BlockBuffers& block = scope.block;
    HRESULT hr = prepareBuffers(block, {});
    if (SUCCEEDED(hr) && block.buffers.empty()) return S_OK;
    const std::int32_t frames = block.buffers.empty() ? 0 : block.buffers.front().frames;
    for (PinBuffer& buffer : block.buffers) {
        if (buffer.frames > frames && SUCCEEDED(hr)) hr = E_FAIL;
        buffer.frames = frames;
    }
    if (SUCCEEDED(hr)) hr = DrainEvents(position(), frames);
    if (SUCCEEDED(hr)) return renderRest(block, frames);
    for (PinBuffer& buffer : block.buffers) releaseSample(buffer);
    return hr;
}

/// Blocks without input, over and over in the same samples, until the engine has nothing more.
HRESULT CFilter::renderRest(BlockBuffers& block, std::int32_t frames) {
    for (;;) {
        const HRESULT rendered =
            ProcessBlock(m_streamPosition, nullptr, block.buffers.data(),
                         static_cast<std::int32_t>(block.buffers.size()), position(), &eventQueue());
        const HRESULT delivered = deliverRest(block, rendered);
        if (rendered != S_OK || FAILED(delivered)) {
            const HRESULT ended = endAllStreams(block);
            if (FAILED(rendered)) return rendered;
            return FAILED(delivered) ? delivered : ended;
        }
        advance(frames);
        RetireEvents(position(), 0);
        DrainEvents(position(), frames);
    }
}

/// The result of the last delivery. Ends of the stream don't count.
HRESULT CFilter::deliverRest(BlockBuffers& block, HRESULT rendered) {
    HRESULT last = S_OK;
    for (std::size_t i = 0; i < block.buffers.size(); ++i) {
        if (rendered == S_OK) last = deliverBuffer(*block.pins[i], block.buffers[i]);
        if (rendered == S_FALSE) block.pins[i]->DeliverEndOfStream();
    }
    return last;
}

HRESULT CFilter::endAllStreams(BlockBuffers& block) {
    HRESULT last = S_OK;
    for (std::size_t i = 0; i < block.buffers.size(); ++i) {
        last = block.pins[i]->DeliverEndOfStream();
        releaseSample(block.buffers[i]);
    }
    return last;
}

void CFilter::advance(std::int32_t frames) {
    m_streamPosition = wrappingSum(m_streamPosition, frames);
    advancePosition(frames);
}

void CFilter::abandonSamples(BlockBuffers& block) {
    for (PinBuffer& buffer : block.buffers)
        m_abandonedSamples.push_back(RefPtr<IMediaSample>::adopt(std::exchange(buffer.sample, nullptr)));
}

void CFilter::releaseAbandonedSamples() {
    m_abandonedSamples.clear();
}

}  // namespace marnoth
