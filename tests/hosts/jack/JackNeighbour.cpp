#include <jack/jack.h>
#include <jack/midiport.h>
#include <jack/transport.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <iostream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "shellkit/midi/MidiFile.h"

namespace {

/// Another program at the same server: it moves and reads the transport, has a MIDI port, and measures what
/// it is connected to; or it plays a song along.
class Neighbour {
public:
    Neighbour() : client_(jack_client_open("neighbour", JackNoStartServer, nullptr)) {
        if (!client_) throw std::runtime_error("there is no server");
        input_ = jack_port_register(client_, "in", JACK_DEFAULT_AUDIO_TYPE, JackPortIsInput, 0);
        keys_ = jack_port_register(client_, "keys", JACK_DEFAULT_MIDI_TYPE, JackPortIsOutput, 0);
        jack_set_process_callback(
            client_,
            [](jack_nframes_t frames, void* self) {
                static_cast<Neighbour*>(self)->block(frames);
                return 0;
            },
            this);
        if (jack_activate(client_) != 0) throw std::runtime_error("the server refuses");
    }
    ~Neighbour() { jack_client_close(client_); }
    Neighbour(const Neighbour&) = delete;
    Neighbour& operator=(const Neighbour&) = delete;

    void roll() { jack_transport_start(client_); }
    void stop() { jack_transport_stop(client_); }
    void locate(jack_nframes_t frame) { jack_transport_locate(client_, frame); }

    /// "rolling 48000 2.1.0 120": state, frame, and, where they are told, bar, beat, tick and tempo.
    void tellTransport() {
        jack_position_t position{};
        const bool rolls = jack_transport_query(client_, &position) == JackTransportRolling;
        std::cout << (rolls ? "rolling " : "stopped ") << position.frame;
        if (position.valid & JackPositionBBT)
            std::cout << " " << position.bar << "." << position.beat << "." << position.tick << " "
                      << position.beats_per_minute;
        std::cout << "\n";
    }
    /// Waits until another program has connected itself to the keys.
    void awaitConnection() {
        for (int tries = 0; tries < 100; ++tries) {
            if (jack_port_connected(keys_) > 0) return;
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
        }
        throw std::runtime_error("nobody listens to the keys");
    }
    void connectKeys(const std::string& port) {
        if (jack_connect(client_, jack_port_name(keys_), port.c_str()) != 0)
            throw std::runtime_error("there is no " + port);
    }
    /// Gives the notes of a MIDI file to the keys while the transport rolls, at 120 beats per minute.
    void playAlong(const std::string& file) {
        const double framesOfTick = jack_get_sample_rate(client_) / 1920.0;
        const auto add = [&](std::int64_t tick, std::uint32_t message) {
            song_.push_back(
                {static_cast<std::int64_t>(std::llround(static_cast<double>(tick) * framesOfTick)), message});
        };
        for (const marnoth::SynthEvent& note : marnoth::readMidi(file).notes) {
            add(note.time, 0x900000u | static_cast<std::uint32_t>(note.note) << 8 | note.velocity);
            add(std::int64_t{note.time} + note.duration, 0x800000u | static_cast<std::uint32_t>(note.note)
                                                                         << 8);
        }
        std::ranges::stable_sort(song_, {}, &Timed::frame);
        hasSong_ = true;
    }
    /// A note of half a second, and how loud `port` is meanwhile.
    void playNote(std::uint8_t key, const std::string& port) {
        jack_connect(client_, port.c_str(), jack_port_name(input_));
        loudest_ = 0.0f;
        next_ = 0x900000u | static_cast<std::uint32_t>(key) << 8 | 100u;
        std::this_thread::sleep_for(std::chrono::milliseconds(500));
        std::cout << loudest_ << "\n";
        next_ = 0x800000u | static_cast<std::uint32_t>(key) << 8;
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }

private:
    /// A message of three bytes.
    struct Timed {
        std::int64_t frame;
        std::uint32_t message;
    };

    static void write(void* keys, jack_nframes_t frame, std::uint32_t message) {
        const jack_midi_data_t bytes[] = {static_cast<jack_midi_data_t>(message >> 16),
                                          static_cast<jack_midi_data_t>(message >> 8),
                                          static_cast<jack_midi_data_t>(message)};
        jack_midi_event_write(keys, frame, bytes, sizeof bytes);
    }
    void writeSong(void* keys, jack_nframes_t frames) {
        jack_position_t position{};
        if (jack_transport_query(client_, &position) != JackTransportRolling) return;
        const std::int64_t begin = position.frame;
        auto next = std::ranges::lower_bound(song_, begin, {}, &Timed::frame);
        for (; next != song_.end() && next->frame < begin + frames; ++next)
            write(keys, static_cast<jack_nframes_t>(next->frame - begin), next->message);
    }
    void block(jack_nframes_t frames) {
        void* const keys = jack_port_get_buffer(keys_, frames);
        jack_midi_clear_buffer(keys);
        if (const std::uint32_t note = next_.exchange(0)) write(keys, 0, note);
        if (hasSong_) writeSong(keys, frames);
        const auto* const heard = static_cast<const float*>(jack_port_get_buffer(input_, frames));
        for (jack_nframes_t frame = 0; frame < frames; ++frame)
            if (std::abs(heard[frame]) > loudest_) loudest_ = std::abs(heard[frame]);
    }

    jack_client_t* const client_;
    jack_port_t* input_ = nullptr;
    jack_port_t* keys_ = nullptr;
    std::atomic<std::uint32_t> next_ = 0;  ///< a message of three bytes
    std::atomic<float> loudest_ = 0.0f;
    std::vector<Timed> song_;
    std::atomic<bool> hasSong_ = false;
};

void run(Neighbour& neighbour, const std::string& word, const std::string& value) {
    if (word == "roll") return neighbour.roll();
    if (word == "stop") return neighbour.stop();
    if (word == "locate") return neighbour.locate(static_cast<jack_nframes_t>(std::stoul(value)));
    if (word == "transport") return neighbour.tellTransport();
    if (word == "await") return neighbour.awaitConnection();
    if (word == "keys") return neighbour.connectKeys(value);
    if (word == "song") return neighbour.playAlong(value);
    if (word == "wait") return std::this_thread::sleep_for(std::chrono::milliseconds(std::stoi(value)));
    if (word == "note") return neighbour.playNote(60, value);
    throw std::runtime_error("what is " + word + "?");
}

}  // namespace

/// JACK_NEIGHBOUR WORD[=VALUE]...: does one after the other.
int main(int argc, char** argv) try {
    Neighbour neighbour;
    for (int i = 1; i < argc; ++i) {
        const std::string word = argv[i];
        const std::size_t equals = word.find('=');
        run(neighbour, word.substr(0, equals), equals == word.npos ? "" : word.substr(equals + 1));
        // What the transport is asked for it does with one of the next blocks.
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    return 0;
} catch (const std::exception& error) {
    std::cerr << "jack_neighbour: " << error.what() << "\n";
    return 1;
}
