#include "shells/desktop/audio/rtaudio/RtMidiConnection.h"

#include <algorithm>

#include "shells/desktop/audio/PartOfName.h"
#include "shells/desktop/midi/NotesOn.h"

namespace marnoth {

class RtMidiConnection::Port {
public:
    /// Throws `RtMidiError` when there can be no connection; `isOpen` says whether there is.
    Port(RtMidi::Api api, unsigned number, std::string name, MidiReceiver& receiver)
        : name_(std::move(name)), receiver_(receiver), input_(std::make_unique<RtMidiIn>(api, "Marnoth")) {
        input_->setErrorCallback([](RtMidiError::Type, const std::string&, void*) {});
        input_->setCallback([](double, std::vector<unsigned char>* message,
                               void* self) { static_cast<Port*>(self)->take(*message); },
                            this);
        // What had the number when it was listed may have gone since.
        if (input_->getPortName(number) == name_) input_->openPort(number, "notes");
    }
    ~Port() {
        // Its thread has ended behind this.
        input_.reset();
        held_.end([this](std::uint8_t status, std::uint8_t key) { receiver_.receive(status, key, 0); });
    }
    Port(const Port&) = delete;
    Port& operator=(const Port&) = delete;

    const std::string& name() const { return name_; }
    bool isOpen() const { return input_->isPortOpen(); }

private:
    void take(const std::vector<unsigned char>& message) {
        if (message.empty() || message.size() > 3) return;
        const auto byte = [&](std::size_t at) { return at < message.size() ? message[at] : std::uint8_t{0}; };
        held_.take(byte(0), byte(1), byte(2));
        receiver_.receive(byte(0), byte(1), byte(2));
    }

    const std::string name_;
    MidiReceiver& receiver_;
    NotesOn held_;
    std::unique_ptr<RtMidiIn> input_;
};

RtMidiConnection::RtMidiConnection(RtMidi::Api api, std::string part, MidiReceiver& receiver)
    : api_(api), part_(std::move(part)), receiver_(receiver), list_(api) {
    look();
}

RtMidiConnection::~RtMidiConnection() = default;

void RtMidiConnection::look() {
    const std::vector<std::string> names = list_.names();
    std::erase_if(ports_, [&](const auto& port) { return std::ranges::count(names, port->name()) == 0; });
    for (unsigned number = 0; number < names.size(); ++number) {
        const std::string& name = names[number];
        const auto isIt = [&](const auto& port) { return port->name() == name; };
        if (name.empty() || !isPartOfName(part_, name) || std::ranges::any_of(ports_, isIt)) continue;
        try {
            auto port = std::make_unique<Port>(api_, number, name, receiver_);
            if (port->isOpen()) ports_.push_back(std::move(port));
        } catch (const RtMidiError&) {
            // The next look tries again.
        }
    }
}

}  // namespace marnoth
