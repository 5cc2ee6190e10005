#include "shellkit/text/InstrumentText.h"

#include "platform/text/Text.h"

namespace marnoth {

#ifdef _WIN32

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
