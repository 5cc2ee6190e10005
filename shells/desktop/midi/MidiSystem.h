#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace marnoth {

/// Takes what comes through MIDI ports. Any thread; nobody waits.
class MidiReceiver {
public:
    virtual ~MidiReceiver() = default;

    /// A message of one to three bytes, now.
    virtual void receive(std::uint8_t status, std::uint8_t data1, std::uint8_t data2) = 0;
};

/// Ports that are listened to, for as long as this lives. One thread at a time.
class MidiConnection {
public:
    virtual ~MidiConnection() = default;

    /// Once in a while: ports that have come since are listened to, and what was held on those that have gone
    /// ends.
    virtual void look() = 0;
};

/// A way to get MIDI that belongs to no audio system. Any thread.
class MidiSystem {
public:
    virtual ~MidiSystem() = default;

    /// The names of the ports that send, UTF-8; looked up anew by each call.
    virtual std::vector<std::string> ports() = 0;
    /// Why there can be no ports, a sentence for the user; empty where there can.
    virtual std::string missing() = 0;
    /// Listens to all ports whose name contains `part`, whatever its case. `receiver` outlives what is made.
    virtual std::unique_ptr<MidiConnection> connect(const std::string& part, MidiReceiver& receiver) = 0;
};

}  // namespace marnoth
