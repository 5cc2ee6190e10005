#pragma once

#include <chrono>
#include <memory>
#include <string>
#include <utility>

#include "shells/desktop/audio/AudioSwitch.h"
#include "shells/desktop/audio/AudioSystem.h"

namespace marnoth {

/// A driver and its way through a switch.
struct OpenAudio {
    OpenAudio() = default;
    OpenAudio(std::shared_ptr<AudioClient> way) : entrance(std::move(way)) {}
    OpenAudio(OpenAudio&&) = default;
    OpenAudio& operator=(OpenAudio&& other) noexcept {
        // The driver renders through the entrance up to its end.
        driver = std::move(other.driver);
        entrance = std::move(other.entrance);
        return *this;
    }

    std::shared_ptr<AudioClient> entrance;
    std::unique_ptr<AudioDriver> driver;
};

/// One attempt to open a driver, on a thread of its own: a server that hangs holds up neither the window nor
/// what plays meanwhile. The client is prepared on the window's thread, below `look`.
class AudioOpening {
public:
    /// `former` is closed first: a device may be one that only one driver can hold. All is kept alive for as
    /// long as the attempt takes.
    AudioOpening(std::shared_ptr<AudioSystem> system, const AudioWish& wish,
                 std::shared_ptr<AudioSwitch> audioSwitch, OpenAudio former);
    /// Leaves an attempt behind that isn't over: should it succeed yet, it is closed by its own thread.
    ~AudioOpening();
    AudioOpening(const AudioOpening&) = delete;
    AudioOpening& operator=(const AudioOpening&) = delete;

    /// Prepares the client as soon as the driver asks for it, which then is the one that is let through.
    /// Whether the attempt is over.
    bool look();
    /// As often as there is something to be done, until it is over or `patience` is. The former.
    bool wait(std::chrono::milliseconds patience);

    /// Once it is over: what has been opened, without a driver when it failed; and why.
    OpenAudio take();
    std::string failure() const;

private:
    struct Shared;
    class Entrance;

    std::shared_ptr<Shared> shared_;
};

/// Closes a driver within `patience`, else leaves that to a thread of its own.
void closeAudio(OpenAudio audio, std::chrono::milliseconds patience);

}  // namespace marnoth
