#pragma once

#include <cstdint>

#include "shells/desktop/audio/AudioDriver.h"
#include "shells/desktop/audio/JackLibrary.h"

namespace marnoth {

/// JACK's transport as the instrument follows it. It plays while JACK's rolls; one that waits for slow
/// programs stands. Tempo and tick are told where a program gives bars and beats: the frame is the truth
/// where both agree within a tick or so at this tempo, for beats are rounded; else the beat is.
LiveTransport readJackTransport(jack_transport_state_t state, const jack_position_t& position);

/// Fills in bars of four beats for a place in the music, whose tick counts from JACK's start. `rate` is
/// frames per second.
void writeJackBeats(jack_position_t& position, const MusicalPlace& place);

}  // namespace marnoth
