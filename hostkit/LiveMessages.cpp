#include "hostkit/LiveMessages.h"

#include <algorithm>

namespace marnoth {

namespace {

constexpr std::uint8_t kDataBits = 127;

std::optional<LiveMessage::Kind> kindOfController(std::uint8_t controller) {
    constexpr std::uint8_t kAllSoundOff = 120;
    constexpr std::uint8_t kResetAllControllers = 121;
    constexpr std::uint8_t kAllNotesOff = 123;
    if (controller == kAllSoundOff) return LiveMessage::Kind::soundOff;
    if (controller == kResetAllControllers || controller == kAllNotesOff) return LiveMessage::Kind::notesOff;
    return std::nullopt;
}

}  // namespace

std::optional<LiveMessage> readLiveMessage(std::int32_t frame, std::uint8_t status, std::uint8_t data1,
                                           std::uint8_t data2) {
    LiveMessage message;
    message.frame = frame;
    message.channel = status & 15;
    message.key = data1 & kDataBits;
    const std::uint8_t velocity = data2 & kDataBits;
    switch (status & 0xF0) {
        case 0x80:
            return message;
        case 0x90:
            if (velocity != 0) message.kind = LiveMessage::Kind::noteOn;
            message.velocity = velocity;
            return message;
        case 0xB0:
            if (const auto kind = kindOfController(data1)) {
                message.kind = *kind;
                return message;
            }
            return std::nullopt;
        default:
            return std::nullopt;
    }
}

bool LiveMessages::add(LiveMessage message) {
    message.frame = std::max(message.frame, 0);
    const bool isNote =
        message.kind == LiveMessage::Kind::noteOn || message.kind == LiveMessage::Kind::noteOff;
    if (count_ < (isNote ? kRoomForNotes : kRoom)) {
        insert(message);
        return true;
    }
    if (message.kind == LiveMessage::Kind::noteOff) addLate(message);
    return message.kind == LiveMessage::Kind::noteOff;
}

/// Behind those of the same frame and before later ones. In order, as messages come, nothing is moved.
void LiveMessages::insert(const LiveMessage& message) {
    const auto begin = waiting_.begin() + static_cast<std::ptrdiff_t>(first_);
    auto end = begin + static_cast<std::ptrdiff_t>(count_);
    if (end == waiting_.end()) {
        end = std::copy(begin, end, waiting_.begin());
        first_ = 0;
    }
    const auto isEarlier = [](const LiveMessage& a, const LiveMessage& b) { return a.frame < b.frame; };
    const auto place =
        std::upper_bound(waiting_.begin() + static_cast<std::ptrdiff_t>(first_), end, message, isEarlier);
    std::copy_backward(place, end, end + 1);
    *place = message;
    ++count_;
}

void LiveMessages::addLate(const LiveMessage& noteOff) {
    const std::size_t index = noteOff.channel * kKeys + noteOff.key;
    const std::int32_t last = waiting_[first_ + count_ - 1].frame;
    lateFrame_ = std::max({lateCount_ > 0 ? lateFrame_ : 0, last, noteOff.frame});
    lateFrom_ = lateCount_ > 0 ? std::min(lateFrom_, index) : index;
    ++late_[index];
    ++lateCount_;
}

std::int32_t LiveMessages::nextFrame() const {
    const std::int32_t waiting = count_ > 0 ? waiting_[first_].frame : lateFrame_;
    return lateCount_ > 0 ? std::min(waiting, lateFrame_) : waiting;
}

LiveMessage LiveMessages::take() {
    const bool isLateTurn = count_ == 0 || (lateCount_ > 0 && lateFrame_ < waiting_[first_].frame);
    if (isLateTurn) return takeLate();
    const LiveMessage message = waiting_[first_++];
    if (--count_ == 0) first_ = 0;
    return message;
}

LiveMessage LiveMessages::takeLate() {
    while (late_[lateFrom_] == 0) ++lateFrom_;
    --late_[lateFrom_];
    --lateCount_;
    return {lateFrame_, LiveMessage::Kind::noteOff, static_cast<std::uint8_t>(lateFrom_ / kKeys),
            static_cast<std::uint8_t>(lateFrom_ % kKeys), 0};
}

void LiveMessages::advance(std::int32_t frames) {
    for (std::size_t i = 0; i < count_; ++i) {
        std::int32_t& frame = waiting_[first_ + i].frame;
        frame = std::max(frame - frames, 0);
    }
    lateFrame_ = std::max(lateFrame_ - frames, 0);
}

}  // namespace marnoth
