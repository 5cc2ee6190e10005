#pragma once

#include <lv2/worker/worker.h>

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "platform/com/RefPtr.h"
#include "seam/IGrooveSampler.h"
#include "seam/IMarnothOptions.h"
#include "shells/lv2/Midnam.h"

namespace marnoth {

/// A pad that notes can play, as far as it gives them names.
struct NamedPad {
    std::int32_t pad;
    std::int32_t lowKey;  ///< inclusive, as `highKey`
    std::int32_t highKey;
    std::int32_t rootKey;
    std::int32_t channel;  ///< 0 to 15, -1 for all
    std::string loop;      ///< the title of the file that its first grain is from, in the system's code page
    bool operator==(const NamedPad&) const = default;
};

/// The pads that hold something and answer a key, in their order. Any thread but the one that renders.
std::vector<NamedPad> namedPads(IGrooveSampler& sampler);

/// A document of MIDI names in UTF-8, for a device of this model: on each channel each key has the names of
/// the pads that it plays there, such as "1 drums", and by how many semitones where that isn't 0: "2 bass
/// +3".
std::string noteNameDocument(const std::string& model, std::span<const NamedPad> pads);

/// The names of an instance's notes, and the host's being told when they are others.
///
/// The thread that renders only asks for a look, which the host's worker takes: a host without one asks for
/// names when it likes.
class NoteNames {
public:
    /// `sampler` outlives this.
    NoteNames(IGrooveSampler& sampler, const LV2_Feature* const* features);

    // Any thread but the one that renders.
    const std::string& model() const { return model_; }
    std::string document() const { return noteNameDocument(model_, namedPads(sampler_)); }

    // The thread that renders.

    /// So many frames are over. Asks for a look where the instrument has changed, ten times a second at most.
    void advance(std::uint32_t frames, double rate);
    /// Tells the host, behind a look that found other names.
    void tell() const {
        if (host_) host_->update(host_->handle);
    }

    /// The host's worker: whether the names are others than the last time.
    bool look();

private:
    IGrooveSampler& sampler_;
    RefPtr<IMarnothOptions> options_;
    const std::string model_;
    const MidnamHost* host_;
    const LV2_Worker_Schedule* worker_;
    double framesSinceAsked_ = 0;
    std::optional<std::uint64_t> asked_;  ///< the instrument's count of changes then
    std::vector<NamedPad> told_;
};

}  // namespace marnoth
