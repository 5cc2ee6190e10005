#include "platform/files/SystemName.h"

#include "platform/text/Text.h"

#ifdef _WIN32
#include <windows.h>
#endif

namespace marnoth {

bool isInSystem(std::wstring_view text) {
    return wideFromSystem(systemFromWide(text)) == text;
}

#ifdef _WIN32

namespace {

/// By the short names of what is there; empty when it isn't, or has none.
std::wstring shortForm(const std::filesystem::path& path) {
    std::wstring units(GetShortPathNameW(path.c_str(), nullptr, 0), L'\0');
    const DWORD taken = GetShortPathNameW(path.c_str(), units.data(), static_cast<DWORD>(units.size()));
    units.resize(taken < units.size() ? taken : 0);
    return units;
}

std::wstring shortForm(const std::filesystem::path& path, NamedFile kind) {
    if (kind == NamedFile::existing) return shortForm(path);
    const std::wstring folder = shortForm(path.parent_path());
    return folder.empty() ? folder : (std::filesystem::path(folder) / path.filename()).native();
}

}  // namespace

std::optional<std::string> systemName(const std::wstring& path, NamedFile kind) {
    const std::wstring named = isInSystem(path) ? path : shortForm(path, kind);
    if (named.empty() || !isInSystem(named)) return {};
    return systemFromWide(named);
}

#else

std::optional<std::string> systemName(const std::wstring& path, NamedFile) {
    return systemFromWide(path);
}

#endif

}  // namespace marnoth
