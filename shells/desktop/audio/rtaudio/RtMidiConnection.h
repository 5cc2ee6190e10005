#pragma once

#include <memory>
#include <string>
#include <vector>

#include "shells/desktop/audio/rtaudio/RtMidiSystem.h"

namespace marnoth {

/// All ports whose name contains what is wished, each listened to on a thread of RtMidi's.
class RtMidiConnection final : public MidiConnection {
public:
    RtMidiConnection(RtMidi::Api api, std::string part, MidiReceiver& receiver);
    ~RtMidiConnection() override;

    void look() override;

private:
    class Port;

    const RtMidi::Api api_;
    const std::string part_;
    MidiReceiver& receiver_;
    RtMidiList list_;
    std::vector<std::unique_ptr<Port>> ports_;
};

}  // namespace marnoth
