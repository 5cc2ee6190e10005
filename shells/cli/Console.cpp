#include "shells/cli/Console.h"

#include "platform/Text.h"

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

std::filesystem::path pathFromUtf8(std::string_view text) {
    return pathFromWide(wideFromUtf8(text));
}

std::string utf8FromPath(const std::filesystem::path& path) {
    return utf8FromWide(wideFromPath(path));
}

std::string toInstrument(std::string_view utf8) {
    return systemFromWide(wideFromUtf8(utf8));
}

#else

std::vector<std::string> consoleArguments(int argc, char** argv) {
    return {argv + (argc > 0 ? 1 : 0), argv + argc};
}

void prepareConsole() {}

bool errorIsTerminal() {
    return isatty(STDERR_FILENO) != 0;
}

// Names of files are bytes here: one that isn't UTF-8 must reach the system as it is.

std::filesystem::path pathFromUtf8(std::string_view text) {
    return std::string(text);
}

std::string utf8FromPath(const std::filesystem::path& path) {
    return path.native();
}

std::string toInstrument(std::string_view utf8) {
    return std::string(utf8);
}

#endif

std::string fromInstrument(std::string_view systemText) {
    return utf8FromWide(wideFromSystem(systemText));
}

}  // namespace marnoth
