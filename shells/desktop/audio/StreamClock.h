#pragma once

#include <chrono>
#include <cstdint>

namespace marnoth {

/// Tells which frame of a stream a moment falls on.
///
/// A system asks for a block when it has room, or as soon as the machine lets it: later than by the clock,
/// never earlier, and several at once where its own buffer takes them so. So those that come earliest tell
/// the truth, and what drifts apart is followed slowly. A long pause starts anew. One thread.
class StreamClock {
public:
    using Moment = std::chrono::steady_clock::time_point;

    /// A stream of blocks of `frames` at `rate` frames per second begins.
    void start(std::uint32_t rate, std::int32_t frames);
    /// A block that begins at frame `first` of the stream is asked for.
    void block(std::int64_t first, Moment now);
    /// Only behind the first block.
    std::int64_t frameAt(Moment moment) const;

private:
    double framesSince(Moment moment) const;

    std::uint32_t rate_ = 0;
    double farthest_ = 0.0;  ///< frames that a block may come too late
    bool runs_ = false;
    Moment origin_;      ///< the first block
    double lead_ = 0.0;  ///< how far the stream's frames are ahead of those since the origin
};

}  // namespace marnoth
