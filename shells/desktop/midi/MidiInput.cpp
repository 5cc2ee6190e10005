#include "shells/desktop/midi/MidiInput.h"

#include <algorithm>

namespace marnoth {

namespace {

constexpr std::uint8_t kControl = 0xB0;
constexpr std::uint8_t kAllNotesOff = 123;
constexpr std::uint8_t kChannels = 16;
constexpr std::uint8_t kLeastStatus = 0x80;
constexpr std::uint8_t kLeastSystemStatus = 0xF0;

}  // namespace

void MidiInput::receive(std::uint8_t status, std::uint8_t data1, std::uint8_t data2) {
    if (status < kLeastStatus || status >= kLeastSystemStatus) return;
    if (!messages_.push({now_(), status, data1, data2})) hasLost_ = true;
}

bool MidiInput::prepare(std::uint32_t rate, std::int32_t mostFrames) {
    clock_.start(rate, mostFrames);
    blockFrames_ = mostFrames;
    return client_.prepare(rate, mostFrames);
}

void MidiInput::midi(std::int32_t frame, std::uint8_t status, std::uint8_t data1, std::uint8_t data2) {
    client_.midi(frame, status, data1, data2);
}

void MidiInput::render(std::int32_t frames, OutputPointers outputs) {
    clock_.block(position_, now_());
    if (hasLost_.exchange(false))
        endAll();
    else
        handOn(frames);
    position_ += frames;
    client_.render(frames, outputs);
}

void MidiInput::handOn(std::int32_t frames) {
    for (;;) {
        if (!waiting_) waiting_ = messages_.pop();
        if (!waiting_) return;
        const std::int64_t frame = clock_.frameAt(waiting_->moment) + blockFrames_ - position_;
        if (frame >= frames) return;
        client_.midi(static_cast<std::int32_t>(std::max<std::int64_t>(frame, 0)), waiting_->status,
                     waiting_->data1, waiting_->data2);
        waiting_.reset();
    }
}

void MidiInput::endAll() {
    waiting_.reset();
    // No more than there was room for: whoever goes on sending can't hold up the block.
    for (std::size_t i = 0; i < kRoom && messages_.pop();) ++i;
    for (std::uint8_t channel = 0; channel < kChannels; ++channel)
        client_.midi(0, kControl | channel, kAllNotesOff, 0);
}

}  // namespace marnoth
