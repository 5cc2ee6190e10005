/// In place of the system's viewer of help: writes down what it is asked to show, a line for each call, into
/// the file that the environment names.

#include <windows.h>

#include <cstdlib>
#include <fstream>

#include "platform/text/Text.h"

extern "C" HWND WINAPI HtmlHelpW(HWND window, LPCWSTR file, UINT command, DWORD_PTR data) {
    if (const wchar_t* const log = _wgetenv(L"MARNOTH_HELP_LOG"))
        std::ofstream(marnoth::pathFromWide(log), std::ios::app)
            << marnoth::utf8FromWide(file) << " command " << command << " data " << data
            << (IsWindow(window) ? "" : " for no window") << '\n';
    return nullptr;
}
