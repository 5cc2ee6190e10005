#pragma once

#include <optional>
#include <string>

#include "editor/files/LoadAdvice.h"
#include "project/Project.h"
#include "seam/IGrooveSampler.h"
#include "seam/LoadFault.h"
#include "shellkit/files/Failure.h"

namespace marnoth {

/// Projects by the names of their files, which are in UTF-8. What is taken as a project is what
/// `IGrooveSampler::LoadProject` takes of the same name. Whatever goes wrong throws a `FileFailure` with the
/// file and the reason.

/// A project that can't be loaded. Where a save that was cut off has left the project as it was before, the
/// reason says so.
struct ProjectFailure : FileFailure {
    ProjectFailure(const std::string& file, const LoadFault& fault);

    /// The file with the project as it was before, which is whole; empty without one.
    std::string backup;
};

/// Whether a file is a project: by what it holds, or, where that is neither a project nor a WAV file, by its
/// name. Throws nothing.
bool isProject(const std::string& file);

/// The whole project that stands beside a file until a save over that is whole, or that a save which was cut
/// off has left; empty without one.
std::string backupNextTo(const std::string& file);

/// Reads a project without an instrument. Throws a `ProjectFailure`.
Project readProjectFile(const std::string& file);

/// Loads a project into an instrument in place of all that there is. Throws a `ProjectFailure`.
void loadProjectFile(IGrooveSampler& sampler, const std::string& file);

/// For a page in a window (`CGrooveSamplerPropPage::adviseOnLoads`): why the load of a project into this
/// instrument failed, and whether to load what was saved before.
LoadAdvice adviceOnLoad(IGrooveSampler& sampler, const std::string& file);
/// The same before it is loaded (`CGrooveSamplerPropPage::checkLoads`), for it is read whole here and thrown
/// away; nothing where it may be loaded.
std::optional<LoadAdvice> adviceBeforeLoad(const std::string& file);

/// Saves the project of an instrument as `savedName(file)`.
void saveProjectFile(IGrooveSampler& sampler, const std::string& file);

/// The name under which a project is saved: with ".mrn" behind it unless it has that.
std::string savedName(const std::string& file);

/// Throws when it can be told beforehand that a project can't be saved there.
void checkSavePlace(const std::string& file);

}  // namespace marnoth
