#pragma once

#include <cstdint>

#include "hostkit/LiveTempoMap.h"
#include "hostkit/LiveTransport.h"
#include "platform/com/RefPtr.h"

namespace marnoth {

/// Follows a clock from block to block: says what the instrument must be told before the block, and keeps the
/// tempo map and the position of the stream.
///
/// Playing, the stream's position is the clock's frame. A frame that is one off from where playing has come
/// to is taken for a rounding of the clock, and playing goes on; two are a jump. So is a tick that is off by
/// more than one tick, and by what a change of tempo somewhere in the last block can have made of it.
///
/// Standing, the stream goes on by itself, whatever frame the clock stands at. Musical time is then the
/// position times the tempo, from position 0 on: when the tempo changes, the position moves so that musical
/// time goes on from where it was, and synced pads with it.
///
/// One thread at a time; nothing allocates.
class TransportFollower {
public:
    enum class Change {
        none,
        moved,    ///< the stream's position isn't where the last block ended
        started,  ///< playing starts or has jumped: every note ends, and the position is new
        stopped,  ///< every note ends
    };

    explicit TransportFollower(RefPtr<LiveTempoMap> map) : map_(std::move(map)) {}

    /// Stands at position 0, with the tempo as it was. `rate` is frames per second.
    void restart(std::uint32_t rate);

    /// Whether what is told starts, stops or moves the transport, so that every note ends; asked before it is
    /// followed.
    bool endsSound(const LiveTransport& told) const;
    Change follow(const LiveTransport& told);
    /// A block of `frames` frames is over.
    void advance(std::int32_t frames);

    bool playing() const { return playing_; }
    /// Position of the stream at the start of the next block, in frames.
    std::int64_t frame() const { return frame_; }
    /// The tick there, while playing.
    double tick() const { return map_->tickAt(seconds()); }

private:
    Change start(const LiveTransport& told, double tempo);
    Change changeTempo(const LiveTransport& told, double tempo);
    Change stand(double tempo);
    double tempoOf(const LiveTransport& told) const;
    bool jumps(const LiveTransport& told, double tempo) const;
    std::int64_t reachable(std::int64_t frame) const;
    double seconds() const { return static_cast<double>(frame_) / rate_; }

    RefPtr<LiveTempoMap> map_;
    double rate_ = 44100.0;
    bool playing_ = false;
    std::int64_t frame_ = 0;
    std::int32_t lastFrames_ = 0;  ///< of the last block
    double tempo_ = kDefaultLiveTempo;
};

}  // namespace marnoth
