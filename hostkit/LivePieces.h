#pragma once

#include <cstdint>

#include "hostkit/HeldNotes.h"
#include "hostkit/LiveMessages.h"
#include "hostkit/RawEventBatch.h"

namespace marnoth {

/// What comes at one frame of a block, and how long the next piece may be.
struct LivePiece {
    bool stopsSound = false;  ///< everything that sounds is to stop, one-shot pads too
    std::int32_t end = 0;     ///< the frame before which nothing else comes
};

/// Cuts blocks at live messages, so that each note starts and ends on its own frame.
///
/// A note lasts a frame at least: a note-off on the frame of its note-on comes one frame later. A second
/// note-off of a key on one frame comes one frame later too. Whatever follows "all sound off" comes one frame
/// behind it, since the instrument can't tell it from what is to end.
///
/// One thread at a time; nothing allocates.
class LivePieces {
public:
    /// False when there is no room for the message, which is never so with a note-off.
    bool add(const LiveMessage& message) { return messages_.add(message); }

    /// Puts what is due at `frame` of the block into `batch`, which is emptied first. Frames rise within a
    /// block.
    LivePiece next(std::int32_t frame, RawEventBatch& batch);
    /// A block of `frames` frames is over.
    void advance(std::int32_t frames) { messages_.advance(frames); }

    /// The instrument has ended every note: the transport has started, jumped or stopped. Messages that wait
    /// go on waiting.
    void forgetSounding();

private:
    std::int32_t nextFrame() const;
    void apply(const LiveMessage& message, RawEventBatch& batch);

    LiveMessages messages_;
    HeldNotes held_;
    bool stopsSound_ = false;  ///< asked for, and waiting until no note-off is owed
};

}  // namespace marnoth
