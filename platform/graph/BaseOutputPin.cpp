#include "platform/graph/BaseOutputPin.h"

#include <algorithm>

#include "platform/graph/MemAllocator.h"

namespace marnoth {

HRESULT CBaseOutputPin::CheckConnect(IPin* peer) {
    const HRESULT hr = CBasePin::CheckConnect(peer);
    if (FAILED(hr)) return hr;
    return peer->QueryInterface(IID_IMemInputPin, receiver_.putVoid());
}

HRESULT CBaseOutputPin::CompleteConnect(IPin*) {
    return DecideAllocator(receiver_.get(), &allocator_);
}

HRESULT CBaseOutputPin::BreakConnect() {
    if (allocator_) allocator_->Decommit();
    allocator_.reset();
    receiver_.reset();
    return S_OK;
}

HRESULT CBaseOutputPin::InitAllocator(IMemAllocator** out) {
    if (!out) return E_POINTER;
    *out = new (std::nothrow) CMemAllocator;
    return *out ? S_OK : E_OUTOFMEMORY;
}

HRESULT CBaseOutputPin::DecideAllocator(IMemInputPin* receiver, RefPtr<IMemAllocator>* out) {
    ALLOCATOR_PROPERTIES request{};
    // A pin without wishes fails here, and may have scribbled.
    if (FAILED(receiver->GetAllocatorRequirements(&request))) request = {};
    request.cbAlign = std::max<LONG>(request.cbAlign, 1);

    RefPtr<IMemAllocator> allocator;
    if (SUCCEEDED(receiver->GetAllocator(allocator.put())) && allocator &&
        SUCCEEDED(OfferAllocator(receiver, allocator.get(), request))) {
        *out = std::move(allocator);
        return S_OK;
    }
    HRESULT hr = InitAllocator(allocator.put());
    if (SUCCEEDED(hr)) hr = OfferAllocator(receiver, allocator.get(), request);
    if (SUCCEEDED(hr)) *out = std::move(allocator);
    return hr;
}

HRESULT CBaseOutputPin::OfferAllocator(IMemInputPin* receiver, IMemAllocator* allocator,
                                       ALLOCATOR_PROPERTIES request) {
    const HRESULT hr = DecideBufferSize(allocator, &request);
    return FAILED(hr) ? hr : receiver->NotifyAllocator(allocator, FALSE);
}

HRESULT CBaseOutputPin::Active() {
    return allocator_ ? allocator_->Commit() : VFW_E_NO_ALLOCATOR;
}

HRESULT CBaseOutputPin::Inactive() {
    return allocator_ ? allocator_->Decommit() : VFW_E_NO_ALLOCATOR;
}

HRESULT CBaseOutputPin::GetDeliveryBuffer(IMediaSample** out, REFERENCE_TIME* start, REFERENCE_TIME* end,
                                          DWORD flags) {
    return GetDownstream().getBuffer(out, start, end, flags);
}

HRESULT CBaseOutputPin::Deliver(IMediaSample* sample) {
    return GetDownstream().deliver(sample);
}

HRESULT CBaseOutputPin::DeliverEndOfStream() {
    return GetDownstream().endOfStream();
}

HRESULT CBaseOutputPin::DeliverBeginFlush() {
    return GetDownstream().beginFlush();
}

HRESULT CBaseOutputPin::DeliverEndFlush() {
    return GetDownstream().endFlush();
}

HRESULT CBaseOutputPin::DeliverNewSegment(REFERENCE_TIME start, REFERENCE_TIME stop, double rate) {
    return GetDownstream().newSegment(start, stop, rate);
}

HRESULT CBaseOutputPin::EndOfStream() {
    return E_UNEXPECTED;
}

HRESULT CBaseOutputPin::BeginFlush() {
    return E_UNEXPECTED;
}

HRESULT CBaseOutputPin::EndFlush() {
    return E_UNEXPECTED;
}

}  // namespace marnoth
