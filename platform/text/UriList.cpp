#include "platform/text/UriList.h"

#include <charconv>
#include <optional>

namespace marnoth {

namespace {

constexpr std::string_view kScheme = "file:";

std::optional<char> escaped(std::string_view digits) {
    unsigned value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
    if (digits.size() != 2 || error != std::errc() || end != digits.data() + 2 || value == 0) return {};
    return static_cast<char>(value);
}

/// "%20" is a blank, and so on.
std::optional<std::string> unescaped(std::string_view text) {
    std::string result;
    while (!text.empty()) {
        if (text.front() == '\0') return {};
        if (text.front() != '%') {
            result += text.front();
            text.remove_prefix(1);
            continue;
        }
        const std::optional<char> character = escaped(text.substr(1, 2));
        if (!character) return {};
        result += *character;
        text.remove_prefix(3);
    }
    return result;
}

std::optional<std::string> fileOf(std::string_view uri, std::string_view host) {
    if (!uri.starts_with(kScheme)) return {};
    uri.remove_prefix(kScheme.size());
    if (uri.starts_with("//")) {
        uri.remove_prefix(2);
        const std::string_view there = uri.substr(0, uri.find('/'));
        if (!there.empty() && there != "localhost" && there != host) return {};
        uri.remove_prefix(there.size());
    }
    return uri.starts_with('/') ? unescaped(uri) : std::nullopt;
}

std::string_view takeLine(std::string_view& text) {
    const std::size_t end = text.find_first_of("\r\n");
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(end == text.npos ? text.size() : end + 1);
    return line;
}

}  // namespace

std::vector<std::string> filesOfUriList(std::string_view list, std::string_view host) {
    std::vector<std::string> files;
    while (!list.empty()) {
        const std::string_view line = takeLine(list);
        if (line.starts_with('#')) continue;
        if (std::optional<std::string> file = fileOf(line, host)) files.push_back(std::move(*file));
    }
    return files;
}

}  // namespace marnoth
