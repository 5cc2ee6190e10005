#pragma once

#include <chrono>
#include <deque>
#include <optional>
#include <string>

namespace marnoth {

/// What the program has to tell its user in passing: a sentence at a time, each long enough to be read, and
/// none that would have to be answered. The window's thread.
class Notices {
public:
    using Time = std::chrono::steady_clock::time_point;

    /// Nothing when `sentence` is empty. What is told already isn't told twice.
    void tell(std::string sentence);
    /// What is to be read now; empty for nothing.
    const std::string& current(Time now);
    /// The user has read it.
    void dismiss();

private:
    std::chrono::milliseconds timeFor(const std::string& sentence) const;

    std::deque<std::string> waiting_;  ///< the first is shown
    std::optional<Time> shownSince_;
    const std::string none_;
};

}  // namespace marnoth
