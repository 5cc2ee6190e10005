#pragma once

#include <any>
#include <string>
#include <vector>

#include "support/FakePin.h"

namespace marnoth::test {

/// The pin upstream of an input pin, which can seek: writes down every operation with its arguments, and
/// answers each with the same code.
class SeekingSourcePin : public FakePin<IPin, IMediaSeeking, IMediaPosition> {
public:
    struct Call {
        std::string operation;
        std::vector<std::any> arguments;
    };

    SeekingSourcePin() : FakePin(PINDIR_OUTPUT) {}

    std::vector<Call> calls;
    HRESULT answer = S_OK;
    bool seeks = true;      ///< has `IMediaSeeking`
    bool positions = true;  ///< has `IMediaPosition`

    // IMediaSeeking
    HRESULT GetCapabilities(DWORD* capabilities) override { return note("GetCapabilities", capabilities); }
    HRESULT CheckCapabilities(DWORD* capabilities) override {
        return note("CheckCapabilities", capabilities);
    }
    HRESULT IsFormatSupported(const GUID* format) override { return note("IsFormatSupported", format); }
    HRESULT QueryPreferredFormat(GUID* format) override { return note("QueryPreferredFormat", format); }
    HRESULT GetTimeFormat(GUID* format) override { return note("GetTimeFormat", format); }
    HRESULT IsUsingTimeFormat(const GUID* format) override { return note("IsUsingTimeFormat", format); }
    HRESULT SetTimeFormat(const GUID* format) override { return note("SetTimeFormat", format); }
    HRESULT GetDuration(LONGLONG* duration) override { return note("GetDuration", duration); }
    HRESULT GetStopPosition(LONGLONG* stop) override { return note("GetStopPosition", stop); }
    HRESULT GetCurrentPosition(LONGLONG* current) override { return note("GetCurrentPosition", current); }
    HRESULT ConvertTimeFormat(LONGLONG* target, const GUID* targetFormat, LONGLONG source,
                              const GUID* sourceFormat) override {
        return note("ConvertTimeFormat", target, targetFormat, source, sourceFormat);
    }
    HRESULT SetPositions(LONGLONG* current, DWORD currentFlags, LONGLONG* stop, DWORD stopFlags) override {
        return note("SetPositions", current, currentFlags, stop, stopFlags);
    }
    HRESULT GetPositions(LONGLONG* current, LONGLONG* stop) override {
        return note("GetPositions", current, stop);
    }
    HRESULT GetAvailable(LONGLONG* earliest, LONGLONG* latest) override {
        return note("GetAvailable", earliest, latest);
    }
    HRESULT SetRate(double rate) override { return note("SetRate", rate); }
    HRESULT GetRate(double* rate) override { return note("GetRate", rate); }
    HRESULT GetPreroll(LONGLONG* preroll) override { return note("GetPreroll", preroll); }

    // IMediaPosition
    HRESULT GetTypeInfoCount(UINT* count) override { return note("GetTypeInfoCount", count); }
    HRESULT GetTypeInfo(UINT index, LCID locale, ITypeInfo** out) override {
        return note("GetTypeInfo", index, locale, out);
    }
    HRESULT GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID locale, DISPID* ids) override {
        return note("GetIDsOfNames", &iid, names, count, locale, ids);
    }
    HRESULT Invoke(DISPID id, REFIID iid, LCID locale, WORD flags, DISPPARAMS* arguments, VARIANT* result,
                   EXCEPINFO* exception, UINT* argumentError) override {
        return note("Invoke", id, &iid, locale, flags, arguments, result, exception, argumentError);
    }
    HRESULT get_Duration(double* seconds) override { return note("get_Duration", seconds); }
    HRESULT put_CurrentPosition(double seconds) override { return note("put_CurrentPosition", seconds); }
    HRESULT get_CurrentPosition(double* seconds) override { return note("get_CurrentPosition", seconds); }
    HRESULT get_StopTime(double* seconds) override { return note("get_StopTime", seconds); }
    HRESULT put_StopTime(double seconds) override { return note("put_StopTime", seconds); }
    HRESULT get_PrerollTime(double* seconds) override { return note("get_PrerollTime", seconds); }
    HRESULT put_PrerollTime(double seconds) override { return note("put_PrerollTime", seconds); }
    HRESULT put_Rate(double rate) override { return note("put_Rate", rate); }
    HRESULT get_Rate(double* rate) override { return note("get_Rate", rate); }
    HRESULT CanSeekForward(LONG* can) override { return note("CanSeekForward", can); }
    HRESULT CanSeekBackward(LONG* can) override { return note("CanSeekBackward", can); }

protected:
    void* find(REFIID iid) override {
        if (iid == IID_IMediaSeeking && seeks) return static_cast<IMediaSeeking*>(this);
        if (iid == IID_IMediaPosition && positions) return static_cast<IMediaPosition*>(this);
        return iid == IID_IUnknown || iid == IID_IPin ? static_cast<IPin*>(this) : nullptr;
    }

private:
    template <class... Arguments>
    HRESULT note(const char* operation, Arguments... arguments) {
        calls.push_back({operation, {arguments...}});
        return answer;
    }
};

}  // namespace marnoth::test
