#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "seam/IGrooveSampler.h"

namespace marnoth {

/// A file for a pad.
struct PadFile {
    int pad = 0;  ///< 0 to 15
    std::string file;
};

/// `N=FILE` with N from 1 to 16. Throws `WrongUse`.
PadFile readPadFile(std::string_view text);

/// The pads of an offline render: what lies on them, and how the render sets them up.
///
/// What a render does for itself (`hold`, `routeToOwnOutputs`) isn't kept by `save`; what its user asked for
/// is. File names are in UTF-8. The instrument must outlive this, and be connected before anything is loaded.
/// Everything that goes wrong throws a `FileFailure` with the file and the reason.
class RenderPads {
public:
    explicit RenderPads(IGrooveSampler& sampler) : sampler_(sampler) {}

    /// Loads a project in place of all that there is.
    void loadProject(const std::string& file);
    /// Puts a WAV file onto a pad in place of what lies there.
    void loadFile(const PadFile& file);

    /// The pads that have grains, ascending.
    std::vector<int> loaded() const;

    /// Loaded pads sound while their notes are held.
    void gate();
    /// The same for the time of the render, and that each loaded pad answers `heldNote` of it, and that
    /// alone, on every channel and untransposed, whatever the key map says.
    void hold();
    static std::uint8_t heldNote(int pad);
    /// Pad n goes to output n.
    void routeToOwnOutputs();

    /// Saves the project as `savedName(file)`, without what the render did for itself.
    void save(const std::string& file);

private:
    struct Own {
        std::uint32_t oneShot;
        std::int32_t channel;
        KeyMapRecord keys;
    };

    void restore(int pad);

    IGrooveSampler& sampler_;
    std::array<std::optional<Own>, 16> held_;                 ///< before `hold`
    std::array<std::optional<std::uint32_t>, 16> outputs_{};  ///< before `routeToOwnOutputs`
};

/// Throws `FileFailure` when it can be told beforehand that a project can't be saved there.
void checkSavePlace(const std::string& file);
/// The name under which a project is saved: with ".mrn" behind it unless it has that.
std::string savedName(const std::string& file);

}  // namespace marnoth
