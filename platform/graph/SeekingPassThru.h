#pragma once

#include <atomic>

#include "platform/com/RefPtr.h"
#include "platform/com/Unknown.h"
#include "platform/graph/Graph.h"

namespace marnoth {

/// Lets an output pin be asked to seek: hands every operation of `IMediaSeeking` and `IMediaPosition` to the
/// pin that is upstream of its filter's input pin at that moment. `E_NOTIMPL` where there is none, or where
/// that pin doesn't have the interface.
///
/// A part of the output pin, which keeps its inner identity and lives longer. The input pin lives longer too
/// and isn't held: it holds the output pin, by way of its filter. Any thread.
class CSeekingPassThru final : public Implements<CUnknown, ISeekingPassThru, IMediaSeeking, IMediaPosition> {
public:
    explicit CSeekingPassThru(IUnknown* outer) : Implements(outer) {}

    // ISeekingPassThru

    /// Once: `E_FAIL` after the first time. Only for filters that send on what they get: `E_NOTIMPL` for one
    /// that renders.
    HRESULT Init(BOOL supportRendering, IPin* inputPin) override;

    // IMediaSeeking

    HRESULT GetCapabilities(DWORD* capabilities) override;
    HRESULT CheckCapabilities(DWORD* capabilities) override;
    HRESULT IsFormatSupported(const GUID* format) override;
    HRESULT QueryPreferredFormat(GUID* format) override;
    HRESULT GetTimeFormat(GUID* format) override;
    HRESULT IsUsingTimeFormat(const GUID* format) override;
    HRESULT SetTimeFormat(const GUID* format) override;
    HRESULT GetDuration(LONGLONG* duration) override;
    HRESULT GetStopPosition(LONGLONG* stop) override;
    HRESULT GetCurrentPosition(LONGLONG* current) override;
    HRESULT ConvertTimeFormat(LONGLONG* target, const GUID* targetFormat, LONGLONG source,
                              const GUID* sourceFormat) override;
    HRESULT SetPositions(LONGLONG* current, DWORD currentFlags, LONGLONG* stop, DWORD stopFlags) override;
    HRESULT GetPositions(LONGLONG* current, LONGLONG* stop) override;
    HRESULT GetAvailable(LONGLONG* earliest, LONGLONG* latest) override;
    HRESULT SetRate(double rate) override;
    HRESULT GetRate(double* rate) override;
    HRESULT GetPreroll(LONGLONG* preroll) override;

    // IMediaPosition and its IDispatch

    HRESULT GetTypeInfoCount(UINT* count) override;
    HRESULT GetTypeInfo(UINT index, LCID locale, ITypeInfo** out) override;
    HRESULT GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID locale, DISPID* ids) override;
    HRESULT Invoke(DISPID id, REFIID iid, LCID locale, WORD flags, DISPPARAMS* arguments, VARIANT* result,
                   EXCEPINFO* exception, UINT* argumentError) override;
    HRESULT get_Duration(double* seconds) override;
    HRESULT put_CurrentPosition(double seconds) override;
    HRESULT get_CurrentPosition(double* seconds) override;
    HRESULT get_StopTime(double* seconds) override;
    HRESULT put_StopTime(double seconds) override;
    HRESULT get_PrerollTime(double* seconds) override;
    HRESULT put_PrerollTime(double seconds) override;
    HRESULT put_Rate(double rate) override;
    HRESULT get_Rate(double* rate) override;
    HRESULT CanSeekForward(LONG* can) override;
    HRESULT CanSeekBackward(LONG* can) override;

private:
    IUnknown* FindInterface(REFIID iid) override;

    std::atomic<IPin*> inputPin_ = nullptr;
};

/// Makes the pass-through of an output pin: the system's own on Windows, a `CSeekingPassThru` elsewhere.
/// `outer` is the output pin, `inputPin` that of its filter; both live longer. `*inner` is the identity for
/// the pin to keep.
HRESULT makeSeekingPassThru(IUnknown* outer, IPin* inputPin, RefPtr<IUnknown>* inner);

}  // namespace marnoth
