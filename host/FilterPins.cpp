#include "host/FilterPins.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <utility>

#include "host/AudioFormats.h"
#include "host/Filter.h"
#include "platform/com/Guarded.h"
#include "platform/graph/SeekingPassThru.h"
#include "platform/system/FlagScope.h"

namespace marnoth {

namespace {

/// A count that no pair of calls brings to 0.
constexpr ULONG kDying = 0x40000000;

LONG doubled(LONG bytes) {
    constexpr LONG kMost = std::numeric_limits<LONG>::max();
    return bytes > kMost / 2 ? kMost : bytes * 2;
}

bool hasFormatBlock(const AM_MEDIA_TYPE& type) {
    return type.pbFormat && type.cbFormat >= sizeof(WAVEFORMATEX);
}

}  // namespace

CFilterInputPin::CFilterInputPin(CFilter& filter)
    : CBaseInputPin(filter, filter.pzi(), L"Input"), filter_(filter) {}

HRESULT CFilterInputPin::CheckMediaType(const AM_MEDIA_TYPE* type) {
    CAutoLock lock(filter_.pzi());
    if (checkingType_) return S_OK;
    const FlagScope checking(checkingType_);
    if (const HRESULT hr = CheckInputType(filter_.pzi(), type); FAILED(hr)) return hr;
    for (const auto& pin : filter_.outputPins())
        if (pin->IsConnected() && FAILED(CheckTransform(filter_.pzi(), type, pin->CurrentMediaType().Get())))
            return VFW_E_TYPE_NOT_ACCEPTED;
    return S_OK;
}

HRESULT CFilterInputPin::SetMediaType(const AM_MEDIA_TYPE* type) {
    // Nothing else that it says is looked at.
    if (CBaseInputPin::SetMediaType(type) == E_OUTOFMEMORY) return E_OUTOFMEMORY;
    if (const HRESULT hr = CheckAudioMediaType(type); FAILED(hr)) return hr;
    return SetFormat(filter_.pzi(), PINDIR_INPUT, type);
}

HRESULT CFilterInputPin::CompleteConnect(IPin*) {
    return guarded([this] {
        HRESULT hr = S_OK;
        // A reconnection may change the set of pins.
        const auto pins = filter_.outputPins();
        for (const auto& pin : pins) {
            if (!pin->IsConnected()) continue;
            hr = CheckTransform(filter_.pzi(), CurrentMediaType().Get(), pin->CurrentMediaType().Get());
            if (SUCCEEDED(hr)) continue;
            hr = filter_.ReconnectPin(pin.get(), nullptr);
            if (FAILED(hr)) return hr;
        }
        return hr;
    });
}

HRESULT CFilterInputPin::Receive(IMediaSample* sample) {
    return filter_.Receive(sample);
}

HRESULT CFilterInputPin::EndOfStream() {
    return filter_.EndOfStream();
}

HRESULT CFilterInputPin::BeginFlush() {
    const HRESULT hr = filter_.tellConnectedOutputs([](const Downstream& to) { return to.beginFlush(); });
    return FAILED(hr) ? hr : CBaseInputPin::BeginFlush();
}

HRESULT CFilterInputPin::EndFlush() {
    const HRESULT hr = filter_.tellConnectedOutputs([](const Downstream& to) { return to.endFlush(); });
    return FAILED(hr) ? hr : CBaseInputPin::EndFlush();
}

HRESULT CFilterInputPin::NewSegment(REFERENCE_TIME start, REFERENCE_TIME stop, double rate) {
    const CAutoLock stream(filter_.streamLock());
    const HRESULT hr =
        filter_.tellConnectedOutputs([&](const Downstream& to) { return to.newSegment(start, stop, rate); });
    return FAILED(hr) ? hr : CBaseInputPin::NewSegment(start, stop, rate);
}

CFilterOutputPin::CFilterOutputPin(CFilter& filter, std::wstring_view name, std::uint32_t id)
    : CBaseOutputPin(filter, filter.pzi(), name), filter_(filter), id_(id) {}

// The count is atomic instead of guarded by the filter's lock: the last holder may let go when the filter,
// and the lock with it, has gone already.
ULONG CFilterOutputPin::AddRef() {
    return ++references_;
}

ULONG CFilterOutputPin::Release() {
    const ULONG left = --references_;
    if (left > 0) return left;
    // A part may take and give back a reference to its whole while it goes.
    references_ = kDying;
    delete this;
    return 0;
}

HRESULT CFilterOutputPin::QueryInterface(REFIID iid, void** out) {
    if (iid != IID_IMediaPosition && iid != IID_IMediaSeeking)
        return CBaseOutputPin::QueryInterface(iid, out);
    if (!out) return E_POINTER;
    *out = nullptr;
    IUnknown* passThru = nullptr;
    const HRESULT hr = findPassThru(&passThru);
    return FAILED(hr) ? hr : passThru->QueryInterface(iid, out);
}

IUnknown* CFilterOutputPin::keptPassThru() const {
    CAutoLock look(LookLock());
    return passThru_.get();
}

HRESULT CFilterOutputPin::findPassThru(IUnknown** out) {
    if (!keptPassThru()) {
        // Made without a lock, since nobody is to wait for the system to look for the class.
        RefPtr<IUnknown> made;
        const HRESULT hr = makeSeekingPassThru(static_cast<IPin*>(this), &filter_.inputPin(), &made);
        if (FAILED(hr)) return hr;
        CAutoLock look(LookLock());
        if (!passThru_) passThru_ = std::move(made);
    }
    *out = keptPassThru();
    return S_OK;
}

HRESULT CFilterOutputPin::CheckMediaType(const AM_MEDIA_TYPE* type) {
    CAutoLock lock(filter_.pzi());
    if (checkingType_) return S_OK;
    const FlagScope checking(checkingType_);
    if (const HRESULT hr = CheckOutputType(filter_.pzi(), type); FAILED(hr)) return hr;
    const CFilterInputPin& input = filter_.inputPin();
    if (!input.IsConnected()) return VFW_E_NOT_CONNECTED;
    const HRESULT hr = CheckTransform(filter_.pzi(), input.CurrentMediaType().Get(), type);
    return FAILED(hr) ? VFW_E_TYPE_NOT_ACCEPTED : S_OK;
}

HRESULT CFilterOutputPin::SetMediaType(const AM_MEDIA_TYPE* type) {
    CAutoLock lock(filter_.pzi());
    if (!filter_.inputPin().IsConnected()) return VFW_E_NOT_CONNECTED;
    if (const HRESULT hr = CBaseOutputPin::SetMediaType(type); FAILED(hr)) return hr;
    return SetFormat(filter_.pzi(), PINDIR_OUTPUT, type);
}

HRESULT CFilterOutputPin::EnumMediaTypes(IEnumMediaTypes** out) {
    if (!out) return E_POINTER;
    *out = nullptr;
    CAutoLock lock(filter_.pzi());
    IPin* upstream = filter_.inputPin().GetConnected();
    return upstream ? upstream->EnumMediaTypes(out) : VFW_E_NOT_CONNECTED;
}

HRESULT CFilterOutputPin::GetMediaType(int position, CMediaType* type) {
    CAutoLock lock(filter_.pzi());
    const CFilterInputPin& input = filter_.inputPin();
    if (!input.IsConnected()) return VFW_S_NO_MORE_ITEMS;
    if (position < 0) return E_INVALIDARG;
    if (position > 0) return VFW_S_NO_MORE_ITEMS;
    if (!type) return E_POINTER;
    const AM_MEDIA_TYPE& source = *input.CurrentMediaType();
    if (!hasFormatBlock(source) || !hasFormatBlock(**type)) return E_FAIL;
    WAVEFORMATEX format = FormatOf(source);
    const HRESULT hr = filter_.pzi().ProposeOutputFormat(&format);
    std::memcpy((*type)->pbFormat, &format, sizeof format);
    return hr;
}

HRESULT CFilterOutputPin::DecideBufferSize(IMemAllocator* allocator, ALLOCATOR_PROPERTIES* properties) {
    if (!allocator || !properties) return E_POINTER;
    CAutoLock lock(filter_.pzi());
    const CFilterInputPin& input = filter_.inputPin();
    if (input.IsConnected() && input.Allocator()) input.Allocator()->GetProperties(properties);
    const CPzi& pzi = filter_.pzi();
    if (pzi.inputFormat.nChannels == 1 && pzi.outputFormat.nChannels == 2)
        properties->cbBuffer = doubled(properties->cbBuffer);
    ALLOCATOR_PROPERTIES actual{};
    const HRESULT hr = allocator->SetProperties(properties, &actual);
    if (SUCCEEDED(hr)) *properties = actual;
    return hr;
}

}  // namespace marnoth
