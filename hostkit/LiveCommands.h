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

    /// The thread that renders.
    /// Calls `take` with each command that has come. What comes meanwhile may wait for the next time.
    template <class Take>
    void takeAll(const Take& take) {
        const bool hasLate = hasLate_.exchange(false);
        for (std::size_t i = 0; i < kRoom; ++i) {
            const std::optional<LiveCommand> command = queue_.pop();
            if (!command) break;
            take(*command);
        }
        if (hasLate) takeLate(take);
    }

private:
    static constexpr int kKeysPerWord = 64;
    static constexpr int kWordsPerChannel = (kHighestKey + 1) / kKeysPerWord;

    bool pushLate(const LiveMessage& message);

    template <class Take>
    void takeLate(const Take& take) {
        for (std::size_t word = 0; word < late_.size(); ++word) {
            const std::uint64_t keys = late_[word].exchange(0);
            for (int bit = 0; keys >> bit != 0 && bit < kKeysPerWord; ++bit)
                if (keys >> bit & 1) take(noteOffOf(static_cast<int>(word), bit));
        }
        if (lateSoundOff_.exchange(false)) take(soundOff());
    }
    static LiveCommand soundOff();
    static LiveCommand noteOffOf(int word, int bit);

    CommandQueue<LiveCommand, kRoom> queue_;
    /// A bit for each key of each channel whose note-off found no room.
    std::array<std::atomic<std::uint64_t>, kMidiChannels * kWordsPerChannel> late_{};
    std::atomic<bool> lateSoundOff_ = false;
    std::atomic<bool> hasLate_ = false;
};

}  // namespace marnoth
