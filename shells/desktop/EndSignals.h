#pragma once

#include <array>
#include <csignal>
#include <cstddef>

namespace marnoth {

/// Lets the program end in good order when the system wants it to: an interruption from the keyboard, a wish
/// to terminate and a terminal that goes away can be read here, in place of ending the process. A second one
/// ends it at once. A reader of the output that goes away and a file that may grow no more are told by the
/// write alone. One at a time; the former ways are back when it goes.
class EndSignals {
public:
    EndSignals();
    ~EndSignals();
    EndSignals(const EndSignals&) = delete;
    EndSignals& operator=(const EndSignals&) = delete;

    /// Readable as soon as one has come; -1 where there is none.
    int descriptor() const { return pipe_[0]; }
    /// The signal that has come; 0 for none.
    static int came();

private:
    static constexpr std::size_t kSignals = 5;

    std::array<int, 2> pipe_{-1, -1};
    std::array<struct sigaction, kSignals> former_{};
};

}  // namespace marnoth
