#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace marnoth {

/// Names of files for whoever takes them in the system's code page alone. Where that is UTF-8, as everywhere
/// but on Windows, it has all names.

/// Whether the code page has all of `text`, so that it comes back as it was.
bool isInSystem(std::wstring_view text);

/// Whether a file is there under its name, or may be made anew under it.
enum class NamedFile { existing, fresh };

/// The full `path` in the code page; where that lacks some of it, by the short names that Windows gives to
/// files beside their own. A file's own name is never short where it may be made anew: it would lose the
/// long one. Nothing for a path that can't be named.
std::optional<std::string> systemName(const std::wstring& path, NamedFile kind);

}  // namespace marnoth
