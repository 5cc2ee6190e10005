#include "host/BlockBuffers.h"

#include <cstring>
#include <new>
#include <utility>

namespace marnoth {

namespace {

/// What lay in a buffer before isn't for anybody's ears: what can't be marked as silent has to be it.
void clear(IMediaSample& sample) {
    BYTE* memory = nullptr;
    const LONG bytes = sample.GetSize();
    if (SUCCEEDED(sample.GetPointer(&memory)) && memory && bytes > 0)
        std::memset(memory, 0, static_cast<std::size_t>(bytes));
}

}  // namespace

RefPtr<IKvxSampleSilence> silenceOf(IMediaSample& sample) {
    RefPtr<IKvxSampleSilence> silence;
    if (FAILED(sample.QueryInterface(IID_IKvxSampleSilence, silence.putVoid()))) return nullptr;
    return silence;
}

void releaseSample(PinBuffer& buffer) {
    RefPtr<IMediaSample>::adopt(std::exchange(buffer.sample, nullptr)).reset();
}

CFilter::BlockScope::BlockScope(CFilter& filter) : filter_(filter) {
    const CAutoLock lock(filter.pzi());
    block = std::move(filter.m_spareBuffers);
}

CFilter::BlockScope::~BlockScope() {
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

/// Whoever gave the buffers of a block that failed, or whose render raised an exception, doesn't get them
/// back yet.
void CFilter::BlockScope::keepSamples() {
    const CAutoLock lock(filter_.pzi());
    for (PinBuffer& buffer : block.buffers)
        if (buffer.sample) keep(RefPtr<IMediaSample>::adopt(std::exchange(buffer.sample, nullptr)));
}

/// One for which there is no room goes back.
void CFilter::BlockScope::keep(RefPtr<IMediaSample> sample) try {
    filter_.m_abandonedSamples.push_back(std::move(sample));
} catch (const std::bad_alloc&) {
}

void CFilter::LateBuffers::describe(const PinBuffer& input) {
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

void CFilter::LateBuffers::bring(PinBuffer& buffer) {
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

}  // namespace marnoth
