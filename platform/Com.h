#pragma once

/// The names of COM that the system speaks: on Windows those of the system's headers, elsewhere declarations of our
/// own with the same shapes, so that portable code reads the same everywhere.
///
/// Only 64-bit targets are supported; they have one calling convention, so none is spelled.
/// Reference counts follow COM: what an operation gives out carries a reference that the receiver releases.

#ifdef _WIN32

#include <windows.h>
// The order matters: the rest needs windows.h.
#include <mmreg.h>
#include <oaidl.h>
#include <objbase.h>
#include <objidl.h>
#include <ocidl.h>

#else

#include <cstdint>
#include <cstring>

using BYTE = std::uint8_t;
using WORD = std::uint16_t;
using DWORD = std::uint32_t;
using UINT = std::uint32_t;
using ULONG = std::uint32_t;
using LONG = std::int32_t;
using BOOL = std::int32_t;
using LONGLONG = std::int64_t;
using ULONGLONG = std::uint64_t;
using HRESULT = std::int32_t;
using LCID = DWORD;
using DISPID = LONG;
using WCHAR = wchar_t;
using OLECHAR = WCHAR;
using LPOLESTR = OLECHAR*;
using LPCOLESTR = const OLECHAR*;
using LPWSTR = WCHAR*;
using LPCWSTR = const WCHAR*;
inline constexpr BOOL TRUE = 1;
inline constexpr BOOL FALSE = 0;

struct GUID {
    std::uint32_t Data1;
    std::uint16_t Data2;
    std::uint16_t Data3;
    std::uint8_t Data4[8];
};
using IID = GUID;
using CLSID = GUID;
using REFGUID = const GUID&;
using REFIID = const IID&;
using REFCLSID = const CLSID&;

inline bool operator==(const GUID& a, const GUID& b) { return std::memcmp(&a, &b, sizeof a) == 0; }
inline bool IsEqualGUID(REFGUID a, REFGUID b) { return a == b; }
inline bool IsEqualIID(REFIID a, REFIID b) { return a == b; }

inline constexpr GUID GUID_NULL{};
inline constexpr GUID IID_NULL{};

constexpr bool SUCCEEDED(HRESULT hr) { return hr >= 0; }
constexpr bool FAILED(HRESULT hr) { return hr < 0; }

inline constexpr HRESULT S_OK = 0;
inline constexpr HRESULT S_FALSE = 1;
inline constexpr HRESULT E_NOTIMPL = static_cast<HRESULT>(0x80004001);
inline constexpr HRESULT E_NOINTERFACE = static_cast<HRESULT>(0x80004002);
inline constexpr HRESULT E_POINTER = static_cast<HRESULT>(0x80004003);
inline constexpr HRESULT E_FAIL = static_cast<HRESULT>(0x80004005);
inline constexpr HRESULT E_UNEXPECTED = static_cast<HRESULT>(0x8000FFFF);
inline constexpr HRESULT E_OUTOFMEMORY = static_cast<HRESULT>(0x8007000E);
inline constexpr HRESULT E_INVALIDARG = static_cast<HRESULT>(0x80070057);
inline constexpr HRESULT DISP_E_UNKNOWNINTERFACE = static_cast<HRESULT>(0x80020001);

/// Memory that crosses an interface: whoever receives it frees it with `CoTaskMemFree`. Null when there is none left.
void* CoTaskMemAlloc(std::size_t bytes);
void* CoTaskMemRealloc(void* memory, std::size_t bytes);
void CoTaskMemFree(void* memory);

inline constexpr IID IID_IUnknown{0x00000000, 0x0000, 0x0000, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

struct IUnknown {
    virtual HRESULT QueryInterface(REFIID iid, void** out) = 0;
    virtual ULONG AddRef() = 0;
    virtual ULONG Release() = 0;
};

inline constexpr IID IID_IDispatch{0x00020400, 0x0000, 0x0000, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

struct ITypeInfo;
struct DISPPARAMS;
struct VARIANT;
struct EXCEPINFO;

struct IDispatch : IUnknown {
    virtual HRESULT GetTypeInfoCount(UINT* count) = 0;
    virtual HRESULT GetTypeInfo(UINT index, LCID locale, ITypeInfo** out) = 0;
    virtual HRESULT GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID locale, DISPID* ids) = 0;
    virtual HRESULT Invoke(DISPID id, REFIID iid, LCID locale, WORD flags, DISPPARAMS* arguments, VARIANT* result,
                           EXCEPINFO* exception, UINT* argumentError) = 0;
};

#pragma pack(push, 1)
/// The platform's description of an audio stream, 18 bytes.
struct WAVEFORMATEX {
    WORD wFormatTag;        ///< 1 integer PCM, 3 float, 0xFFFE extensible
    WORD nChannels;
    DWORD nSamplesPerSec;   ///< frames per second
    DWORD nAvgBytesPerSec;
    WORD nBlockAlign;       ///< bytes per frame
    WORD wBitsPerSample;
    WORD cbSize;            ///< bytes that follow this record
};
#pragma pack(pop)
static_assert(sizeof(WAVEFORMATEX) == 18);

inline constexpr WORD WAVE_FORMAT_PCM = 1;
inline constexpr WORD WAVE_FORMAT_IEEE_FLOAT = 3;
inline constexpr WORD WAVE_FORMAT_EXTENSIBLE = 0xFFFE;

#endif
