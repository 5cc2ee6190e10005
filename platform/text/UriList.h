#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace marnoth {

/// The files that a list of URIs names (RFC 2483: one a line, lines beginning with '#' are comments), as full
/// paths, in their order. What is no file of this machine isn't among them: other schemes, other hosts than
/// none, "localhost" and `host`, broken escapes, names with a zero byte.
std::vector<std::string> filesOfUriList(std::string_view list, std::string_view host);

}  // namespace marnoth
