#pragma once

#include <shlobj.h>

#include <cstring>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "hostkit/MakeObject.h"
#include "platform/com/Unknown.h"

namespace marnoth::test {

/// Files as whoever drags them offers them.
class DraggedFiles final : public Implements<CUnknown, IDataObject> {
public:
    explicit DraggedFiles(const std::vector<std::wstring>& paths) : Implements(nullptr) {
        for (const std::wstring& path : paths) names_.append(path).push_back(L'\0');
        names_.push_back(L'\0');
    }

    HRESULT GetData(FORMATETC* form, STGMEDIUM* medium) override {
        if (const HRESULT hr = QueryGetData(form); hr != S_OK) return hr;
        const std::size_t bytes = names_.size() * sizeof(wchar_t);
        const HGLOBAL memory = GlobalAlloc(GHND, sizeof(DROPFILES) + bytes);
        if (!memory) return E_OUTOFMEMORY;
        auto* const head = static_cast<DROPFILES*>(GlobalLock(memory));
        head->pFiles = sizeof(DROPFILES);
        head->fWide = TRUE;
        std::memcpy(head + 1, names_.data(), bytes);
        GlobalUnlock(memory);
        *medium = {};
        medium->tymed = TYMED_HGLOBAL;
        medium->hGlobal = memory;
        return S_OK;
    }
    HRESULT QueryGetData(FORMATETC* form) override {
        return form->cfFormat == CF_HDROP && (form->tymed & TYMED_HGLOBAL) ? S_OK : DV_E_FORMATETC;
    }
    HRESULT EnumFormatEtc(DWORD direction, IEnumFORMATETC** forms) override {
        FORMATETC form{CF_HDROP, nullptr, DVASPECT_CONTENT, -1, TYMED_HGLOBAL};
        return direction == DATADIR_GET ? SHCreateStdEnumFmtEtc(1, &form, forms) : E_NOTIMPL;
    }
    HRESULT GetDataHere(FORMATETC*, STGMEDIUM*) override { return E_NOTIMPL; }
    HRESULT GetCanonicalFormatEtc(FORMATETC*, FORMATETC*) override { return E_NOTIMPL; }
    HRESULT SetData(FORMATETC*, STGMEDIUM*, BOOL) override { return E_NOTIMPL; }
    HRESULT DAdvise(FORMATETC*, DWORD, IAdviseSink*, DWORD*) override { return OLE_E_ADVISENOTSUPPORTED; }
    HRESULT DUnadvise(DWORD) override { return OLE_E_ADVISENOTSUPPORTED; }
    HRESULT EnumDAdvise(IEnumSTATDATA**) override { return OLE_E_ADVISENOTSUPPORTED; }

private:
    IUnknown* FindInterface(REFIID iid) override {
        return iid == IID_IDataObject ? static_cast<IDataObject*>(this) : nullptr;
    }

    std::wstring names_;
};

/// A drag that lasts as long as the left button is held.
class HeldDrag final : public Implements<CUnknown, IDropSource> {
public:
    HeldDrag() : Implements(nullptr) {}

    HRESULT QueryContinueDrag(BOOL escaped, DWORD keys) override {
        if (escaped) return DRAGDROP_S_CANCEL;
        return keys & MK_LBUTTON ? S_OK : DRAGDROP_S_DROP;
    }
    HRESULT GiveFeedback(DWORD) override { return DRAGDROP_S_USEDEFAULTCURSORS; }

private:
    IUnknown* FindInterface(REFIID iid) override {
        return iid == IID_IDropSource ? static_cast<IDropSource*>(this) : nullptr;
    }
};

/// A window out of which files are dragged: from a press into it on.
class DragWindow {
public:
    /// `dropped` hears the effect of each drag.
    DragWindow(RECT place, std::function<void(DWORD)> dropped) : dropped_(std::move(dropped)) {
        WNDCLASSW kind{};
        kind.lpfnWndProc = &DragWindow::take;
        kind.hInstance = GetModuleHandleW(nullptr);
        kind.lpszClassName = L"MarnothTestDrag";
        RegisterClassW(&kind);
        window_ = CreateWindowExW(0, kind.lpszClassName, L"files", WS_POPUP | WS_VISIBLE, place.left,
                                  place.top, place.right - place.left, place.bottom - place.top, nullptr,
                                  nullptr, kind.hInstance, nullptr);
        SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    }
    ~DragWindow() { DestroyWindow(window_); }
    DragWindow(const DragWindow&) = delete;
    DragWindow& operator=(const DragWindow&) = delete;

    std::vector<std::wstring> files;

private:
    static LRESULT CALLBACK take(HWND window, UINT message, WPARAM wide, LPARAM lange) {
        auto* const self = reinterpret_cast<DragWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
        if (!self || message != WM_LBUTTONDOWN) return DefWindowProcW(window, message, wide, lange);
        self->drag();
        return 0;
    }
    void drag() const {
        const auto data = makeObject<DraggedFiles>(files);
        const auto source = makeObject<HeldDrag>();
        DWORD effect = 0;
        DoDragDrop(data.get(), source.get(), DROPEFFECT_COPY, &effect);
        dropped_(effect);
    }

    HWND window_ = nullptr;
    std::function<void(DWORD)> dropped_;
};

}  // namespace marnoth::test
