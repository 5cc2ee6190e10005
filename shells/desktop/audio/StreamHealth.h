#pragma once

#include <atomic>

namespace marnoth {

/// Tells a stream that stumbles from one whose device has gone, by what RtAudio says: an underrun is a
/// warning, which the next block explains; a warning that it doesn't explain is the end, and so are underruns
/// without one. The thread that renders, but for `isLost`.
class StreamHealth {
public:
    enum class Block { plays, dropped, lost };

    /// RtAudio warns of something, or gives up.
    void warn() { isWarned_ = true; }
    void fail() { isLost_ = true; }
    /// A block is asked for, which `isUnderrun` says to come too late.
    Block block(bool isUnderrun) {
        underruns_ = isUnderrun ? underruns_ + 1 : 0;
        if ((isWarned_ && !isUnderrun) || underruns_ > kMostUnderruns) isLost_ = true;
        isWarned_ = false;
        return isLost_ ? Block::lost : isUnderrun ? Block::dropped : Block::plays;
    }
    /// Any thread.
    bool isLost() const { return isLost_; }

private:
    /// One after another. A device that has gone answers at once, so that these take no time.
    static constexpr int kMostUnderruns = 500;

    bool isWarned_ = false;
    int underruns_ = 0;
    std::atomic<bool> isLost_ = false;
};

}  // namespace marnoth
