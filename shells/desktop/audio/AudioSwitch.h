#pragma once

#include <atomic>
#include <cstdint>
#include <functional>

#include "shells/desktop/audio/AudioDriver.h"
#include "shells/desktop/midi/NotesOn.h"

namespace marnoth {

/// Lets one of several drivers at a time through to a client: the next one can be opened while the last one
/// still plays, and one that hangs can be left behind. The blocks of all others are silent.
///
/// What renders never waits here: who switches waits for the block that is under way. Notes that are held
/// when their driver is switched off end there, for nobody would ever hear of their note-offs.
class AudioSwitch {
public:
    /// `client` must be there until `close`.
    explicit AudioSwitch(AudioClient& client) : client_(client) {}

    /// `driver` is let through from now on, once `prepare` has made the client ready for it. False, with
    /// nobody let through, when that says so. Never below a block.
    bool give(const void* driver, const std::function<bool(AudioClient&)>& prepare);
    /// Nobody is let through any more: the client may go.
    void close() {
        give(nullptr, [](AudioClient&) { return false; });
    }

    // The threads that render; each says which driver it is.
    void midi(const void* driver, std::int32_t frame, std::uint8_t status, std::uint8_t data1,
              std::uint8_t data2);
    void follow(const void* driver, const LiveTransport& told);
    void freewheel(const void* driver);
    MusicalPlace placeOf(const void* driver, std::int64_t frame);
    void render(const void* driver, std::int32_t frames, OutputPointers outputs);
    /// Any thread.
    void dropout(const void* driver) { dropouts_ += present_ == driver; }

private:
    /// Whether a driver is let through; then nobody else is until `leave`.
    bool enter(const void* driver);
    void leave() { isBusy_.store(false, std::memory_order_release); }

    AudioClient& client_;
    std::atomic<bool> isBusy_ = false;
    std::atomic<const void*> present_ = nullptr;
    std::atomic<std::uint32_t> dropouts_ = 0;  ///< that the client hasn't been told yet
    NotesOn held_;                             ///< by the present driver; for who made it busy
};

}  // namespace marnoth
