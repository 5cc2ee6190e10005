#include "hostkit/StreamSink.h"

#include <new>

#include "hostkit/MakeObject.h"

namespace marnoth {

namespace {

constexpr CLSID kStreamSinkId{0x8D41F6A3, 0x7C0B, 0x4A35, {0xB3, 0x19, 0x5E, 0x02, 0xD7, 0x84, 0x6A, 0xF0}};

/// The flag of `IAMFilterMiscFlags` for the end of a stream.
constexpr ULONG kIsRenderer = 1;

bool isSilent(IMediaSample& sample) {
    RefPtr<IKvxSampleSilence> silence;
    return SUCCEEDED(sample.QueryInterface(IID_IKvxSampleSilence, silence.putVoid())) && silence->GetSilent();
}

}  // namespace

StreamSinkPin::StreamSinkPin(CBaseFilter& filter, CCritSec& lock)
    : CBaseInputPin(filter, lock, L"Input"), ownAllocator_(makeObject<SampleAllocator>(true)) {}

HRESULT StreamSinkPin::growBlock(std::int32_t frames) {
    const WAVEFORMATEX* format = CurrentMediaType().WaveFormat();
    if (!IsConnected() || !format) return S_OK;
    const HRESULT hr = ownAllocator_->growBuffers(frames * format->nBlockAlign);
    return FAILED(hr) ? hr : prepareZeros();
}

HRESULT StreamSinkPin::CheckMediaType(const AM_MEDIA_TYPE* type) {
    if (!type) return E_POINTER;
    const WAVEFORMATEX* format = WaveFormatOf(*type);
    const bool taken = format && type->majortype == MEDIATYPE_Audio &&
                       format->wFormatTag == WAVE_FORMAT_IEEE_FLOAT && format->wBitsPerSample == 32 &&
                       (format->nChannels == 1 || format->nChannels == 2);
    return taken ? S_OK : VFW_E_TYPE_NOT_ACCEPTED;
}

HRESULT StreamSinkPin::Active() {
    const HRESULT hr = CBaseInputPin::Active();
    return FAILED(hr) ? hr : prepareZeros();
}

HRESULT StreamSinkPin::GetAllocator(IMemAllocator** out) {
    if (!out) return E_POINTER;
    *out = RefPtr<IMemAllocator>(ownAllocator_.get()).detach();
    return S_OK;
}

HRESULT StreamSinkPin::Receive(IMediaSample* sample) {
    const HRESULT hr = CBaseInputPin::Receive(sample);
    if (hr != S_OK || !taker_) return hr;
    const auto count = static_cast<std::size_t>(sample->GetActualDataLength()) / sizeof(float);
    // Asking a marked sample for its memory would take the mark away.
    if (isSilent(*sample) && count <= zeros_.size()) {
        taker_(std::span<const float>(zeros_).first(count), true);
        return S_OK;
    }
    BYTE* memory = nullptr;
    const HRESULT got = sample->GetPointer(&memory);
    if (SUCCEEDED(got)) taker_({reinterpret_cast<const float*>(memory), count}, false);
    return got;
}

HRESULT StreamSinkPin::EndOfStream() {
    ++endsOfStream_;
    Filter().NotifyEvent(EC_COMPLETE, S_OK, 0);
    return CBaseInputPin::EndOfStream();
}

HRESULT StreamSinkPin::prepareZeros() {
    ALLOCATOR_PROPERTIES properties{};
    const HRESULT hr = Allocator() ? Allocator()->GetProperties(&properties) : VFW_E_NO_ALLOCATOR;
    if (FAILED(hr)) return hr;
    try {
        zeros_.resize(static_cast<std::size_t>(properties.cbBuffer) / sizeof(float));
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    }
    return S_OK;
}

StreamSink::StreamSink() : Implements(nullptr, ownLock, kStreamSinkId), pin_(*this, ownLock) {}

ULONG StreamSink::GetMiscFlags() {
    return kIsRenderer;
}

IUnknown* StreamSink::FindInterface(REFIID iid) {
    if (iid == IID_IAMFilterMiscFlags) return static_cast<IAMFilterMiscFlags*>(this);
    return CBaseFilter::FindInterface(iid);
}

}  // namespace marnoth
