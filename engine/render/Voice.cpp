#include "engine/render/Voice.h"

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

void VoiceState::requestStart() {
    startPending = fromPage = 1;
    stopRequest = releasing = finished = 0;
}

void VoiceState::requestAudition() {
    requestStart();
    ignoreLength = 1;
    gate.position = gate.start = gate.end = gate.length = 0;
}

}  // namespace marnoth
