#pragma once

#include <array>
#include <atomic>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "shells/desktop/audio/AudioDriver.h"
#include "shells/desktop/audio/JackClient.h"
#include "shells/desktop/settings/DesktopSettings.h"

namespace marnoth {

/// Sound and MIDI through JACK, which PipeWire speaks too: the seventeen outputs as ports with names, and one
/// port for notes. The mix is connected to the speakers and the port to what sends MIDI, at the start and
/// whenever such ports come.
class JackDriver final : public AudioDriver, private SharedTransport {
public:
    /// `jack` and `client` outlive it; nobody else renders through `connection`. Throws `std::runtime_error`,
    /// with a sentence for the user, when the server has another rate than is wished or refuses.
    JackDriver(const JackLibrary& jack, std::shared_ptr<const JackClient> connection, const AudioWish& wish,
               AudioClient& client);

    std::string name() const override { return "JACK"; }
    std::uint32_t rate() const override { return rate_; }
    std::int32_t frames() const override { return frames_; }
    std::string trouble() const override;
    void look() override;
    void setTransport(TransportRole role) override;
    SharedTransport* transport() override { return role_ == TransportRole::own ? nullptr : this; }

private:
    // SharedTransport.
    void play() override { jack_.transport_start(handle_); }
    void stop() override { jack_.transport_stop(handle_); }
    void locate(std::int64_t frame) override;

    void askForFrames();
    void awaitBlock() const;
    void start(std::uint32_t rate);
    void answerCallbacks();
    int process(std::int32_t frames);
    void handNotesOn(jack_nframes_t frames);
    void tellTransport();
    bool addPorts();
    void forgetNewPorts();
    void connectMix();
    void connectMidi();

    const JackLibrary& jack_;
    AudioClient& client_;
    const AudioWish wish_;
    const std::shared_ptr<const JackClient> connection_;
    jack_client_t* const handle_;
    std::array<jack_port_t*, SeparateOutputs::kPointers> audio_{};
    jack_port_t* midi_ = nullptr;
    std::atomic<std::uint32_t> serverRate_;  ///< frames per second, as all rates here
    std::atomic<std::uint32_t> rate_ = 0;    ///< that the client renders at; 0 before it does
    std::atomic<std::int32_t> frames_ = 0;
    std::atomic<bool> gone_ = false;
    std::atomic<bool> hasBegun_ = false;  ///< a block has come
    std::atomic<bool> isFreewheeling_ = false;
    std::atomic<TransportRole> role_ = TransportRole::own;
    std::mutex newPortsMutex_;
    std::vector<jack_port_id_t> newPorts_;    ///< since the last look, from a thread of JACK's
    std::vector<std::string> knownMidi_;      ///< ports that are there and were connected once
    std::vector<std::string> knownSpeakers_;  ///< the same
    std::optional<JackActivation> activation_;
};

}  // namespace marnoth
