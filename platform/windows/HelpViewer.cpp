#include "platform/windows/HelpViewer.h"

#include <string>
#include <vector>

#include "platform/windows/Module.h"
#include "platform/windows/RegKey.h"

namespace marnoth {

namespace {

constexpr const wchar_t* kViewerKey = L"CLSID\\{ADB880A6-D8FF-11CF-9377-00AA003B7A11}\\InprocServer32";
constexpr const wchar_t* kViewerName = L"hhctrl.ocx";
constexpr WORD kViewerEntry = 15;  ///< its number among those of the library
constexpr UINT kDisplayTopic = 0;

HMODULE loadViewer() {
    std::wstring registered;
    CRegKey(kViewerKey, nullptr, CRegKey::kOpen, CRegKey::kClassesRoot, 0)
        .QueryString(nullptr, L"", &registered);
    HMODULE const library = registered.empty() ? nullptr : LoadLibraryW(registered.c_str());
    return library ? library : LoadLibraryW(kViewerName);
}

std::filesystem::path folderOfModule() {
    std::vector<wchar_t> path(32768);
    GetModuleFileNameW(thisModule(), path.data(), static_cast<DWORD>(path.size() - 1));
    return std::filesystem::path(path.data()).parent_path();
}

bool isBareName(const std::filesystem::path& file) {
    return file.native().find_first_of(L"\\/") == std::wstring::npos;
}

}  // namespace

HelpViewer::Viewer* HelpViewer::find() {
    HMODULE const library = loadViewer();
    if (!library) return nullptr;
    auto* const entry = reinterpret_cast<void*>(GetProcAddress(library, MAKEINTRESOURCEA(kViewerEntry)));
    return reinterpret_cast<Viewer*>(entry);
}

void HelpViewer::show(HWND window) {
    if (!window || file_.empty()) return;
    if (!std::exchange(sought_, true)) viewer_ = find();
    const std::filesystem::path file = isBareName(file_) ? folderOfModule() / file_ : file_;
    if (viewer_) viewer_(window, file.c_str(), kDisplayTopic, 0);
}

}  // namespace marnoth
