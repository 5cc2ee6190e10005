#include "engine/render/Voice.h"

#include <utility>

#include "platform/system/Overflow.h"

namespace marnoth {

void VoiceState::startBoth(std::int64_t ticks16) {
    for (VoiceLane* lane : {&gate, &shot}) {
        lane->start = lane->from = lane->position = ticks16;
        lane->openEnd();
    }
}

void VoiceState::endBoth() {
    gate.kill();
    shot.kill();
}

void VoiceState::advance(std::int64_t ticks16) {
    gate.position = plus(gate.position, ticks16);
    shot.position = plus(shot.position, ticks16);
}

void VoiceState::requestStart() {
    startPending = fromPage = 1;
    stopRequest = releasing = finished = 0;
}

void VoiceState::requestAudition() {
    requestStart();
    ignoreLength = 1;
    gate.position = gate.start = gate.end = gate.length = 0;
}

bool take(std::uint32_t& request) {
    return std::exchange(request, 0) != 0;
}

}  // namespace marnoth
