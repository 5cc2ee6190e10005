#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "seam/IGrooveSampler.h"
#include "shells/cli/UnansweredNotes.h"

namespace marnoth {

/// The pads of an offline render: how the render sets them up, and back.
///
/// `restore` takes back what a render sets for its own run (`hold`, `routeToOwnOutputs`); what its user asked
/// for stays. The instrument must outlive this. What the instrument refuses throws a `FileFailure`.
class RenderPads {
public:
    explicit RenderPads(IGrooveSampler& sampler) : sampler_(sampler) {}

    /// The pads that have grains, ascending.
    std::vector<int> loaded() const;

    /// What those answer.
    std::vector<PadAnswers> answers() const;
    /// Whether a pad follows the tempo.
    bool isSynced(int pad) const;
    bool isLooping(int pad) const;

    /// Loaded pads sound while their notes are held.
    void gate();
    /// The same for the time of the render, and that each loaded pad answers `heldNote` of it, and that
    /// alone, on every channel and untransposed, whatever the key map says.
    void hold();
    static std::uint8_t heldNote(int pad);
    /// Pad n goes to output n.
    void routeToOwnOutputs();

    /// Takes back what the render set for its own run.
    void restore();

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

}  // namespace marnoth
