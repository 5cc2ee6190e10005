#pragma once

#include <functional>
#include <optional>

#include "platform/com/Com.h"
#include "platform/drawing/PageWindow.h"

namespace marnoth {

/// What the system sends a window, with the two numbers whose meaning depends on it.
struct WindowMessage {
    UINT id;
    WPARAM first;
    LPARAM second;
};

/// What a message is answered with; nothing for one that the system answers.
using MessageAnswer = std::optional<LRESULT>;

/// Who hears of what happens: a page, or null while nothing may reach it. Asked before each event, since any
/// event may be a page's last.
using PageListener = std::function<PageEvents*()>;

}  // namespace marnoth
