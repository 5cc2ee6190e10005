#include "host/SoftSynth.h"

namespace marnoth {

namespace {

/// Asks `context` for a service; null, with the failure as result, when it has none.
template <class Service>
HRESULT takeService(IUnknown* context, const IID& iid, RefPtr<Service>& service) {
    void* found = nullptr;
    const HRESULT hr = context->QueryInterface(iid, &found);
    if (FAILED(hr)) return hr;
    service = RefPtr<Service>::adopt(static_cast<Service*>(found));
    return service ? S_OK : E_NOINTERFACE;
}

}  // namespace

CSoftSynth::~CSoftSynth() {
    if (m_pzi) DropAllEvents();
    releaseServices();
}

HRESULT CSoftSynth::AttachHost(IUnknown* context) {
    CAutoLock lock(*m_pzi);
    if (m_attached) return E_UNEXPECTED;
    if (!context) return E_POINTER;
    if (const HRESULT hr = takeService(context, IID_IKvxTempoMap, m_tempoMap); FAILED(hr)) return hr;
    takeService(context, IID_IKvxTimeConverter, m_timeConverter);
    takeService(context, IID_IKvxProjectKeyMap, m_projectKeyMap);
    m_attached = true;
    takeService(context, IID_IKvxEventTarget, m_eventTarget);
    takeService(context, IID_IKvxPinHost, m_pinHost);
    context->Release();
    return S_OK;
}

HRESULT CSoftSynth::DetachHost() {
    CAutoLock lock(*m_pzi);
    releaseServices();
    m_attached = false;
    return S_OK;
}

void CSoftSynth::releaseServices() {
    m_tempoMap.reset();
    m_timeConverter.reset();
    m_eventTarget.reset();
    m_pinHost.reset();
    m_projectKeyMap.reset();
}

HRESULT CSoftSynth::SetEventTarget(IUnknown* target) {
    CAutoLock lock(*m_pzi);
    m_eventTarget = RefPtr<IUnknown>(target);
    return S_OK;
}

HRESULT CSoftSynth::GetEventTarget(IUnknown** out) {
    CAutoLock lock(*m_pzi);
    if (!out) return E_POINTER;
    *out = RefPtr<IUnknown>(m_eventTarget).detach();
    return *out ? S_OK : S_FALSE;
}

HRESULT CSoftSynth::GetBankList(std::int32_t** banks, std::uint32_t* count) {
    CAutoLock lock(*m_pzi);
    return m_instrument->GetBankList(banks, count);
}

HRESULT CSoftSynth::QueryPatchFalse(std::uint32_t bank, std::uint32_t patch) {
    CAutoLock lock(*m_pzi);
    return m_instrument->QueryPatchFalse(static_cast<std::int32_t>(bank), static_cast<std::int32_t>(patch));
}

HRESULT CSoftSynth::QueryPatchTrue(std::uint32_t bank, std::uint32_t patch) {
    CAutoLock lock(*m_pzi);
    return m_instrument->QueryPatchTrue(static_cast<std::int32_t>(bank), static_cast<std::int32_t>(patch));
}

HRESULT CSoftSynth::GetPatchList(std::uint32_t bank, IKvxNameList** list) {
    CAutoLock lock(*m_pzi);
    return m_instrument->GetPatchList(static_cast<std::int32_t>(bank), list);
}

HRESULT CSoftSynth::GetNoteList(std::uint32_t bank, std::uint32_t patch, IKvxNameList** list) {
    CAutoLock lock(*m_pzi);
    return m_instrument->GetNoteList(static_cast<std::int32_t>(bank), static_cast<std::int32_t>(patch), list);
}

HRESULT CSoftSynth::GetControllerList(IKvxNameList** list) {
    CAutoLock lock(*m_pzi);
    return m_instrument->GetControllerList(list);
}

HRESULT CSoftSynth::GetRpnList(IKvxNameList** list) {
    CAutoLock lock(*m_pzi);
    return m_instrument->GetRpnList(list);
}

HRESULT CSoftSynth::GetNrpnList(IKvxNameList** list) {
    CAutoLock lock(*m_pzi);
    return m_instrument->GetNrpnList(list);
}

HRESULT CSoftSynth::GetInstrument(std::uint32_t, IKvxInstrument** instrument) {
    CAutoLock lock(*m_pzi);
    if (!instrument) return E_POINTER;
    *instrument = RefPtr<CInstrument>(m_instrument).detach();
    return S_OK;
}

}  // namespace marnoth
