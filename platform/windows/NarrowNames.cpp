#include "platform/windows/NarrowNames.h"

#include <filesystem>
#include <vector>

#include "platform/com/Com.h"
#include "platform/text/Text.h"

namespace marnoth {

namespace {

/// Whether the code page gives back what it takes.
bool isHeld(const std::wstring& path) {
    return wideFromSystem(systemFromWide(path)) == path;
}

/// Empty for what doesn't exist, or when the disk keeps no short names.
std::wstring shortForm(const std::wstring& path) {
    const DWORD units = GetShortPathNameW(path.c_str(), nullptr, 0);
    std::vector<wchar_t> form(units + 1);
    if (units == 0 || GetShortPathNameW(path.c_str(), form.data(), units) >= units) return {};
    return form.data();
}

}  // namespace

std::wstring pathForCodePage(const std::wstring& path) {
    if (isHeld(path)) return path;
    const std::wstring whole = shortForm(path);
    if (!whole.empty() && isHeld(whole)) return whole;
    // A file that is yet to be written has no form of its own.
    const std::filesystem::path file = path;
    const std::wstring folder = shortForm(file.parent_path().native());
    const std::wstring within = (std::filesystem::path(folder) / file.filename()).native();
    return !folder.empty() && isHeld(within) ? within : path;
}

}  // namespace marnoth
