#include "shells/cli/Console.h"

#include <cstdint>

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

namespace {

std::wstring widen(std::string_view text, UINT codePage) {
    const int size = static_cast<int>(text.size());
    std::wstring wide(
        static_cast<std::size_t>(MultiByteToWideChar(codePage, 0, text.data(), size, nullptr, 0)), L'\0');
    MultiByteToWideChar(codePage, 0, text.data(), size, wide.data(), static_cast<int>(wide.size()));
    return wide;
}

std::string narrow(std::wstring_view wide, UINT codePage) {
    const int size = static_cast<int>(wide.size());
    const int length = WideCharToMultiByte(codePage, 0, wide.data(), size, nullptr, 0, nullptr, nullptr);
    std::string text(static_cast<std::size_t>(length), '\0');
    WideCharToMultiByte(codePage, 0, wide.data(), size, text.data(), length, nullptr, nullptr);
    return text;
}

}  // namespace

std::vector<std::string> consoleArguments(int, char**) {
    // The narrow arguments have lost what the system code page can't say; the command line hasn't.
    int count = 0;
    LPWSTR* wide = CommandLineToArgvW(GetCommandLineW(), &count);
    std::vector<std::string> arguments;
    for (int i = 1; wide && i < count; ++i) arguments.push_back(narrow(wide[i], CP_UTF8));
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
    return widen(text, CP_UTF8);
}

std::string utf8FromPath(const std::filesystem::path& path) {
    return narrow(path.native(), CP_UTF8);
}

std::string toInstrument(std::string_view utf8) {
    return narrow(widen(utf8, CP_UTF8), CP_ACP);
}

std::string fromInstrument(std::string_view systemText) {
    return narrow(widen(systemText, CP_ACP), CP_UTF8);
}

#else

std::vector<std::string> consoleArguments(int argc, char** argv) {
    return {argv + (argc > 0 ? 1 : 0), argv + argc};
}

void prepareConsole() {}

bool errorIsTerminal() {
    return isatty(STDERR_FILENO) != 0;
}

std::filesystem::path pathFromUtf8(std::string_view text) {
    return std::string(text);
}

std::string utf8FromPath(const std::filesystem::path& path) {
    return path.native();
}

std::string toInstrument(std::string_view utf8) {
    return std::string(utf8);
}

std::string fromInstrument(std::string_view systemText) {
    return std::string(systemText);
}

#endif

namespace {

/// Bytes of the UTF-8 sequence at the beginning of `text`; 0 when there is none.
std::size_t sequenceLength(std::string_view text) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const std::uint32_t lead = byte(0);
    if (lead < 0x80) return 1;
    const std::size_t length = lead < 0xC2 ? 0 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : lead < 0xF5 ? 4 : 0;
    if (length == 0 || length > text.size()) return 0;
    std::uint32_t code = lead & (0xFFu >> (length + 1));
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0) != 0x80) return 0;
        code = code << 6 | (byte(i) & 0x3F);
    }
    const bool overlong = (length == 3 && code < 0x800) || (length == 4 && code < 0x10000);
    const bool surrogate = code >= 0xD800 && code < 0xE000;
    return overlong || surrogate || code > 0x10FFFF ? 0 : length;
}

}  // namespace

bool isUtf8(std::string_view text) {
    while (!text.empty()) {
        const std::size_t length = sequenceLength(text);
        if (length == 0) return false;
        text.remove_prefix(length);
    }
    return true;
}

}  // namespace marnoth
