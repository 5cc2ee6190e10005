/// A viewer of help that shows nothing and remembers what it was asked for.

#include "windows/TestViewer.h"

#include <string>

namespace {

marnoth::test::ViewerCall last;
std::wstring lastFile;

}  // namespace

extern "C" {

HWND ShowTestHelp(HWND window, const wchar_t* file, UINT command, DWORD_PTR data) {
    lastFile = file;
    last = {last.count + 1, window, lastFile.c_str(), command, data};
    return nullptr;
}

const marnoth::test::ViewerCall* LastTestHelp() {
    return &last;
}

}  // extern "C"
