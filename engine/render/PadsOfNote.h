#pragma once

#include <array>
#include <cstddef>
#include <span>

#include "engine/model/PadBank.h"
#include "engine/render/Voice.h"
#include "seam/Limits.h"
#include "seam/Pzi.h"

namespace marnoth {

/// The pads that a note sounds, as a voice plays them. Owns room for one note's.
class PadsOfNote {
public:
    using List = std::span<const TrackPlayInfo>;

    /// Good until the next call.
    List find(const Model& model, const SynthEvent& event) {
        CKeyMap::Answers room;
        std::size_t found = 0;
        for (const auto& [pad, semitones] :
             model.keys.FindPads(room, model.pads, event.note, event.channel, event.velocity)) {
            const CGrooveTrack& track = model.pads[static_cast<std::size_t>(pad)];
            list_[found++] = {PlayKind::pad, pad, &track, semitones};
        }
        return {list_.data(), found};
    }

private:
    std::array<TrackPlayInfo, kPads> list_;
};

}  // namespace marnoth
