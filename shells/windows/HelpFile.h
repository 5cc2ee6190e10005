#pragma once

#include <filesystem>

namespace marnoth {

/// Where an installer has put the help of the page: beneath the folder that it has told the registry of. The
/// file may not be there. Without such a folder it is a path of the present drive, as if that were its root.
std::filesystem::path installedHelpFile();

}  // namespace marnoth
