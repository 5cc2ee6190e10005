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
    if (!IsConnected()) return VFW_E_NOT_CONNECTED;
    if (!allocator_) return VFW_E_NO_ALLOCATOR;
    return allocator_->GetBuffer(out, start, end, flags);
}

HRESULT CBaseOutputPin::Deliver(IMediaSample* sample) {
    return receiver_ ? receiver_->Receive(sample) : VFW_E_NOT_CONNECTED;
}

HRESULT CBaseOutputPin::DeliverEndOfStream() {
    return IsConnected() ? GetConnected()->EndOfStream() : VFW_E_NOT_CONNECTED;
}

HRESULT CBaseOutputPin::DeliverBeginFlush() {
    return IsConnected() ? GetConnected()->BeginFlush() : VFW_E_NOT_CONNECTED;
}

HRESULT CBaseOutputPin::DeliverEndFlush() {
    return IsConnected() ? GetConnected()->EndFlush() : VFW_E_NOT_CONNECTED;
}

HRESULT CBaseOutputPin::DeliverNewSegment(REFERENCE_TIME start, REFERENCE_TIME stop, double rate) {
    return IsConnected() ? GetConnected()->NewSegment(start, stop, rate) : VFW_E_NOT_CONNECTED;
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
