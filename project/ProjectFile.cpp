#include "project/ProjectFile.h"

#include <array>
#include <string_view>

#include "platform/text/Text.h"

namespace marnoth {

bool passWrapper(RiffStream& stream) {
    constexpr std::int64_t kWrapperBytes = 24;
    std::array<char, 4> id;
    if (!stream.readExactly(id.data(), id.size())) return false;
    const bool isBare = std::string_view(id.data(), id.size()) == "RIFF";
    return stream.seek(isBare ? 0 : kWrapperBytes) == kRiffOk;
}

LoadFault openProject(RiffStream& stream, const std::wstring& path) {
    const std::wstring taken = path.substr(0, kLongestProjectPath);
    if (stream.open(pathFromWide(taken), FileMode::read)) return whyNotOpened(path, kLongestProjectPath);
    const bool mayBeWrapped = taken.find(L'.') == std::wstring::npos;
    if (mayBeWrapped && !passWrapper(stream)) return {.kind = FaultKind::notAProject};
    return {};
}

}  // namespace marnoth
