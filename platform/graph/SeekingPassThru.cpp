#include "platform/graph/SeekingPassThru.h"

#include <new>
#include <utility>

namespace marnoth {

namespace {

template <class Interface>
const IID& iidOf();
template <>
const IID& iidOf<IMediaSeeking>() {
    return IID_IMediaSeeking;
}
template <>
const IID& iidOf<IMediaPosition>() {
    return IID_IMediaPosition;
}
/// The operations that `IMediaPosition` has from its base; they begin its table.
template <>
const IID& iidOf<IDispatch>() {
    return IID_IMediaPosition;
}

/// Calls an operation of the pin that is connected to `inputPin`.
template <class Interface, class... Parameters, class... Arguments>
HRESULT askUpstream(IPin* inputPin, HRESULT (Interface::*operation)(Parameters...),
                    Arguments&&... arguments) {
    RefPtr<IPin> upstream;
    if (!inputPin || FAILED(inputPin->ConnectedTo(upstream.put())) || !upstream) return E_NOTIMPL;
    RefPtr<Interface> found;
    if (FAILED(upstream->QueryInterface(iidOf<Interface>(), found.putVoid())) || !found) return E_NOTIMPL;
    return (found.get()->*operation)(std::forward<Arguments>(arguments)...);
}

}  // namespace

HRESULT CSeekingPassThru::Init(BOOL supportRendering, IPin* inputPin) {
    if (!inputPin) return E_POINTER;
    if (supportRendering) return E_NOTIMPL;
    IPin* none = nullptr;
    return inputPin_.compare_exchange_strong(none, inputPin) ? S_OK : E_FAIL;
}

IUnknown* CSeekingPassThru::FindInterface(REFIID iid) {
    if (iid == IID_ISeekingPassThru) return static_cast<ISeekingPassThru*>(this);
    if (iid == IID_IMediaSeeking) return static_cast<IMediaSeeking*>(this);
    if (iid == IID_IMediaPosition) return static_cast<IMediaPosition*>(this);
    return nullptr;
}

HRESULT CSeekingPassThru::GetCapabilities(DWORD* capabilities) {
    return askUpstream(inputPin_, &IMediaSeeking::GetCapabilities, capabilities);
}

HRESULT CSeekingPassThru::CheckCapabilities(DWORD* capabilities) {
    return askUpstream(inputPin_, &IMediaSeeking::CheckCapabilities, capabilities);
}

HRESULT CSeekingPassThru::IsFormatSupported(const GUID* format) {
    return askUpstream(inputPin_, &IMediaSeeking::IsFormatSupported, format);
}

HRESULT CSeekingPassThru::QueryPreferredFormat(GUID* format) {
    return askUpstream(inputPin_, &IMediaSeeking::QueryPreferredFormat, format);
}

HRESULT CSeekingPassThru::GetTimeFormat(GUID* format) {
    return askUpstream(inputPin_, &IMediaSeeking::GetTimeFormat, format);
}

HRESULT CSeekingPassThru::IsUsingTimeFormat(const GUID* format) {
    return askUpstream(inputPin_, &IMediaSeeking::IsUsingTimeFormat, format);
}

HRESULT CSeekingPassThru::SetTimeFormat(const GUID* format) {
    return askUpstream(inputPin_, &IMediaSeeking::SetTimeFormat, format);
}

HRESULT CSeekingPassThru::GetDuration(LONGLONG* duration) {
    return askUpstream(inputPin_, &IMediaSeeking::GetDuration, duration);
}

HRESULT CSeekingPassThru::GetStopPosition(LONGLONG* stop) {
    return askUpstream(inputPin_, &IMediaSeeking::GetStopPosition, stop);
}

HRESULT CSeekingPassThru::GetCurrentPosition(LONGLONG* current) {
    return askUpstream(inputPin_, &IMediaSeeking::GetCurrentPosition, current);
}

HRESULT CSeekingPassThru::ConvertTimeFormat(LONGLONG* target, const GUID* targetFormat, LONGLONG source,
                                            const GUID* sourceFormat) {
    return askUpstream(inputPin_, &IMediaSeeking::ConvertTimeFormat, target, targetFormat, source,
                       sourceFormat);
}

HRESULT CSeekingPassThru::SetPositions(LONGLONG* current, DWORD currentFlags, LONGLONG* stop,
                                       DWORD stopFlags) {
    return askUpstream(inputPin_, &IMediaSeeking::SetPositions, current, currentFlags, stop, stopFlags);
}

HRESULT CSeekingPassThru::GetPositions(LONGLONG* current, LONGLONG* stop) {
    return askUpstream(inputPin_, &IMediaSeeking::GetPositions, current, stop);
}

HRESULT CSeekingPassThru::GetAvailable(LONGLONG* earliest, LONGLONG* latest) {
    return askUpstream(inputPin_, &IMediaSeeking::GetAvailable, earliest, latest);
}

HRESULT CSeekingPassThru::SetRate(double rate) {
    return askUpstream(inputPin_, &IMediaSeeking::SetRate, rate);
}

HRESULT CSeekingPassThru::GetRate(double* rate) {
    return askUpstream(inputPin_, &IMediaSeeking::GetRate, rate);
}

HRESULT CSeekingPassThru::GetPreroll(LONGLONG* preroll) {
    return askUpstream(inputPin_, &IMediaSeeking::GetPreroll, preroll);
}

HRESULT CSeekingPassThru::GetTypeInfoCount(UINT* count) {
    return askUpstream(inputPin_, &IMediaPosition::GetTypeInfoCount, count);
}

HRESULT CSeekingPassThru::GetTypeInfo(UINT index, LCID locale, ITypeInfo** out) {
    return askUpstream(inputPin_, &IMediaPosition::GetTypeInfo, index, locale, out);
}

HRESULT CSeekingPassThru::GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID locale, DISPID* ids) {
    return askUpstream(inputPin_, &IMediaPosition::GetIDsOfNames, iid, names, count, locale, ids);
}

HRESULT CSeekingPassThru::Invoke(DISPID id, REFIID iid, LCID locale, WORD flags, DISPPARAMS* arguments,
                                 VARIANT* result, EXCEPINFO* exception, UINT* argumentError) {
    return askUpstream(inputPin_, &IMediaPosition::Invoke, id, iid, locale, flags, arguments, result,
                       exception, argumentError);
}

HRESULT CSeekingPassThru::get_Duration(double* seconds) {
    return askUpstream(inputPin_, &IMediaPosition::get_Duration, seconds);
}

HRESULT CSeekingPassThru::put_CurrentPosition(double seconds) {
    return askUpstream(inputPin_, &IMediaPosition::put_CurrentPosition, seconds);
}

HRESULT CSeekingPassThru::get_CurrentPosition(double* seconds) {
    return askUpstream(inputPin_, &IMediaPosition::get_CurrentPosition, seconds);
}

HRESULT CSeekingPassThru::get_StopTime(double* seconds) {
    return askUpstream(inputPin_, &IMediaPosition::get_StopTime, seconds);
}

HRESULT CSeekingPassThru::put_StopTime(double seconds) {
    return askUpstream(inputPin_, &IMediaPosition::put_StopTime, seconds);
}

HRESULT CSeekingPassThru::get_PrerollTime(double* seconds) {
    return askUpstream(inputPin_, &IMediaPosition::get_PrerollTime, seconds);
}

HRESULT CSeekingPassThru::put_PrerollTime(double seconds) {
    return askUpstream(inputPin_, &IMediaPosition::put_PrerollTime, seconds);
}

HRESULT CSeekingPassThru::put_Rate(double rate) {
    return askUpstream(inputPin_, &IMediaPosition::put_Rate, rate);
}

HRESULT CSeekingPassThru::get_Rate(double* rate) {
    return askUpstream(inputPin_, &IMediaPosition::get_Rate, rate);
}

HRESULT CSeekingPassThru::CanSeekForward(LONG* can) {
    return askUpstream(inputPin_, &IMediaPosition::CanSeekForward, can);
}

HRESULT CSeekingPassThru::CanSeekBackward(LONG* can) {
    return askUpstream(inputPin_, &IMediaPosition::CanSeekBackward, can);
}

namespace {

#ifdef _WIN32
HRESULT makeInner(IUnknown* outer, RefPtr<IUnknown>* inner) {
    return CoCreateInstance(CLSID_SeekingPassThru, outer, CLSCTX_INPROC_SERVER, IID_IUnknown,
                            inner->putVoid());
}
#else
HRESULT makeInner(IUnknown* outer, RefPtr<IUnknown>* inner) try {
    *inner = RefPtr<IUnknown>::adopt((new CSeekingPassThru(outer))->Inner());
    return S_OK;
} catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
}
#endif

}  // namespace

HRESULT makeSeekingPassThru(IUnknown* outer, IPin* inputPin, RefPtr<IUnknown>* inner) {
    RefPtr<IUnknown> made;
    if (const HRESULT hr = makeInner(outer, &made); FAILED(hr)) return hr;
    RefPtr<ISeekingPassThru> passThru;
    HRESULT hr = made->QueryInterface(IID_ISeekingPassThru, passThru.putVoid());
    if (SUCCEEDED(hr)) hr = passThru->Init(FALSE, inputPin);
    if (FAILED(hr)) return hr;
    *inner = std::move(made);
    return S_OK;
}

}  // namespace marnoth
