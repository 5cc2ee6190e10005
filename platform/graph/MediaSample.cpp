#include "platform/graph/MediaSample.h"

#include "platform/graph/MemAllocator.h"

namespace marnoth {

namespace {

HRESULT yesOrNo(bool answer) {
    return answer ? S_OK : S_FALSE;
}

}  // namespace

HRESULT CMediaSample::QueryInterface(REFIID iid, void** out) {
    return AnswerQuery(FindInterface(iid), out);
}

IUnknown* CMediaSample::FindInterface(REFIID iid) {
    return iid == IID_IUnknown || iid == IID_IMediaSample ? static_cast<IMediaSample*>(this) : nullptr;
}

ULONG CMediaSample::AddRef() {
    return ++count_;
}

ULONG CMediaSample::Release() {
    const ULONG left = --count_;
    // Behind this call the sample may be gone, or in use again.
    if (left == 0) allocator_.ReleaseBuffer(this);
    return left;
}

void CMediaSample::Recycle() {
    length_ = size_;
    hasStart_ = hasEnd_ = hasMediaTime_ = false;
    syncPoint_ = preroll_ = discontinuity_ = false;
    SetMediaType(nullptr);
}

HRESULT CMediaSample::GetPointer(BYTE** out) {
    if (!out) return E_POINTER;
    *out = memory_;
    return S_OK;
}

LONG CMediaSample::GetSize() {
    return size_;
}

HRESULT CMediaSample::GetTime(REFERENCE_TIME* start, REFERENCE_TIME* end) {
    if (!start || !end) return E_POINTER;
    if (!hasStart_) return VFW_E_SAMPLE_TIME_NOT_SET;
    *start = start_;
    *end = hasEnd_ ? end_ : start_ + 1;
    return hasEnd_ ? S_OK : VFW_S_NO_STOP_TIME;
}

HRESULT CMediaSample::SetTime(REFERENCE_TIME* start, REFERENCE_TIME* end) {
    if (!start && end) return E_INVALIDARG;
    if (end && *end < *start) return VFW_E_START_TIME_AFTER_END;
    hasStart_ = start != nullptr;
    hasEnd_ = end != nullptr;
    if (start) start_ = *start;
    if (end) end_ = *end;
    return S_OK;
}

HRESULT CMediaSample::IsSyncPoint() {
    return yesOrNo(syncPoint_);
}

HRESULT CMediaSample::SetSyncPoint(BOOL isSyncPoint) {
    syncPoint_ = isSyncPoint != FALSE;
    return S_OK;
}

HRESULT CMediaSample::IsPreroll() {
    return yesOrNo(preroll_);
}

HRESULT CMediaSample::SetPreroll(BOOL isPreroll) {
    preroll_ = isPreroll != FALSE;
    return S_OK;
}

LONG CMediaSample::GetActualDataLength() {
    return length_;
}

HRESULT CMediaSample::SetActualDataLength(LONG bytes) {
    if (bytes < 0) return E_INVALIDARG;
    if (bytes > size_) return VFW_E_BUFFER_OVERFLOW;
    length_ = bytes;
    return S_OK;
}

HRESULT CMediaSample::GetMediaType(AM_MEDIA_TYPE** out) {
    if (!out) return E_POINTER;
    *out = nullptr;
    if (!hasType_) return S_FALSE;
    *out = CreateMediaType(*type_);
    return *out ? S_OK : E_OUTOFMEMORY;
}

HRESULT CMediaSample::SetMediaType(AM_MEDIA_TYPE* type) {
    if (!type) {
        type_.Reset();
        hasType_ = false;
        return S_OK;
    }
    const HRESULT hr = type_.Set(*type);
    if (SUCCEEDED(hr)) hasType_ = true;
    return hr;
}

HRESULT CMediaSample::IsDiscontinuity() {
    return yesOrNo(discontinuity_);
}

HRESULT CMediaSample::SetDiscontinuity(BOOL isDiscontinuity) {
    discontinuity_ = isDiscontinuity != FALSE;
    return S_OK;
}

HRESULT CMediaSample::GetMediaTime(LONGLONG* start, LONGLONG* end) {
    if (!start || !end) return E_POINTER;
    if (!hasMediaTime_) return VFW_E_MEDIA_TIME_NOT_SET;
    *start = mediaStart_;
    *end = mediaEnd_;
    return S_OK;
}

HRESULT CMediaSample::SetMediaTime(LONGLONG* start, LONGLONG* end) {
    if (!start != !end) return E_INVALIDARG;
    if (start && *end < *start) return VFW_E_START_TIME_AFTER_END;
    hasMediaTime_ = start != nullptr;
    if (hasMediaTime_) {
        mediaStart_ = *start;
        mediaEnd_ = *end;
    }
    return S_OK;
}

}  // namespace marnoth
