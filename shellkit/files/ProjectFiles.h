#pragma once

#include <string>

#include "project/Project.h"
#include "seam/IGrooveSampler.h"

namespace marnoth {

/// Projects by the names of their files, which are in UTF-8. What is taken as a project is what
/// `IGrooveSampler::LoadProject` takes of the same name. Whatever goes wrong throws a `FileFailure` with the
/// file and the reason.

/// Whether a file is a project: by what it holds, or, where that is neither a project nor a WAV file, by its
/// name. Throws nothing.
bool isProject(const std::string& file);

/// Reads a project without an instrument.
Project readProjectFile(const std::string& file);

/// Loads a project into an instrument in place of all that there is.
void loadProjectFile(IGrooveSampler& sampler, const std::string& file);

/// Saves the project of an instrument as `savedName(file)`.
void saveProjectFile(IGrooveSampler& sampler, const std::string& file);

/// The name under which a project is saved: with ".mrn" behind it unless it has that.
std::string savedName(const std::string& file);

/// Throws when it can be told beforehand that a project can't be saved there.
void checkSavePlace(const std::string& file);

}  // namespace marnoth
