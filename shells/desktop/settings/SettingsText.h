#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "shells/desktop/settings/DesktopSettings.h"

namespace marnoth {

/// Settings as the text of a file that a user may edit: lines of "name = value" in UTF-8, in any order. Empty
/// lines, those that begin with "#", and names that aren't known stay as they are.
struct ReadSettings {
    DesktopSettings settings;                ///< the usual ones where the text says nothing of use
    std::vector<std::string> notUnderstood;  ///< lines with a known name and no value that it can have
};

/// `text` may be anything.
ReadSettings readSettings(std::string_view text);
/// Whether it is text at all: UTF-8 without control characters.
bool isText(std::string_view text);
/// `text` with the values of `now` where they differ from those of `former`: what another program has
/// written there meanwhile stays.
std::string withSettings(std::string_view text, const DesktopSettings& former, const DesktopSettings& now);

}  // namespace marnoth
