#include "host/Filter.h"

#include "platform/com/Guarded.h"
#include "seam/ClassIds.h"
#include "seam/Limits.h"

namespace marnoth {

CFilter::CFilter(IUnknown* outer, HRESULT* result)
    : CGrooveSampler(this), CBaseFilter(outer, *this, CLSID_Marnoth), m_inputPin(*this) {
    // The soft synth is built before the engine, which it can only meet now.
    setPzi(this);
    m_moduleLock.emplace();
    if (FAILED(*result)) return;
    HRESULT hr = AddOutputPin("Mix Output", nullptr);
    if (SUCCEEDED(hr)) hr = RegisterOutputs();
    // The engine doesn't say when a channel's pin couldn't be made.
    if (SUCCEEDED(hr) && m_outputPinCount != kOutputPins) hr = E_OUTOFMEMORY;
    if (FAILED(hr)) *result = hr;
}

CFilter::~CFilter() {
    RemoveAllOutputPins();
    disconnectLeftOverPins();
    releaseAbandonedSamples();
    m_moduleLock.reset();
    // The engine goes before the soft synth, and the voices in the queue are the engine's to free.
    DropAllEvents();
    setPzi(nullptr);
}

IUnknown* CFilter::FindInterface(REFIID iid) {
    if (iid == IID_IGrooveSampler || iid == IID_IDispatch) return static_cast<IGrooveSampler*>(this);
    if (iid == IID_IMarnothFaults) return static_cast<IMarnothFaults*>(this);
    if (iid == IID_IMarnothOptions) return static_cast<IMarnothOptions*>(this);
    if (iid == IID_IKvxSoftSynth || iid == IID_IKvxSoftSynth2) return static_cast<IKvxSoftSynth2*>(this);
    if (iid == IID_IKvxNotify) return static_cast<IKvxNotify*>(this);
    if (iid == IID_IKvxInputPort) return static_cast<IKvxInputPort*>(this);
    if (iid == IID_IPersistStream) return static_cast<IPersistStream*>(this);
    if (iid == IID_ISpecifyPropertyPages) return static_cast<ISpecifyPropertyPages*>(this);
    return CBaseFilter::FindInterface(iid);
}

HRESULT CFilter::GetPages(CAUUID* pages) {
    if (!pages) return E_POINTER;
    pages->cElems = 0;
    pages->pElems = static_cast<GUID*>(CoTaskMemAlloc(sizeof(GUID)));
    if (!pages->pElems) return E_OUTOFMEMORY;
    pages->cElems = 1;
    *pages->pElems = CLSID_MarnothProperties;
    return S_OK;
}

HRESULT CFilter::WriteToStream(IStream* stream) {
    return guarded([&] { return SaveState(stream); });
}

HRESULT CFilter::ReadFromStream(IStream* stream) {
    return guarded([&] { return LoadState(stream); });
}

HRESULT CFilter::Pause() {
    FILTER_STATE before = State_Paused;
    HRESULT hr = S_OK;
    {
        CAutoLock lock(pzi());
        before = State();
        if (before == State_Paused) return S_OK;
        m_streamPosition = 0;
        hr = CBaseFilter::Pause();
    }
    if (SUCCEEDED(hr)) hr = endOfStreamWithoutInput();
    CAutoLock lock(pzi());
    if (SUCCEEDED(hr) && before == State_Stopped) hr = guarded([this] { return PrepareResources(); });
    return hr;
}

/// The stream's lock comes before the instrument's, so this is called without that.
HRESULT CFilter::endOfStreamWithoutInput() {
    RefPtr<IPin> source;
    return m_inputPin.ConnectedTo(source.put()) == S_OK ? S_OK : EndOfStream();
}

HRESULT CFilter::Run(REFERENCE_TIME start) {
    FILTER_STATE before = State_Stopped;
    GetState(0, &before);
    // Here, since the platform's operation would do it under the lock.
    if (before != State_Stopped || SUCCEEDED(Pause())) CBaseFilter::Run(start);
    endOfStreamWithoutInput();
    SetRefreshRequest(2);
    return S_OK;
}

HRESULT CFilter::Stop() {
    HRESULT hr = S_OK;
    {
        CAutoLock lock(pzi());
        if (State() == State_Stopped) return S_OK;
        releaseAbandonedSamples();
        hr = CBaseFilter::Stop();
    }
    awaitStream();
    CAutoLock lock(pzi());
    if (SUCCEEDED(hr)) hr = FreeResources();
    ClearPhaseAnchor();
    SetRefreshRequest(2);
    return hr;
}

/// Returns when no block is on its way any more. A block may need the instrument's lock, so whoever stops the
/// graph from under that doesn't wait.
void CFilter::awaitStream() {
    if (!pzi().isHeldHere()) const CAutoLock stream(m_streamLock);
}

}  // namespace marnoth
