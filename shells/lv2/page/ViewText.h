#pragma once

#include <map>
#include <string>
#include <string_view>

#include "editor/KeptView.h"

namespace marnoth {

/// How a page was left, as a plug-in's state keeps it.
struct LeftPage {
    KeptView view;
    std::map<std::string, std::string> folders;  ///< by filter: in which dialogs of files begin, UTF-8

    friend bool operator==(const LeftPage&, const LeftPage&) = default;
};

/// Lines of a word and what belongs to it, UTF-8: the same view gives the same text. A selection of more than
/// `kMostKeptGrains` is left out, and so are folders with a control character in their names.
inline constexpr std::size_t kMostKeptGrains = 2000;
std::string textOf(const LeftPage& left);

/// Reads what may be any text: lines that say nothing here are passed over, and what isn't said is as in a
/// new page. Values aren't held to what a page can show.
LeftPage leftPageIn(std::string_view text);

}  // namespace marnoth
