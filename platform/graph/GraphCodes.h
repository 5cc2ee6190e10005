#pragma once

/// Result codes, event codes and identifiers of the audio graph, for platforms whose headers don't have them.
/// Include "platform/graph/Graph.h" instead of this.

#include "platform/com/Com.h"

inline constexpr HRESULT VFW_S_NO_MORE_ITEMS = 0x00040103;
inline constexpr HRESULT VFW_S_STATE_INTERMEDIATE = 0x00040237;
inline constexpr HRESULT VFW_S_CANT_CUE = 0x00040268;
inline constexpr HRESULT VFW_S_NO_STOP_TIME = 0x00040270;

inline constexpr HRESULT VFW_E_INVALIDMEDIATYPE = static_cast<HRESULT>(0x80040200);
inline constexpr HRESULT VFW_E_NEED_OWNER = static_cast<HRESULT>(0x80040202);
inline constexpr HRESULT VFW_E_ENUM_OUT_OF_SYNC = static_cast<HRESULT>(0x80040203);
inline constexpr HRESULT VFW_E_ALREADY_CONNECTED = static_cast<HRESULT>(0x80040204);
inline constexpr HRESULT VFW_E_NO_TYPES = static_cast<HRESULT>(0x80040206);
inline constexpr HRESULT VFW_E_NO_ACCEPTABLE_TYPES = static_cast<HRESULT>(0x80040207);
inline constexpr HRESULT VFW_E_INVALID_DIRECTION = static_cast<HRESULT>(0x80040208);
inline constexpr HRESULT VFW_E_NOT_CONNECTED = static_cast<HRESULT>(0x80040209);
inline constexpr HRESULT VFW_E_NO_ALLOCATOR = static_cast<HRESULT>(0x8004020A);
inline constexpr HRESULT VFW_E_RUNTIME_ERROR = static_cast<HRESULT>(0x8004020B);
inline constexpr HRESULT VFW_E_BUFFER_OVERFLOW = static_cast<HRESULT>(0x8004020D);
inline constexpr HRESULT VFW_E_BADALIGN = static_cast<HRESULT>(0x8004020E);
inline constexpr HRESULT VFW_E_ALREADY_COMMITTED = static_cast<HRESULT>(0x8004020F);
inline constexpr HRESULT VFW_E_BUFFERS_OUTSTANDING = static_cast<HRESULT>(0x80040210);
inline constexpr HRESULT VFW_E_NOT_COMMITTED = static_cast<HRESULT>(0x80040211);
inline constexpr HRESULT VFW_E_SIZENOTSET = static_cast<HRESULT>(0x80040212);
inline constexpr HRESULT VFW_E_NO_CLOCK = static_cast<HRESULT>(0x80040213);
inline constexpr HRESULT VFW_E_NOT_FOUND = static_cast<HRESULT>(0x80040216);
inline constexpr HRESULT VFW_E_CANNOT_CONNECT = static_cast<HRESULT>(0x80040217);
inline constexpr HRESULT VFW_E_NOT_STOPPED = static_cast<HRESULT>(0x80040224);
inline constexpr HRESULT VFW_E_NOT_RUNNING = static_cast<HRESULT>(0x80040226);
inline constexpr HRESULT VFW_E_WRONG_STATE = static_cast<HRESULT>(0x80040227);
inline constexpr HRESULT VFW_E_START_TIME_AFTER_END = static_cast<HRESULT>(0x80040228);
inline constexpr HRESULT VFW_E_TYPE_NOT_ACCEPTED = static_cast<HRESULT>(0x8004022A);
inline constexpr HRESULT VFW_E_SAMPLE_REJECTED = static_cast<HRESULT>(0x8004022B);
inline constexpr HRESULT VFW_E_DUPLICATE_NAME = static_cast<HRESULT>(0x8004022D);
inline constexpr HRESULT VFW_E_TIMEOUT = static_cast<HRESULT>(0x8004022E);
inline constexpr HRESULT VFW_E_INVALID_FILE_FORMAT = static_cast<HRESULT>(0x8004022F);
inline constexpr HRESULT VFW_E_SAMPLE_TIME_NOT_SET = static_cast<HRESULT>(0x80040249);
inline constexpr HRESULT VFW_E_MEDIA_TIME_NOT_SET = static_cast<HRESULT>(0x80040251);
inline constexpr HRESULT VFW_E_NOT_IN_GRAPH = static_cast<HRESULT>(0x8004025F);

inline constexpr LONG EC_COMPLETE = 0x01;
inline constexpr LONG EC_USERABORT = 0x02;
inline constexpr LONG EC_ERRORABORT = 0x03;
inline constexpr LONG EC_GRAPH_CHANGED = 0x50;

/// Of `IMemAllocator::GetBuffer`: give `VFW_E_TIMEOUT` instead of waiting for a buffer.
inline constexpr DWORD AM_GBF_NOWAIT = 4;

inline constexpr GUID MEDIATYPE_Audio{
    0x73647561, 0x0000, 0x0010, {0x80, 0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71}};
inline constexpr GUID MEDIASUBTYPE_PCM{
    0x00000001, 0x0000, 0x0010, {0x80, 0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71}};
inline constexpr GUID MEDIASUBTYPE_IEEE_FLOAT{
    0x00000003, 0x0000, 0x0010, {0x80, 0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71}};
inline constexpr GUID FORMAT_WaveFormatEx{
    0x05589F81, 0xC356, 0x11CE, {0xBF, 0x01, 0x00, 0xAA, 0x00, 0x55, 0x59, 0x5A}};
inline constexpr GUID TIME_FORMAT_MEDIA_TIME{
    0x7B785574, 0x8C82, 0x11CF, {0xBC, 0x0C, 0x00, 0xAA, 0x00, 0xAC, 0x74, 0xF6}};
inline constexpr CLSID CLSID_SeekingPassThru{
    0x060AF76C, 0x68DD, 0x11D0, {0x8F, 0xC1, 0x00, 0xC0, 0x4F, 0xD9, 0x18, 0x9D}};
