#include "project/ProjectName.h"

#include <algorithm>

namespace marnoth {
namespace {

constexpr std::string_view kExtension = ".mrn";

}  // namespace

bool hasProjectExtension(std::string_view name) {
    if (name.size() < kExtension.size()) return false;
    const std::string_view end = name.substr(name.size() - kExtension.size());
    return std::equal(end.begin(), end.end(), kExtension.begin(),
                      [](char a, char b) { return (a >= 'A' && a <= 'Z' ? a - 'A' + 'a' : a) == b; });
}

std::string withProjectExtension(std::string name) {
    if (!hasProjectExtension(name)) name += kExtension;
    return name;
}

}  // namespace marnoth
