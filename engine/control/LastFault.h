#pragma once

#include <cstdint>

#include "seam/LoadFault.h"

namespace marnoth {

/// How the last load of one instrument ended, for each thread its own. Any thread; takes no lock and
/// allocates nothing. A thread keeps one fault, whatever the number of instruments.
class LastFault {
public:
    LastFault();
    LastFault(const LastFault&) = delete;
    LastFault& operator=(const LastFault&) = delete;

    /// In place of what the calling thread kept.
    void set(const LoadFault& fault) noexcept;
    /// The calling thread's; none when the last one that it kept is of another instrument.
    LoadFault get() const noexcept;

private:
    std::uint64_t instrument_;  ///< a number that no other one has had
};

}  // namespace marnoth
