#include <algorithm>
#include <cstring>
#include <new>
#include <span>
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

/// What lay in a buffer before isn't for anybody's ears: what can't be marked as silent has to be it.
void clear(IMediaSample& sample) {
    BYTE* memory = nullptr;
    const LONG bytes = sample.GetSize();
    if (SUCCEEDED(sample.GetPointer(&memory)) && memory && bytes > 0)
        std::memset(memory, 0, static_cast<std::size_t>(bytes));
}

/// What stayed silent and can't say so is cleared as whoever asks for the audio of a silent pin finds it.
void clearUnmarkedSilence(std::span<PinBuffer> buffers) {
    for (PinBuffer& buffer : buffers)
        if (buffer.silent && buffer.sample && !silenceOf(*buffer.sample)) GetBufferData(buffer);
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
    std::optional<REFERENCE_TIME> time;  ///< of the first frame, where it is stamped
};

/// The storage for a block's descriptors, taken from the filter for a scope. A pin that comes or goes while
/// the block is under way doesn't touch it.
class CFilter::BlockScope {
public:
    explicit BlockScope(CFilter& filter) : filter_(filter) {
        const CAutoLock lock(filter.pzi());
        block = std::move(filter.m_spareBuffers);
    }
    ~BlockScope() {
        keepSamples();
        // The last holder of what is downstream may be here, and who it is may call anyone as it goes.
        block.buffers.clear();
        block.outlets.clear();
        block.pieces.clear();
        block.rendered.reset();
        const CAutoLock lock(filter_.pzi());
        BlockBuffers& spare = filter_.m_spareBuffers;
        if (spare.buffers.capacity() < block.buffers.capacity()) spare = std::move(block);
    }
    BlockScope(const BlockScope&) = delete;
    BlockScope& operator=(const BlockScope&) = delete;

    BlockBuffers block;

private:
    /// Whoever gave the buffers of a block that failed, or whose render raised an exception, doesn't get them
    /// back yet.
    void keepSamples() {
        const CAutoLock lock(filter_.pzi());
        for (PinBuffer& buffer : block.buffers)
            if (buffer.sample) keep(RefPtr<IMediaSample>::adopt(std::exchange(buffer.sample, nullptr)));
    }

    /// One for which there is no room goes back.
    void keep(RefPtr<IMediaSample> sample) try {
        filter_.m_abandonedSamples.push_back(std::move(sample));
    } catch (const std::bad_alloc&) {
    }

    CFilter& filter_;
};

/// Brings the buffers of a block one by one, as the engine opens them.
class CFilter::LateBuffers final : public BufferSource {
public:
    LateBuffers(CFilter& filter, BlockBuffers& block, const SampleFlags& flags)
        : filter_(filter), block_(block), flags_(flags) {}

    /// Makes a descriptor for every outlet, for a block as long as `input`.
    void describe(const PinBuffer& input) {
        bytes_ = input.sample->GetActualDataLength();
        for (const Outlet& outlet : block_.outlets) {
            PinBuffer buffer;
            buffer.frames = input.frames;
            buffer.pinId = outlet.pinId;
            buffer.silent = 1;
            buffer.source = this;
            block_.buffers.push_back(buffer);
        }
    }
    void bring(PinBuffer& buffer) override {
        const Outlet& outlet = block_.outlets[static_cast<std::size_t>(&buffer - block_.buffers.data())];
        PinBuffer brought;
        HRESULT hr = filter_.prepareBuffer(outlet, block_.output, &brought, flags_);
        if (SUCCEEDED(hr)) hr = filter_.fitBuffer(brought, buffer.frames, bytes_);
        if (FAILED(hr)) {
            failure_ = hr;
            releaseSample(brought);
        }
        buffer.sample = brought.sample;
    }
    /// `S_OK`, or why a buffer didn't come.
    HRESULT result() const { return failure_; }

private:
    CFilter& filter_;
    BlockBuffers& block_;
    const SampleFlags& flags_;
    LONG bytes_ = 0;
    HRESULT failure_ = S_OK;
};

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

/// The connected output pin at `index` or the next behind it, whose index `index` then is; none behind the
/// last.
std::optional<CFilter::Outlet> CFilter::connectedOutlet(std::size_t& index) {
    const CAutoLock lock(pzi());
    for (; index < m_outputPins.size(); ++index)
        if (const auto& pin = m_outputPins[index]; pin->IsConnected())
            return Outlet{pin->id(), pin->GetDownstream()};
    return std::nullopt;
}

void CFilter::takeOutlets(BlockBuffers& block) {
    const CAutoLock lock(pzi());
    for (const auto& pin : m_outputPins)
        if (auto to = pin->GetDownstream()) block.outlets.push_back({pin->id(), std::move(to)});
    block.input = inputFormat;
    block.output = outputFormat;
    block.sparse = IsSparse();
}

bool CFilter::isAsItCame(const BlockBuffers& block) const {
    return std::memcmp(&block.input, &inputFormat, sizeof inputFormat) == 0 &&
           std::memcmp(&block.output, &outputFormat, sizeof outputFormat) == 0;
}

/// Buffers may be waited for as long as whoever is downstream keeps them: without the instrument's lock.
HRESULT CFilter::prepareBuffers(BlockBuffers& block, const SampleFlags& flags) {
    for (const Outlet& outlet : block.outlets) {
        PinBuffer buffer;
        const HRESULT hr = prepareBuffer(outlet, block.output, &buffer, flags);
        if (FAILED(hr)) return hr;
        block.buffers.push_back(buffer);
    }
    return S_OK;
}

HRESULT CFilter::prepareBuffer(const Outlet& outlet, const WAVEFORMATEX& format, PinBuffer* buffer,
                               const SampleFlags& flags) {
    if (format.nBlockAlign == 0) return E_UNEXPECTED;
    RefPtr<IMediaSample> sample;
    const HRESULT hr = outlet.to->getBuffer(sample.put(), nullptr, nullptr, 0);
    if (FAILED(hr)) return hr;
    if (!sample) return E_UNEXPECTED;
    REFERENCE_TIME time = flags.time.value_or(0);
    sample->SetTime(flags.time ? &time : nullptr, nullptr);
    sample->SetSyncPoint(flags.sync);
    sample->SetDiscontinuity(flags.discontinuity);
    sample->SetPreroll(flags.preroll);
    buffer->frames = sample->GetSize() / format.nBlockAlign;
    buffer->pinId = outlet.pinId;
    buffer->silent = 1;
    if (const auto silence = silenceOf(*sample)) {
        silence->SetSilent(1);
    } else {
        clear(*sample);
    }
    buffer->sample = sample.detach();
    return S_OK;
}

HRESULT CFilter::fitBuffers(BlockBuffers& block, std::int32_t frames, LONG bytes) {
    for (PinBuffer& buffer : block.buffers) {
        if (!buffer.sample) continue;
        if (const HRESULT hr = fitBuffer(buffer, frames, bytes); FAILED(hr)) return hr;
    }
    return S_OK;
}

/// Makes a buffer one of `frames` frames; `bytes` is the length of the input, fraction of a frame and all.
/// The engine renders in the channels of the input, so the buffer has to hold those too.
HRESULT CFilter::fitBuffer(PinBuffer& buffer, std::int32_t frames, LONG bytes) const {
    const std::int64_t renderedBytes = std::int64_t{frames} * inputFormat.nBlockAlign;
    if (buffer.frames < frames || buffer.sample->GetSize() < renderedBytes) return E_FAIL;
    buffer.frames = frames;
    buffer.sample->SetActualDataLength(bytes);
    return S_OK;
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
