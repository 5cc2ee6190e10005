#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "hostkit/LiveTransport.h"
#include "hostkit/SeparateOutputs.h"

namespace marnoth {

/// A place in the music and the tempo there.
struct MusicalPlace {
    double tick = 0.0;                 ///< 960 to the beat
    double tempo = kDefaultLiveTempo;  ///< beats per minute
};

/// What an audio system is used for: it asks for sound, block after block.
class AudioClient {
public:
    virtual ~AudioClient() = default;

    /// From now on blocks come at this rate, in frames per second, and usually none is longer than
    /// `mostFrames`. Asked once by a driver as it opens, before its first block. False when it can't be: then
    /// no blocks are wanted.
    virtual bool prepare(std::uint32_t rate, std::int32_t mostFrames) = 0;

    // The thread that renders.
    /// A message of one to three bytes at a frame of the next block.
    virtual void midi(std::int32_t frame, std::uint8_t status, std::uint8_t data1, std::uint8_t data2) = 0;
    virtual void render(std::int32_t frames, OutputPointers outputs) = 0;
    /// The system's own transport at the start of the next block, which moves with it; without it a client
    /// goes by its own.
    virtual void follow(const LiveTransport& /*told*/) {}
    /// The system doesn't play the next block to anybody and waits for it as long as it takes.
    virtual void freewheel() {}
    /// Behind a block: where a frame of that transport falls.
    virtual MusicalPlace placeOf(std::int64_t /*frame*/) { return {}; }
    /// The system lost time: something wasn't heard. Any thread.
    virtual void dropout() = 0;
};

/// A transport that other programs move too.
class SharedTransport {
public:
    virtual ~SharedTransport() = default;
    virtual void play() = 0;
    virtual void stop() = 0;
    /// In frames from its start.
    virtual void locate(std::int64_t frame) = 0;
};

enum class TransportRole;

/// What a user asks for; what isn't told is the system's choice.
struct AudioWish {
    std::string device;       ///< part of a name
    std::string midiPort;     ///< part of a name
    std::uint32_t rate = 0;   ///< frames per second
    std::int32_t frames = 0;  ///< of a block
};

/// An open connection to an audio system. It runs from when it was made until it is destroyed, which waits
/// for the block that is under way. The thread that sets up.
class AudioDriver {
public:
    virtual ~AudioDriver() = default;

    /// As a user names it: "JACK", or a device.
    virtual std::string name() const = 0;
    virtual std::uint32_t rate() const = 0;
    virtual std::int32_t frames() const = 0;
    /// Why there is no sound any more, a sentence for the user; empty while there is.
    virtual std::string trouble() const = 0;
    /// Once in a while, from the window's thread: ports that have come since are connected.
    virtual void look() {}
    /// What part the program has in the system's transport, where that has one; its own at first. The
    /// window's thread.
    virtual void setTransport(TransportRole /*role*/) {}
    /// The system's transport while it is followed; else null.
    virtual SharedTransport* transport() { return nullptr; }
};

}  // namespace marnoth
