#include "shells/windows/PropertyPage.h"

#include <cwchar>
#include <string>
#include <utility>

#include "editor/GrooveSamplerPropPage.h"
#include "editor/PageLayout.h"
#include "editor/skin/Skin.h"
#include "editor/texts/PageTexts.h"
#include "platform/com/Guarded.h"
#include "platform/drawing/PlatformFonts.h"
#include "platform/text/Text.h"
#include "platform/windows/Win32Window.h"
#include "shellkit/files/ProjectFiles.h"
#include "shells/windows/HelpFile.h"

namespace marnoth {

namespace {

using Objects = std::vector<RefPtr<IUnknown>>;

/// As large as the page, whatever the frame has room for.
RECT placeOfPage(const RECT& place) {
    return {place.left, place.top, place.left + kPageWidth, place.top + kPageHeight};
}

/// For whoever frees it with `CoTaskMemFree`; null without memory.
LPOLESTR givenText(const std::wstring& text) {
    auto* const given = static_cast<LPOLESTR>(CoTaskMemAlloc((text.size() + 1) * sizeof(OLECHAR)));
    if (given) std::wmemcpy(given, text.c_str(), text.size() + 1);
    return given;
}

void giveTo(CGrooveSamplerPropPage& page, const Objects& objects) {
    std::vector<IUnknown*> bare;
    for (const RefPtr<IUnknown>& object : objects) bare.push_back(object.get());
    page.bind(bare);
}

}  // namespace

/// A window and the page in it, which keeps what it works on: they live until the last call that came through
/// one of them has returned, and keep the module as long. The window is closed before they go.
struct PropertyPage::Shown {
    Shown(HWND parent, const RECT& place, const std::filesystem::path& help, const Objects& objects)
        : window(parent, place, *fonts, skinCursor, help), page(window) {
        page.checkLoads(adviceBeforeLoad);
        giveTo(page, objects);
        page.open();
        window.setPage(&page);
    }
    Shown(const Shown&) = delete;
    Shown& operator=(const Shown&) = delete;

    [[no_unique_address]] ModuleLock module;
    std::unique_ptr<FontSource> fonts = platformFonts();
    Win32Window window;
    CGrooveSamplerPropPage page;
};

PropertyPage::PropertyPage(IUnknown* outer) : Implements(outer), help_(installedHelpFile()) {}

PropertyPage::~PropertyPage() {
    Deactivate();
}

IUnknown* PropertyPage::FindInterface(REFIID iid) {
    return iid == IID_IPropertyPage ? static_cast<IPropertyPage*>(this) : nullptr;
}

HRESULT PropertyPage::SetPageSite(IPropertyPageSite*) {
    return S_OK;
}

HRESULT PropertyPage::Activate(HWND parent, LPCRECT place, BOOL) {
    if (!place) return E_POINTER;
    if (!IsWindow(parent)) return E_INVALIDARG;
    // A window may have gone with its parent.
    if (shown_ && shown_->window.handle()) return E_UNEXPECTED;
    return guarded([&] {
        shown_.reset();
        const auto shown = std::make_shared<Shown>(parent, placeOfPage(*place), help_, objects_);
        shown->window.setLife(shown);
        shown_ = shown;
        return S_OK;
    });
}

HRESULT PropertyPage::Deactivate() {
    const std::shared_ptr<Shown> shown = std::exchange(shown_, nullptr);
    if (!shown) return S_OK;
    return guarded([&] {
        shown->window.close();
        return S_OK;
    });
}

HRESULT PropertyPage::GetPageInfo(PROPPAGEINFO* info) {
    if (!info) return E_POINTER;
    return guarded([&] {
        *info = {};
        info->cb = sizeof *info;
        info->size = {kPageWidth, kPageHeight};
        info->pszTitle = givenText(wideFromUtf8(kPageCaption));
        return info->pszTitle ? S_OK : E_OUTOFMEMORY;
    });
}

HRESULT PropertyPage::SetObjects(ULONG count, IUnknown** objects) {
    if (count > 0 && !objects) return E_POINTER;
    return guarded([&] {
        Objects kept;
        for (ULONG i = 0; i < count; ++i)
            if (objects[i]) kept.emplace_back(objects[i]);
        const Objects before = std::exchange(objects_, std::move(kept));
        if (const std::shared_ptr<Shown> shown = shown_) giveTo(shown->page, objects_);
        return S_OK;
    });
}

HRESULT PropertyPage::Show(UINT command) {
    const std::shared_ptr<Shown> shown = shown_;
    if (!shown) return E_UNEXPECTED;
    return guarded([&] {
        shown->window.show(static_cast<int>(command));
        return S_OK;
    });
}

HRESULT PropertyPage::Move(LPCRECT place) {
    if (!place) return E_POINTER;
    const std::shared_ptr<Shown> shown = shown_;
    if (!shown) return E_UNEXPECTED;
    return guarded([&] {
        shown->window.move(placeOfPage(*place));
        return S_OK;
    });
}

HRESULT PropertyPage::Help(LPCOLESTR) {
    const std::shared_ptr<Shown> shown = shown_;
    if (!shown) return S_FALSE;
    return guarded([&] {
        shown->page.showHelp();
        return S_OK;
    });
}

HRESULT PropertyPage::TranslateAccelerator(MSG* message) {
    if (!message) return E_POINTER;
    const std::shared_ptr<Shown> shown = shown_;
    if (!shown) return S_FALSE;
    return guarded([&] { return shown->window.translate(*message) ? S_OK : S_FALSE; });
}

HRESULT createPropertyPage(IUnknown* outer, REFIID iid, void** out) {
    if (!out) return E_POINTER;
    *out = nullptr;
    if (outer && iid != IID_IUnknown) return E_NOINTERFACE;
    return guarded([&] {
        const auto inner = RefPtr<IUnknown>::adopt((new PropertyPage(outer))->Inner());
        return inner->QueryInterface(iid, out);
    });
}

}  // namespace marnoth
