#include "hostkit/LivePieces.h"

#include <limits>

namespace marnoth {

namespace {

constexpr std::uint8_t kNoteOffStatus = 0x80;
constexpr std::uint8_t kNoteOnStatus = 0x90;

}  // namespace

LivePiece LivePieces::next(std::int32_t frame, RawEventBatch& batch) {
    batch.clear();
    const auto isDue = [&] { return !messages_.empty() && messages_.nextFrame() <= frame; };
    while (!stopsSound_ && isDue()) apply(messages_.take(), batch);
    held_.beginPiece([&](std::uint8_t key) { batch.add({0, kNoteOffStatus, key, 0, 0}); });

    LivePiece piece;
    piece.stopsSound = stopsSound_ && !held_.owesNoteOffs();
    if (piece.stopsSound) stopsSound_ = false;
    const bool goesOnAtOnce = stopsSound_ || held_.owesNoteOffs() || isDue();
    piece.end = goesOnAtOnce ? frame + 1 : nextFrame();
    return piece;
}

std::int32_t LivePieces::nextFrame() const {
    return messages_.empty() ? std::numeric_limits<std::int32_t>::max() : messages_.nextFrame();
}

void LivePieces::apply(const LiveMessage& message, RawEventBatch& batch) {
    switch (message.kind) {
        case LiveMessage::Kind::noteOn:
            held_.noteOn(message.channel, message.key);
            batch.add({0, static_cast<std::uint8_t>(kNoteOnStatus | message.channel), message.key,
                       message.velocity, 0});
            break;
        case LiveMessage::Kind::noteOff:
            held_.noteOff(message.channel, message.key);
            break;
        case LiveMessage::Kind::notesOff:
            held_.endChannel(message.channel);
            break;
        case LiveMessage::Kind::soundOff:
            held_.endAll();
            stopsSound_ = true;
            break;
    }
}

void LivePieces::forgetSounding() {
    held_.forgetAll();
    stopsSound_ = false;
}

}  // namespace marnoth
