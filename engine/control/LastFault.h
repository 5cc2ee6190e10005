#pragma once

#include <cstdint>

#include "seam/LoadFault.h"

namespace marnoth {

/// Why a load failed, and what one that didn't has passed over.
struct LoadOutcome {
    LoadFault fault;
    LoadFault damage;
};

/// How the last load of one instrument ended, for each thread its own. Any thread; takes no lock and
/// allocates nothing. A thread keeps one outcome, whatever the number of instruments.
class LastFault {
public:
    LastFault();
    LastFault(const LastFault&) = delete;
    LastFault& operator=(const LastFault&) = delete;

    /// In place of what the calling thread kept.
    void set(const LoadOutcome& outcome) noexcept;
    /// The calling thread's; none when the last one that it kept is of another instrument.
    LoadOutcome get() const noexcept;

private:
    std::uint64_t instrument_;  ///< a number that no other one has had
};

}  // namespace marnoth
