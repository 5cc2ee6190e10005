#include "hostkit/SampleAllocator.h"

#include <new>

namespace marnoth {

HRESULT SampleAllocator::growBuffers(LONG bytes) {
    ALLOCATOR_PROPERTIES before{};
    const HRESULT hr = GetProperties(&before);
    if (FAILED(hr) || before.cbBuffer >= bytes) return hr;
    ALLOCATOR_PROPERTIES grown = before;
    grown.cbBuffer = bytes;
    const bool wasCommitted = committed_;
    const HRESULT result = resize(grown, wasCommitted);
    if (FAILED(result)) resize(before, wasCommitted);
    return result;
}

HRESULT SampleAllocator::resize(ALLOCATOR_PROPERTIES properties, bool commit) {
    Decommit();
    ALLOCATOR_PROPERTIES actual{};
    const HRESULT set = SetProperties(&properties, &actual);
    const HRESULT committed = commit ? Commit() : S_OK;
    return FAILED(set) ? set : committed;
}

HRESULT SampleAllocator::GetBuffer(IMediaSample** out, REFERENCE_TIME* start, REFERENCE_TIME* end,
                                   DWORD flags) {
    const HRESULT hr = CMemAllocator::GetBuffer(out, start, end, flags | AM_GBF_NOWAIT);
    // This allocator makes no other samples.
    if (SUCCEEDED(hr)) static_cast<HostSample*>(*out)->prepare();
    return hr;
}

HRESULT SampleAllocator::Commit() {
    const HRESULT hr = CMemAllocator::Commit();
    committed_ = SUCCEEDED(hr);
    return hr;
}

HRESULT SampleAllocator::Decommit() {
    committed_ = false;
    return CMemAllocator::Decommit();
}

std::unique_ptr<CMediaSample> SampleAllocator::MakeSample(BYTE* memory, LONG bytes) {
    return std::unique_ptr<CMediaSample>(new (std::nothrow)
                                             HostSample(*this, memory, bytes, silenceOffered_));
}

}  // namespace marnoth
