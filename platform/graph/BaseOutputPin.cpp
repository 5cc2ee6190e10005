#include "platform/graph/BaseOutputPin.h"

#include <algorithm>
#include <utility>

#include "platform/com/Guarded.h"
#include "platform/graph/MemAllocator.h"

namespace marnoth {

HRESULT CBaseOutputPin::CheckConnect(IPin* peer) {
    downstream_.reset();
    const HRESULT hr = CBasePin::CheckConnect(peer);
    if (FAILED(hr)) return hr;
    return guarded([&] {
        auto found = std::make_shared<Downstream>();
        const HRESULT asked = peer->QueryInterface(IID_IMemInputPin, found->receiver.putVoid());
        if (SUCCEEDED(asked)) downstream_ = std::move(found);
        return asked;
    });
}

HRESULT CBaseOutputPin::CompleteConnect(IPin* peer) {
    downstream_->pin = RefPtr<IPin>(peer);
    return DecideAllocator(downstream_->receiver.get(), &downstream_->allocator);
}

HRESULT CBaseOutputPin::BreakConnect() {
    if (Allocator()) Allocator()->Decommit();
    downstream_.reset();
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
    return Allocator() ? Allocator()->Commit() : VFW_E_NO_ALLOCATOR;
}

HRESULT CBaseOutputPin::Inactive() {
    return Allocator() ? Allocator()->Decommit() : VFW_E_NO_ALLOCATOR;
}

HRESULT CBaseOutputPin::GetDeliveryBuffer(IMediaSample** out, REFERENCE_TIME* start, REFERENCE_TIME* end,
                                          DWORD flags) {
    const auto to = GetDownstream();
    return to ? to->getBuffer(out, start, end, flags) : VFW_E_NOT_CONNECTED;
}

HRESULT CBaseOutputPin::Deliver(IMediaSample* sample) {
    const auto to = GetDownstream();
    return to ? to->deliver(sample) : VFW_E_NOT_CONNECTED;
}

HRESULT CBaseOutputPin::DeliverEndOfStream() {
    const auto to = GetDownstream();
    return to ? to->endOfStream() : VFW_E_NOT_CONNECTED;
}

HRESULT CBaseOutputPin::DeliverBeginFlush() {
    const auto to = GetDownstream();
    return to ? to->beginFlush() : VFW_E_NOT_CONNECTED;
}

HRESULT CBaseOutputPin::DeliverEndFlush() {
    const auto to = GetDownstream();
    return to ? to->endFlush() : VFW_E_NOT_CONNECTED;
}

HRESULT CBaseOutputPin::DeliverNewSegment(REFERENCE_TIME start, REFERENCE_TIME stop, double rate) {
    const auto to = GetDownstream();
    return to ? to->newSegment(start, stop, rate) : VFW_E_NOT_CONNECTED;
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
