#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <optional>

#include "hostkit/CommandQueue.h"
#include "hostkit/LiveMessages.h"

namespace marnoth {

/// What another thread asks of a live host.
struct LiveCommand {
    enum class Kind : std::uint8_t { message, play, stop, locate, tempo };
    Kind kind = Kind::message;
    LiveMessage message{};
    double value = 0.0;  ///< ticks, or beats per minute
};

/// The commands of other threads on their way to the one that renders. Nobody waits and nothing allocates.
/// Two things are never refused, whatever waits: note-offs and the end of all sound. Where they find no room
/// they come behind everything that did.
class LiveCommands {
public:
    /// Commands that may wait at a time.
    static constexpr std::size_t kRoom = 256;

    /// Any thread. False when there is no room.
    bool push(const LiveCommand& command);

    /// The thread that renders. Calls `take` with each command that has come; what comes meanwhile may wait
    /// for the next time.
    template <class Take>
    void takeAll(const Take& take) {
        const bool hasLate = hasLate_.exchange(false);
        std::size_t taken = 0;
        while (taken < kRoom) {
            const std::optional<LiveCommand> command = queue_.pop();
            if (!command) break;
            take(*command);
            ++taken;
        }
        if (!hasLate) return;
        // A thread that was pushed aside in the middle holds back what comes first.
        if (taken < kRoom && !queue_.isEmpty())
            hasLate_ = true;
        else
            takeLate(take);
    }

private:
    static constexpr std::size_t kKeys = kHighestKey + 1;

    bool pushLate(const LiveMessage& message);

    template <class Take>
    void takeLate(const Take& take) {
        for (std::size_t index = 0; index < late_.size(); ++index)
            for (std::uint32_t count = late_[index].exchange(0); count > 0; --count) take(noteOffOf(index));
        if (lateSoundOff_.exchange(false)) take(soundOff());
    }
    static LiveCommand noteOffOf(std::size_t index);
    static LiveCommand soundOff();

    CommandQueue<LiveCommand, kRoom> queue_;
    /// How many note-offs of each key of each channel found no room.
    std::array<std::atomic<std::uint32_t>, kMidiChannels * kKeys> late_{};
    std::atomic<bool> lateSoundOff_ = false;
    std::atomic<bool> hasLate_ = false;
};

}  // namespace marnoth
