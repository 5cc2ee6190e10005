#include "platform/graph/MediaType.h"

#include <cstring>
#include <utility>

namespace marnoth {

CMediaType::CMediaType(CMediaType&& other) noexcept : type_(std::exchange(other.type_, AM_MEDIA_TYPE{})) {}

CMediaType& CMediaType::operator=(CMediaType&& other) noexcept {
    std::swap(type_, other.type_);
    return *this;
}

HRESULT CMediaType::Set(const AM_MEDIA_TYPE& source) {
    AM_MEDIA_TYPE copy;
    const HRESULT hr = CopyMediaType(&copy, source);
    if (FAILED(hr)) return hr;
    Reset();
    type_ = copy;
    return S_OK;
}

HRESULT CMediaType::SetWaveFormat(const WAVEFORMATEX& format) {
    CMediaType made;
    made.type_.majortype = MEDIATYPE_Audio;
    made.type_.subtype = MEDIASUBTYPE_PCM;
    // The audio subtypes are one family whose first field is the format tag.
    if (format.wFormatTag != WAVE_FORMAT_EXTENSIBLE) made.type_.subtype.Data1 = format.wFormatTag;
    made.type_.formattype = FORMAT_WaveFormatEx;
    made.type_.bFixedSizeSamples = TRUE;
    made.type_.lSampleSize = format.nBlockAlign;
    const HRESULT hr = made.SetFormatBlock(&format, static_cast<ULONG>(sizeof format) + format.cbSize);
    if (SUCCEEDED(hr)) *this = std::move(made);
    return hr;
}

HRESULT CMediaType::SetFormatBlock(const void* block, ULONG bytes) {
    BYTE* copy = nullptr;
    if (bytes) {
        if (!block) return E_INVALIDARG;
        copy = static_cast<BYTE*>(CoTaskMemAlloc(bytes));
        if (!copy) return E_OUTOFMEMORY;
        std::memcpy(copy, block, bytes);
    }
    CoTaskMemFree(type_.pbFormat);
    type_.pbFormat = copy;
    type_.cbFormat = bytes;
    return S_OK;
}

void CMediaType::Reset() {
    FreeMediaType(type_);
    type_ = {};
}

HRESULT CMediaType::CopyTo(AM_MEDIA_TYPE* out) const {
    if (!out) return E_POINTER;
    return CopyMediaType(out, type_);
}

const WAVEFORMATEX* CMediaType::WaveFormat() const {
    return WaveFormatOf(type_);
}

const WAVEFORMATEX* WaveFormatOf(const AM_MEDIA_TYPE& type) {
    if (!type.pbFormat || type.cbFormat < sizeof(WAVEFORMATEX)) return nullptr;
    return reinterpret_cast<const WAVEFORMATEX*>(type.pbFormat);
}

HRESULT CopyMediaType(AM_MEDIA_TYPE* out, const AM_MEDIA_TYPE& source) {
    *out = {};
    BYTE* block = nullptr;
    if (source.cbFormat) {
        if (!source.pbFormat) return E_INVALIDARG;
        block = static_cast<BYTE*>(CoTaskMemAlloc(source.cbFormat));
        if (!block) return E_OUTOFMEMORY;
        std::memcpy(block, source.pbFormat, source.cbFormat);
    }
    *out = source;
    out->pbFormat = block;
    if (out->pUnk) out->pUnk->AddRef();
    return S_OK;
}

void FreeMediaType(AM_MEDIA_TYPE& type) {
    CoTaskMemFree(std::exchange(type.pbFormat, nullptr));
    type.cbFormat = 0;
    if (IUnknown* object = std::exchange(type.pUnk, nullptr)) object->Release();
}

AM_MEDIA_TYPE* CreateMediaType(const AM_MEDIA_TYPE& source) {
    auto* made = static_cast<AM_MEDIA_TYPE*>(CoTaskMemAlloc(sizeof(AM_MEDIA_TYPE)));
    if (made && FAILED(CopyMediaType(made, source))) {
        CoTaskMemFree(made);
        return nullptr;
    }
    return made;
}

void DeleteMediaType(AM_MEDIA_TYPE* type) {
    if (!type) return;
    FreeMediaType(*type);
    CoTaskMemFree(type);
}

bool IsFullySpecified(const AM_MEDIA_TYPE& type) {
    return type.majortype != GUID_NULL && type.formattype != GUID_NULL;
}

namespace {

bool leavesOpenOrIs(const GUID& wanted, const GUID& id) {
    return wanted == GUID_NULL || wanted == id;
}

bool sameBlock(const AM_MEDIA_TYPE& a, const AM_MEDIA_TYPE& b) {
    if (a.cbFormat != b.cbFormat) return false;
    return a.cbFormat == 0 ||
           (a.pbFormat && b.pbFormat && std::memcmp(a.pbFormat, b.pbFormat, a.cbFormat) == 0);
}

}  // namespace

bool MatchesPartial(const AM_MEDIA_TYPE& type, const AM_MEDIA_TYPE& wanted) {
    if (!leavesOpenOrIs(wanted.majortype, type.majortype)) return false;
    if (!leavesOpenOrIs(wanted.subtype, type.subtype)) return false;
    if (wanted.formattype == GUID_NULL) return true;
    return wanted.formattype == type.formattype && sameBlock(type, wanted);
}

}  // namespace marnoth
