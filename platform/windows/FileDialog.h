#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/com/Com.h"
#include "platform/drawing/PageWindow.h"

namespace marnoth {

/// The system's dialog for one file: without the box for read-only, and asking before a file is replaced. A
/// name without an extension gets that of `filter`, which is "Name (*.ext)|*.ext||" in UTF-8. A full path of
/// any length; nothing when the user cancels. `owner` is an outermost window. Dispatches messages meanwhile.
std::optional<std::wstring> showFileDialog(HWND owner, std::string_view filter, FileKind kind);

}  // namespace marnoth
