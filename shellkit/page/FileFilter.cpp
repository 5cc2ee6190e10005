#include "shellkit/page/FileFilter.h"

#include <algorithm>
#include <sstream>

namespace marnoth {

namespace {

char small(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool sameLetters(std::string_view a, std::string_view b) {
    return std::ranges::equal(a, b, {}, small, small);
}

bool fits(std::string_view name, std::string_view pattern) {
    if (!pattern.starts_with('*')) return sameLetters(name, pattern);
    pattern.remove_prefix(1);
    return name.size() >= pattern.size() && sameLetters(name.substr(name.size() - pattern.size()), pattern);
}

}  // namespace

FileFilter::FileFilter(std::string_view text) {
    const std::size_t bar = text.find('|');
    name = text.substr(0, bar);
    if (bar == text.npos) return;
    const std::string_view rest = text.substr(bar + 1);
    std::istringstream list{std::string(rest.substr(0, rest.find('|')))};
    for (std::string pattern; std::getline(list, pattern, ';');)
        if (!pattern.empty()) patterns.push_back(pattern);
}

bool FileFilter::matches(std::string_view file) const {
    return std::ranges::any_of(patterns, [&](const std::string& pattern) { return fits(file, pattern); });
}

std::string FileFilter::withExtension(std::string file) const {
    if (patterns.empty() || !patterns.front().starts_with("*.") || matches(file)) return file;
    return file + patterns.front().substr(1);
}

}  // namespace marnoth
