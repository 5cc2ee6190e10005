#include "shells/desktop/audio/JackTransport.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "seam/MusicalTime.h"
#include "shells/desktop/playing/Bars.h"

namespace marnoth {

namespace {

constexpr double kQuarter = 4.0;

bool tellsBeats(const jack_position_t& position) {
    return (position.valid & JackPositionBBT) != 0 && position.ticks_per_beat > 0.0 &&
           position.beats_per_bar > 0.0f && isLiveTempo(position.beats_per_minute) && position.frame_rate > 0;
}

double ticksPerFrameOf(const jack_position_t& position) {
    return position.beats_per_minute * kTicksPerBeat / 60.0 / position.frame_rate;
}

double tickOf(const jack_position_t& position) {
    const double beats = (position.bar - 1.0) * static_cast<double>(position.beats_per_bar) +
                         (position.beat - 1.0) + position.tick / position.ticks_per_beat;
    const bool isOffset = (position.valid & JackBBTFrameOffset) != 0;
    return beats * kTicksPerBeat + (isOffset ? position.bbt_offset * ticksPerFrameOf(position) : 0.0);
}

}  // namespace

LiveTransport readJackTransport(jack_transport_state_t state, const jack_position_t& position) {
    LiveTransport told;
    told.playing = state == JackTransportRolling;
    told.frame = position.frame;
    if (!tellsBeats(position)) return told;
    told.tempo = position.beats_per_minute;
    const double byBeat = tickOf(position);
    const double byFrame = position.frame * ticksPerFrameOf(position);
    const double tolerance = 1.0 + kTicksPerBeat / position.ticks_per_beat;
    told.tick = std::abs(byBeat - byFrame) <= tolerance ? byFrame : byBeat;
    return told;
}

void writeJackBeats(jack_position_t& position, const MusicalPlace& place) {
    constexpr double kTicksPerBar = kTicksPerBeat * kBeatsOfBar;
    // Whole ticks: what is left of one is no frame's worth that anybody could tell.
    const double tick = std::floor(std::max(place.tick, 0.0));
    const double bar = std::floor(tick / kTicksPerBar);
    const double beat = std::floor((tick - bar * kTicksPerBar) / kTicksPerBeat);
    position.valid = JackPositionBBT;
    position.beats_per_bar = kBeatsOfBar;
    position.beat_type = kQuarter;
    position.ticks_per_beat = kTicksPerBeat;
    position.beats_per_minute = place.tempo;
    position.bar = static_cast<std::int32_t>(bar) + 1;
    position.beat = static_cast<std::int32_t>(beat) + 1;
    position.tick = static_cast<std::int32_t>(tick - bar * kTicksPerBar - beat * kTicksPerBeat);
    position.bar_start_tick = bar * kTicksPerBar;
}

}  // namespace marnoth
