#include "platform/graph/BaseFilter.h"

#include <utility>

#include "platform/com/Enumerator.h"
#include "platform/com/Guarded.h"
#include "platform/graph/BasePin.h"

namespace marnoth {

namespace {

/// The pins of a filter, for an enumerator.
struct PinList {
    using Interface = IEnumPins;
    using Item = IPin;
    static const IID& iid() { return IID_IEnumPins; }

    CCritSec& lock() const { return filter->LookLock(); }
    int version() const { return filter->PinVersion(); }
    IPin* take(int position) const { return RefPtr<IPin>(filter->GetPin(position)).detach(); }
    void giveBack(IPin* pin) const { pin->Release(); }

    RefPtr<CBaseFilter> filter;
};

}  // namespace

CBaseFilter::CBaseFilter(IUnknown* outer, CCritSec& lock, REFCLSID id)
    : Implements(outer), lock_(lock), id_(id) {}

IUnknown* CBaseFilter::FindInterface(REFIID iid) {
    if (iid == IID_IBaseFilter || iid == IID_IMediaFilter || iid == IID_IPersist) {
        return static_cast<IBaseFilter*>(this);
    }
    if (iid == IID_IAMovieSetup) return static_cast<IAMovieSetup*>(this);
    return nullptr;
}

HRESULT CBaseFilter::GetClassID(CLSID* out) {
    if (!out) return E_POINTER;
    *out = id_;
    return S_OK;
}

void CBaseFilter::SetState(FILTER_STATE state) {
    CAutoLock look(lookLock_);
    state_ = state;
}

HRESULT CBaseFilter::DeactivatePins(int count) {
    HRESULT result = S_OK;
    for (int i = 0; i < count; ++i) {
        CBasePin* pin = GetPin(i);
        if (!pin || !pin->IsConnected()) continue;
        const HRESULT hr = pin->Inactive();
        if (FAILED(hr) && SUCCEEDED(result)) result = hr;
    }
    return result;
}

HRESULT CBaseFilter::ActivatePins() {
    const int count = GetPinCount();
    for (int i = 0; i < count; ++i) {
        CBasePin* pin = GetPin(i);
        if (!pin || !pin->IsConnected()) continue;
        const HRESULT hr = pin->Active();
        if (FAILED(hr)) {
            DeactivatePins(i);
            return hr;
        }
    }
    return S_OK;
}

HRESULT CBaseFilter::Stop() {
    CAutoLock hold(lock_);
    HRESULT hr = S_OK;
    if (state_ != State_Stopped) hr = DeactivatePins(GetPinCount());
    SetState(State_Stopped);
    return hr;
}

HRESULT CBaseFilter::Pause() {
    CAutoLock hold(lock_);
    if (state_ == State_Stopped) {
        const HRESULT hr = ActivatePins();
        if (FAILED(hr)) return hr;
    }
    SetState(State_Paused);
    return S_OK;
}

HRESULT CBaseFilter::Run(REFERENCE_TIME start) {
    CAutoLock hold(lock_);
    startTime_ = start;
    if (state_ == State_Stopped) {
        const HRESULT hr = Pause();
        if (FAILED(hr)) return hr;
    }
    if (state_ != State_Running) {
        for (int i = 0; i < GetPinCount(); ++i) {
            CBasePin* pin = GetPin(i);
            if (!pin || !pin->IsConnected()) continue;
            const HRESULT hr = pin->Run(start);
            if (FAILED(hr)) return hr;
        }
    }
    SetState(State_Running);
    return S_OK;
}

HRESULT CBaseFilter::GetState(DWORD, FILTER_STATE* out) {
    if (!out) return E_POINTER;
    CAutoLock look(lookLock_);
    *out = state_;
    return S_OK;
}

HRESULT CBaseFilter::SetSyncSource(IReferenceClock* clock) {
    RefPtr<IReferenceClock> held(clock);
    CAutoLock hold(lock_);
    CAutoLock look(lookLock_);
    std::swap(clock_, held);
    return S_OK;
}

HRESULT CBaseFilter::GetSyncSource(IReferenceClock** out) {
    if (!out) return E_POINTER;
    CAutoLock look(lookLock_);
    *out = RefPtr(clock_).detach();
    return S_OK;
}

HRESULT CBaseFilter::EnumPins(IEnumPins** out) {
    if (!out) return E_POINTER;
    CAutoLock look(lookLock_);
    return CEnumerator<PinList>::Make({RefPtr<CBaseFilter>(this)}, out);
}

HRESULT CBaseFilter::FindPin(LPCWSTR id, IPin** out) {
    if (!id || !out) return E_POINTER;
    *out = nullptr;
    CAutoLock look(lookLock_);
    for (int i = 0; i < GetPinCount(); ++i) {
        CBasePin* pin = GetPin(i);
        if (!pin || pin->Name() != id) continue;
        *out = RefPtr<IPin>(pin).detach();
        return S_OK;
    }
    return VFW_E_NOT_FOUND;
}

HRESULT CBaseFilter::QueryFilterInfo(FILTER_INFO* out) {
    if (!out) return E_POINTER;
    CAutoLock look(lookLock_);
    *out = {};
    name_.copy(out->achName, std::size(out->achName) - 1);
    out->pGraph = RefPtr<IFilterGraph>(graph_).detach();
    return S_OK;
}

HRESULT CBaseFilter::JoinFilterGraph(IFilterGraph* graph, LPCWSTR name) {
    return guarded([=, this] {
        std::wstring given = name ? name : L"";
        CAutoLock hold(lock_);
        CAutoLock look(lookLock_);
        std::swap(name_, given);
        graph_ = graph;
        return S_OK;
    });
}

HRESULT CBaseFilter::QueryVendorInfo(LPWSTR*) {
    return E_NOTIMPL;
}

HRESULT CBaseFilter::Register() {
    return S_FALSE;
}

HRESULT CBaseFilter::Unregister() {
    return S_FALSE;
}

HRESULT CBaseFilter::NotifyEvent(LONG code, LONG_PTR first, LONG_PTR second) {
    if (!graph_) return VFW_E_NOT_IN_GRAPH;
    RefPtr<IMediaEventSink> sink;
    if (FAILED(graph_->QueryInterface(IID_IMediaEventSink, sink.putVoid()))) return E_NOTIMPL;
    return sink->Notify(code, first, second);
}

HRESULT CBaseFilter::ReconnectPin(IPin* pin, const AM_MEDIA_TYPE* type) {
    if (!graph_) return VFW_E_NOT_IN_GRAPH;
    RefPtr<IFilterGraph2> graph;
    if (SUCCEEDED(graph_->QueryInterface(IID_IFilterGraph2, graph.putVoid())))
        return graph->ReconnectEx(pin, type);
    return graph_->Reconnect(pin);
}

}  // namespace marnoth
