#include "shells/desktop/midi/SystemWithMidi.h"

#include <utility>

#include "shells/desktop/midi/MidiInput.h"

namespace marnoth {

namespace {

class DriverWithMidi final : public AudioDriver {
public:
    DriverWithMidi(AudioSystem& audio, MidiSystem& midi, const AudioWish& wish, AudioClient& client)
        : input_(client), driver_(audio.open(wish, input_)), ports_(midi.connect(wish.midiPort, input_)) {}

    std::string name() const override { return driver_->name(); }
    std::uint32_t rate() const override { return driver_->rate(); }
    std::int32_t frames() const override { return driver_->frames(); }
    std::string trouble() const override { return driver_->trouble(); }
    void look() override {
        driver_->look();
        ports_->look();
    }

private:
    MidiInput input_;
    const std::unique_ptr<AudioDriver> driver_;
    const std::unique_ptr<MidiConnection> ports_;
};

}  // namespace

SystemWithMidi::SystemWithMidi(std::shared_ptr<AudioSystem> audio, std::shared_ptr<MidiSystem> midi)
    : audio_(std::move(audio)), midi_(std::move(midi)) {}

std::unique_ptr<AudioDriver> SystemWithMidi::open(const AudioWish& wish, AudioClient& client) {
    return std::make_unique<DriverWithMidi>(*audio_, *midi_, wish, client);
}

}  // namespace marnoth
