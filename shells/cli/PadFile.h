#pragma once

#include <string>
#include <string_view>

#include "shells/cli/PadSettings.h"

namespace marnoth {

/// What `--pad` says: a file for a pad, and how that is set.
struct PadFile {
    int pad = 0;       ///< 0 to 15
    std::string file;  ///< in UTF-8; empty for what a project has there
    PadSettings settings{};
};

/// `N=FILE` with N from 1 to 16, with `,NAME=VALUE` behind it for each setting. The file's name ends before
/// the first comma that such a word of letters follows; one that holds more of these stands in double quotes.
/// `N=,NAME=VALUE` has no file. Throws `WrongUse`, which tells the value and its range.
PadFile readPadFile(std::string_view text);

}  // namespace marnoth
