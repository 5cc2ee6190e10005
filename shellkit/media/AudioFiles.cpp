#include "shellkit/media/AudioFiles.h"

#include <utility>

namespace marnoth {

std::string audioFileName(int pin, int number) {
    std::string text = "mix";
    if (pin > 0) text = (pin < 10 ? "chan0" : "chan") + std::to_string(pin);
    if (number > 1) text += "-" + std::to_string(number);
    return text + ".wav";
}

void AudioFiles::connected(std::uint32_t rate, std::uint32_t channels, std::vector<int> pins) {
    rate_ = rate;
    channels_ = channels;
    connected_ = std::move(pins);
}

void AudioFiles::begin() {
    for (const int pin : connected_) writerOf(pin);
    check();
}

void AudioFiles::take(int pin, std::span<const float> samples) noexcept {
    if (failure_) return;
    try {
        writerOf(pin).write(samples);
    } catch (...) {
        failure_ = std::current_exception();
    }
}

void AudioFiles::check() const {
    if (failure_) std::rethrow_exception(failure_);
}

void AudioFiles::finish() {
    for (Pin& pin : pins_) close(pin);
    check();
}

WaveWriter& AudioFiles::writerOf(int number) {
    Pin& pin = pins_[static_cast<std::size_t>(number)];
    if (pin.writer && !isOfFormat(*pin.writer)) close(pin);
    if (!pin.writer) {
        pin.writer = std::make_unique<WaveWriter>(folder_ / audioFileName(number, pin.files + 1),
                                                  WaveOptions{.rate = rate_, .channels = channels_});
        ++pin.files;
    }
    return *pin.writer;
}

bool AudioFiles::isOfFormat(const WaveWriter& writer) const {
    return writer.options().rate == rate_ && writer.options().channels == channels_;
}

void AudioFiles::close(Pin& pin) noexcept {
    if (!pin.writer) return;
    try {
        pin.writer->finish();
    } catch (...) {
        if (!failure_) failure_ = std::current_exception();
    }
    pin.writer.reset();
}

}  // namespace marnoth
