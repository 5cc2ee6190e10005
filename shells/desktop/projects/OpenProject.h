#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "seam/IGrooveSampler.h"

namespace marnoth {

/// Which project is open, and whether it has changed since it was loaded or saved: by the instrument's own
/// count of changes. The window's thread.
class OpenProject {
public:
    /// `sampler` outlives it. What it holds now counts as unchanged, and belongs to no file.
    explicit OpenProject(IGrooveSampler& sampler) : sampler_(sampler) { holds({}); }

    /// The instrument holds what `path` does, in UTF-8; empty for no file.
    void holds(std::string path);
    /// The instrument holds what came from somewhere that it isn't saved to, and is called so.
    void holdsCopy(std::string name);
    /// The instrument holds what was kept in a crash: nothing that is in a file.
    void recovered();
    /// What it holds now counts as unchanged.
    void settle() { unchanged_ = changes(); }
    const std::string& path() const { return path_; }
    /// Without folders, as a user calls it.
    std::string name() const;
    bool hasChanged() const { return changes() != unchanged_; }
    /// "groove.mrn * - Marnoth".
    std::string title() const;
    /// The instrument's count, for those who keep their own mark.
    std::uint64_t changes() const;

private:
    IGrooveSampler& sampler_;
    std::string path_;
    std::string copy_;                        ///< what one without a path is called
    std::optional<std::uint64_t> unchanged_;  ///< the count when it was loaded or saved; none for never
};

}  // namespace marnoth
