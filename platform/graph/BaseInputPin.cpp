#include "platform/graph/BaseInputPin.h"

#include "platform/graph/BaseFilter.h"
#include "platform/graph/MemAllocator.h"

namespace marnoth {

IUnknown* CBaseInputPin::FindInterface(REFIID iid) {
    if (iid == IID_IMemInputPin) return static_cast<IMemInputPin*>(this);
    return CBasePin::FindInterface(iid);
}

HRESULT CBaseInputPin::CheckStreaming() {
    CAutoLock hold(Lock());
    if (!IsConnected()) return VFW_E_NOT_CONNECTED;
    if (IsStopped()) return VFW_E_WRONG_STATE;
    return flushing_ ? S_FALSE : S_OK;
}

HRESULT CBaseInputPin::GetAllocator(IMemAllocator** out) {
    if (!out) return E_POINTER;
    *out = nullptr;
    CAutoLock hold(Lock());
    if (!allocator_) {
        allocator_ = RefPtr<IMemAllocator>::adopt(new (std::nothrow) CMemAllocator);
        if (!allocator_) return E_OUTOFMEMORY;
    }
    *out = RefPtr(allocator_).detach();
    return S_OK;
}

HRESULT CBaseInputPin::NotifyAllocator(IMemAllocator* allocator, BOOL readOnly) {
    if (!allocator) return E_POINTER;
    CAutoLock hold(Lock());
    allocator_ = RefPtr<IMemAllocator>(allocator);
    readOnly_ = readOnly != FALSE;
    return S_OK;
}

HRESULT CBaseInputPin::GetAllocatorRequirements(ALLOCATOR_PROPERTIES*) {
    return E_NOTIMPL;
}

HRESULT CBaseInputPin::Receive(IMediaSample* sample) {
    if (!sample) return E_POINTER;
    const HRESULT hr = CheckStreaming();
    if (hr != S_OK) return hr;
    AM_MEDIA_TYPE* type = nullptr;
    if (sample->GetMediaType(&type) != S_OK || !type) return S_OK;
    const bool accepted = QueryAccept(type) == S_OK;
    DeleteMediaType(type);
    return accepted ? S_OK : VFW_E_INVALIDMEDIATYPE;
}

HRESULT CBaseInputPin::ReceiveMultiple(IMediaSample** samples, LONG count, LONG* processed) {
    if (!samples || !processed) return E_POINTER;
    *processed = 0;
    HRESULT hr = S_OK;
    while (*processed < count) {
        hr = Receive(samples[*processed]);
        if (hr != S_OK) break;
        ++*processed;
    }
    return hr;
}

namespace {

/// May a sample delivered on `output` keep its deliverer waiting?
bool mayWaitBehind(const CBasePin& output) {
    if (!output.IsConnected()) return false;
    RefPtr<IMemInputPin> receiver;
    // A pin that can't be asked may do anything.
    if (FAILED(output.GetConnected()->QueryInterface(IID_IMemInputPin, receiver.putVoid()))) return true;
    return receiver->ReceiveCanBlock() != S_FALSE;
}

}  // namespace

HRESULT CBaseInputPin::ReceiveCanBlock() {
    CAutoLock hold(Lock());
    int outputs = 0;
    for (int i = 0; i < Filter().GetPinCount(); ++i) {
        const CBasePin* pin = Filter().GetPin(i);
        if (!pin || pin->Direction() != PINDIR_OUTPUT) continue;
        ++outputs;
        if (mayWaitBehind(*pin)) return S_OK;
    }
    return outputs == 0 ? S_OK : S_FALSE;
}

HRESULT CBaseInputPin::EndOfStream() {
    return S_OK;
}

HRESULT CBaseInputPin::BeginFlush() {
    CAutoLock hold(Lock());
    flushing_ = true;
    return S_OK;
}

HRESULT CBaseInputPin::EndFlush() {
    CAutoLock hold(Lock());
    flushing_ = false;
    return S_OK;
}

HRESULT CBaseInputPin::BreakConnect() {
    if (allocator_) allocator_->Decommit();
    allocator_.reset();
    return S_OK;
}

HRESULT CBaseInputPin::Inactive() {
    flushing_ = false;
    return allocator_ ? allocator_->Decommit() : S_OK;
}

}  // namespace marnoth
