#pragma once

#include <functional>
#include <iosfwd>
#include <string>

namespace marnoth {

/// Loads a project by `load`, which throws as `loadProjectFile` does. Where that fails and its backup is
/// whole, the backup is loaded in its place if the user wants to `recover`, which is told on `errors`; else
/// the failure tells how to get it.
void loadOrRecover(const std::string& file, bool recover, std::ostream& errors,
                   const std::function<void(const std::string& file)>& load);

}  // namespace marnoth
