#include <jack/jack.h>
#include <jack/midiport.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cmath>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <stdexcept>
#include <string>
#include <thread>

namespace {

constexpr float kAudible = 1e-3f;

/// How long it holds the processor in each cycle, which is about as long as the instrument does: it meets as
/// many of the machine's own halts.
constexpr std::chrono::microseconds kWork{25};
constexpr double kQuarter = 0.25;

/// The white keys from middle C up, which pads 1 to 16 answer.
constexpr std::array<std::uint8_t, 16> kKeys{60, 62, 64, 65, 67, 69, 71, 72, 74, 76, 77, 79, 81, 83, 84, 86};

volatile std::sig_atomic_t ends = 0;

/// A client of JACK, open while this lives.
class Client {
public:
    explicit Client(const char* name) : handle(jack_client_open(name, JackNoStartServer, nullptr)) {
        if (!handle) throw std::runtime_error("no JACK server runs");
    }
    ~Client() { jack_client_close(handle); }
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;

    jack_port_t* port(const char* name, const char* type, unsigned long flags) {
        return jack_port_register(handle, name, type, flags, 0);
    }

    jack_client_t* const handle;
};

/// Copies what comes in to what goes out, and plays: every so many cycles a pad's key goes down, and up again
/// eight keys later. Nothing else feeds it, so what it misses isn't the doing of whoever is looked at.
class Copier {
public:
    Copier() {
        jack_set_process_callback(
            client_.handle,
            [](jack_nframes_t frames, void* self) { return static_cast<Copier*>(self)->process(frames); },
            this);
        jack_set_xrun_callback(
            client_.handle,
            [](void* self) {
                ++static_cast<Copier*>(self)->dropouts;
                return 0;
            },
            this);
        if (jack_activate(client_.handle) != 0) throw std::runtime_error("JACK doesn't start us");
        jack_connect(client_.handle, "system:capture_1", jack_port_name(in_));
        jack_connect(client_.handle, jack_port_name(out_), "system:playback_2");
    }

    std::atomic<long> cycles = 0;
    std::atomic<long> late = 0;  ///< cycles in which the copy wasn't done when the next one was due
    std::atomic<long> dropouts = 0;
    std::atomic<long> beyondQuarter = 0;  ///< cycles in which the work took more than that of their time

private:
    using Clock = std::chrono::steady_clock;

    static constexpr long kCyclesOfNote = 18;

    int process(jack_nframes_t frames) {
        const auto begin = Clock::now();
        const auto* const from = static_cast<const float*>(jack_port_get_buffer(in_, frames));
        std::copy(from, from + frames, static_cast<float*>(jack_port_get_buffer(out_, frames)));
        void* const notes = jack_port_get_buffer(notes_, frames);
        jack_midi_clear_buffer(notes);
        if (cycles % kCyclesOfNote == 0) {
            const auto step = static_cast<std::size_t>(cycles / kCyclesOfNote);
            write(notes, 0x90, kKeys[step % kKeys.size()], 100);
            write(notes, 0x80, kKeys[(step + kKeys.size() / 2) % kKeys.size()], 0);
        }
        ++cycles;
        while (Clock::now() - begin < kWork) {
        }
        const std::chrono::duration<double> took = Clock::now() - begin;
        if (took.count() * jack_get_sample_rate(client_.handle) > kQuarter * frames) ++beyondQuarter;
        if (jack_frames_since_cycle_start(client_.handle) > frames) ++late;
        return 0;
    }
    static void write(void* notes, std::uint8_t status, std::uint8_t key, std::uint8_t velocity) {
        const std::array<jack_midi_data_t, 3> bytes{status, key, velocity};
        jack_midi_event_write(notes, 0, bytes.data(), bytes.size());
    }

    Client client_{"witness"};
    jack_port_t* const in_ = client_.port("in", JACK_DEFAULT_AUDIO_TYPE, JackPortIsInput);
    jack_port_t* const out_ = client_.port("out", JACK_DEFAULT_AUDIO_TYPE, JackPortIsOutput);
    jack_port_t* const notes_ = client_.port("notes", JACK_DEFAULT_MIDI_TYPE, JackPortIsOutput);
};

/// Hears whether a port sounds.
class Listener {
public:
    explicit Listener(std::string port) : port_(std::move(port)) {
        jack_set_process_callback(
            client_.handle,
            [](jack_nframes_t frames, void* self) { return static_cast<Listener*>(self)->process(frames); },
            this);
        if (jack_activate(client_.handle) != 0) throw std::runtime_error("JACK doesn't start us");
    }

    /// The port may be one that comes, or goes and comes back.
    void connect() { jack_connect(client_.handle, port_.c_str(), jack_port_name(in_)); }

    std::atomic<long> cycles = 0;
    std::atomic<long> sounding = 0;

private:
    int process(jack_nframes_t frames) {
        const auto* const from = static_cast<const float*>(jack_port_get_buffer(in_, frames));
        ++cycles;
        sounding +=
            std::any_of(from, from + frames, [](float sample) { return std::abs(sample) > kAudible; });
        return 0;
    }

    const std::string port_;
    Client client_{"listener"};
    jack_port_t* const in_ = client_.port("in", JACK_DEFAULT_AUDIO_TYPE, JackPortIsInput);
};

void run(const char* heard) {
    jack_set_error_function([](const char*) {});
    Copier copier;
    Listener listener(heard);
    while (!ends) {
        listener.connect();
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
    }
    std::printf("cycles %ld beyond a quarter %ld late %ld dropouts %ld heard %ld sounding %ld\n",
                copier.cycles.load(), copier.beyondQuarter.load(), copier.late.load(), copier.dropouts.load(),
                listener.cycles.load(), listener.sounding.load());
}

}  // namespace

/// A neighbour in the graph of JACK who only copies, and plays notes: graph_witness PORT, whose sound it
/// listens to. Until it is told to end (SIGTERM); then it says what it went through.
int main(int argc, char** argv) try {
    if (argc != 2) throw std::runtime_error("graph_witness PORT");
    std::signal(SIGTERM, [](int) { ends = 1; });
    run(argv[1]);
    return 0;
} catch (const std::exception& error) {
    std::printf("%s\n", error.what());
    return 1;
}
