#pragma once

#include <filesystem>
#include <memory>
#include <vector>

#include "platform/com/RefPtr.h"
#include "platform/com/Unknown.h"

namespace marnoth {

/// The editor page of an instrument for the property frames of hosts.
///
/// The frame's calls may come in any order: the instrument before the window or behind it, or never, which
/// shows an empty page. Whatever the user does reaches the instrument at once, so the page is never dirty.
/// From `Activate` to `Deactivate` there are a window and the page in it; a frame that destroys the parent
/// window in place of the second takes nothing away that is still in use. One thread, that of the frame.
class PropertyPage final : public Implements<CUnknown, IPropertyPage> {
public:
    explicit PropertyPage(IUnknown* outer);
    ~PropertyPage() override;

    /// Nothing is asked of a site, so none is kept.
    HRESULT SetPageSite(IPropertyPageSite* site) override;
    /// Makes the window, hidden, at the corner of `place`; it is as large as the page. `E_UNEXPECTED` while
    /// there is one, `E_INVALIDARG` without a parent, `E_FAIL` when the system has no window or no font for
    /// it.
    HRESULT Activate(HWND parent, LPCRECT place, BOOL modal) override;
    /// A question that is open is cancelled, and goes on to its end behind this.
    HRESULT Deactivate() override;
    HRESULT GetPageInfo(PROPPAGEINFO* info) override;
    /// The first of them that is an instrument is what the page shows; null ones are passed over.
    HRESULT SetObjects(ULONG count, IUnknown** objects) override;
    // `E_UNEXPECTED` without a window.
    HRESULT Show(UINT command) override;
    HRESULT Move(LPCRECT place) override;
    HRESULT IsPageDirty() override { return S_FALSE; }
    HRESULT Apply() override { return S_OK; }
    /// Shows the page's own, wherever the frame has its. `S_FALSE` without a window.
    HRESULT Help(LPCOLESTR folder) override;
    /// Takes every key of the page's window. `S_FALSE` for any other message.
    HRESULT TranslateAccelerator(MSG* message) override;

private:
    struct Shown;

    IUnknown* FindInterface(REFIID iid) override;

    const std::filesystem::path help_;
    std::vector<RefPtr<IUnknown>> objects_;
    /// Null without a window. Calls that reach the page share it: it may be taken away within them.
    std::shared_ptr<Shown> shown_;
};

/// Makes a page and gives out `iid` of it, with the arguments and results of `IClassFactory::CreateInstance`.
HRESULT createPropertyPage(IUnknown* outer, REFIID iid, void** out);

}  // namespace marnoth
