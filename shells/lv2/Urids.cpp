#include "shells/lv2/Urids.h"

#include <lv2/atom/atom.h>
#include <lv2/log/log.h>
#include <lv2/midi/midi.h>
#include <lv2/parameters/parameters.h>
#include <lv2/patch/patch.h>
#include <lv2/state/state.h>
#include <lv2/time/time.h>

#include "shells/lv2/Names.h"

namespace marnoth {

Urids::Urids(const LV2_URID_Map& map) {
    const auto of = [&map](const char* uri) { return map.map(map.handle, uri); };
    atomBlank = of(LV2_ATOM__Blank);
    atomBool = of(LV2_ATOM__Bool);
    atomChunk = of(LV2_ATOM__Chunk);
    atomDouble = of(LV2_ATOM__Double);
    atomFloat = of(LV2_ATOM__Float);
    atomInt = of(LV2_ATOM__Int);
    atomLong = of(LV2_ATOM__Long);
    atomObject = of(LV2_ATOM__Object);
    atomPath = of(LV2_ATOM__Path);
    atomResource = of(LV2_ATOM__Resource);
    atomSequence = of(LV2_ATOM__Sequence);
    atomString = of(LV2_ATOM__String);
    atomUrid = of(LV2_ATOM__URID);
    atomBeatTime = of(LV2_ATOM__beatTime);
    logError = of(LV2_LOG__Error);
    midiEvent = of(LV2_MIDI__MidiEvent);
    patchGet = of(LV2_PATCH__Get);
    patchSet = of(LV2_PATCH__Set);
    patchPut = of(LV2_PATCH__Put);
    patchBody = of(LV2_PATCH__body);
    patchProperty = of(LV2_PATCH__property);
    patchValue = of(LV2_PATCH__value);
    sampleRate = of(LV2_PARAMETERS__sampleRate);
    timePosition = of(LV2_TIME__Position);
    timeBar = of(LV2_TIME__bar);
    timeBarBeat = of(LV2_TIME__barBeat);
    timeBeat = of(LV2_TIME__beat);
    timeBeatUnit = of(LV2_TIME__beatUnit);
    timeBeatsPerBar = of(LV2_TIME__beatsPerBar);
    timeBeatsPerMinute = of(LV2_TIME__beatsPerMinute);
    timeFrame = of(LV2_TIME__frame);
    timeSpeed = of(LV2_TIME__speed);
    project = of(kProjectUri);
    stateVersion = of(kStateVersionUri);
    stateChanged = of(LV2_STATE__StateChanged);
    view = of(kViewUri);
}

}  // namespace marnoth
