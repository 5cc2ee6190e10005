#pragma once

/// Records and interfaces of the audio graph, for platforms whose headers don't have them.
/// Include "platform/graph/Graph.h" instead of this.

#include "platform/com/Com.h"

/// Units of 100 ns.
using REFERENCE_TIME = LONGLONG;

inline constexpr IID IID_IPin{0x56A86891, 0x0AD4, 0x11CE, {0xB0, 0x3A, 0x00, 0x20, 0xAF, 0x0B, 0xA7, 0x70}};
inline constexpr IID IID_IEnumPins{
    0x56A86892, 0x0AD4, 0x11CE, {0xB0, 0x3A, 0x00, 0x20, 0xAF, 0x0B, 0xA7, 0x70}};
inline constexpr IID IID_IEnumFilters{
    0x56A86893, 0x0AD4, 0x11CE, {0xB0, 0x3A, 0x00, 0x20, 0xAF, 0x0B, 0xA7, 0x70}};
inline constexpr IID IID_IBaseFilter{
    0x56A86895, 0x0AD4, 0x11CE, {0xB0, 0x3A, 0x00, 0x20, 0xAF, 0x0B, 0xA7, 0x70}};
inline constexpr IID IID_IReferenceClock{
    0x56A86897, 0x0AD4, 0x11CE, {0xB0, 0x3A, 0x00, 0x20, 0xAF, 0x0B, 0xA7, 0x70}};
inline constexpr IID IID_IMediaFilter{
    0x56A86899, 0x0AD4, 0x11CE, {0xB0, 0x3A, 0x00, 0x20, 0xAF, 0x0B, 0xA7, 0x70}};
inline constexpr IID IID_IMediaSample{
    0x56A8689A, 0x0AD4, 0x11CE, {0xB0, 0x3A, 0x00, 0x20, 0xAF, 0x0B, 0xA7, 0x70}};
inline constexpr IID IID_IMemAllocator{
    0x56A8689C, 0x0AD4, 0x11CE, {0xB0, 0x3A, 0x00, 0x20, 0xAF, 0x0B, 0xA7, 0x70}};
inline constexpr IID IID_IMemInputPin{
    0x56A8689D, 0x0AD4, 0x11CE, {0xB0, 0x3A, 0x00, 0x20, 0xAF, 0x0B, 0xA7, 0x70}};
inline constexpr IID IID_IFilterGraph{
    0x56A8689F, 0x0AD4, 0x11CE, {0xB0, 0x3A, 0x00, 0x20, 0xAF, 0x0B, 0xA7, 0x70}};
inline constexpr IID IID_IMediaEventSink{
    0x56A868A2, 0x0AD4, 0x11CE, {0xB0, 0x3A, 0x00, 0x20, 0xAF, 0x0B, 0xA7, 0x70}};
inline constexpr IID IID_IGraphBuilder{
    0x56A868A9, 0x0AD4, 0x11CE, {0xB0, 0x3A, 0x00, 0x20, 0xAF, 0x0B, 0xA7, 0x70}};
inline constexpr IID IID_IMediaPosition{
    0x56A868B2, 0x0AD4, 0x11CE, {0xB0, 0x3A, 0x00, 0x20, 0xAF, 0x0B, 0xA7, 0x70}};
inline constexpr IID IID_IEnumMediaTypes{
    0x89C31040, 0x846B, 0x11CE, {0x97, 0xD3, 0x00, 0xAA, 0x00, 0x55, 0x59, 0x5A}};
inline constexpr IID IID_IAMovieSetup{
    0xA3D8CEC0, 0x7E5A, 0x11CF, {0xBB, 0xC5, 0x00, 0x80, 0x5F, 0x6C, 0xEF, 0x20}};
inline constexpr IID IID_IMediaSeeking{
    0x36B73880, 0xC2C8, 0x11CF, {0x8B, 0x46, 0x00, 0x80, 0x5F, 0x6C, 0xEF, 0x60}};
inline constexpr IID IID_IFilterGraph2{
    0x36B73882, 0xC2C8, 0x11CF, {0x8B, 0x46, 0x00, 0x80, 0x5F, 0x6C, 0xEF, 0x60}};
inline constexpr IID IID_ISeekingPassThru{
    0x36B73883, 0xC2C8, 0x11CF, {0x8B, 0x46, 0x00, 0x80, 0x5F, 0x6C, 0xEF, 0x60}};
inline constexpr IID IID_IAMFilterMiscFlags{
    0x2DD74950, 0xA890, 0x11D1, {0xAB, 0xE8, 0x00, 0xA0, 0xC9, 0x05, 0xF3, 0x75}};

struct IPin;
struct IBaseFilter;
struct IFilterGraph;

/// Describes what flows through a connection. The format block is `CoTaskMemAlloc`'s; whoever has a copy of
/// the record owns its block and its reference to `pUnk`.
struct AM_MEDIA_TYPE {
    GUID majortype;
    GUID subtype;
    BOOL bFixedSizeSamples;
    BOOL bTemporalCompression;
    ULONG lSampleSize;
    GUID formattype;
    IUnknown* pUnk;
    ULONG cbFormat;  ///< bytes at `pbFormat`
    BYTE* pbFormat;
};

enum PIN_DIRECTION { PINDIR_INPUT = 0, PINDIR_OUTPUT = 1 };
enum FILTER_STATE { State_Stopped = 0, State_Paused = 1, State_Running = 2 };

struct PIN_INFO {
    IBaseFilter* pFilter;  ///< with a reference; may be null
    PIN_DIRECTION dir;
    WCHAR achName[128];
};

struct FILTER_INFO {
    WCHAR achName[128];
    IFilterGraph* pGraph;  ///< with a reference; null outside a graph
};

struct ALLOCATOR_PROPERTIES {
    LONG cBuffers;
    LONG cbBuffer;  ///< bytes, without the prefix
    LONG cbAlign;   ///< bytes; 1 for any address
    LONG cbPrefix;  ///< bytes before each buffer
};

struct IReferenceClock : IUnknown {
    virtual HRESULT GetTime(REFERENCE_TIME* time) = 0;
    virtual HRESULT AdviseTime(REFERENCE_TIME base, REFERENCE_TIME stream, DWORD_PTR event,
                               DWORD_PTR* cookie) = 0;
    virtual HRESULT AdvisePeriodic(REFERENCE_TIME start, REFERENCE_TIME period, DWORD_PTR semaphore,
                                   DWORD_PTR* cookie) = 0;
    virtual HRESULT Unadvise(DWORD_PTR cookie) = 0;
};

struct IEnumPins : IUnknown {
    virtual HRESULT Next(ULONG count, IPin** pins, ULONG* fetched) = 0;
    virtual HRESULT Skip(ULONG count) = 0;
    virtual HRESULT Reset() = 0;
    virtual HRESULT Clone(IEnumPins** out) = 0;
};

struct IEnumMediaTypes : IUnknown {
    virtual HRESULT Next(ULONG count, AM_MEDIA_TYPE** types, ULONG* fetched) = 0;
    virtual HRESULT Skip(ULONG count) = 0;
    virtual HRESULT Reset() = 0;
    virtual HRESULT Clone(IEnumMediaTypes** out) = 0;
};

struct IEnumFilters : IUnknown {
    virtual HRESULT Next(ULONG count, IBaseFilter** filters, ULONG* fetched) = 0;
    virtual HRESULT Skip(ULONG count) = 0;
    virtual HRESULT Reset() = 0;
    virtual HRESULT Clone(IEnumFilters** out) = 0;
};

struct IPin : IUnknown {
    virtual HRESULT Connect(IPin* receiver, const AM_MEDIA_TYPE* type) = 0;
    virtual HRESULT ReceiveConnection(IPin* connector, const AM_MEDIA_TYPE* type) = 0;
    virtual HRESULT Disconnect() = 0;
    virtual HRESULT ConnectedTo(IPin** out) = 0;
    virtual HRESULT ConnectionMediaType(AM_MEDIA_TYPE* out) = 0;
    virtual HRESULT QueryPinInfo(PIN_INFO* out) = 0;
    virtual HRESULT QueryDirection(PIN_DIRECTION* out) = 0;
    virtual HRESULT QueryId(LPWSTR* out) = 0;
    virtual HRESULT QueryAccept(const AM_MEDIA_TYPE* type) = 0;
    virtual HRESULT EnumMediaTypes(IEnumMediaTypes** out) = 0;
    virtual HRESULT QueryInternalConnections(IPin** pins, ULONG* count) = 0;
    virtual HRESULT EndOfStream() = 0;
    virtual HRESULT BeginFlush() = 0;
    virtual HRESULT EndFlush() = 0;
    virtual HRESULT NewSegment(REFERENCE_TIME start, REFERENCE_TIME stop, double rate) = 0;
};

struct IMediaSample : IUnknown {
    virtual HRESULT GetPointer(BYTE** out) = 0;
    virtual LONG GetSize() = 0;
    virtual HRESULT GetTime(REFERENCE_TIME* start, REFERENCE_TIME* end) = 0;
    virtual HRESULT SetTime(REFERENCE_TIME* start, REFERENCE_TIME* end) = 0;
    virtual HRESULT IsSyncPoint() = 0;
    virtual HRESULT SetSyncPoint(BOOL isSyncPoint) = 0;
    virtual HRESULT IsPreroll() = 0;
    virtual HRESULT SetPreroll(BOOL isPreroll) = 0;
    virtual LONG GetActualDataLength() = 0;
    virtual HRESULT SetActualDataLength(LONG bytes) = 0;
    virtual HRESULT GetMediaType(AM_MEDIA_TYPE** out) = 0;
    virtual HRESULT SetMediaType(AM_MEDIA_TYPE* type) = 0;
    virtual HRESULT IsDiscontinuity() = 0;
    virtual HRESULT SetDiscontinuity(BOOL isDiscontinuity) = 0;
    virtual HRESULT GetMediaTime(LONGLONG* start, LONGLONG* end) = 0;
    virtual HRESULT SetMediaTime(LONGLONG* start, LONGLONG* end) = 0;
};

struct IMemAllocator : IUnknown {
    virtual HRESULT SetProperties(ALLOCATOR_PROPERTIES* request, ALLOCATOR_PROPERTIES* actual) = 0;
    virtual HRESULT GetProperties(ALLOCATOR_PROPERTIES* out) = 0;
    virtual HRESULT Commit() = 0;
    virtual HRESULT Decommit() = 0;
    virtual HRESULT GetBuffer(IMediaSample** out, REFERENCE_TIME* start, REFERENCE_TIME* end,
                              DWORD flags) = 0;
    virtual HRESULT ReleaseBuffer(IMediaSample* sample) = 0;
};

struct IMemInputPin : IUnknown {
    virtual HRESULT GetAllocator(IMemAllocator** out) = 0;
    virtual HRESULT NotifyAllocator(IMemAllocator* allocator, BOOL readOnly) = 0;
    virtual HRESULT GetAllocatorRequirements(ALLOCATOR_PROPERTIES* out) = 0;
    virtual HRESULT Receive(IMediaSample* sample) = 0;
    virtual HRESULT ReceiveMultiple(IMediaSample** samples, LONG count, LONG* processed) = 0;
    virtual HRESULT ReceiveCanBlock() = 0;
};

struct IMediaFilter : IPersist {
    virtual HRESULT Stop() = 0;
    virtual HRESULT Pause() = 0;
    virtual HRESULT Run(REFERENCE_TIME start) = 0;
    virtual HRESULT GetState(DWORD timeoutMilliseconds, FILTER_STATE* out) = 0;
    virtual HRESULT SetSyncSource(IReferenceClock* clock) = 0;
    virtual HRESULT GetSyncSource(IReferenceClock** out) = 0;
};

struct IBaseFilter : IMediaFilter {
    virtual HRESULT EnumPins(IEnumPins** out) = 0;
    virtual HRESULT FindPin(LPCWSTR id, IPin** out) = 0;
    virtual HRESULT QueryFilterInfo(FILTER_INFO* out) = 0;
    virtual HRESULT JoinFilterGraph(IFilterGraph* graph, LPCWSTR name) = 0;
    virtual HRESULT QueryVendorInfo(LPWSTR* out) = 0;
};

struct IFilterGraph : IUnknown {
    virtual HRESULT AddFilter(IBaseFilter* filter, LPCWSTR name) = 0;
    virtual HRESULT RemoveFilter(IBaseFilter* filter) = 0;
    virtual HRESULT EnumFilters(IEnumFilters** out) = 0;
    virtual HRESULT FindFilterByName(LPCWSTR name, IBaseFilter** out) = 0;
    virtual HRESULT ConnectDirect(IPin* output, IPin* input, const AM_MEDIA_TYPE* type) = 0;
    virtual HRESULT Reconnect(IPin* pin) = 0;
    virtual HRESULT Disconnect(IPin* pin) = 0;
    virtual HRESULT SetDefaultSyncSource() = 0;
};

struct IGraphBuilder : IFilterGraph {
    virtual HRESULT Connect(IPin* output, IPin* input) = 0;
    virtual HRESULT Render(IPin* output) = 0;
    virtual HRESULT RenderFile(LPCWSTR file, LPCWSTR playList) = 0;
    virtual HRESULT AddSourceFilter(LPCWSTR file, LPCWSTR name, IBaseFilter** out) = 0;
    virtual HRESULT SetLogFile(DWORD_PTR file) = 0;
    virtual HRESULT Abort() = 0;
    virtual HRESULT ShouldOperationContinue() = 0;
};

struct IMoniker;
struct IBindCtx;

struct IFilterGraph2 : IGraphBuilder {
    virtual HRESULT AddSourceFilterForMoniker(IMoniker* moniker, IBindCtx* context, LPCWSTR name,
                                              IBaseFilter** out) = 0;
    virtual HRESULT ReconnectEx(IPin* pin, const AM_MEDIA_TYPE* type) = 0;
    virtual HRESULT RenderEx(IPin* output, DWORD flags, DWORD* context) = 0;
};

struct IMediaEventSink : IUnknown {
    virtual HRESULT Notify(LONG code, LONG_PTR first, LONG_PTR second) = 0;
};

struct IAMovieSetup : IUnknown {
    virtual HRESULT Register() = 0;
    virtual HRESULT Unregister() = 0;
};

struct ISeekingPassThru : IUnknown {
    virtual HRESULT Init(BOOL supportRendering, IPin* inputPin) = 0;
};

struct IAMFilterMiscFlags : IUnknown {
    virtual ULONG GetMiscFlags() = 0;
};

struct IMediaPosition : IDispatch {
    virtual HRESULT get_Duration(double* seconds) = 0;
    virtual HRESULT put_CurrentPosition(double seconds) = 0;
    virtual HRESULT get_CurrentPosition(double* seconds) = 0;
    virtual HRESULT get_StopTime(double* seconds) = 0;
    virtual HRESULT put_StopTime(double seconds) = 0;
    virtual HRESULT get_PrerollTime(double* seconds) = 0;
    virtual HRESULT put_PrerollTime(double seconds) = 0;
    virtual HRESULT put_Rate(double rate) = 0;
    virtual HRESULT get_Rate(double* rate) = 0;
    virtual HRESULT CanSeekForward(LONG* can) = 0;
    virtual HRESULT CanSeekBackward(LONG* can) = 0;
};

struct IMediaSeeking : IUnknown {
    virtual HRESULT GetCapabilities(DWORD* capabilities) = 0;
    virtual HRESULT CheckCapabilities(DWORD* capabilities) = 0;
    virtual HRESULT IsFormatSupported(const GUID* format) = 0;
    virtual HRESULT QueryPreferredFormat(GUID* format) = 0;
    virtual HRESULT GetTimeFormat(GUID* format) = 0;
    virtual HRESULT IsUsingTimeFormat(const GUID* format) = 0;
    virtual HRESULT SetTimeFormat(const GUID* format) = 0;
    virtual HRESULT GetDuration(LONGLONG* duration) = 0;
    virtual HRESULT GetStopPosition(LONGLONG* stop) = 0;
    virtual HRESULT GetCurrentPosition(LONGLONG* current) = 0;
    virtual HRESULT ConvertTimeFormat(LONGLONG* target, const GUID* targetFormat, LONGLONG source,
                                      const GUID* sourceFormat) = 0;
    virtual HRESULT SetPositions(LONGLONG* current, DWORD currentFlags, LONGLONG* stop, DWORD stopFlags) = 0;
    virtual HRESULT GetPositions(LONGLONG* current, LONGLONG* stop) = 0;
    virtual HRESULT GetAvailable(LONGLONG* earliest, LONGLONG* latest) = 0;
    virtual HRESULT SetRate(double rate) = 0;
    virtual HRESULT GetRate(double* rate) = 0;
    virtual HRESULT GetPreroll(LONGLONG* preroll) = 0;
};
