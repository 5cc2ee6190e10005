#pragma once

#include <shlobj.h>

#include <cstring>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "platform/com/Unknown.h"

namespace marnoth::test {

inline HGLOBAL memoryWith(std::span<const char> bytes) {
    HGLOBAL const memory = GlobalAlloc(GMEM_MOVEABLE, bytes.size());
    if (!bytes.empty()) std::memcpy(GlobalLock(memory), bytes.data(), bytes.size());
    GlobalUnlock(memory);
    return memory;
}

/// A list of files as the system hands it over: a header that tells where the names begin, then the names.
inline std::string fileListOf(std::string_view names, bool wide) {
    DROPFILES header{};
    header.pFiles = sizeof header;
    header.fWide = wide;
    std::string block(reinterpret_cast<const char*>(&header), sizeof header);
    return block.append(names);
}

/// Each name with its 0, and an empty one behind the last.
inline std::string wideFileList(const std::vector<std::wstring>& paths) {
    std::wstring names;
    for (const std::wstring& path : paths) names += path + L'\0';
    names += L'\0';
    return fileListOf({reinterpret_cast<const char*>(names.data()), names.size() * sizeof(wchar_t)}, true);
}

/// What is dragged: one format, or none at all.
class DragData final : public Implements<CUnknown, IDataObject> {
public:
    DragData(CLIPFORMAT format, std::string bytes)
        : Implements(nullptr), format_(format), bytes_(std::move(bytes)) {}

    /// How often somebody asked for the data, and got something that can't be locked.
    int asked = 0;
    bool givesNoMemory = false;

    HRESULT GetData(FORMATETC* format, STGMEDIUM* medium) override {
        ++asked;
        if (QueryGetData(format) != S_OK) return DV_E_FORMATETC;
        medium->tymed = TYMED_HGLOBAL;
        medium->hGlobal = givesNoMemory ? nullptr : memoryWith(bytes_);
        medium->pUnkForRelease = nullptr;
        return S_OK;
    }
    HRESULT QueryGetData(FORMATETC* format) override {
        const bool asTold = format->dwAspect == DVASPECT_CONTENT && format->lindex == -1 &&
                            (format->tymed & TYMED_HGLOBAL) != 0;
        return asTold && format->cfFormat == format_ ? S_OK : DV_E_FORMATETC;
    }
    HRESULT GetDataHere(FORMATETC*, STGMEDIUM*) override { return E_NOTIMPL; }
    HRESULT GetCanonicalFormatEtc(FORMATETC*, FORMATETC*) override { return E_NOTIMPL; }
    HRESULT SetData(FORMATETC*, STGMEDIUM*, BOOL) override { return E_NOTIMPL; }
    HRESULT EnumFormatEtc(DWORD, IEnumFORMATETC**) override { return E_NOTIMPL; }
    HRESULT DAdvise(FORMATETC*, DWORD, IAdviseSink*, DWORD*) override { return OLE_E_ADVISENOTSUPPORTED; }
    HRESULT DUnadvise(DWORD) override { return OLE_E_ADVISENOTSUPPORTED; }
    HRESULT EnumDAdvise(IEnumSTATDATA**) override { return OLE_E_ADVISENOTSUPPORTED; }

private:
    IUnknown* FindInterface(REFIID iid) override {
        return iid == IID_IDataObject ? static_cast<IDataObject*>(this) : nullptr;
    }

    CLIPFORMAT format_;
    std::string bytes_;
};

}  // namespace marnoth::test
