#pragma once

#include <string>
#include <string_view>

#include "platform/com/Com.h"

namespace marnoth {

// The text on the clipboard, in UTF-8. Another program that has the clipboard open is waited for, for a
// moment.

/// Empty without a text. `window` asks.
std::string readClipboardText(HWND window);
/// `window` is the owner then, which mustn't be null.
void writeClipboardText(HWND window, std::string_view text);

}  // namespace marnoth
