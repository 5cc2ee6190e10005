#include "shells/desktop/audio/JackDriver.h"

#include <algorithm>
#include <chrono>
#include <limits>
#include <stdexcept>
#include <thread>
#include <utility>

#include "shells/desktop/audio/JackTransport.h"
#include "shells/desktop/audio/PartOfName.h"

namespace marnoth {

namespace {

std::string portName(int pointer) {
    const int output = pointer / 2;
    const std::string side = pointer % 2 == 0 ? "left" : "right";
    return (output == 0 ? "mix" : "pad " + std::to_string(output)) + " " + side;
}

void forgetMissing(std::vector<std::string>& known, const std::vector<std::string>& present) {
    std::erase_if(known, [&](const std::string& port) { return std::ranges::count(present, port) == 0; });
}

}  // namespace

JackDriver::JackDriver(const JackLibrary& jack, std::shared_ptr<const JackClient> connection,
                       const AudioWish& wish, AudioClient& client)
    : jack_(jack),
      client_(client),
      wish_(wish),
      connection_(std::move(connection)),
      handle_(connection_->handle()),
      serverRate_(jack_.get_sample_rate(handle_)) {
    askForFrames();
    if (!addPorts()) throw std::runtime_error("JACK gives no more ports.");
    answerCallbacks();
    activation_.emplace(jack_, handle_);
    awaitBlock();
    start(serverRate_);
    look();
}

/// PipeWire says before the first block what rate is asked for, and only with it what rate there is.
void JackDriver::awaitBlock() const {
    constexpr std::chrono::seconds kPatience{1};
    constexpr std::chrono::milliseconds kRest{1};
    const auto end = std::chrono::steady_clock::now() + kPatience;
    while (!hasBegun_ && std::chrono::steady_clock::now() < end) std::this_thread::sleep_for(kRest);
}

void JackDriver::start(std::uint32_t rate) {
    if (wish_.rate && wish_.rate != rate)
        throw std::runtime_error("JACK runs at " + std::to_string(rate) + ", not at " +
                                 std::to_string(wish_.rate) + ".");
    if (!client_.prepare(rate, frames_)) throw std::runtime_error("The instrument can't be started.");
    rate_ = rate;
}

/// The length of blocks is the whole server's: it changes for who asks for one, and for nobody else.
void JackDriver::askForFrames() {
    const auto wished = static_cast<jack_nframes_t>(std::max(wish_.frames, 0));
    if (wished != 0 && wished != jack_.get_buffer_size(handle_)) jack_.set_buffer_size(handle_, wished);
    frames_ = static_cast<std::int32_t>(jack_.get_buffer_size(handle_));
}

void JackDriver::answerCallbacks() {
    jack_.set_process_callback(
        handle_,
        [](jack_nframes_t frames, void* self) {
            return static_cast<JackDriver*>(self)->process(static_cast<std::int32_t>(frames));
        },
        this);
    // The instrument takes blocks of any length as they come: here it is only told.
    jack_.set_buffer_size_callback(
        handle_,
        [](jack_nframes_t frames, void* self) {
            static_cast<JackDriver*>(self)->frames_ = static_cast<std::int32_t>(frames);
            return 0;
        },
        this);
    jack_.set_sample_rate_callback(
        handle_,
        [](jack_nframes_t rate, void* self) {
            static_cast<JackDriver*>(self)->serverRate_ = rate;
            return 0;
        },
        this);
    jack_.set_port_registration_callback(
        handle_,
        [](jack_port_id_t port, int comes, void* self) {
            auto& driver = *static_cast<JackDriver*>(self);
            const std::lock_guard lock(driver.newPortsMutex_);
            if (comes) driver.newPorts_.push_back(port);
        },
        this);
    jack_.set_freewheel_callback(
        handle_,
        [](int starts, void* self) { static_cast<JackDriver*>(self)->isFreewheeling_ = starts != 0; }, this);
    jack_.set_xrun_callback(
        handle_,
        [](void* self) {
            auto& driver = *static_cast<JackDriver*>(self);
            // Who freewheels has no time to lose.
            if (!driver.isFreewheeling_) driver.client_.dropout();
            return 0;
        },
        this);
    jack_.on_info_shutdown(
        handle_, [](jack_status_t, const char*, void* self) { static_cast<JackDriver*>(self)->gone_ = true; },
        this);
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
    std::array<float*, SeparateOutputs::kPointers> outputs{};
    for (std::size_t pointer = 0; pointer < outputs.size(); ++pointer)
        outputs[pointer] = static_cast<float*>(jack_.port_get_buffer(audio_[pointer], count));
    hasBegun_ = true;
    // What is rendered would be out of tune.
    if (serverRate_ != rate_) {
        for (float* const output : outputs) std::fill_n(output, frames, 0.0f);
        return 0;
    }
    if (isFreewheeling_) client_.freewheel();
    if (role_ != TransportRole::own) tellTransport();
    handNotesOn(count);
    client_.render(frames, outputs);
    return 0;
}

void JackDriver::handNotesOn(jack_nframes_t frames) {
    void* const notes = jack_.port_get_buffer(midi_, frames);
    for (std::uint32_t i = 0; i < jack_.midi_get_event_count(notes); ++i) {
        jack_midi_event_t event;
        if (jack_.midi_event_get(&event, notes, i) != 0 || event.size < 1 || event.size > 3) continue;
        client_.midi(static_cast<std::int32_t>(event.time), event.buffer[0],
                     event.size > 1 ? event.buffer[1] : std::uint8_t{0},
                     event.size > 2 ? event.buffer[2] : std::uint8_t{0});
    }
}

void JackDriver::tellTransport() {
    jack_position_t position{};
    const jack_transport_state_t state = jack_.transport_query(handle_, &position);
    // Who leads hears of its own beats here.
    if (role_ == TransportRole::leads) position.valid = {};
    client_.follow(readJackTransport(state, position));
}

void JackDriver::setTransport(TransportRole role) {
    if (role == role_.exchange(role)) return;
    if (role != TransportRole::leads) {
        jack_.release_timebase(handle_);
        return;
    }
    constexpr int kInPlaceOfOthers = 0;
    jack_.set_timebase_callback(
        handle_, kInPlaceOfOthers,
        [](jack_transport_state_t, jack_nframes_t, jack_position_t* position, int, void* self) {
            writeJackBeats(*position, static_cast<JackDriver*>(self)->client_.placeOf(position->frame));
        },
        this);
}

void JackDriver::locate(std::int64_t frame) {
    constexpr std::int64_t kLast = std::numeric_limits<jack_nframes_t>::max();
    jack_.transport_locate(handle_, static_cast<jack_nframes_t>(std::clamp<std::int64_t>(frame, 0, kLast)));
}

std::string JackDriver::trouble() const {
    if (gone_) return "The JACK server has ended.";
    return serverRate_ != rate_ ? "JACK plays at another rate now." : "";
}

void JackDriver::look() {
    if (gone_) return;
    forgetNewPorts();
    connectMix();
    connectMidi();
}

/// A port that went and came back so fast that nobody missed it has no cables all the same.
void JackDriver::forgetNewPorts() {
    std::vector<jack_port_id_t> ports;
    {
        const std::lock_guard lock(newPortsMutex_);
        ports.swap(newPorts_);
    }
    for (const jack_port_id_t id : ports) {
        const jack_port_t* const port = jack_.port_by_id(handle_, id);
        if (!port) continue;
        const std::string name = jack_.port_name(port);
        std::erase(knownMidi_, name);
        std::erase(knownSpeakers_, name);
    }
}

/// Who takes a cable out means it; speakers that go and come back are connected again.
void JackDriver::connectMix() {
    std::vector<std::string> speakers =
        connection_->ports(JACK_DEFAULT_AUDIO_TYPE, JackPortIsInput | JackPortIsPhysical);
    std::erase_if(speakers, [&](const std::string& name) { return !isPartOfName(wish_.device, name); });
    forgetMissing(knownSpeakers_, speakers);
    if (!knownSpeakers_.empty()) return;
    for (std::size_t side = 0; side < std::min<std::size_t>(2, speakers.size()); ++side)
        if (jack_.connect(handle_, jack_.port_name(audio_[side]), speakers[side].c_str()) == 0)
            knownSpeakers_.push_back(speakers[side]);
}

void JackDriver::connectMidi() {
    const std::vector<std::string> ports = connection_->ports(JACK_DEFAULT_MIDI_TYPE, JackPortIsOutput);
    forgetMissing(knownMidi_, ports);
    for (const std::string& port : ports) {
        if (!isPartOfName(wish_.midiPort, port) || std::ranges::count(knownMidi_, port) > 0) continue;
        if (jack_.connect(handle_, port.c_str(), jack_.port_name(midi_)) == 0) knownMidi_.push_back(port);
    }
}

}  // namespace marnoth
