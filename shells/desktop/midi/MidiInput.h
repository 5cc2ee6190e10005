#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <optional>

#include "hostkit/CommandQueue.h"
#include "shells/desktop/audio/AudioDriver.h"
#include "shells/desktop/audio/StreamClock.h"
#include "shells/desktop/midi/MidiSystem.h"

namespace marnoth {

/// Stands before a client whose audio system brings no MIDI along, and hands on what ports send: each message
/// one block later than it came, on the frame of that block which lies as far behind its start. So notes keep
/// their distances, whatever the block's length.
///
/// Messages may come on any number of threads, which don't wait; neither does the one that renders. Of more
/// than a thousand in a block the rest is lost, and then all notes end, for their ends may be among it.
class MidiInput final : public AudioClient, public MidiReceiver {
public:
    /// `client` outlives it; `now` tells the time.
    using Now = StreamClock::Moment (*)();
    explicit MidiInput(AudioClient& client, Now now = std::chrono::steady_clock::now)
        : client_(client), now_(now) {}

    // MidiReceiver.
    void receive(std::uint8_t status, std::uint8_t data1, std::uint8_t data2) override;

    // AudioClient.
    bool prepare(std::uint32_t rate, std::int32_t mostFrames) override;
    void midi(std::int32_t frame, std::uint8_t status, std::uint8_t data1, std::uint8_t data2) override;
    void render(std::int32_t frames, OutputPointers outputs) override;
    void dropout() override { client_.dropout(); }

private:
    struct Message {
        StreamClock::Moment moment;
        std::uint8_t status = 0;
        std::uint8_t data1 = 0;
        std::uint8_t data2 = 0;
    };

    static constexpr std::size_t kRoom = 1024;

    void handOn(std::int32_t frames);
    void endAll();

    AudioClient& client_;
    const Now now_;
    CommandQueue<Message, kRoom> messages_;
    std::atomic<bool> hasLost_ = false;

    // The thread that renders.
    StreamClock clock_;
    std::int32_t blockFrames_ = 0;    ///< the longest block
    std::int64_t position_ = 0;       ///< of the next block's first frame in the stream
    std::optional<Message> waiting_;  ///< taken from the queue, for a block to come
};

}  // namespace marnoth
