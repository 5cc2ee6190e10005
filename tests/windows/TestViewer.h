#pragma once

#include "platform/com/Com.h"

namespace marnoth::test {

/// What a viewer was asked for last, and how often it was.
struct ViewerCall {
    int count;
    HWND window;
    const wchar_t* file;
    UINT command;
    DWORD_PTR data;
};

}  // namespace marnoth::test
