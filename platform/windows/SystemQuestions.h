#pragma once

#include <span>
#include <string_view>

#include "platform/com/Com.h"
#include "platform/drawing/PageWindow.h"

namespace marnoth {

// The system's own boxes. Each returns with the answer and dispatches messages meanwhile. Texts are UTF-8.

/// A box without a caption; `owner` is an outermost window.
PageAnswer showMessage(HWND owner, std::string_view text, MessageKind kind);

/// A menu whose corner is at `at`, in pixels of `window`. The id of one of `items`, 0 for none.
int showMenu(HWND window, Point at, std::span<const MenuItem> items);

}  // namespace marnoth
