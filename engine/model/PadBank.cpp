#include "engine/model/PadBank.h"

#include <algorithm>
#include <utility>

namespace marnoth {

void Model::recomputeAnySolo() {
    anySolo = std::any_of(pads.begin(), pads.end(), [](const CGrooveTrack& pad) { return pad.solo != 0; });
}

Model& PadBank::writable() {
    if (playing_ == present_) {
        states_[1 - present_] = states_[present_];
        present_ = 1 - present_;
        leftOver_ = true;
    }
    return states_[present_];
}

const Model& PadBank::beginBlock() {
    playing_ = present_;
    return present();
}

void PadBank::takeLeftOver(Model& former) {
    if (!hasLeftOver()) return;
    std::swap(states_[1 - present_], former);
    leftOver_ = false;
}

}  // namespace marnoth
