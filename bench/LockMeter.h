#pragma once

#include <cstdint>

#include "platform/system/CritSec.h"

namespace marnoth::bench {

/// How long a lock is held, in processor time of the thread that holds it: what other programs take from the
/// machine meanwhile isn't counted. A recursive hold counts from its outermost lock to its outermost unlock.
///
/// For programs that link LockMeter.cpp, which puts itself in front of the system's functions for mutexes.
/// One at a time; the holds of all threads count.
class LockMeter {
public:
    /// Watches `lock`, which must not be held, for as long as this lives.
    explicit LockMeter(const CCritSec& lock);
    ~LockMeter();
    LockMeter(const LockMeter&) = delete;
    LockMeter& operator=(const LockMeter&) = delete;

    /// Forgets the holds so far.
    void restart();
    /// The longest hold since the last start, nanoseconds; 0 when there was none.
    std::int64_t longest() const;
    /// Holds since the last start.
    std::int64_t holds() const;
};

}  // namespace marnoth::bench
