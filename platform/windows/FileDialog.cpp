#include "platform/windows/FileDialog.h"

#include <commdlg.h>

#include <algorithm>
#include <vector>

#include "platform/text/Text.h"

namespace marnoth {

namespace {

constexpr std::size_t kLongestPath = 32768;  ///< units, the last one 0: no path of the system is longer

/// Names and patterns in turn, each ended by a 0 where the filter has a bar.
std::wstring listOf(std::string_view filter) {
    std::wstring list = wideFromUtf8(filter);
    std::ranges::replace(list, L'|', L'\0');
    return list;
}

/// Of the first pattern, without the dot; empty when it has none.
std::wstring extensionOf(const std::wstring& list) {
    const std::size_t end = list.find(L'\0');
    if (end == list.npos) return {};
    const std::wstring pattern = list.c_str() + end + 1;
    const std::size_t dot = pattern.rfind(L'.');
    return dot == pattern.npos ? std::wstring() : pattern.substr(dot + 1);
}

}  // namespace

std::optional<std::wstring> showFileDialog(HWND owner, std::string_view filter, FileKind kind) {
    const std::wstring list = listOf(filter);
    const std::wstring extension = extensionOf(list);
    std::vector<wchar_t> path(kLongestPath);
    OPENFILENAMEW dialog{};
    dialog.lStructSize = sizeof dialog;
    dialog.hwndOwner = owner;
    dialog.lpstrFilter = list.c_str();
    dialog.nFilterIndex = 1;
    dialog.lpstrFile = path.data();
    dialog.nMaxFile = static_cast<DWORD>(path.size());
    dialog.lpstrDefExt = extension.empty() ? nullptr : extension.c_str();
    // Where the host's process stands is the host's affair.
    dialog.Flags = OFN_HIDEREADONLY | OFN_OVERWRITEPROMPT | OFN_EXPLORER | OFN_ENABLESIZING | OFN_NOCHANGEDIR;
    const BOOL chosen = kind == FileKind::save ? GetSaveFileNameW(&dialog) : GetOpenFileNameW(&dialog);
    if (!chosen || path.front() == L'\0') return {};
    return path.data();
}

}  // namespace marnoth
