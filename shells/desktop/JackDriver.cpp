#include "shells/desktop/JackDriver.h"

#include <algorithm>
#include <stdexcept>

namespace marnoth {

namespace {

const JackLibrary& library() {
    if (const JackLibrary* const jack = JackLibrary::find()) return *jack;
    throw std::runtime_error("JACK isn't installed.");
}

std::string portName(int pointer) {
    const int output = pointer / 2;
    const std::string side = pointer % 2 == 0 ? "left" : "right";
    return (output == 0 ? "mix" : "pad " + std::to_string(output)) + " " + side;
}

bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != text.npos;
}

}  // namespace

JackDriver::JackDriver(const AudioWish& wish, AudioClient& client)
    : jack_(library()), client_(client), wish_(wish) {
    // The library tells on standard error what we tell ourselves.
    jack_.set_error_function([](const char*) {});
    handle_ = jack_.client_open("Marnoth", JackNoStartServer, nullptr);
    if (!handle_) throw std::runtime_error("No JACK server runs.");
    const auto refuse = [this](const std::string& why) {
        jack_.client_close(handle_);
        throw std::runtime_error(why);
    };
    rate_ = jack_.get_sample_rate(handle_);
    frames_ = static_cast<std::int32_t>(jack_.get_buffer_size(handle_));
    if (wish_.rate && wish_.rate != rate_)
        refuse("JACK runs at " + std::to_string(rate_) + ", not at " + std::to_string(wish_.rate) + ".");
    if (!addPorts()) refuse("JACK gives no more ports.");
    if (!client_.prepare(rate_, frames_)) refuse("The instrument can't be started.");
    jack_.set_process_callback(
        handle_,
        [](jack_nframes_t frames, void* self) {
            return static_cast<JackDriver*>(self)->process(static_cast<std::int32_t>(frames));
        },
        this);
    jack_.set_buffer_size_callback(
        handle_,
        [](jack_nframes_t frames, void* self) {
            auto& driver = *static_cast<JackDriver*>(self);
            driver.frames_ = static_cast<std::int32_t>(frames);
            return driver.client_.prepare(driver.rate_, driver.frames_) ? 0 : 1;
        },
        this);
    jack_.set_xrun_callback(
        handle_,
        [](void* self) {
            static_cast<JackDriver*>(self)->client_.dropout();
            return 0;
        },
        this);
    jack_.on_info_shutdown(
        handle_, [](jack_status_t, const char*, void* self) { static_cast<JackDriver*>(self)->gone_ = true; },
        this);
    if (jack_.activate(handle_) != 0) refuse("JACK doesn't start us.");
    look();
}

JackDriver::~JackDriver() {
    jack_.client_close(handle_);
}

bool JackDriver::addPorts() {
    for (std::size_t pointer = 0; pointer < audio_.size(); ++pointer)
        audio_[pointer] = jack_.port_register(handle_, portName(static_cast<int>(pointer)).c_str(),
                                              JACK_DEFAULT_AUDIO_TYPE, JackPortIsOutput, 0);
    midi_ = jack_.port_register(handle_, "midi", JACK_DEFAULT_MIDI_TYPE, JackPortIsInput, 0);
    return midi_ && std::ranges::count(audio_, nullptr) == 0;
}

int JackDriver::process(std::int32_t frames) {
    const auto count = static_cast<jack_nframes_t>(frames);
    void* const notes = jack_.port_get_buffer(midi_, count);
    for (std::uint32_t i = 0; i < jack_.midi_get_event_count(notes); ++i) {
        jack_midi_event_t event;
        if (jack_.midi_event_get(&event, notes, i) != 0 || event.size < 1 || event.size > 3) continue;
        client_.midi(static_cast<std::int32_t>(event.time), event.buffer[0],
                     event.size > 1 ? event.buffer[1] : std::uint8_t{0},
                     event.size > 2 ? event.buffer[2] : std::uint8_t{0});
    }
    std::array<float*, SeparateOutputs::kPointers> outputs{};
    for (std::size_t pointer = 0; pointer < outputs.size(); ++pointer)
        outputs[pointer] = static_cast<float*>(jack_.port_get_buffer(audio_[pointer], count));
    client_.render(frames, outputs);
    return 0;
}

std::string JackDriver::trouble() const {
    return gone_ ? "The JACK server has ended." : std::string();
}

std::vector<std::string> JackDriver::portsOf(const char* type, unsigned long flags) const {
    std::vector<std::string> names;
    const char** const ports = jack_.get_ports(handle_, nullptr, type, flags);
    if (!ports) return names;
    for (const char** port = ports; *port; ++port) names.emplace_back(*port);
    jack_.free(ports);
    return names;
}

void JackDriver::look() {
    if (gone_) return;
    if (!mixIsConnected_) connectMix();
    connectMidi();
}

void JackDriver::connectMix() {
    std::vector<std::string> speakers =
        portsOf(JACK_DEFAULT_AUDIO_TYPE, JackPortIsInput | JackPortIsPhysical);
    std::erase_if(speakers, [&](const std::string& name) { return !contains(name, wish_.device); });
    for (std::size_t side = 0; side < std::min<std::size_t>(2, speakers.size()); ++side)
        mixIsConnected_ |= jack_.connect(handle_, jack_.port_name(audio_[side]), speakers[side].c_str()) == 0;
}

void JackDriver::connectMidi() {
    for (const std::string& port : portsOf(JACK_DEFAULT_MIDI_TYPE, JackPortIsOutput)) {
        if (!contains(port, wish_.midiPort) || std::ranges::count(knownMidi_, port) > 0) continue;
        if (jack_.connect(handle_, port.c_str(), jack_.port_name(midi_)) == 0) knownMidi_.push_back(port);
    }
}

}  // namespace marnoth
