#pragma once

#include <lv2/urid/urid.h>

namespace marnoth {

/// The host's numbers for the names that it and the plug-in speak by.
struct Urids {
    explicit Urids(const LV2_URID_Map& map);

    LV2_URID atomBlank, atomBool, atomChunk, atomDouble, atomFloat, atomInt, atomLong, atomObject, atomPath,
        atomResource, atomSequence, atomString, atomUrid, atomBeatTime;
    LV2_URID logError;
    LV2_URID midiEvent;
    LV2_URID patchGet, patchSet, patchPut, patchBody, patchProperty, patchValue;
    LV2_URID sampleRate;
    LV2_URID timePosition, timeBar, timeBarBeat, timeBeat, timeBeatUnit, timeBeatsPerBar, timeBeatsPerMinute,
        timeFrame, timeSpeed;
    LV2_URID project, stateVersion, stateChanged, view;
};

}  // namespace marnoth
