#pragma once

#include <cstdint>
#include <optional>

#include "hostkit/LiveTransport.h"

namespace marnoth {

/// What a plug-in's host tells of its position at a frame. What it leaves out is as it was.
struct ToldPosition {
    std::optional<std::int64_t> frame = {};  ///< on the host's timeline; below 0 before its start
    std::optional<double> speed = {};        ///< 0 stands, 1 plays, below 0 goes backwards
    std::optional<double> tempo = {};        ///< quarter notes per minute
    std::optional<double> beat = {};         ///< beats from the start of the timeline
    std::optional<double> bar = {};          ///< whole bars from there
    std::optional<double> barBeat = {};      ///< beats within the bar
    std::optional<double> beatsPerBar = {};
    std::optional<double> beatUnit = {};  ///< a beat is one part of so many of a whole note
};

/// Makes of what a plug-in's host tells now and then, in its several ways, what a live host follows at each
/// block.
///
/// Between two positions time goes on at the host's speed. The frame is the truth: musical time follows from
/// it and the tempo wherever the host's beats, which may be rounded, agree within a tick. Where they don't,
/// as behind a change of tempo, the beats are; but a change that comes in the middle of a block is told with
/// the next one, and taken for one at a whole beat, a half or a quarter where the rounding allows that. A
/// change of the meter leaves musical time where it is. What goes backwards isn't played; at any other speed
/// the tempo is so much faster or slower, and sound keeps its pitch.
///
/// The thread that renders; nothing allocates. Values that can't be count as left out.
class HostPosition {
public:
    /// Frames per second.
    void setRate(double rate) { rate_ = rate; }

    /// The host's position at the frame that was come to. Whether it plays on from another place than it had
    /// come to.
    bool take(const ToldPosition& told);
    /// What the block that begins here is played by.
    LiveTransport next() const;
    /// So many frames are over.
    void advance(std::int32_t frames);

private:
    bool isPlaying() const { return speed_ > 0.0; }
    double ticksPerFrame() const;
    void takeFrame(std::int64_t frame, bool goesOn);
    void takeMeter(const ToldPosition& told, bool goesOn);
    std::optional<double> toldBeat(const ToldPosition& told) const;
    /// `ticksBefore` is what a frame was until here; nothing where playing doesn't go on.
    void takeBeat(const ToldPosition& told, std::optional<double> ticksBefore);
    double unrounded(double beat, double ticksBefore) const;

    double rate_ = 48000.0;
    double speed_ = 0.0;
    double tempo_ = kDefaultLiveTempo;
    bool tempoIsTold_ = false;
    double hostFrame_ = 0.0;   ///< on the host's timeline
    std::int64_t frame_ = 0;   ///< the same where the speed is 1; elsewhere every frame that is heard counts
    double tick_ = 0.0;        ///< 960 to the quarter note
    bool tickIsTold_ = false;  ///< the frame and the tempo don't say it
    double beatsPerBar_ = 4.0;
    double beatUnit_ = 4.0;
    double meterTicks_ = 0.0;  ///< how far musical time is ahead of bars that had always been as long as now
};

}  // namespace marnoth
