#include "shells/cli/Console.h"

#include "platform/text/Text.h"

#ifdef _WIN32
#include <windows.h>
// The order matters: the rest needs windows.h.
#include <fcntl.h>
#include <io.h>
#include <shellapi.h>

#include <cstdio>
#else
#include <unistd.h>
#endif

namespace marnoth {

#ifdef _WIN32

std::vector<std::string> consoleArguments(int, char**) {
    // The narrow arguments have lost what the system code page can't say; the command line hasn't.
    int count = 0;
    LPWSTR* wide = CommandLineToArgvW(GetCommandLineW(), &count);
    std::vector<std::string> arguments;
    for (int i = 1; wide && i < count; ++i) arguments.push_back(utf8FromWide(wide[i]));
    LocalFree(wide);
    return arguments;
}

void prepareConsole() {
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stderr), _O_BINARY);
    SetConsoleOutputCP(CP_UTF8);
}

bool errorIsTerminal() {
    return _isatty(_fileno(stderr)) != 0;
}

#else

std::vector<std::string> consoleArguments(int argc, char** argv) {
    return {argv + (argc > 0 ? 1 : 0), argv + argc};
}

void prepareConsole() {}

bool errorIsTerminal() {
    return isatty(STDERR_FILENO) != 0;
}

#endif

}  // namespace marnoth
