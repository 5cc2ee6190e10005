#include "shells/desktop/audio/rtaudio/RtMidiSystem.h"

#include <unistd.h>

#include <cerrno>

#include "shells/desktop/audio/rtaudio/RtMidiConnection.h"

namespace marnoth {

namespace {

constexpr const char* kSequencer = "/dev/snd/seq";

/// Without it RtMidi can do nothing but complain.
bool hasSequencer(RtMidi::Api api) {
    return api != RtMidi::LINUX_ALSA || access(kSequencer, R_OK | W_OK) == 0;
}

}  // namespace

std::vector<std::string> RtMidiList::names() try {
    std::vector<std::string> names;
    if (!hasSequencer(api_)) return names;
    if (!input_) {
        input_.emplace(api_, "Marnoth asks");
        // What it tells of is told by what there is.
        input_->setErrorCallback([](RtMidiError::Type, const std::string&, void*) {});
    }
    const unsigned count = input_->getPortCount();
    for (unsigned number = 0; number < count; ++number) names.push_back(input_->getPortName(number));
    return names;
} catch (const RtMidiError&) {
    input_.reset();
    return {};
}

std::vector<std::string> RtMidiSystem::ports() {
    const std::lock_guard lock(mutex_);
    std::vector<std::string> names = list_.names();
    std::erase(names, std::string());
    return names;
}

std::string RtMidiSystem::missing() {
    if (hasSequencer(api_)) return {};
    return errno == EACCES ? "ALSA's sequencer, /dev/snd/seq, is closed to this user."
                           : "There is no ALSA sequencer, /dev/snd/seq.";
}

std::unique_ptr<MidiConnection> RtMidiSystem::connect(const std::string& part, MidiReceiver& receiver) {
    return std::make_unique<RtMidiConnection>(api_, part, receiver);
}

}  // namespace marnoth
