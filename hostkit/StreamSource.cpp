#include "hostkit/StreamSource.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "hostkit/FloatFormat.h"
#include "hostkit/MakeObject.h"

namespace marnoth {

namespace {

constexpr CLSID kStreamSourceId{0x8D41F6A2, 0x7C0B, 0x4A35, {0xB3, 0x19, 0x5E, 0x02, 0xD7, 0x84, 0x6A, 0xF0}};

/// One block is out at a time. The others stand in for blocks that a failing receiver never gave back.
constexpr LONG kBuffers = 4;
/// Bytes; what vector instructions like.
constexpr LONG kAlignment = 32;

}  // namespace

StreamSourcePin::StreamSourcePin(CBaseFilter& filter, CCritSec& lock)
    : CBaseOutputPin(filter, lock, L"Output"),
      format_(floatFormat(44100, 2)),
      allocator_(makeObject<SampleAllocator>(true)) {}

HRESULT StreamSourcePin::setBlock(std::int32_t frames) {
    if (IsConnected()) {
        if (blockBytes(frames) > std::numeric_limits<LONG>::max()) return E_OUTOFMEMORY;
        const HRESULT hr = allocator_->growBuffers(static_cast<LONG>(blockBytes(frames)));
        if (FAILED(hr)) return hr;
    }
    blockFrames_ = frames;
    return S_OK;
}

HRESULT StreamSourcePin::send(const StreamBlock& block) {
    RefPtr<IMediaSample> sample;
    const HRESULT hr = GetDeliveryBuffer(sample.put(), nullptr, nullptr, 0);
    if (FAILED(hr)) return hr;
    const HRESULT filled = fill(*sample, block);
    return FAILED(filled) ? filled : Deliver(sample.get());
}

HRESULT StreamSourcePin::fill(IMediaSample& sample, const StreamBlock& block) {
    const auto bytes = static_cast<std::size_t>(blockBytes(block.frames));
    BYTE* memory = nullptr;
    HRESULT hr = sample.SetActualDataLength(static_cast<LONG>(bytes));
    if (SUCCEEDED(hr)) hr = sample.GetPointer(&memory);
    if (FAILED(hr)) return hr;
    const std::size_t given = std::min(block.samples.size_bytes(), bytes);
    if (given > 0) std::memcpy(memory, block.samples.data(), given);
    std::memset(memory + given, 0, bytes - given);

    sample.SetSyncPoint(TRUE);
    if (block.discontinuity) {
        REFERENCE_TIME start = *block.discontinuity;
        sample.SetDiscontinuity(TRUE);
        sample.SetTime(&start, nullptr);
    }
    RefPtr<IKvxSampleSilence> silence;
    if (block.silent && SUCCEEDED(sample.QueryInterface(IID_IKvxSampleSilence, silence.putVoid()))) {
        silence->SetSilent(1);
    }
    return S_OK;
}

HRESULT StreamSourcePin::CheckMediaType(const AM_MEDIA_TYPE* type) {
    if (!type) return E_POINTER;
    const WAVEFORMATEX* format = WaveFormatOf(*type);
    return format && type->majortype == MEDIATYPE_Audio && sameAudio(*format, format_)
               ? S_OK
               : VFW_E_TYPE_NOT_ACCEPTED;
}

HRESULT StreamSourcePin::GetMediaType(int position, CMediaType* type) {
    if (position < 0) return E_INVALIDARG;
    if (position > 0) return VFW_S_NO_MORE_ITEMS;
    return type->SetWaveFormat(format_);
}

HRESULT StreamSourcePin::DecideBufferSize(IMemAllocator* allocator, ALLOCATOR_PROPERTIES* properties) {
    if (blockBytes(blockFrames_) > std::numeric_limits<LONG>::max()) return E_OUTOFMEMORY;
    *properties = {kBuffers, static_cast<LONG>(blockBytes(blockFrames_)), kAlignment, 0};
    ALLOCATOR_PROPERTIES actual{};
    return allocator->SetProperties(properties, &actual);
}

HRESULT StreamSourcePin::DecideAllocator(IMemInputPin* receiver, RefPtr<IMemAllocator>* out) {
    ALLOCATOR_PROPERTIES properties{};
    HRESULT hr = DecideBufferSize(allocator_.get(), &properties);
    if (SUCCEEDED(hr)) hr = receiver->NotifyAllocator(allocator_.get(), FALSE);
    if (SUCCEEDED(hr)) *out = RefPtr<IMemAllocator>(allocator_.get());
    return hr;
}

std::int64_t StreamSourcePin::blockBytes(std::int32_t frames) const {
    return std::int64_t{frames} * format_.nBlockAlign;
}

StreamSource::StreamSource() : CBaseFilter(nullptr, ownLock, kStreamSourceId), pin_(*this, ownLock) {}

}  // namespace marnoth
