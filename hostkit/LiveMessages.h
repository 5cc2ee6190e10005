#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "seam/Limits.h"

namespace marnoth {

/// One live MIDI message that the instrument has a use for.
struct LiveMessage {
    enum class Kind : std::uint8_t {
        noteOn,
        noteOff,
        notesOff,  ///< ends the held notes of its channel
        soundOff,  ///< ends all held notes, and then everything that sounds
    };
    std::int32_t frame = 0;  ///< counted from the start of the block to come
    Kind kind = Kind::noteOff;
    std::uint8_t channel = 0;   ///< 0 to 15
    std::uint8_t key = 0;       ///< of notes, 0 to 127
    std::uint8_t velocity = 0;  ///< of a note-on, 1 to 127
};

/// Reads a message of one to three bytes: notes, and of the controllers 120 (all sound off), 121 (reset all
/// controllers) and 123 (all notes off). A note-on of velocity 0 is a note-off. Nothing comes of any other
/// message: the instrument has none. No controller holds anything here but notes, so resetting them all ends
/// the channel's notes; and the instrument can only end the sound of all channels at once.
std::optional<LiveMessage> readLiveMessage(std::int32_t frame, std::uint8_t status, std::uint8_t data1,
                                           std::uint8_t data2);

/// The live messages that haven't sounded yet, by frame, those of one frame in the order of their coming. A
/// message behind the end of a block waits for the block that has its frame.
///
/// All room is there from the beginning and nothing here allocates. When it is full the newest is refused:
/// but a note-off never is. Where its place is gone it comes behind everything that was waiting then, so no
/// note goes on for ever.
///
/// One thread at a time.
class LiveMessages {
public:
    /// Messages that may wait at a time; the last places are for the controllers.
    static constexpr std::size_t kRoom = 1024;
    static constexpr std::size_t kRoomForNotes = kRoom - 64;

    /// A frame below 0 counts as 0. False when there is no room for the message.
    bool add(LiveMessage message);

    bool empty() const { return count_ == 0 && lateCount_ == 0; }
    /// The frame of the next message; there must be one.
    std::int32_t nextFrame() const;
    /// Takes the next message; there must be one.
    LiveMessage take();

    /// A block of `frames` frames is over: from now on frames count from the next one. What should have come
    /// before is due at its start.
    void advance(std::int32_t frames);

private:
    static constexpr std::size_t kKeys = kHighestKey + 1;

    void insert(const LiveMessage& message);
    void addLate(const LiveMessage& noteOff);
    LiveMessage takeLate();

    std::array<LiveMessage, kRoom> waiting_;
    std::size_t first_ = 0;  ///< index of the next one in `waiting_`
    std::size_t count_ = 0;
    /// How many note-offs of each key of each channel had no place.
    std::array<std::uint32_t, kMidiChannels * kKeys> late_{};
    std::size_t lateCount_ = 0;
    std::size_t lateFrom_ = 0;    ///< no index of `late_` below has any
    std::int32_t lateFrame_ = 0;  ///< when they come
};

}  // namespace marnoth
