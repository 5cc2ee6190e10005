#include "platform/graph/BasePin.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "platform/com/Enumerator.h"
#include "platform/com/Unknown.h"
#include "platform/graph/BaseFilter.h"

namespace marnoth {

namespace {

/// The media types that a pin proposes, for an enumerator.
struct TypeList {
    using Interface = IEnumMediaTypes;
    using Item = AM_MEDIA_TYPE;
    static const IID& iid() { return IID_IEnumMediaTypes; }

    CCritSec& lock() const { return pin->Filter().Lock(); }
    int version() const { return pin->MediaTypeVersion(); }
    AM_MEDIA_TYPE* take(int position) const {
        CMediaType type;
        return pin->GetMediaType(position, &type) == S_OK ? CreateMediaType(*type) : nullptr;
    }
    void giveBack(AM_MEDIA_TYPE* type) const { DeleteMediaType(type); }

    RefPtr<CBasePin> pin;
};

}  // namespace

CBasePin::CBasePin(CBaseFilter& filter, CCritSec& lock, PIN_DIRECTION direction, std::wstring_view name)
    : filter_(filter),
      lock_(lock),
      direction_(direction),
      name_(name),
      segmentStop_(std::numeric_limits<REFERENCE_TIME>::max()) {}

HRESULT CBasePin::QueryInterface(REFIID iid, void** out) {
    return AnswerQuery(FindInterface(iid), out);
}

ULONG CBasePin::AddRef() {
    return filter_.AddRef();
}

ULONG CBasePin::Release() {
    return filter_.Release();
}

IUnknown* CBasePin::FindInterface(REFIID iid) {
    if (iid == IID_IUnknown || iid == IID_IPin) return static_cast<IPin*>(this);
    return nullptr;
}

CCritSec& CBasePin::LookLock() const {
    return filter_.LookLock();
}

// What was there before is let go of outside the lock: its owners may do anything then.
void CBasePin::SetConnected(RefPtr<IPin> peer) {
    CAutoLock look(LookLock());
    std::swap(connected_, peer);
}

HRESULT CBasePin::KeepType(const AM_MEDIA_TYPE& type) {
    CMediaType kept;
    if (const HRESULT hr = kept.Set(type); FAILED(hr)) return hr;
    CAutoLock look(LookLock());
    type_ = std::move(kept);  // which leaves the former one in `kept`
    return S_OK;
}

bool CBasePin::IsStopped() const {
    return filter_.State() == State_Stopped;
}

HRESULT CBasePin::GetMediaType(int position, CMediaType*) {
    return position < 0 ? E_INVALIDARG : VFW_S_NO_MORE_ITEMS;
}

HRESULT CBasePin::SetMediaType(const AM_MEDIA_TYPE* type) {
    return type ? KeepType(*type) : E_POINTER;
}

HRESULT CBasePin::CheckConnect(IPin* peer) {
    PIN_DIRECTION direction = PINDIR_INPUT;
    const HRESULT hr = peer->QueryDirection(&direction);
    if (FAILED(hr)) return hr;
    return direction == direction_ ? VFW_E_INVALID_DIRECTION : S_OK;
}

HRESULT CBasePin::CompleteConnect(IPin*) {
    return S_OK;
}

HRESULT CBasePin::BreakConnect() {
    return S_OK;
}

HRESULT CBasePin::Active() {
    return S_OK;
}

HRESULT CBasePin::Inactive() {
    return S_OK;
}

HRESULT CBasePin::Run(REFERENCE_TIME) {
    return S_OK;
}

HRESULT CBasePin::CheckMayConnect() const {
    if (IsConnected()) return VFW_E_ALREADY_CONNECTED;
    return IsStopped() ? S_OK : VFW_E_NOT_STOPPED;
}

HRESULT CBasePin::Connect(IPin* receiver, const AM_MEDIA_TYPE* type) {
    if (!receiver) return E_POINTER;
    CAutoLock hold(lock_);
    HRESULT hr = CheckMayConnect();
    if (FAILED(hr)) return hr;
    hr = CheckConnect(receiver);
    if (FAILED(hr)) {
        BreakConnect();
        return hr;
    }
    return AgreeMediaType(receiver, type);
}

HRESULT CBasePin::AgreeMediaType(IPin* receiver, const AM_MEDIA_TYPE* wanted) {
    if (wanted && IsFullySpecified(*wanted)) return TryConnection(receiver, *wanted);

    HRESULT failure = VFW_E_NO_ACCEPTABLE_TYPES;
    RefPtr<IEnumMediaTypes> types;
    if (SUCCEEDED(receiver->EnumMediaTypes(types.put())) &&
        TryTypes(types.get(), receiver, wanted, &failure) == S_OK) {
        return S_OK;
    }
    const HRESULT hr = EnumMediaTypes(types.put());
    if (SUCCEEDED(hr)) {
        if (TryTypes(types.get(), receiver, wanted, &failure) == S_OK) return S_OK;
    } else if (failure == VFW_E_NO_ACCEPTABLE_TYPES) {
        failure = hr;
    }
    // The search has left nothing in place, but the first test of the receiver may have.
    BreakConnect();
    return failure;
}

namespace {

/// Failures that only say no to a type. Any other tells the caller more than that no type was acceptable.
bool merelyRefusesType(HRESULT hr) {
    return hr == VFW_E_TYPE_NOT_ACCEPTED || hr == E_FAIL || hr == E_INVALIDARG;
}

}  // namespace

HRESULT CBasePin::TryTypes(IEnumMediaTypes* types, IPin* receiver, const AM_MEDIA_TYPE* wanted,
                           HRESULT* failure) {
    if (!types) return S_FALSE;
    types->Reset();
    AM_MEDIA_TYPE* next = nullptr;
    while (types->Next(1, &next, nullptr) == S_OK) {
        CMediaType type;
        const HRESULT copied = next ? type.Set(*next) : E_POINTER;
        DeleteMediaType(next);
        next = nullptr;
        if (FAILED(copied)) return copied;
        if (wanted && !MatchesPartial(*type, *wanted)) continue;
        const HRESULT hr = TryConnection(receiver, *type);
        if (SUCCEEDED(hr)) return S_OK;
        if (*failure == VFW_E_NO_ACCEPTABLE_TYPES && !merelyRefusesType(hr)) *failure = hr;
    }
    return S_FALSE;
}

HRESULT CBasePin::TryConnection(IPin* receiver, const AM_MEDIA_TYPE& type) {
    HRESULT hr = CheckConnect(receiver);
    if (SUCCEEDED(hr)) {
        hr = CheckMediaType(&type);
        if (hr != S_OK && SUCCEEDED(hr)) hr = VFW_E_TYPE_NOT_ACCEPTED;
    }
    if (SUCCEEDED(hr)) hr = Establish(receiver, type);
    if (FAILED(hr)) LetGo();
    return hr;
}

HRESULT CBasePin::Establish(IPin* receiver, const AM_MEDIA_TYPE& type) {
    // Both are in place before the receiver hears of it: it may ask back.
    SetConnected(RefPtr<IPin>(receiver));
    HRESULT hr = KeepType(type);
    if (FAILED(hr)) return hr;
    hr = receiver->ReceiveConnection(this, &type);
    if (FAILED(hr)) return hr;
    hr = SetMediaType(&type);
    if (SUCCEEDED(hr)) hr = CompleteConnect(receiver);
    if (FAILED(hr)) receiver->Disconnect();
    return hr;
}

HRESULT CBasePin::ReceiveConnection(IPin* connector, const AM_MEDIA_TYPE* type) {
    if (!connector || !type) return E_POINTER;
    CAutoLock hold(lock_);
    HRESULT hr = CheckMayConnect();
    if (FAILED(hr)) return hr;
    hr = Accept(connector, type);
    if (FAILED(hr)) LetGo();
    return hr;
}

HRESULT CBasePin::Accept(IPin* connector, const AM_MEDIA_TYPE* type) {
    HRESULT hr = CheckConnect(connector);
    if (FAILED(hr)) return hr;
    hr = CheckMediaType(type);
    if (FAILED(hr)) return hr;
    if (hr != S_OK) return VFW_E_TYPE_NOT_ACCEPTED;
    SetConnected(RefPtr<IPin>(connector));
    hr = SetMediaType(type);
    if (FAILED(hr)) return hr;
    return CompleteConnect(connector);
}

HRESULT CBasePin::LetGo() {
    const HRESULT hr = BreakConnect();
    SetConnected(nullptr);
    KeepType({});
    return hr;
}

HRESULT CBasePin::Disconnect() {
    CAutoLock hold(lock_);
    if (!IsStopped()) return VFW_E_NOT_STOPPED;
    if (!IsConnected()) return S_FALSE;
    const HRESULT hr = LetGo();
    return FAILED(hr) ? hr : S_OK;
}

HRESULT CBasePin::ConnectedTo(IPin** out) {
    if (!out) return E_POINTER;
    CAutoLock look(LookLock());
    *out = RefPtr<IPin>(connected_).detach();
    return *out ? S_OK : VFW_E_NOT_CONNECTED;
}

HRESULT CBasePin::ConnectionMediaType(AM_MEDIA_TYPE* out) {
    if (!out) return E_POINTER;
    CAutoLock look(LookLock());
    *out = {};
    return IsConnected() ? type_.CopyTo(out) : VFW_E_NOT_CONNECTED;
}

HRESULT CBasePin::QueryPinInfo(PIN_INFO* out) {
    if (!out) return E_POINTER;
    *out = {};
    out->pFilter = RefPtr<IBaseFilter>(&filter_).detach();
    out->dir = direction_;
    name_.copy(out->achName, std::size(out->achName) - 1);
    return S_OK;
}

HRESULT CBasePin::QueryDirection(PIN_DIRECTION* out) {
    if (!out) return E_POINTER;
    *out = direction_;
    return S_OK;
}

HRESULT CBasePin::QueryId(LPWSTR* out) {
    if (!out) return E_POINTER;
    const std::size_t units = name_.size() + 1;
    *out = static_cast<LPWSTR>(CoTaskMemAlloc(units * sizeof(WCHAR)));
    if (!*out) return E_OUTOFMEMORY;
    std::copy_n(name_.c_str(), units, *out);
    return S_OK;
}

HRESULT CBasePin::QueryAccept(const AM_MEDIA_TYPE* type) {
    if (!type) return E_POINTER;
    CAutoLock hold(lock_);
    return CheckMediaType(type) == S_OK ? S_OK : S_FALSE;
}

HRESULT CBasePin::EnumMediaTypes(IEnumMediaTypes** out) {
    if (!out) return E_POINTER;
    return CEnumerator<TypeList>::Make({RefPtr<CBasePin>(this)}, out);
}

HRESULT CBasePin::QueryInternalConnections(IPin**, ULONG*) {
    return E_NOTIMPL;
}

HRESULT CBasePin::NewSegment(REFERENCE_TIME start, REFERENCE_TIME stop, double rate) {
    CAutoLock hold(lock_);
    segmentStart_ = start;
    segmentStop_ = stop;
    segmentRate_ = rate;
    return S_OK;
}

}  // namespace marnoth
